// CGridCtrl: the spreadsheet-like control in which every table of the program is shown and edited.
//
// Rows and columns are numbered from 0 with the fixed (heading) ones first. Setters return false and getters
// an empty result (0, "") for coordinates outside the grid or a row without cells, except Cell(), which
// throws std::invalid_argument for a row beyond the row table. Sizes are pixels. Every setter redraws what it
// changed.
#pragma once

#include <QAbstractScrollArea>
#include <QPointer>
#include <functional>
#include <memory>
#include <vector>

#include "grid/cells/grid_btn_cell.h"
#include "grid/cells/grid_cell.h"
#include "grid/cells/grid_cells.h"
#include "grid/grid_types.h"
#include "grid/layout/grid_layout.h"
#include "grid/layout/grid_merges.h"
#include "grid/layout/grid_selection.h"

class QLineEdit;

namespace quorvane {

class ComboList;
class GridAnnouncer;
class GridKeys;
class GridMouse;
class InPlaceEdit;

class CGridCtrl : public QAbstractScrollArea {
    Q_OBJECT

public:
    explicit CGridCtrl(int rows = 0, int columns = 0, int fixedRows = 0, int fixedColumns = 0);
    ~CGridCtrl() override;

    // Window styles; combined with |.
    static constexpr unsigned Visible = 1;
    static constexpr unsigned Border = 2;
    static constexpr unsigned TabStop = 4;
    // Puts the grid on rect (parent coordinates) as a child of parent, which then owns it; id is what
    // notifications and GetControlId() name it by. All rows and columns take the default sizes.
    bool Create(const QRect& rect, QWidget* parent, int id, unsigned style = Visible | Border | TabStop);
    int GetControlId() const;

    // Shape. Raising a fixed count above its count raises the count; a negative count is refused.
    int GetRowCount() const;
    int GetColumnCount() const;
    int GetFixedRowCount() const;
    int GetFixedColumnCount() const;
    bool SetRowCount(int rows);
    bool SetColumnCount(int columns);
    bool SetFixedRowCount(int rows);
    bool SetFixedColumnCount(int columns);
    // A row without cells yet: `make` fills the cells of a row that is not fixed, when the row is first shown
    // or touched (painted, read, changed, copied, found by assistive technology). It is called once for each
    // row, with the row's number at that moment, and may set cells of that row only. Rows made before stay.
    using RowMaker = std::function<void(int row)>;
    void SetRowMaker(RowMaker make) { m_rowMaker = std::move(make); }
    // Has the cells of a row, or of all rows that are not fixed, made anew when they are next shown or
    // touched. Shape, sizes, focus, selection, scroll position and an open editor stay; the editor closes
    // without taking its text when its cell is no longer one of editable text.
    void RemakeRow(int row);
    void RemakeRows();
    // Insert before row or column `before`, or append for -1. The heading goes into the first cell of the new
    // row or column; a grid without columns (rows) gets one to hold it. Inserting before a fixed row or
    // column makes a fixed one. Return the new index, or -1. InsertColumn gives every cell of the new column
    // `format`, also in rows that come later.
    int InsertRow(const CString& heading, int before = -1);
    int InsertColumn(const CString& heading, unsigned format, int before = -1);
    // Renumbers the rows below, lowers the fixed row count for a fixed row, clears a focus on that row and
    // moves up one below it; the selection follows in the same way.
    bool DeleteRow(int row);
    bool DeleteNonFixedRows();
    void DeleteAllItems();

    // Sizes.
    bool SetColumnWidth(int column, int width);
    bool SetRowHeight(int row, int height);
    int GetColumnWidth(int column) const;
    int GetRowHeight(int row) const;

