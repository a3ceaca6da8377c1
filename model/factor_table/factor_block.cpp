#include "model/factor_table/factor_block.h"

#include <algorithm>

#include "data/number_text.h"
#include "model/text_checks.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr std::size_t kReflectances = 3;  // rows of them

CString TextAt(const std::vector<CString>& row, std::size_t column) {
    return column < row.size() ? row[column].trimmed() : CString();
}

bool IsEmptyFrom(const std::vector<CString>& row, std::size_t column) {
    return std::all_of(row.begin() + static_cast<std::ptrdiff_t>(std::min(column, row.size())), row.end(),
                       [](const CString& text) { return text.trimmed().isEmpty(); });
}

// How many columns of the block have a text in one of their rows, counted to the last of them.
std::size_t WidthOf(const FactorTexts& texts) {
    std::size_t width = 0;
    for (const std::vector<CString>& row : texts) {
        while (!IsEmptyFrom(row, width)) {
            ++width;
        }
    }
    return width;
}

// One reflectance a column of factors; nothing when the row holds something else.
std::optional<std::vector<int>> ReadReflectances(const std::vector<CString>& row, std::size_t width) {
    if (CheckReal(TextAt(row, 0))) {
        return std::nullopt;
    }
    std::vector<int> values;
    for (std::size_t column = 1; column < width; ++column) {
        const CString text = TextAt(row, column);
        const std::optional<int> value =
            text.isEmpty() && !values.empty() ? std::optional(values.back()) : CheckInteger(text);
        const bool isReflectance = value && *value >= 0 && *value <= kLargestReflectance;
        if (!isReflectance || (text.isEmpty() && values.empty())) {
            return std::nullopt;
        }
        values.push_back(*value);
    }
    return values;
}

std::vector<std::optional<double>> ReadFactors(const std::vector<CString>& row, std::size_t width,
                                               int& lostTexts) {
    std::vector<std::optional<double>> factors;
    for (std::size_t column = 1; column < width; ++column) {
        const CString text = TextAt(row, column);
        factors.push_back(CheckReal(text));
        lostTexts += !factors.back() && !text.isEmpty() ? 1 : 0;
    }
    return factors;
}

}  // namespace

std::optional<FactorBlock> ReadFactorBlock(const FactorTexts& texts) {
    FactorTexts filled = texts;
    std::erase_if(filled, [](const std::vector<CString>& row) { return IsEmptyFrom(row, 0); });
    const std::size_t width = WidthOf(filled);
    if (width < 2 || filled.size() <= kReflectances) {
        return std::nullopt;
    }
    const auto ceilings = ReadReflectances(filled[0], width);
    const auto walls = ReadReflectances(filled[1], width);
    const auto floors = ReadReflectances(filled[2], width);
    if (!ceilings || !walls || !floors) {
        return std::nullopt;
    }
    FactorBlock block;
    for (std::size_t column = 0; column + 1 < width; ++column) {
        block.headings.push_back({(*ceilings)[column], (*walls)[column], (*floors)[column]});
    }
    const bool hasLabel = !CheckReal(TextAt(filled[kReflectances], 0));
    for (std::size_t row = kReflectances + (hasLabel ? 1 : 0); row < filled.size(); ++row) {
        const std::optional<double> ratio = CheckReal(TextAt(filled[row], 0));
        if (!ratio) {
            return std::nullopt;
        }
        block.rows.push_back({*ratio, ReadFactors(filled[row], width, block.lostTexts)});
    }
    return block.rows.empty() ? std::nullopt : std::optional(block);
}

FactorTexts WriteFactorBlock(const UtilizationFactorTable& table, const CString& rowLabel) {
    FactorTexts texts;
    for (const CString& label : FactorRowLabels(rowLabel)) {
        texts.push_back({label});
    }
    for (const auto& [Pcc, Pw, Pf] : table.Headings()) {
        texts[0].push_back(FormatInteger(Pcc));
        texts[1].push_back(FormatInteger(Pw));
        texts[2].push_back(FormatInteger(Pf));
        texts[kReflectances].emplace_back();
    }
    for (const double ratio : table.RowValues()) {
        std::vector<CString>& row = texts.emplace_back(std::vector<CString>{FormatReal(ratio)});
        for (const tagColHeading& heading : table.Headings()) {
            const std::optional<double> factor = table.FactorOf(heading, ratio);
            row.push_back(factor ? FormatReal(*factor) : CString());
        }
    }
    return texts;
}

QStringList FactorRowLabels(const CString& rowLabel) {
    return {u"有效顶棚反射比"_s, u"墙反射比"_s, u"地面反射比"_s, rowLabel};
}

}  // namespace quorvane
