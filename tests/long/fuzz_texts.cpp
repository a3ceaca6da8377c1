// Feeds whatever bytes the fuzzer finds, taken as UTF-16, to all that reads texts of users and files. Ends at
// once when something that was written is not read back as it was.
//
// usage: fuzz_texts [OPTION...] CORPUS    with the options of libFuzzer, for instance -max_total_time=600

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "data/number_text.h"
#include "data/store/dialect.h"
#include "grid/output/separated_text.h"
#include "model/factor_table/factor_block.h"
#include "model/light_source_text.h"
#include "model/text_checks.h"

namespace {

using namespace quorvane;
using namespace Qt::Literals::StringLiterals;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fputs(what, stderr);
        std::abort();
    }
}

void Tables(const CString& text) {
    const TextTable csv = ReadCsv(text);
    Require(ReadCsv(WriteCsv(csv)) == csv, "a CSV file is not read as it was written");
    TextTable copied = ReadTabText(text);
    while (!copied.empty() && copied.back() == std::vector<CString>{CString()}) {
        copied.pop_back();  // a line end at the end begins no row
    }
    Require(ReadTabText(WriteTabText(copied)) == copied, "a copy is not pasted as it was copied");
    if (const std::optional<FactorBlock> block = ReadFactorBlock(copied)) {
        for (const FactorBlock::Row& row : block->rows) {
            Require(row.factors.size() == block->headings.size(), "a row has factors without a heading");
        }
    }
}

void Numbers(const CString& text) {
    if (const std::optional<double> value = CheckReal(text)) {
        Require(std::isfinite(*value) && *value >= 0, "a number is not one that may be typed");
        Require(ToReal(text.trimmed()) == *value, "two readers of a number disagree");
    }
    if (const std::optional<int> value = CheckInteger(text)) {
        Require(CheckInteger(FormatInteger(*value)) == value, "an integer is not read as it was written");
    }
    static_cast<void>(TypedReal(text, 1234567.0));
    static_cast<void>(TypedInteger(text));
    static_cast<void>(ToInteger(text));
}

void Pieces(const CString& text) {
    const LightSourceParts parts = SplitLightSourceText(text);
    Require(parts.name + (text.contains(u':') ? u":"_s : CString()) + parts.model == text,
            "a light source's text was changed by splitting it");
    const std::vector<CString> pieces = Split(text, u',');
    const CString joined = Join(pieces);
    Require(joined == text || joined + u',' == text, "a list was changed by splitting it");
    const CString rest = u" from 光源 where Factory='"_s + text;
    Require(ToSqliteDialect(u"select *"_s + rest) == u"select *"_s + rest,
            "a typed text was changed in a statement");
    Require(ToSqliteDialect(text).size() >= text.size() - 2, "a statement was cut");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    CString text(static_cast<qsizetype>(size / sizeof(char16_t)), Qt::Uninitialized);
    std::memcpy(text.data(), bytes, static_cast<std::size_t>(text.size()) * sizeof(char16_t));
    Tables(text);
    Numbers(text);
    Pieces(text);
    return 0;
}
