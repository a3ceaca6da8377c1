#include "editors/cell_setup.h"

#include <algorithm>

#include "grid/cells/btn_data_base.h"
#include "grid/cells/grid_btn_cell.h"

namespace quorvane {
namespace {

CString InitialText(const std::vector<CString>& choices, const CString& text) {
    if (std::find(choices.begin(), choices.end(), text) != choices.end()) {
        return text;
    }
    return choices.empty() ? CString() : choices.front();
}

}  // namespace

void SetUpComboCell(CGridCtrl& grid, CBtnDataBase& buttons, int row, int column, const CellChoices& choices,
                    const CString& text) {
    grid.SetCellType<CGridBtnCellCombo>(row, column);
    auto* cell = dynamic_cast<CGridBtnCellCombo*>(grid.Cell(row, column));
    if (cell == nullptr) {
        return;
    }
    cell->SetComboStyle(CGridBtnCellCombo::DropDownList);
    cell->SetState(cell->GetState() | CellState::DropDown);
    cell->SetFormat(cell->GetFormat() | CellFormat::VCentre | CellFormat::SingleLine | CellFormat::NoPrefix);
    cell->SetChoices(choices);
    cell->SetBtnDataBase(&buttons);
    cell->SetMargin(0);
    grid.SetItem({.row = row,
                  .col = column,
                  .mask = ItemMask::Text | ItemMask::Format,
                  .text = InitialText(*choices, text),
                  .format = CellFormat::Centre | CellFormat::VCentre | CellFormat::SingleLine |
                            CellFormat::WordBreak | CellFormat::EndEllipsis});
}

void SetUpButtonCell(CGridCtrl& grid, CBtnDataBase& buttons, int row, int column, const CString& caption) {
    grid.SetCellType<CGridBtnCell>(row, column);
    auto* cell = dynamic_cast<CGridBtnCell*>(grid.Cell(row, column));
    if (cell == nullptr) {
        return;
    }
    cell->SetBtnDataBase(&buttons);
    cell->SetMargin(CellAttributes::DefaultMargin);  // it may have been a list before, which has none
    cell->SetupBtns(0, BtnType::Button, BtnState::PushButton, 0, 0, 0, caption);
}

}  // namespace quorvane
