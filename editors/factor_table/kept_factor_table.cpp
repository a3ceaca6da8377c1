#include "editors/factor_table/kept_factor_table.h"

#include <map>
#include <tuple>

#include "data/number_text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

using Cell = std::tuple<int, int, int, double>;  // reflectances and room ratio

std::map<Cell, double> Cells(const UtilizationFactorTable::Contents& contents) {
    std::map<Cell, double> cells;
    for (const tagLUMINAIREUTILIZATIONFACTOR& factor : contents.factors) {
        cells[{factor.Pcc, factor.Pw, factor.Pf, factor.RCR_RI}] = factor.UtilizationFactor;
    }
    return cells;
}

CString Name(const Cell& cell) {
    const auto& [Pcc, Pw, Pf, ratio] = cell;
    return u"%1,%2,%3 / %4"_s.arg(FormatInteger(Pcc), FormatInteger(Pw), FormatInteger(Pf),
                                  FormatReal(ratio));
}

}  // namespace

QStringList RefusedLines(const CString& title, const FactorTableEditing::Kept& kept) {
    QStringList lines;
    const std::map<Cell, double> stored = Cells(kept.stored);
    const std::map<Cell, double> edited = Cells(kept.edited);
    const CString table = u"利用系数表 "_s + title + u": "_s;
    for (const auto& [cell, factor] : edited) {
        const auto before = stored.find(cell);
        if (before == stored.end() || before->second != factor) {
            lines += table + Name(cell) + u" 上次改为 "_s + FormatReal(factor);
        }
    }
    for (const auto& [cell, factor] : stored) {
        if (!edited.contains(cell)) {
            lines += table + Name(cell) + u" 上次已删除"_s;
        }
    }
    return lines;
}

}  // namespace quorvane