    // Contents.
    bool SetItemText(int row, int column, const CString& text);
    CString GetItemText(int row, int column) const;
    bool SetItemData(int row, int column, qint32 value);
    qint32 GetItemData(int row, int column) const;
    bool SetItemFormat(int row, int column, unsigned format);
    unsigned GetItemFormat(int row, int column) const;
    bool SetItemState(int row, int column, unsigned state);
    unsigned GetItemState(int row, int column) const;
    bool SetItem(const GridItem& item);
    // Replaces the cell by a new one made by `make`; text, data and attributes are carried over, the old cell
    // is destroyed. SetCellType<CGridBtnCell>(row, column) is the usual way to say it.
    using CellMaker = std::unique_ptr<CGridCellBase> (*)();
    bool SetCellType(int row, int column, CellMaker make);
    template <typename CellClass>
    bool SetCellType(int row, int column) {
        return SetCellType(row, column,
                           []() -> std::unique_ptr<CGridCellBase> { return std::make_unique<CellClass>(); });
    }
    // The cell, or null where a row or column has none. Valid until the shape or the cell's type changes.
    CGridCellBase* Cell(int row, int column);
    const CGridCellBase* Cell(int row, int column) const;

    // Merging: (row, column) spans that many further rows and columns; the cells below are covered. Blocks
    // that the new one touches are dissolved; spanning none changes nothing.
    bool MergeCells(int row, int column, int extraRows, int extraColumns);
    // The cell that shows at (row, column): the merged block's top-left cell, or (row, column) itself.
    CCellID MergeOrigin(int row, int column) const;
    // The rectangle of cells that (row, column) is shown as: its merged block, or itself alone.
    CCellRange MergeExtent(int row, int column) const;

    // Focus and selection.
    CCellID GetFocusCell() const;
    // Moves the focus, selects that cell alone, scrolls it into view. (-1, -1) clears both.
    void SetFocusCell(CCellID cell);
    // Moves the focus and leaves the selected cells and the scroll position alone.
    void FocusWithoutSelecting(CCellID cell);
    bool IsSelected(int row, int column) const;
    void SetSelectedRange(const CCellRange& range);
    void ClearSelection();
    void SelectAllCells();
    // Extends the range selected last to a cell, which gets the focus and is scrolled into view; or to where
    // the mouse drags it, without either.
    void ExtendSelectionTo(CCellID cell);
    void DragSelectionTo(CCellID cell);
    // Moves the focus to a cell and selects it besides the others.
    void AddToSelection(CCellID cell);
    // What a click on the heading of whole rows or columns does: selects them alone, with Ctrl besides the
    // others, with Shift together with all from the anchor.
    void SelectLines(const CCellRange& lines, Qt::KeyboardModifiers modifiers);
    const GridSelection& Selection() const { return m_selection; }
    // The smallest range that holds all selected cells; invalid when nothing is selected.
    CCellRange GetSelectedCellRange() const;
    bool IsValid(const CCellRange& range) const;

    // In-place editing. Only cells that are neither fixed nor read-only are edited.
    bool IsCellEditable(int row, int column) const;
    // In which way the user may change a cell; None for one that is not editable.
    CellEditing EditingOf(CCellID cell) const;
    // Opens the editor with the whole text selected, or drops down the list of a cell with choices.
    bool BeginEdit(int row, int column);
    // Opens the editor with the caret after the text.
    bool BeginEditAtEnd(int row, int column);
    // Opens an empty editor in the focus cell and hands it the event, a key press or input-method event.
    bool BeginEditByTyping(const QEvent& event);
    // True while an editor is open in a cell; a list that is dropped down does not count.
    bool IsEditing() const;
    // Whether Enter at the foot of a column goes on at the head of the next one, instead of staying.
    void SetTypesByColumns(bool typesByColumns) { m_typesByColumns = typesByColumns; }
    bool TypesByColumns() const { return m_typesByColumns; }
    // Takes the typed text into the cell and notifies; nothing when no edit is on.
    void EndEdit();
    // Leaves the cell as it was; no notification.
    void CancelEdit();
    // What every ended edit does: puts the text into the cell and notifies.
    void TakeEditedText(CCellID cell, const CString& text);

    // Buttons in cells: the one at a point (window coordinates) of a cell, or -1; pressing one; and the one
    // that the mouse holds down, or -1. PressButton is false where there is no such active button.
    int ButtonAt(CCellID cell, const QPoint& position) const;
    bool PressButton(CCellID cell, int button);
    int PressedButton(CCellID cell) const;

