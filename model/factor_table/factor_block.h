// FactorBlock: a part of a utilization factor table together with its headings, as it comes from a
// spreadsheet or another table and goes there.
//
// As texts it is laid out like the grid in which factors are typed: three rows of reflectances (ceiling,
// walls, floor), a row that holds nothing but a label, and below them the rows of factors, each behind its
// room ratio.
#pragma once

#include <optional>
#include <vector>

#include "data/utilization_factor_table.h"

namespace quorvane {

inline constexpr int kLargestReflectance = 100;  // %

struct FactorBlock {
    struct Row {
        double ratio = 0;
        std::vector<std::optional<double>> factors;  // one a heading; nothing where there is none
    };

    std::vector<tagColHeading> headings;
    std::vector<Row> rows;
    int lostTexts = 0;  // in the place of factors, but no unsigned decimals
};

using FactorTexts = std::vector<std::vector<CString>>;  // rows, which may differ in length

// Nothing when the texts are no such block. The row of the label may be missing. An empty reflectance is that
// of the column to the left, as where cells are merged.
std::optional<FactorBlock> ReadFactorBlock(const FactorTexts& texts);

// A whole table as such a block, with as many digits as the file keeps. rowLabel is the name of the room
// ratios.
FactorTexts WriteFactorBlock(const UtilizationFactorTable& table, const CString& rowLabel);

// The headings of every table shown: the labels of the first four rows.
QStringList FactorRowLabels(const CString& rowLabel);

}  // namespace quorvane
