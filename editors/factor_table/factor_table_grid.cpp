#include "editors/factor_table/factor_table_grid.h"

#include <QFontMetrics>
#include <QScrollBar>
#include <algorithm>

#include "data/number_text.h"
#include "editors/grid_setup.h"
#include "editors/messages.h"
#include "editors/user_settings.h"
#include "grid/cells/cell_attributes.h"
#include "model/records/index_after_change.h"
#include "model/text_checks.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kCeilingRow = 0;
constexpr int kLabelRow = 3;
constexpr int kLabelWidth = 96;
constexpr int kColumnWidth = 50;
constexpr int kRowHeight = 20;
constexpr int kLines = 2;  // pixels of grid lines and bevels in a cell
// An ellipsis tells the user that a value is too long for its cell.
constexpr unsigned kFactorFormat = kCentred | CellFormat::EndEllipsis;

// The usual width, or more when the font needs it.
int WidthFor(const QStringList& texts, const QFontMetrics& metrics, int usualWidth) {
    int width = usualWidth;
    for (const CString& text : texts) {
        width = std::max(width, metrics.horizontalAdvance(text) + 2 * CellAttributes::DefaultMargin + kLines);
    }
    return width;
}

// Allowed, but hardly ever meant.
bool IsUnlikely(std::optional<double> factor) {
    constexpr double largestLikely = 1.5;
    return factor && !(*factor >= 0 && *factor <= largestLikely);
}

const CString kDecimalsKey = u"factorTable/decimals"_s;

int KeptDecimals() {
    return std::clamp(UserSettings().value(kDecimalsKey).toInt(), FactorTableGrid::kFewestDecimals,
                      FactorTableGrid::kMostDecimals);
}

int HeightFor(const QFontMetrics& metrics) {
    return std::max(kRowHeight, metrics.height() + kLines);
}

}  // namespace

FactorTableGrid::FactorTableGrid(const CString& rowLabel) : m_rowLabel(rowLabel), m_decimals(KeptDecimals()) {
    SetBackgroundColour(Qt::white);
    SetEntryCheck([](CCellID, const CString& text, const RowTexts&) { return CheckReal(text).has_value(); });
}

void FactorTableGrid::SetDecimals(int decimals) {
    m_decimals = decimals;
    UserSettings().setValue(kDecimalsKey, decimals);
}

void FactorTableGrid::SetEditing(const FactorTableEditing& editing) {
    SetMarkSource([this, &editing](CCellID cell) { return MarksOf(editing, cell); });
    SetTipSource([this, &editing](CCellID cell) { return GridTip{.text = TipOf(editing, cell)}; });
}

std::optional<double> FactorTableGrid::FactorAt(const FactorTableEditing& editing, CCellID cell) const {
    return editing.Table().FactorOf(m_headings[static_cast<std::size_t>(cell.col - kFirstColumn)],
                                    m_rowValues[static_cast<std::size_t>(cell.row - kFirstRow)]);
}

unsigned FactorTableGrid::MarksOf(const FactorTableEditing& editing, CCellID cell) const {
    const unsigned unlikely = IsUnlikely(FactorAt(editing, cell)) ? CellMark::Unlikely : 0U;
    if (editing.IsStored(cell.row, cell.col)) {
        return unlikely;
    }
    const bool isInFile = editing.StoredFactor(cell.row, cell.col).has_value();
    return unlikely | (isInFile ? CellMark::Changed : CellMark::New);
}

CString FactorTableGrid::TipOf(const FactorTableEditing& editing, CCellID cell) const {
    if (cell.row < kFirstRow) {
        return {};
    }
    if (cell.col < kFirstColumn) {
        const UnwrittenReason& reason = m_unwritten[static_cast<std::size_t>(cell.row - kFirstRow)];
        return reason.why == Unwritten::Missing
                   ? u"数据库文件中没有这一行的部分利用系数,可能已被其他程序删除。再次提交会重新写入。"_s
                   : UnwrittenTip(reason.why, {.cause = reason.cause});
    }
    const std::optional<double> factor = FactorAt(editing, cell);
    const std::optional<double> stored = editing.StoredFactor(cell.row, cell.col);
    const bool isRounded = factor && GetItemText(cell.row, cell.col).toDouble() != *factor;
    return JoinLines({isRounded ? u"未取舍的数值:"_s + FormatReal(*factor) : CString(),
                      IsUnlikely(factor) ? u"利用系数一般在0和1.5之间,请核对。"_s : CString(),
                      editing.IsStored(cell.row, cell.col) ? CString()
                      : stored                             ? StoredValueTip(FormatReal(*stored))
                                                           : u"文件中没有此值,尚未提交。"_s});
}