    // Looks.
    void SetBackgroundColour(const QColor& colour);
    QColor GetBackgroundColour() const;
    QColor GetFixedBackgroundColour() const;
    QColor GetGridLineColour() const;
    QColor GetShadowColour() const;
    // Redraws the whole window.
    void Refresh();
    void EnsureVisible(int row, int column);
    // Makes a column as wide as its headings and its texts on the screen need.
    void AutoSizeColumn(int column);
    // Writes a cell's place on the screen to the debug trace; cells are counted row by row from 0.
    void TraceCellPosition(int row, int column) const;

    // Geometry in viewport coordinates; merged cells give their whole block. CellRect is empty outside the
    // grid; it may lie outside the viewport. CellAt gives (-1, -1) where there is no cell.
    QRect CellRect(int row, int column) const;
    CCellID CellAt(const QPoint& position) const;
    const GridLayout& Layout() const { return m_layout; }
    GridKeys& Keys() { return *m_keys; }
    GridAnnouncer& Announcer() { return *m_announcer; }
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    // In-place editing of a cell ended and its new text is already in the cell.
    void EndLabelEdit(int row, int column);
    // A push button inside a cell was pressed, by mouse or by key.
    void ButtonClicked(int row, int column, int button);
    // A cell was clicked with the left mouse button (also a read-only one; not a fixed one).
    void CellClicked(int row, int column);
    void FocusCellChanged(int row, int column);
    void SelectionChanged();

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    QSize sizeHint() const override;

private:
    // Rows or columns, as the number of a cell says that they change: &CCellID::row or &CCellID::col.
    GridAxis& Axis(int CCellID::*line);
    bool SetLineCount(int CCellID::*line, int count);
    bool SetFixedLineCount(int CCellID::*line, int count);
    bool SetLineSize(int CCellID::*line, int number, int size);
    void InsertLines(int CCellID::*line, int at, int count, unsigned format);
    void RemoveLines(int CCellID::*line, int at, int count);
    // Changes a cell and redraws it; false where there is none.
    template <typename Value, typename Given>
    bool SetInCell(int row, int column, void (CGridCellBase::*set)(Value), const Given& value);
    // What a cell holds, or an empty value where there is none.
    template <typename Value>
    Value GetFromCell(int row, int column, Value (CGridCellBase::*get)() const) const;
    // A row's cells have just been made.
    void FillMadeRow(int row);
    void RemakeRowRange(int first, int last);
    // Takes the selection over, redraws and tells what changed; editedCell is where a cell being edited
    // has gone.
    void FollowShape(const GridSelection& selection, CCellID editedCell);
    void ApplySelection(const GridSelection& selection);
    CCellRange RangeBetween(CCellID a, CCellID b) const;
    bool IsSelectable(CCellID cell) const;
    bool OpenChoices(CCellID cell);
    bool OpenEditor(CCellID cell, int start);
    void SizesChanged();
    void SyncScrollBars();
    void RedrawCell(int row, int column);
    void RedrawAll();
    void TellText(CCellID cell);
    QFont FontOf(const CGridCellBase& cell) const;
    void ShowTip(const QPoint& position, const QPoint& globalPosition);

    GridLayout m_layout;
    GridCells m_cells;
    RowMaker m_rowMaker;
    int m_rowBeingMade = -1;
    GridMerges m_merges;
    GridSelection m_selection;
    int m_controlId = 0;
    QColor m_background;  // invalid: the system's
    bool m_typesByColumns = false;
    bool m_isSyncDue = false;    // of the scroll bars, at the end of the present event
    bool m_isRedrawDue = false;  // of the whole window; spares the work for single cells
    std::unique_ptr<GridKeys> m_keys;
    std::unique_ptr<GridMouse> m_mouse;
    std::unique_ptr<InPlaceEdit> m_edit;
    QPointer<ComboList> m_choices;
    std::unique_ptr<GridAnnouncer> m_announcer;
};

}  // namespace quorvane
