// CGridCtrl: the spreadsheet-like control in which every table of the program is shown and edited.
//
// Rows and columns are numbered from 0 with the fixed (heading) ones first. Setters return false and getters
// an empty result (0, "") for coordinates outside the grid or a row without cells, except Cell(), which
// throws std::invalid_argument for a row beyond the row table. Sizes are pixels. Every setter redraws what it
// changed.
#pragma once

#include <QAbstractScrollArea>
#include <QIcon>
#include <QPointer>
#include <functional>
#include <memory>
#include <vector>

#include "grid/cells/grid_btn_cell.h"
#include "grid/grid_core.h"

class QAction;

namespace quorvane {

class GridController;
struct GridEntry;

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
    // Cells are made late: `make` fills the cells of a row that is not fixed when the row is first shown or
    // touched (painted, read, changed, copied, read by assistive technology). It is called once for each row,
    // with the row's number at that moment, and sets cells of that row only. Rows that were made before stay
    // as they are.
    using RowMaker = GridCore::RowMaker;
    void SetRowMaker(RowMaker make);
    // The cells of a row, or of all rows that are not fixed, are made again when they are next shown or
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

    // The first columns up to this number stay in place while the rest scrolls. They are cells like all
    // others, not headings. They scroll along while they would leave less than a quarter of the window.
    void SetFrozenColumnCount(int columns);
    int GetFrozenColumnCount() const;
    // The first column of which a part is in sight; -1 without columns.
    int LeftmostColumn() const;

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
    // Replaces the cell by a new one of another class; text, data and attributes are carried over, the old
    // cell is destroyed. SetCellType<CGridBtnCell>(row, column) is the usual way to write it.
    using CellMaker = GridCore::CellMaker;
    bool SetCellType(int row, int column, CellMaker make);
    template <typename CellClass>
    bool SetCellType(int row, int column) {
        return SetCellType(row, column,
                           []() -> std::unique_ptr<CGridCellBase> { return std::make_unique<CellClass>(); });
    }
    // The cell, or null for a column outside the grid. Valid until the shape or the cell's class changes, or
    // the row is made again.
    CGridCellBase* Cell(int row, int column);
    const CGridCellBase* Cell(int row, int column) const;
    // What the image numbers of cells mean, from 0.
    void SetImages(std::vector<QIcon> images);

    // Merging: (row, column) spans that many further rows and columns; the cells below are covered. Blocks
    // that the new one touches are dissolved; spanning none changes nothing.
    bool MergeCells(int row, int column, int extraRows, int extraColumns);
    // The rectangle of cells that (row, column) is shown as: its merged block, or itself alone.
    CCellRange MergeExtent(int row, int column) const;

    // Focus and selection. Fixed cells take neither.
    CCellID GetFocusCell() const;
    // Moves the focus, selects that cell alone, scrolls it into view. (-1, -1) clears both.
    void SetFocusCell(CCellID cell);
    bool IsSelected(int row, int column) const;
    void SetSelectedRange(const CCellRange& range);
    // The smallest range that holds all selected cells; invalid when nothing is selected.
    CCellRange GetSelectedCellRange() const;
    // The rows in which a cell is selected, as runs from top to bottom that do not touch. A row that Ctrl
    // left out is in none of them.
    std::vector<GridRowRun> GetSelectedRows() const;
    bool IsValid(const CCellRange& range) const;

    // In-place editing. Only cells that are neither fixed nor read-only are edited.
    bool IsCellEditable(int row, int column) const;
    // How the user changes a cell; None for one that is not editable.
    CellEditing EditingOf(CCellID cell) const;
    // Opens the editor with the whole text selected, or drops down the list of a cell with choices.
    bool BeginEdit(int row, int column);
    // True while an editor is open in a cell; a list that is dropped down does not count.
    bool IsEditing() const;
    // Takes the typed text into the cell and notifies; nothing when no editor is open.
    void EndEdit();
    // During EndLabelEdit: false when the cell was only opened and left, without anything typed, chosen or
    // pasted.
    bool IsEditTyped() const;
    // Leaves the cell as it was; no notification.
    void CancelEdit();
    // Is asked before a paste that leaves texts out changes anything. Without a question the rest is pasted.
    void SetPasteQuestion(PasteQuestion ask);
    // Is offered each paste before anything else, also while no cell has the focus.
    void SetTableTaker(TableTaker take);
    // A cell takes any text that is typed into it. A paste or a fill leaves out a text that fails this check;
    // the empty text is not checked.
    void SetEntryCheck(EntryCheck check);
    // Whether Enter at the foot of a column goes on at the head of the next one, instead of staying.
    void SetTypesByColumns(bool typesByColumns);

    // Whether the last row is one for new entries. A fill of several rows leaves it out.
    void SetHasAppendRow(bool hasAppendRow);

