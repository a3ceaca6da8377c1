// Cells that carry push buttons, check boxes or drop-down arrows, and the cell with a drop-down list.
#pragma once

#include <memory>
#include <vector>

#include "grid/cells/btn_data_base.h"
#include "grid/cells/grid_cell.h"

namespace quorvane {

// What a button looks like and what kind it is.
namespace BtnType {
inline constexpr unsigned Scroll = 3;  // with BtnState::ComboBox: a drop-down arrow
inline constexpr unsigned Button = 4;
}  // namespace BtnType
namespace BtnState {
inline constexpr unsigned CheckBox = 0;
inline constexpr unsigned ComboBox = 5;
inline constexpr unsigned PushButton = 16;
inline constexpr unsigned Inactive = 256;
inline constexpr unsigned Pushed = 512;
inline constexpr unsigned Checked = 1024;
}  // namespace BtnState

// The buttons of a cell: settings, places, drawing and hit test.
class CGridBtnCellBase : public CGridCellBase {
public:
    static constexpr int MaxBtns = 8;

    // The store in which button cells share their settings; without one the cell keeps its own.
    void SetBtnDataBase(CBtnDataBase* dataBase);
    CBtnDataBase* GetBtnDataBase() const { return m_dataBase; }

    // False for a button index below 0 or not below the maximum, a position outside 0..2, and position 0 for
    // any button but 0. Raises the button count to index + 1. width in pixels, 0 = automatic.
    // Position 0 fills the cell; when the cell also has a text, or the button a width of its own, the button
    // stands at the right of the text.
    bool SetupBtns(int index, unsigned type, unsigned state, int position, int width, int limit,
                   const CString& caption);
    int GetBtnCount() const;
    // The settings of a button; default ones for an index without a button.
    BtnSetup GetBtn(int index) const;

    void Paint(QPainter& painter, const CellLook& look) const override;
    int BtnAt(const QRect& cell, const QFont& font, const QPoint& position) const override;
    bool PressBtn(int button) override;

protected:
    QRect FreeRect(const QRect& cell, const QFont& font) const override;

    CBtnDataBase::Setups m_setups;  // may be null: no buttons

private:
    void StoreBtns(std::vector<BtnSetup> setups);
    // The rectangles of the buttons in their order, then the rest of the cell.
    std::vector<QRect> BtnRects(const QRect& cell, const QFont& font) const;

    CBtnDataBase* m_dataBase = nullptr;
};

// A cell with buttons. A cell that is filled by a button (position 0) is not edited as text.
class CGridBtnCell : public CGridBtnCellBase {
public:
    CellEditing Editing() const override;
};

// A cell whose text is picked from a list.
class CGridBtnCellCombo : public CGridBtnCell {
public:
    static constexpr unsigned DropDownList = 3;

    CGridBtnCellCombo();

    // The style is only stored; every combo cell works as a drop-down list.
    void SetComboStyle(unsigned style) { m_style = style; }
    unsigned GetComboStyle() const { return m_style; }
    // One list may serve the cells of all rows. A present text that is not among the choices is replaced by
    // the first choice, or by the empty text when there are none; a text that is set later stays, whatever it
    // is.
    void SetChoices(std::shared_ptr<const std::vector<CString>> choices);
    const std::vector<CString>& Choices() const;

    CellEditing Editing() const override { return CellEditing::Choice; }

private:
    unsigned m_style = DropDownList;
    std::shared_ptr<const std::vector<CString>> m_choices;
};

}  // namespace quorvane
