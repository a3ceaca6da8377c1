// What a grid tells assistive technology, and what that holds of the grid: the interfaces of single cells.
#pragma once

#include <QAccessible>
#include <QObject>
#include <functional>
#include <map>
#include <utility>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;

// Interfaces of cells are made when they are asked for, follow their cells when rows and columns come and go,
// and become invalid when their cell is gone or covered by a merged block. They are destroyed a little later,
// so that one that is just being used may take its own cell away. Nothing is told while nobody listens.
class GridAnnouncer : public QObject {
    Q_OBJECT

public:
    explicit GridAnnouncer(CGridCtrl& grid);
    ~GridAnnouncer() override;

    CGridCtrl& Grid() const { return m_grid; }
    // Sends everything that is told to listener instead of assistive technology, whether or not any runs.
    using Listener = std::function<void(QAccessibleEvent&)>;
    void SendTo(Listener listener) { m_listener = std::move(listener); }
    // The interface of the cell that shows at a place; null outside the grid.
    QAccessibleInterface* CellInterface(CCellID cell);

    // The grid has got or lost rows (&CCellID::row) or columns (&CCellID::col).
    void LinesInserted(int CCellID::*line, int at, int count);
    void LinesRemoved(int CCellID::*line, int at, int count);
    // Cells have been merged or blocks dissolved.
    void BlocksChanged();
    // The cells of some rows will be made anew.
    void RowsChanged(int first, int last);
    // Told when the cell has the focus or somebody holds its interface.
    void TextChanged(CCellID cell);
    // The keyboard focus has come to the grid. Told after the toolkit has told of the grid itself.
    void FocusCame();

private:
    using Place = std::pair<int, int>;  // row, column
    using ModelChange = QAccessibleTableModelChangeEvent;

    // Changes the places of the cells from a row on.
    template <typename Change>
    void FollowCells(int fromRow, Change change);
    void TellLines(ModelChange::ModelChangeType change, int CCellID::*line, int at, int count);
    void TellFocus();
    bool IsHeard() const { return m_listener != nullptr || QAccessible::isActive(); }
    void Tell(QAccessibleEvent& event) const;
    void TellSelection();

    CGridCtrl& m_grid;
    Listener m_listener;
    std::map<Place, QAccessible::Id> m_cells;
};

}  // namespace quorvane
