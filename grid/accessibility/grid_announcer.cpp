#include "grid/accessibility/grid_announcer.h"

#include <QCoreApplication>
#include <QTimer>
#include <vector>

#include "grid/accessibility/grid_accessible.h"
#include "grid/accessibility/grid_accessible_cell.h"
#include "grid/grid_ctrl.h"
#include "grid/layout/line_shift.h"

namespace quorvane {
namespace {

GridAccessibleCell* CellOf(QAccessible::Id id) {
    return dynamic_cast<GridAccessibleCell*>(QAccessible::accessibleInterface(id));
}

void DeleteLater(std::vector<QAccessible::Id> interfaces) {
    // Without an application its end has destroyed them already.
    if (!interfaces.empty() && QCoreApplication::instance() != nullptr) {
        QTimer::singleShot(0, QCoreApplication::instance(), [gone = std::move(interfaces)] {
            for (const QAccessible::Id id : gone) {
                QAccessible::deleteAccessibleInterface(id);
            }
        });
    }
}

}  // namespace

GridAnnouncer::GridAnnouncer(CGridCtrl& grid) : m_grid(grid) {
    GridAccessible::MakeKnown();
    connect(&grid, &CGridCtrl::FocusCellChanged, this, &GridAnnouncer::TellFocus);
    connect(&grid, &CGridCtrl::SelectionChanged, this, &GridAnnouncer::TellSelection);
}

GridAnnouncer::~GridAnnouncer() {
    FollowCells([](CCellID& cell) { cell = {}; });
}

void GridAnnouncer::Tell(QAccessibleEvent& event) const {
    if (m_listener != nullptr) {
        m_listener(event);
    } else {
        QAccessible::updateAccessibility(&event);
    }
}

QAccessibleInterface* GridAnnouncer::CellInterface(CCellID cell) {
    if (!m_grid.Layout().Holds(cell)) {
        return nullptr;
    }
    const CCellID origin = m_grid.MergeOrigin(cell.row, cell.col);
    QAccessible::Id& id = m_cells[{origin.row, origin.col}];
    if (id == 0 || QAccessible::accessibleInterface(id) == nullptr) {
        id = QAccessible::registerAccessibleInterface(new GridAccessibleCell(*this, origin));
    }
    return QAccessible::accessibleInterface(id);
}

template <typename Change>
void GridAnnouncer::FollowCells(Change change) {
    if (m_cells.empty()) {
        return;
    }
    std::map<std::pair<int, int>, QAccessible::Id> kept;
    std::vector<QAccessible::Id> gone;
    for (const auto& [place, id] : m_cells) {
        GridAccessibleCell* cell = CellOf(id);
        if (cell == nullptr) {
            continue;
        }
        CCellID now{place.first, place.second};
        change(now);
        if (m_grid.Layout().Holds(now) && m_grid.MergeOrigin(now.row, now.col) == now) {
            cell->SetPlace(now);
            kept.emplace(std::pair(now.row, now.col), id);
        } else {
            cell->Invalidate();
            gone.push_back(id);
        }
    }
    m_cells = std::move(kept);
    DeleteLater(std::move(gone));
}

void GridAnnouncer::LinesInserted(int CCellID::*line, int at, int count) {
    FollowCells([=](CCellID& cell) { ShiftForInsert(cell, line, at, count); });
    TellLines(QAccessibleTableModelChangeEvent::RowsInserted,
              QAccessibleTableModelChangeEvent::ColumnsInserted, line, at, count);
}

void GridAnnouncer::LinesRemoved(int CCellID::*line, int at, int count) {
    FollowCells([=](CCellID& cell) { ShiftForRemove(cell, line, at, count); });
    TellLines(QAccessibleTableModelChangeEvent::RowsRemoved, QAccessibleTableModelChangeEvent::ColumnsRemoved,
              line, at, count);
}

void GridAnnouncer::BlocksChanged() {
    FollowCells([](CCellID& /*cell*/) {});
}

void GridAnnouncer::TellLines(QAccessibleTableModelChangeEvent::ModelChangeType rowChange,
                              QAccessibleTableModelChangeEvent::ModelChangeType columnChange,
                              int CCellID::*line, int at, int count) {
    if (!IsHeard()) {
        return;
    }
    const bool rows = line == &CCellID::row;
    QAccessibleTableModelChangeEvent event(&m_grid, rows ? rowChange : columnChange);
    if (rows) {
        event.setFirstRow(at);
        event.setLastRow(at + count - 1);
    } else {
        event.setFirstColumn(at);
        event.setLastColumn(at + count - 1);
    }
    Tell(event);
}

void GridAnnouncer::TextChanged(CCellID cell) {
    if (!IsHeard()) {
        return;
    }
    if (cell != m_grid.GetFocusCell() && !m_cells.contains({cell.row, cell.col})) {
        return;
    }
    QAccessibleEvent event(CellInterface(cell), QAccessible::NameChanged);
    Tell(event);
}

void GridAnnouncer::FocusCame() {
    if (IsHeard()) {
        QMetaObject::invokeMethod(this, &GridAnnouncer::TellFocus, Qt::QueuedConnection);
    }
}

void GridAnnouncer::TellFocus() {
    if (!IsHeard() || !m_grid.hasFocus()) {
        return;
    }
    if (QAccessibleInterface* cell = CellInterface(m_grid.GetFocusCell())) {
        QAccessibleEvent event(cell, QAccessible::Focus);
        Tell(event);
    }
}

void GridAnnouncer::TellSelection() {
    if (IsHeard()) {
        QAccessibleEvent event(&m_grid, QAccessible::SelectionWithin);
        Tell(event);
    }
}

}  // namespace quorvane