void FactorTableGrid::Show(UtilizationFactorTable& table) {
    CancelEdit();
    const CCellID focus = PlaceAfterChange(GetFocusCell(), table);
    const int left = horizontalScrollBar()->value();
    const int top = verticalScrollBar()->value();
    Build(table);
    SetFocusCell(focus);
    horizontalScrollBar()->setValue(left);
    verticalScrollBar()->setValue(top);
    Refresh();
}

void FactorTableGrid::ShowHeading(int index) {
    const int column = kFirstColumn + index;
    SetSelectedRange({kFirstRow, column, GetRowCount() - 1, column});
    EnsureVisible(std::min(kFirstRow, GetRowCount() - 1), column);
}

void FactorTableGrid::ShowRow(int index) {
    const int row = kFirstRow + index;
    SetSelectedRange({row, kFirstColumn, row, GetColumnCount() - 1});
    EnsureVisible(row, std::min(kFirstColumn, GetColumnCount() - 1));
}

CCellID FactorTableGrid::PlaceAfterChange(CCellID cell, const UtilizationFactorTable& table) const {
    if (!cell.IsValid()) {
        return {};
    }
    const int column = IndexAfterChange(cell.col - kFirstColumn, m_headings, table.Headings());
    const int row = IndexAfterChange(cell.row - kFirstRow, m_rowValues, table.RowValues());
    return column < 0 || row < 0 ? CCellID{} : CCellID{row + kFirstRow, column + kFirstColumn};
}

void FactorTableGrid::Build(UtilizationFactorTable& table) {
    m_headings = table.Headings();
    m_rowValues = table.RowValues();
    m_unwritten.clear();
    for (const double rowValue : m_rowValues) {
        m_unwritten.push_back(table.WhyUnwritten(rowValue));
    }
    DeleteAllItems();
    SetRowCount(kFirstRow + static_cast<int>(m_rowValues.size()));
    SetColumnCount(kFirstColumn + static_cast<int>(m_headings.size()));
    SetFixedRowCount(kFirstRow);
    SetFixedColumnCount(kFirstColumn);
    SetTypesByColumns(true);
    BuildLabels(table);
    BuildHeadings();
    MergeHeadings();
    for (int column = kFirstColumn; column < GetColumnCount(); ++column) {
        for (int row = kFirstRow; row < GetRowCount(); ++row) {
            SetItem({.row = row,
                     .col = column,
                     .mask = ItemMask::Text | ItemMask::Format,
                     .text = CString::number(table.GetFactor(row, column), 'f', m_decimals),
                     .format = kFactorFormat});
        }
    }
}

void FactorTableGrid::BuildLabels(const UtilizationFactorTable& table) {
    const QStringList labels = FactorRowLabels(m_rowLabel);
    const QFontMetrics metrics(font());
    SetColumnWidth(0, WidthFor(labels, metrics, kLabelWidth));
    for (int row = 0; row < GetRowCount(); ++row) {
        SetRowHeight(row, HeightFor(metrics));
        if (row < kFirstRow) {
            SetItemText(row, 0, labels[row]);
            SetItemFormat(row, 0, kCentred);
        } else {
            const double rowValue = m_rowValues[static_cast<std::size_t>(row - kFirstRow)];
            SetItemText(row, 0, FormatFixed2(rowValue));
            if (table.WhyUnwritten(rowValue).why != Unwritten::No) {
                SetItem({.row = row, .col = 0, .mask = ItemMask::BackColour, .backColour = kUnwrittenColour});
            }
        }
    }
}

void FactorTableGrid::BuildHeadings() {
    const int width = WidthFor({CString::number(0.0, 'f', m_decimals)}, QFontMetrics(font()), kColumnWidth);
    int column = kFirstColumn;
    for (const auto& [Pcc, Pw, Pf] : m_headings) {
        SetColumnWidth(column, width);
        int row = kCeilingRow;
        for (const int reflectance : {Pcc, Pw, Pf}) {
            SetItemText(row, column, FormatInteger(reflectance));
            SetItemFormat(row, column, kCentred);
            ++row;
        }
        SetItemFormat(kLabelRow, column, kCentred);
        ++column;
    }
}

// A ceiling reflectance spans the wall and floor columns beneath it.
void FactorTableGrid::MergeHeadings() {
    auto run = m_headings.begin();
    while (run != m_headings.end()) {
        const auto end = std::find_if(
            run, m_headings.end(), [run](const tagColHeading& heading) { return heading.Pcc != run->Pcc; });
        MergeCells(kCeilingRow, kFirstColumn + static_cast<int>(run - m_headings.begin()), 0,
                   static_cast<int>(end - run) - 1);
        run = end;
    }
    if (!m_headings.empty()) {
        MergeCells(kLabelRow, kFirstColumn, 0, static_cast<int>(m_headings.size()) - 1);
    }
}

}  // namespace quorvane
