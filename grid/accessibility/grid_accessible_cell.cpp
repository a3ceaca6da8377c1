#include "grid/accessibility/grid_accessible_cell.h"

#include <QWindow>
#include <algorithm>

#include "grid/cells/grid_btn_cell.h"
#include "grid/cells/grid_heading_cell.h"
#include "grid/grid_controller.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

bool GridAccessibleCell::isValid() const {
    return m_announcer != nullptr && Core().Layout().Holds(m_place);
}

QWindow* GridAccessibleCell::window() const {
    return isValid() ? Grid().window()->windowHandle() : nullptr;
}

QAccessibleInterface* GridAccessibleCell::parent() const {
    return isValid() ? QAccessible::queryAccessibleInterface(&Grid()) : nullptr;
}

CCellRange GridAccessibleCell::Extent() const {
    return Core().Extent(m_place);
}

bool GridAccessibleCell::IsFixed() const {
    return Core().Layout().IsFixed(m_place);
}

const CGridBtnCellBase* GridAccessibleCell::ButtonCell() const {
    return dynamic_cast<const CGridBtnCellBase*>(Core().Cell(m_place));
}

bool GridAccessibleCell::HasButton() const {
    const CGridBtnCellBase* cell = ButtonCell();
    return cell != nullptr && !IsFixed() && cell->Editing() != CellEditing::Choice &&
           cell->GetBtnCount() > 0 && (cell->GetBtn(0).state & BtnState::Inactive) == 0;
}

bool GridAccessibleCell::HasCheckBox() const {
    constexpr unsigned kKindBits = 255;
    return HasButton() && ButtonCell()->GetBtn(0).type == BtnType::Button &&
           (ButtonCell()->GetBtn(0).state & kKindBits) == BtnState::CheckBox;
}

// ---- Text

QString GridAccessibleCell::text(QAccessible::Text text) const {
    if (isValid() && text == QAccessible::Description) {
        return Description();
    }
    const bool known = text == QAccessible::Name || text == QAccessible::Value;
    if (!isValid() || !known) {
        return {};
    }
    const CString& content = Core().Cell(m_place)->GetText();
    const CGridBtnCellBase* cell = ButtonCell();
    return content.isEmpty() && cell != nullptr ? cell->GetBtn(0).caption : content;
}

QString GridAccessibleCell::Description() const {
    QStringList parts;
    const unsigned marks = Grid().MarksOf(m_place);
    if ((marks & CellMark::New) != 0) {
        parts << u"新增的行"_s;
    }
    if ((marks & CellMark::Changed) != 0) {
        parts << u"已修改"_s;
    }
    if ((marks & CellMark::DeletedAbove) != 0) {
        parts << u"上面有删除的行"_s;
    }
    if (const auto* heading = dynamic_cast<const CGridHeadingCell*>(Core().Cell(m_place))) {
        if (heading->Order() != HeadingOrder::None) {
            parts << (heading->Order() == HeadingOrder::Ascending ? u"升序"_s : u"降序"_s);
        }
        if (heading->IsFiltered()) {
            parts << u"已筛选"_s;
        }
    }
    if (const CString tip = Grid().TipOf(m_place).text; !tip.isEmpty()) {
        parts << tip;
    }
    return parts.join(u'\n');
}

void GridAccessibleCell::setText(QAccessible::Text text, const QString& value) {
    if (!isValid() || text != QAccessible::Value) {
        return;
    }
    if (Core().Takes(m_place, value)) {
        Grid().Controller().TakeText(m_place, value);
    }
}

// ---- Place, role, state

QRect GridAccessibleCell::rect() const {
    if (!isValid()) {
        return {};
    }
    const QRect rect = Core().CellRect(m_place);
    return {Grid().viewport()->mapToGlobal(rect.topLeft()), rect.size()};
}

QAccessible::Role GridAccessibleCell::role() const {
    if (!isValid() || !IsFixed()) {
        return QAccessible::Cell;
    }
    return m_place.row < Core().Layout().rows.FixedCount() ? QAccessible::ColumnHeader
                                                           : QAccessible::RowHeader;
}

