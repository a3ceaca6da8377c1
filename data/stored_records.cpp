#include "data/stored_records.h"

#include <initializer_list>

#include "data/number_text.h"

namespace quorvane {
namespace {

// The record with its reals as a statement writes them.
template <typename Record>
Record AsWritten(Record record, std::initializer_list<double Record::*> reals) {
    for (double Record::*const real : reals) {
        record.*real = FormatReal(record.*real).toDouble();
    }
    return record;
}

template <typename Record>
bool IsSame(const Record& left, const Record& right, std::initializer_list<double Record::*> reals) {
    return left == right || AsWritten(left, reals) == AsWritten(right, reals);
}

}  // namespace

bool IsSameInFile(const tagLAMPHOUSEINFO& left, const tagLAMPHOUSEINFO& right) {
    return IsSame(left, right, {&tagLAMPHOUSEINFO::LuminousFlux, &tagLAMPHOUSEINFO::LamphousePower});
}

bool IsSameInFile(const tagLUMINAIREINFO& left, const tagLUMINAIREINFO& right) {
    return IsSame(left, right,
                  {&tagLUMINAIREINFO::LuminaireEfficiency, &tagLUMINAIREINFO::MaxLhAA,
                   &tagLUMINAIREINFO::MaxLhBB, &tagLUMINAIREINFO::BallastPower});
}

bool IsSameInFile(const tagLUMINAIREUTILIZATIONFACTOR& left, const tagLUMINAIREUTILIZATIONFACTOR& right) {
    return IsSame(
        left, right,
        {&tagLUMINAIREUTILIZATIONFACTOR::RCR_RI, &tagLUMINAIREUTILIZATIONFACTOR::UtilizationFactor});
}

bool IsSameInFile(const tagILLUMINANCESTANDARD& left, const tagILLUMINANCESTANDARD& right) {
    return IsSame(left, right, {&tagILLUMINANCESTANDARD::ActualLPD, &tagILLUMINANCESTANDARD::ObjectiveLPD});
}

}  // namespace quorvane
