#include "grid/accessibility/grid_announcer.h"

#include <QCoreApplication>
#include <QTimer>
#include <vector>

#include "grid/accessibility/grid_accessible.h"
#include "grid/accessibility/grid_accessible_cell.h"
#include "grid/grid_core.h"
#include "grid/grid_ctrl.h"
#include "grid/layout/line_shift.h"

namespace quorvane {
namespace {

GridAccessibleCell* CellOf(QAccessible::Id id) {
    return dynamic_cast<GridAccessibleCell*>(QAccessible::accessibleInterface(id));
}

void DeleteLater(std::vector<QAccessible::Id> interfaces) {
    // At the end of the application the toolkit has destroyed them already.
    if (!interfaces.empty() && QCoreApplication::instance() != nullptr) {
        QTimer::singleShot(0, QCoreApplication::instance(), [gone = std::move(interfaces)] {
            for (const QAccessible::Id id : gone) {
                QAccessible::deleteAccessibleInterface(id);
            }
        });
    }
}

}  // namespace

GridAnnouncer::GridAnnouncer(CGridCtrl& grid, const GridCore& core) : m_grid(grid), m_core(core) {
    GridAccessible::MakeKnown();
    connect(&grid, &CGridCtrl::FocusCellChanged, this, &GridAnnouncer::TellFocus);
    connect(&grid, &CGridCtrl::SelectionChanged, this, &GridAnnouncer::TellSelection);
}

GridAnnouncer::~GridAnnouncer() {
    FollowCells(0, [](CCellID& cell) { cell = {}; });
}

void GridAnnouncer::Tell(QAccessibleEvent& event) const {
    if (m_listener != nullptr) {
        m_listener(event);
    } else {
        QAccessible::updateAccessibility(&event);
    }
}

QAccessibleInterface* GridAnnouncer::CellInterface(CCellID cell) {
    if (!m_core.Layout().Holds(cell)) {
        return nullptr;
    }
    const CCellID origin = m_core.Origin(cell);
    QAccessible::Id& id = m_cells[{origin.row, origin.col}];
    if (id == 0 || QAccessible::accessibleInterface(id) == nullptr) {
        id = QAccessible::registerAccessibleInterface(new GridAccessibleCell(*this, origin));
    }
    return QAccessible::accessibleInterface(id);
}

template <typename Change>
void GridAnnouncer::FollowCells(int fromRow, Change change) {
    const auto first = m_cells.lower_bound({fromRow, 0});
    const std::vector<std::pair<Place, QAccessible::Id>> followed(first, m_cells.end());
    m_cells.erase(first, m_cells.end());
    std::vector<QAccessible::Id> gone;
    for (const auto& [place, id] : followed) {
        GridAccessibleCell* cell = CellOf(id);
        if (cell == nullptr) {
            continue;
        }
        CCellID now{place.first, place.second};
        change(now);
        if (m_core.Layout().Holds(now) && m_core.Origin(now) == now) {
            cell->SetPlace(now);
            m_cells.emplace(Place(now.row, now.col), id);
        } else {
            cell->Invalidate();
            gone.push_back(id);
        }
    }
    DeleteLater(std::move(gone));
}

void GridAnnouncer::LinesInserted(Qt::Orientation lines, int at, int count) {
    const bool rows = lines == Qt::Vertical;
    FollowCells(rows ? at : 0, [=](CCellID& cell) { ShiftForInsert(cell, lines, at, count); });
    TellLines(rows ? ModelChange::RowsInserted : ModelChange::ColumnsInserted, lines, at, count);
}

void GridAnnouncer::LinesRemoved(Qt::Orientation lines, int at, int count) {
    const bool rows = lines == Qt::Vertical;
    FollowCells(rows ? at : 0, [=](CCellID& cell) { ShiftForRemove(cell, lines, at, count); });
    TellLines(rows ? ModelChange::RowsRemoved : ModelChange::ColumnsRemoved, lines, at, count);
}

void GridAnnouncer::BlocksChanged() {
    FollowCells(0, [](CCellID& /*cell*/) {});
}

void GridAnnouncer::RowsChanged(int first, int last) {
    TellLines(ModelChange::DataChanged, Qt::Vertical, first, last - first + 1);
    const CCellID focus = m_core.Focus();
    if (focus.row >= first && focus.row <= last) {
        QMetaObject::invokeMethod(
            this, [this] { TextChanged(m_core.Focus()); }, Qt::QueuedConnection);
    }
}

void GridAnnouncer::TellLines(ModelChange::ModelChangeType change, Qt::Orientation lines, int at, int count) {
    if (!IsHeard()) {
        return;
    }
    ModelChange event(&m_grid, change);
    if (lines == Qt::Vertical) {
        event.setFirstRow(at);
        event.setLastRow(at + count - 1);
    } else {
        event.setFirstColumn(at);
        event.setLastColumn(at + count - 1);
    }
    Tell(event);
}

void GridAnnouncer::TextChanged(CCellID cell) {
    if (!IsHeard() || !m_core.Layout().Holds(cell)) {
        return;
    }
    if (cell != m_core.Focus() && !m_cells.contains({cell.row, cell.col})) {
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
    if (QAccessibleInterface* cell = CellInterface(m_core.Focus())) {
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
