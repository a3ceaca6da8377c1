#include "editors/grid_setup.h"

#include <QLineEdit>
#include <QStyle>
#include <QToolTip>

#include "grid/cells/btn_data_base.h"
#include "grid/cells/grid_btn_cell.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr unsigned kDropDownFormat = kCentred | CellFormat::WordBreak | CellFormat::EndEllipsis;

void MakeDropDown(CGridCtrl& grid, CBtnDataBase& buttons, CCellID place, const CellChoices& choices) {
    grid.SetCellType<CGridBtnCellCombo>(place.row, place.col);
    auto* cell = dynamic_cast<CGridBtnCellCombo*>(grid.Cell(place.row, place.col));
    if (cell == nullptr) {
        return;
    }
    cell->SetComboStyle(CGridBtnCellCombo::DropDownList);
    cell->SetState(cell->GetState() | CellState::DropDown);
    cell->SetChoices(choices);
    cell->SetBtnDataBase(&buttons);
    cell->SetMargin(0);
}

void MakeButton(CGridCtrl& grid, CBtnDataBase& buttons, CCellID place, const CString& caption) {
    grid.SetCellType<CGridBtnCell>(place.row, place.col);
    auto* cell = dynamic_cast<CGridBtnCell*>(grid.Cell(place.row, place.col));
    if (cell == nullptr) {
        return;
    }
    cell->SetBtnDataBase(&buttons);
    cell->SetMargin(CellAttributes::DefaultMargin);  // a drop-down list, which it may have been, has none
    cell->SetupBtns(0, BtnType::Button, BtnState::PushButton, 0, 0, 0, caption);
}

unsigned StateOf(const CellSetup& setup) {
    const unsigned state = setup.takesTexts ? CellState::TakesTexts : 0;
    switch (setup.kind) {
        case CellSetup::ReadOnly:
            return state | CellState::ReadOnly;
        case CellSetup::Chooser:
            return state | CellState::ReadOnly | CellState::DropDown;
        default:
            return state;
    }
}

}  // namespace

CGridCtrl* CreateGrid(QWidget& parent, int gridId, const QRect& rect) {
    auto created = std::make_unique<CGridCtrl>();
    created->Create(rect, &parent, gridId);
    CGridCtrl* grid = created.release();  // now a child of parent
    grid->SetRowCount(1);
    grid->SetFixedRowCount(1);
    return grid;
}

int UsableWidth(const CGridCtrl& grid, SharesOf width) {
    const int frame = width == SharesOf::ClientWidth ? 2 * grid.frameWidth() : 0;
    return grid.width() - frame - grid.style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &grid) - 3;
}

void ShowCell(CGridCtrl& grid, CBtnDataBase& buttons, CCellID cell, const CellSetup& setup,
              const CString& text, unsigned format) {
    GridItem item{.row = cell.row,
                  .col = cell.col,
                  .mask = ItemMask::Text | ItemMask::Format,
                  .text = text,
                  .format = format};
    switch (setup.kind) {
        case CellSetup::DropDown:
            MakeDropDown(grid, buttons, cell, setup.choices);
            item.format = kDropDownFormat;
            break;
        case CellSetup::Button:
            MakeButton(grid, buttons, cell, setup.caption);
            item.mask |= ItemMask::State;
            item.state = StateOf(setup);
            break;
        default:
            item.mask |= ItemMask::State | ItemMask::BackColour;
            item.state = StateOf(setup);
            item.backColour = item.state != 0 ? kReadOnlyColour : QColor();
    }
    grid.SetItem(item);
}

void ShowQuoteTip(QWidget* editor, const CString& text) {
    if (text.contains(u'\'')) {
        QToolTip::showText(editor->mapToGlobal(QPoint(0, editor->height())),
                           u"文字中含有单引号,不能写入数据库。"_s, editor);
    } else {
        QToolTip::hideText();
    }
}

void ShowRowHead(CGridCtrl& grid, int row, const CString& text, int recordId, bool isUnwritten) {
    grid.SetItem({.row = row,
                  .col = 0,
                  .mask = ItemMask::Text | ItemMask::Data | ItemMask::State | ItemMask::BackColour |
                          ItemMask::Format | ItemMask::Margin,
                  .text = text,
                  .data = recordId,
                  .state = CellState::ReadOnly | CellState::RowHead,
                  .backColour = isUnwritten ? kUnwrittenColour : kReadOnlyColour,
                  .format = kCentred,
                  .margin = 1});  // room for six digits
}

}  // namespace quorvane
