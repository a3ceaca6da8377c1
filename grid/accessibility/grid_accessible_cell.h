// One cell of a grid, or one merged block, as assistive technology sees it.
#pragma once

#include <QAccessible>
#include <QPointer>

#include "grid/accessibility/grid_announcer.h"
#include "grid/grid_types.h"

namespace quorvane {

class CGridBtnCellBase;

// Its name and its value are the cell's text; a cell without text bears the caption of its first button.
// Marks and tip are its description. Owned by the toolkit's register of interfaces.
class GridAccessibleCell : public QAccessibleInterface,
                           public QAccessibleTableCellInterface,
                           public QAccessibleActionInterface {
public:
    // place is not covered by another cell.
    GridAccessibleCell(GridAnnouncer& announcer, CCellID place) : m_announcer(&announcer), m_place(place) {}

    void SetPlace(CCellID place) { m_place = place; }
    // The cell is gone; everything asked from here on gets an empty answer.
    void Invalidate() { m_announcer.clear(); }

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* parent() const override;
    QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    QString text(QAccessible::Text text) const override;
    // A new Value is taken like an ended edit, where the user could enter or choose it as well.
    void setText(QAccessible::Text text, const QString& value) override;
    // Screen coordinates of the whole cell, also of one that is scrolled out of sight.
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override;
    int rowIndex() const override { return isValid() ? m_place.row : -1; }
    int columnIndex() const override { return isValid() ? m_place.col : -1; }
    int rowExtent() const override;
    int columnExtent() const override;
    // The headings of all columns (rows) that the cell spans; a heading names itself among them, since that
    // is where some ask for the heading of a column.
    QList<QAccessibleInterface*> columnHeaderCells() const override;
    QList<QAccessibleInterface*> rowHeaderCells() const override;
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

private:
    // All only while it is valid.
    CGridCtrl& Grid() const { return m_announcer->Grid(); }
    const GridCore& Core() const { return m_announcer->Core(); }
    CCellRange Extent() const;
    bool IsFixed() const;
    const CGridBtnCellBase* ButtonCell() const;

    // The marks of the cell, the order of its column, and its tip.
    QString Description() const;
    bool HasButton() const;
    bool HasCheckBox() const;
    QList<QAccessibleInterface*> Headings(const CCellRange& headings) const;

    QPointer<GridAnnouncer> m_announcer;
    CCellID m_place;
};

}  // namespace quorvane
