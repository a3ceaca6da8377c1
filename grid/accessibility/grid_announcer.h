// Tells assistive technology what changes in a grid, and owns the interfaces of single cells that it was
// given.
#pragma once

#include <QAccessible>
#include <QObject>
#include <functional>
#include <map>
#include <utility>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;
class GridCore;

// The interface of a cell is made when it is asked for, follows its cell when rows and columns are inserted
// and removed, and becomes invalid when its cell is removed or covered by a merged block. It is destroyed a
// little later, because its own action may have removed the cell. Nothing is told while nobody listens.
class GridAnnouncer : public QObject {
    Q_OBJECT

public:
    GridAnnouncer(CGridCtrl& grid, const GridCore& core);
    ~GridAnnouncer() override;

    CGridCtrl& Grid() const { return m_grid; }
    const GridCore& Core() const { return m_core; }
    // Sends all events to listener instead of assistive technology, whether or not any runs.
    using Listener = std::function<void(QAccessibleEvent&)>;
    void SendTo(Listener listener) { m_listener = std::move(listener); }
    // The interface of the cell that shows at a place; null outside the grid.
    QAccessibleInterface* CellInterface(CCellID cell);

    // The grid has got or lost rows (Qt::Vertical) or columns (Qt::Horizontal).
    void LinesInserted(Qt::Orientation lines, int at, int count);
    void LinesRemoved(Qt::Orientation lines, int at, int count);
    // Cells have been merged or blocks dissolved.
    void BlocksChanged();
    // The cells of some rows will be made anew.
    void RowsChanged(int first, int last);
    // Told only when the cell has the focus or somebody holds its interface.
    void TextChanged(CCellID cell);
    // The grid has got the keyboard focus. Told after the toolkit's own event about the grid.
    void FocusCame();

private:
    using Place = std::pair<int, int>;  // row, column
    using ModelChange = QAccessibleTableModelChangeEvent;

    // Changes the places of the cells from a row on.
    template <typename Change>
    void FollowCells(int fromRow, Change change);
    void TellLines(ModelChange::ModelChangeType change, Qt::Orientation lines, int at, int count);
    void TellFocus();
    bool IsHeard() const { return m_listener != nullptr || QAccessible::isActive(); }
    void Tell(QAccessibleEvent& event) const;
    void TellSelection();

    CGridCtrl& m_grid;
    const GridCore& m_core;
    Listener m_listener;
    std::map<Place, QAccessible::Id> m_cells;
};

}  // namespace quorvane