    // Enters texts into cells that take them as one step of that name, as a paste does. Texts below the last
    // row go into rows that come meanwhile.
    void EnterTexts(const CString& name, const std::vector<GridEntry>& entries);

    // Commands. The grid's own are in its context menu; an editor adds its own to a group, behind those that
    // are there. The key of an action works while the grid, an editor in it or its foot bar has the keyboard;
    // an open edit is ended first. Keys by which one edits a text (undo, redo, copy, …) belong to an open
    // editor. An action that is in use elsewhere already keeps its shortcut context. The caller keeps
    // ownership, sets what is enabled (at the latest in MenuAboutToShow), and gives a disabled action its
    // reason as tool tip.
    void AddMenuAction(GridMenuGroup group, QAction* action);

    // Marks and tips are asked for when a cell is painted or pointed at, and never stored. The grid asks for
    // cells that are not fixed (marks, highlights) or all (tips). Whoever knows that answers have changed
    // calls Refresh(). An empty function asks nothing.
    using MarkSource = std::function<unsigned(CCellID)>;  // CellMark bits
    void SetMarkSource(MarkSource marks);
    // Whether a cell is one that the user has searched for.
    using HighlightSource = std::function<bool(CCellID)>;
    void SetHighlightSource(HighlightSource highlights);
    // What is told of a cell besides a text that does not fit.
    using TipSource = std::function<GridTip(CCellID)>;
    void SetTipSource(TipSource tips);
    // Shows the present tip with what the source now gives, for a source that has found out more.
    void RenewTip();

    // Gives the lowest heading of a column a button that shows how the rows are ordered by it and whether
    // they are filtered. A press emits HeadingButtonClicked; the grid itself orders nothing. False for a
    // column without a heading.
    bool SetHeadingButton(int column, HeadingOrder order, bool isFiltered = false);

    // Which cells take files that are dropped on them from outside; a drop emits FilesDropped. Without a
    // function none does.
    void SetTakesFiles(std::function<bool(CCellID)> takes);

    // Puts a bar at the grid's foot, inside its frame; the grid owns it, and shows it when the bar is shown.
    // When the bar is hidden while it has the keyboard, the grid gets it. Null takes the present bar away.
    void SetFootBar(QWidget* bar);

    // Looks. An invalid colour means the system's.
    void SetBackgroundColour(const QColor& colour);
    // Redraws the whole window.
    void Refresh();
    void EnsureVisible(int row, int column);
    // Writes a cell's place on the screen to the debug trace; cells are counted row by row from 0.
    void TraceCellPosition(int row, int column) const;

    // Geometry in viewport coordinates; merged cells give their whole block. CellRect is empty outside the
    // grid; it may lie outside the viewport. CellAt gives (-1, -1) where there is no cell.
    QRect CellRect(int row, int column) const;
    CCellID CellAt(const QPoint& position) const;

    // For units beside the control: accessibility, printing, text files.
    GridController& Controller() { return *m_controller; }
    const GridCore& Core() const;
    QWidget* FootBar() const { return m_footBar; }
    unsigned MarksOf(CCellID cell) const;
    GridTip TipOf(CCellID cell) const;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    // In-place editing of a cell ended and its new text is already in the cell.
    void EndLabelEdit(int row, int column);
    // One gesture enters texts into many cells. EndLabelEdit is emitted for each between the two; an edit
    // outside of them is a step of its own. name says what was done ("粘贴"), cells counts the edits. When an
    // edit is refused or the place is lost, the rest is left out. A grid that is destroyed meanwhile does not
    // end the step.
    void StepBegan();
    void StepEnded(const QString& name, int cells);
    // The context menu is about to open.
    void MenuAboutToShow();
    // The button in a column's heading was pressed.
    void HeadingButtonClicked(int column);
    // The user has changed the width of a column, or which columns are frozen.
    void ColumnsArranged();
    // Files of this computer were dropped on a cell that takes them.
    void FilesDropped(int row, int column, const QStringList& paths);
    // The text in the open editor has changed by typing.
    void TextTyped(QWidget* editor, const QString& text);
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
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    QSize sizeHint() const override;

private:
    GridCore& MutableCore();
    void PlaceFootBar();
    void ShowTip(const QPoint& position, const QPoint& globalPosition);

    std::unique_ptr<GridController> m_controller;
    int m_controlId = 0;
    QColor m_background;  // invalid: the system's
    std::vector<QIcon> m_images;
    MarkSource m_marks;
    HighlightSource m_highlights;
    TipSource m_tips;
    std::function<bool(CCellID)> m_takesFiles;
    QPoint m_tipPosition;  // where the last tip belongs, in the viewport
    QString m_tipMarkup;
    QPointer<QWidget> m_footBar;
};

}  // namespace quorvane
