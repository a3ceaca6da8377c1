#include "grid/accessibility/grid_accessible.h"

#include "grid/accessibility/grid_announcer.h"
#include "grid/grid_controller.h"

namespace quorvane {
namespace {

QAccessibleInterface* MakeInterface(const QString& className, QObject* object) {
    // Classes made from the grid's own come here under its name as well.
    auto* grid = className == QLatin1String(CGridCtrl::staticMetaObject.className())
                     ? qobject_cast<CGridCtrl*>(object)
                     : nullptr;
    return grid != nullptr ? new GridAccessible(*grid) : nullptr;
}

}  // namespace

void GridAccessible::MakeKnown() {
    QAccessible::installFactory(MakeInterface);
}

GridAccessible::GridAccessible(CGridCtrl& grid)
    : QAccessibleWidget(&grid, QAccessible::Table), m_announcer(&grid.Controller().Announcer()) {}

const GridCore& GridAccessible::Core() const {
    return m_announcer->Core();
}

CGridCtrl& GridAccessible::Grid() const {
    return m_announcer->Grid();
}

bool GridAccessible::isValid() const {
    return m_announcer != nullptr && QAccessibleWidget::isValid();
}

QAccessible::State GridAccessible::state() const {
    QAccessible::State state;
    if (isValid()) {
        state = QAccessibleWidget::state();
        state.multiSelectable = true;
        state.extSelectable = true;
    } else {
        state.invalid = true;
    }
    return state;
}

void* GridAccessible::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableInterface) {
        return static_cast<QAccessibleTableInterface*>(this);
    }
    return QAccessibleWidget::interface_cast(type);
}

// ---- Children

int GridAccessible::CellCount() const {
    return rowCount() * columnCount();
}

QList<QAccessibleInterface*> GridAccessible::Others() const {
    QList<QAccessibleInterface*> others;
    if (!isValid()) {
        return others;
    }
    ComboList* list = Grid().Controller().OpenList();
    if (Grid().IsEditing()) {
        others << QAccessible::queryAccessibleInterface(Grid().viewport());
    } else if (list != nullptr) {
        others << QAccessible::queryAccessibleInterface(list);
    }
    if (QWidget* bar = Grid().FootBar(); bar != nullptr && !bar->isHidden()) {
        others << QAccessible::queryAccessibleInterface(bar);
    }
    return others;
}

int GridAccessible::childCount() const {
    return CellCount() + static_cast<int>(Others().size());
}

QAccessibleInterface* GridAccessible::child(int index) const {
    const int cells = CellCount();
    if (index < 0) {
        return nullptr;
    }
    return index < cells ? cellAt(index / columnCount(), index % columnCount())
                         : Others().value(index - cells);
}

int GridAccessible::indexOfChild(const QAccessibleInterface* child) const {
    if (!isValid() || child == nullptr) {
        return -1;
    }
    const auto other = Others().indexOf(const_cast<QAccessibleInterface*>(child));
    if (other >= 0) {
        return CellCount() + static_cast<int>(other);
    }
    const QAccessibleInterface* parent = child->parent();
    auto* cell = const_cast<QAccessibleInterface*>(child)->tableCellInterface();
    return cell != nullptr && parent == this ? cell->rowIndex() * columnCount() + cell->columnIndex() : -1;
}

QAccessibleInterface* GridAccessible::childAt(int x, int y) const {
    if (!isValid()) {
        return nullptr;
    }
    const QPoint position = Grid().viewport()->mapFromGlobal(QPoint(x, y));
    QWidget* bar = Grid().FootBar();
    if (bar != nullptr && bar->isVisible() && bar->rect().contains(bar->mapFromGlobal(QPoint(x, y)))) {
        return QAccessible::queryAccessibleInterface(bar);
    }
    if (!Grid().viewport()->rect().contains(position)) {
        return nullptr;
    }
    QWidget* editor = Grid().viewport()->childAt(position);
    return editor != nullptr ? QAccessible::queryAccessibleInterface(editor)
                             : m_announcer->CellInterface(Core().CellAt(position));
}

QAccessibleInterface* GridAccessible::focusChild() const {
    if (!isValid()) {
        return nullptr;
    }
    QWidget* focus = Grid().window()->focusWidget();
    if (focus != nullptr && focus != &Grid() && Grid().isAncestorOf(focus)) {
        return QAccessible::queryAccessibleInterface(focus);
    }
    return focus == &Grid() ? m_announcer->CellInterface(Core().Focus()) : nullptr;
}

// ---- Table

