// GridCore: all of a grid that needs no window: shape, sizes, cells, merged blocks, focus and selection, and
// the rules by which they change together.
//
// Rows and columns are numbered from 0 with the fixed (heading) ones first; Qt::Vertical means rows,
// Qt::Horizontal columns. Setters return false and getters an empty result for places outside the grid.
#pragma once

#include <QFont>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "grid/cells/grid_cells.h"
#include "grid/grid_types.h"
#include "grid/layout/grid_layout.h"
#include "grid/layout/grid_merges.h"
#include "grid/layout/grid_selection.h"

namespace quorvane {

// Receives each change after it is complete. A listener may read the core and must not change it.
class GridListener {
public:
    virtual void LinesInserted(Qt::Orientation lines, int at, int count) = 0;
    virtual void LinesRemoved(Qt::Orientation lines, int at, int count) = 0;
    // More or fewer lines are fixed.
    virtual void FixedLinesChanged() = 0;
    virtual void SizesChanged() = 0;
    // The cells of rows first..last will be made anew.
    virtual void RowsRemade(int first, int last) = 0;
    virtual void BlocksChanged() = 0;
    virtual void CellChanged(CCellID cell) = 0;
    // Called in addition to CellChanged.
    virtual void TextChanged(CCellID cell) = 0;
    // The focus, the selected ranges, or both have changed.
    virtual void SelectionChanged(bool focus, bool ranges) = 0;

protected:
    GridListener() = default;
    GridListener(const GridListener&) = default;
    GridListener& operator=(const GridListener&) = default;
    ~GridListener() = default;
};

class GridCore {
public:
    using RowMaker = std::function<void(int row)>;
    using CellMaker = std::unique_ptr<CGridCellBase> (*)();

    // Default sizes in pixels.
    GridCore(int rowHeight, int columnWidth);
    GridCore(const GridCore&) = delete;
    GridCore& operator=(const GridCore&) = delete;
    ~GridCore() = default;

    void SetListener(GridListener* listener) { m_listener = listener; }

    // ---- Shape and sizes
    const GridLayout& Layout() const { return m_layout; }
    // The window sets its size, the scroll position and the default sizes here.
    GridLayout& Layout() { return m_layout; }
    int RowCount() const { return m_layout.rows.Count(); }
    int ColumnCount() const { return m_layout.columns.Count(); }
    bool SetCount(Qt::Orientation lines, int count);
    bool SetFixedCount(Qt::Orientation lines, int count);
    // The heading goes into the first cell. Return the new index, or -1.
    int InsertRow(const CString& heading, int before);
    int InsertColumn(const CString& heading, unsigned format, int before);
    bool DeleteRow(int row);
    bool SetSize(Qt::Orientation lines, int line, int size);
    // How wide a column must be for its headings and its texts in view.
    int NeededWidth(int column, int least, int most) const;
    // The block that (row, column) is shown as, where it lies in the window; empty outside the grid.
    QRect CellRect(CCellID cell) const;
    // The cell or the block's first cell at a point of the window; none where there is no cell.
    CCellID CellAt(const QPoint& position) const;

    // ---- Cells. Touching a cell makes those of its row.
    void SetRowMaker(RowMaker make) { m_rowMaker = std::move(make); }
    // Rows outside the grid and fixed ones are left out.
    void RemakeRows(int first, int last);
    CGridCellBase* Cell(CCellID cell) { return m_cells.At(cell.row, cell.col); }
    const CGridCellBase* Cell(CCellID cell) const { return m_cells.At(cell.row, cell.col); }
    CString Text(CCellID cell) const;
    bool SetText(CCellID cell, const CString& text);
    bool SetItem(const GridItem& item);
    template <typename Value>
    bool Set(CCellID cell, void (CGridCellBase::*set)(Value), Value value) {
        CGridCellBase* source = Cell(cell);
        if (source != nullptr) {
            (source->*set)(value);
            TellCell(cell, false);
        }
        return source != nullptr;
    }
    bool SetCellType(CCellID cell, CellMaker make);
    // What pressing a button does to its cell; false where there is no such active button.
    bool PressBtn(CCellID cell, int button);
    // The font of cells without one of their own.
    void SetFont(const QFont& font) { m_font = font; }
    QFont FontOf(const CGridCellBase& cell) const { return cell.GetFont().value_or(m_font); }
    const QFont& Font() const { return m_font; }
    // Texts of a row's or column's headings, a heading that spans several lines once.
    CString RowHeadingText(int row) const;
    CString ColumnHeadingText(int column) const;

    // ---- Merged blocks
    bool Merge(CCellID cell, int extraRows, int extraColumns);
    CCellRange Extent(CCellID cell) const { return m_merges.Extent(cell); }
    CCellID Origin(CCellID cell) const;

    // ---- Focus and selection. Cells that are fixed or outside the grid are ignored.
    const GridSelection& Selection() const { return m_selection; }
    CCellID Focus() const { return m_selection.Focus(); }
    CCellRange SelectedRange() const { return m_selection.Bounds(RowCount(), ColumnCount()); }
    bool IsSelectable(CCellID cell) const { return m_layout.Holds(cell) && !m_layout.IsFixed(cell); }
    // Moves the focus and selects that cell alone; none clears both.
    void SetFocus(CCellID cell);
    void FocusWithoutSelecting(CCellID cell);
    void SelectRange(const CCellRange& range);
    void ClearSelection();
    // Extends the range selected last from its anchor to a cell, with or without the focus. With the focus
    // and no anchor this is SetFocus.
    void ExtendSelection(CCellID cell, bool moveFocus);
    // A cell that is selected besides others is taken from the selection instead.
    void AddToSelection(CCellID cell);
    // All cells of the rows, or columns, of the selected cells.
    void SelectWhole(Qt::Orientation lines);
    // What a click on the heading of whole rows or columns does: selects them alone, with Ctrl besides the
    // others, or takes them away, with Shift together with all from the anchor.
    void SelectLines(const CCellRange& lines, Qt::KeyboardModifiers modifiers);

    // ---- What the user may change
    // None for cells that are fixed, read-only or covered by a block.
    CellEditing EditingOf(CCellID cell) const;
    // Whether the user could enter or choose this text.
    bool Takes(CCellID cell, const CString& text) const;
    // Whether typing goes on at the head of the next column after the foot of one.
    bool typesByColumns = false;
    EntryCheck entryCheck;  // none: every text may be
    TableTaker tableTaker;  // none: no table is taken
    // Whether the last row is one for new entries, which fills of several rows leave out.
    bool hasAppendRow = false;
    int FilledRowCount() const { return RowCount() - (hasAppendRow ? 1 : 0); }

private:
    void InsertLines(Qt::Orientation lines, int at, int count, unsigned format);
    void RemoveLines(Qt::Orientation lines, int at, int count);
    void FillMadeRow(int row);
    void TellCell(CCellID cell, bool text);
    void Apply(const GridSelection& selection);
    CCellRange RangeBetween(CCellID a, CCellID b) const;

    GridLayout m_layout;
    GridCells m_cells;
    GridMerges m_merges;
    GridSelection m_selection;
    QFont m_font;
    RowMaker m_rowMaker;
    int m_rowBeingMade = -1;
    GridListener* m_listener = nullptr;
};

}  // namespace quorvane
