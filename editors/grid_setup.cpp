#include "editors/grid_setup.h"

#include <QStyle>

#include "data/number_text.h"
#include "data/text_format.h"
#include "model/text_checks.h"
#include "widgets/message_box.h"

namespace quorvane {

CGridCtrl* CreateGrid(QWidget* parent, int gridId, const QRect& rect, std::span<const GridColumn> columns,
                      SharesOf width) {
    auto created = std::make_unique<CGridCtrl>();
    if (!created->Create(rect, parent, gridId)) {
        return nullptr;
    }
    CGridCtrl* grid = created.release();
    grid->SetRowCount(1);
    grid->SetFixedRowCount(1);
    const int frame = width == SharesOf::ClientWidth ? 2 * grid->frameWidth() : 0;
    const int usableWidth =
        grid->width() - frame - parent->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, grid) - 3;
    for (const GridColumn& column : columns) {
        const int index = grid->InsertColumn(CString::fromUtf16(column.heading), kCentred);
        grid->SetColumnWidth(index, static_cast<int>(usableWidth * column.share));
    }
    return grid;
}

void WriteCell(CGridCtrl& grid, int row, int column, const CString& text, unsigned format) {
    grid.SetItem({.row = row,
                  .col = column,
                  .mask = ItemMask::Text | ItemMask::Format,
                  .text = text,
                  .format = format});
}

void WriteRowHead(CGridCtrl& grid, int row, const CString& text, int recordId, bool unwritten) {
    grid.SetItem(
        {.row = row,
         .col = 0,
         .mask = ItemMask::Text | ItemMask::Data | ItemMask::State | ItemMask::BackColour | ItemMask::Format,
         .text = text,
         .data = recordId,
         .state = CellState::ReadOnly,
         .backColour = unwritten ? kUnwrittenColour : kReadOnlyColour,
         .format = kCentred});
}

double ReadReal(CGridCtrl& grid, int row, int column, double present) {
    const CString text = grid.GetItemText(row, column);
    if (text == FormatReal(present)) {
        return present;
    }
    const std::optional<double> value = CheckReal(text);
    if (!value) {
        grid.SetItemText(row, column, FormatReal(0));
    }
    return value.value_or(0);
}

int ReadInteger(CGridCtrl& grid, int row, int column) {
    const CString text = grid.GetItemText(row, column);
    const int value = (text.isEmpty() ? std::nullopt : CheckInteger(text)).value_or(0);
    grid.SetItemText(row, column, FormatInteger(value));
    return value;
}

bool AskToDelete(QWidget* parent, const CString& caption, int row, const CString& title) {
    return ShowMessage(parent,
                       FormatText(QStringLiteral("确定是否删除选中数据:第%d行,%s的全部信息?"), {row, title}),
                       caption, MessageButtons::YesNo, MessageIcon::Question) == MessageAnswer::Yes;
}

void TellIncompleteLoad(QWidget* parent, const CString& caption) {
    ShowMessage(parent, QStringLiteral("数据未能全部读出,显示的内容不完整。"), caption);
}

CString UnwrittenText(int count) {
    return FormatText(QStringLiteral("有%d条数据未能写入数据库。\n"), {count});
}

}  // namespace quorvane