QAccessible::State GridAccessibleCell::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    CGridCtrl& grid = Grid();
    const QRect rect = Core().CellRect(m_place);
    const QRect area = Core().Layout().AreaOf(m_place);
    state.disabled = !grid.isEnabled();
    state.invisible = !grid.isVisible() || rect.isEmpty();
    state.offscreen = !rect.intersects(area);
    if (IsFixed()) {
        state.readOnly = true;
        return state;
    }
    state.focusable = true;
    state.focused = grid.hasFocus() && Core().Focus() == m_place;
    state.selectable = true;
    state.multiSelectable = true;
    state.selected = Core().Selection().IsSelected(m_place);
    const CellEditing editing = Core().EditingOf(m_place);
    state.editable = editing == CellEditing::Text;
    state.readOnly = editing == CellEditing::None;
    if (editing == CellEditing::Choice) {
        state.hasPopup = true;
        state.expandable = true;
        state.expanded = grid.Controller().OpenList() != nullptr && Core().Focus() == m_place;
        state.collapsed = !state.expanded;
    }
    if (HasCheckBox()) {
        state.checkable = true;
        state.checked = (ButtonCell()->GetBtn(0).state & BtnState::Checked) != 0;
    }
    return state;
}

void* GridAccessibleCell::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::TableCellInterface) {
        return static_cast<QAccessibleTableCellInterface*>(this);
    }
    if (type == QAccessible::ActionInterface) {
        return static_cast<QAccessibleActionInterface*>(this);
    }
    return nullptr;
}

// ---- Table cell

bool GridAccessibleCell::isSelected() const {
    return isValid() && Core().Selection().IsSelected(m_place);
}

int GridAccessibleCell::rowExtent() const {
    return isValid() ? Extent().RowCount() : 0;
}

int GridAccessibleCell::columnExtent() const {
    return isValid() ? Extent().ColumnCount() : 0;
}

QList<QAccessibleInterface*> GridAccessibleCell::Headings(const CCellRange& headings) const {
    QList<QAccessibleInterface*> cells;
    for (int row = headings.minRow; row <= headings.maxRow; ++row) {
        for (int column = headings.minCol; column <= headings.maxCol; ++column) {
            QAccessibleInterface* cell = m_announcer->CellInterface({row, column});
            if (!cells.contains(cell)) {
                cells.append(cell);
            }
        }
    }
    return cells;
}

QList<QAccessibleInterface*> GridAccessibleCell::columnHeaderCells() const {
    if (!isValid()) {
        return {};
    }
    return Headings({0, Extent().minCol, Core().Layout().rows.FixedCount() - 1, Extent().maxCol});
}

QList<QAccessibleInterface*> GridAccessibleCell::rowHeaderCells() const {
    if (!isValid()) {
        return {};
    }
    return Headings({Extent().minRow, 0, Extent().maxRow, Core().Layout().columns.FixedCount() - 1});
}

// ---- Actions

QStringList GridAccessibleCell::actionNames() const {
    if (!isValid() || IsFixed() || !Grid().isEnabled()) {
        return {};
    }
    QStringList names;
    const CellEditing editing = Core().EditingOf(m_place);
    if (editing == CellEditing::Choice) {
        names << showMenuAction() << pressAction();
    } else if (editing == CellEditing::Text) {
        names << pressAction();
    } else if (HasButton()) {
        names << (HasCheckBox() ? toggleAction() : pressAction());
    }
    return names << setFocusAction();
}

void GridAccessibleCell::doAction(const QString& name) {
    if (!actionNames().contains(name)) {
        return;
    }
    // Moving the focus ends edits, and whoever is told of that may move this cell or take it away.
    const QAccessible::Id id = QAccessible::uniqueId(this);
    const auto place = [id] {
        const auto* cell = dynamic_cast<const GridAccessibleCell*>(QAccessible::accessibleInterface(id));
        return cell != nullptr && cell->isValid() ? cell->m_place : CCellID{};
    };
    Grid().Controller().FocusAndPress(place, name != setFocusAction());
}

}  // namespace quorvane