int GridAccessible::rowCount() const {
    return isValid() ? Core().RowCount() : 0;
}

int GridAccessible::columnCount() const {
    return isValid() ? Core().ColumnCount() : 0;
}

QAccessibleInterface* GridAccessible::cellAt(int row, int column) const {
    return isValid() ? m_announcer->CellInterface({row, column}) : nullptr;
}

QString GridAccessible::rowDescription(int row) const {
    return row >= 0 && row < rowCount() ? Core().RowHeadingText(row) : QString();
}

QString GridAccessible::columnDescription(int column) const {
    return column >= 0 && column < columnCount() ? Core().ColumnHeadingText(column) : QString();
}

// ---- Selection

QList<CCellID> GridAccessible::SelectedPlaces() const {
    QList<CCellID> places;
    const CCellRange bounds = isValid() ? Core().SelectedRange() : CCellRange{};
    for (int row = bounds.minRow; row <= bounds.maxRow; ++row) {
        for (int column = bounds.minCol; column <= bounds.maxCol; ++column) {
            const CCellID cell{row, column};
            if (Core().Selection().IsSelected({row, column}) && Core().Origin(cell) == cell) {
                places.append(cell);
            }
        }
    }
    return places;
}

int GridAccessible::selectedCellCount() const {
    return static_cast<int>(SelectedPlaces().size());
}

QList<QAccessibleInterface*> GridAccessible::selectedCells() const {
    QList<QAccessibleInterface*> cells;
    for (const CCellID& place : SelectedPlaces()) {
        cells.append(m_announcer->CellInterface(place));
    }
    return cells;
}

CCellRange GridAccessible::RowRange(int row) const {
    CCellRange range = isValid() ? Core().Layout().ScrollingCells() : CCellRange{};
    const bool inside = row >= range.minRow && row <= range.maxRow;
    range.minRow = range.maxRow = row;
    return inside ? range : CCellRange{};
}

CCellRange GridAccessible::ColumnRange(int column) const {
    CCellRange range = isValid() ? Core().Layout().ScrollingCells() : CCellRange{};
    const bool inside = column >= range.minCol && column <= range.maxCol;
    range.minCol = range.maxCol = column;
    return inside ? range : CCellRange{};
}

bool GridAccessible::IsWholeSelected(const CCellRange& range) const {
    if (!isValid() || !Core().Layout().Holds(range)) {
        return false;
    }
    return Core().Selection().Covers(range);
}

bool GridAccessible::isRowSelected(int row) const {
    return IsWholeSelected(RowRange(row));
}

bool GridAccessible::isColumnSelected(int column) const {
    return IsWholeSelected(ColumnRange(column));
}

QList<int> GridAccessible::selectedRows() const {
    QList<int> rows;
    const CCellRange bounds = isValid() ? Core().SelectedRange() : CCellRange{};
    for (int row = bounds.minRow; row <= bounds.maxRow; ++row) {
        if (isRowSelected(row)) {
            rows.append(row);
        }
    }
    return rows;
}

QList<int> GridAccessible::selectedColumns() const {
    QList<int> columns;
    const CCellRange bounds = isValid() ? Core().SelectedRange() : CCellRange{};
    for (int column = bounds.minCol; column <= bounds.maxCol; ++column) {
        if (isColumnSelected(column)) {
            columns.append(column);
        }
    }
    return columns;
}

int GridAccessible::selectedRowCount() const {
    return static_cast<int>(selectedRows().size());
}

int GridAccessible::selectedColumnCount() const {
    return static_cast<int>(selectedColumns().size());
}

bool GridAccessible::SelectBesides(const CCellRange& range) {
    if (!isValid() || !Core().Layout().Holds(range)) {
        return false;
    }
    Grid().Controller().Execute({GridCommand::Kind::SelectLines, {}, 0, range, Qt::ControlModifier});
    return true;
}

bool GridAccessible::Unselect(const CCellRange& range) {
    if (!IsWholeSelected(range) || Core().SelectedRange() != range) {
        return false;
    }
    Grid().Controller().Execute({GridCommand::Kind::ClearSelection});
    return true;
}

bool GridAccessible::selectRow(int row) {
    return SelectBesides(RowRange(row));
}

bool GridAccessible::selectColumn(int column) {
    return SelectBesides(ColumnRange(column));
}

bool GridAccessible::unselectRow(int row) {
    return Unselect(RowRange(row));
}

bool GridAccessible::unselectColumn(int column) {
    return Unselect(ColumnRange(column));
}

}  // namespace quorvane
