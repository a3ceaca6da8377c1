// The grid as assistive technology sees it: a table with headings, cells, focus and selection.
#pragma once

#include <QAccessibleWidget>
#include <QPointer>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;
class GridAnnouncer;
class GridCore;

// Rows and columns are numbered as in the grid, the fixed ones first. A merged block is one cell, found at
// every place that it covers. The children are the places row by row, then, during an edit, the window that
// holds the editor, and the bar at the grid's foot while it is shown.
class GridAccessible : public QAccessibleWidget, public QAccessibleTableInterface {
public:
    // Has the toolkit make these for grids. May be called any number of times.
    static void MakeKnown();

    explicit GridAccessible(CGridCtrl& grid);

    bool isValid() const override;
    QAccessible::State state() const override;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    int rowCount() const override;
    int columnCount() const override;
    QAccessibleInterface* cellAt(int row, int column) const override;
    // Heading texts.
    QString rowDescription(int row) const override;
    QString columnDescription(int column) const override;

    // Merged blocks count once.
    int selectedCellCount() const override;
    QList<QAccessibleInterface*> selectedCells() const override;
    // Rows and columns of which every cell that is not fixed is selected.
    int selectedRowCount() const override;
    int selectedColumnCount() const override;
    QList<int> selectedRows() const override;
    QList<int> selectedColumns() const override;
    bool isRowSelected(int row) const override;
    bool isColumnSelected(int column) const override;
    // Selects a row or column besides the others, and takes away one that is selected alone.
    bool selectRow(int row) override;
    bool selectColumn(int column) override;
    bool unselectRow(int row) override;
    bool unselectColumn(int column) override;

    // Nothing to do: GridAnnouncer keeps the cells up to date.
    void modelChange(QAccessibleTableModelChangeEvent* /*event*/) override {}

private:
    CGridCtrl& Grid() const;
    const GridCore& Core() const;
    int CellCount() const;
    // What is open for an edit, and the bar at the grid's foot.
    QList<QAccessibleInterface*> Others() const;
    QList<CCellID> SelectedPlaces() const;
    // All cells of a row or column that can be selected; not valid for a fixed one.
    CCellRange RowRange(int row) const;
    CCellRange ColumnRange(int column) const;
    bool IsWholeSelected(const CCellRange& range) const;
    bool SelectBesides(const CCellRange& range);
    bool Unselect(const CCellRange& range);

    QPointer<GridAnnouncer> m_announcer;  // dies with the grid, before the toolkit knows of its end
};

}  // namespace quorvane
