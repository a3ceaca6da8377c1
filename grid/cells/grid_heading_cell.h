// A column heading with a button by which the user sorts and filters the rows shown.
#pragma once

#include "grid/cells/grid_cell.h"

namespace quorvane {

class CGridHeadingCell : public CGridCell {
public:
    void SetOrder(HeadingOrder order, bool isFiltered);
    HeadingOrder Order() const { return m_order; }
    bool IsFiltered() const { return m_isFiltered; }

    CellEditing Editing() const override { return CellEditing::None; }
    void Paint(QPainter& painter, const CellLook& look) const override;
    int BtnAt(const QRect& cell, const QFont& font, const QPoint& position) const override;

protected:
    QRect FreeRect(const QRect& cell, const QFont& font) const override;

private:
    QRect BtnRect(const QRect& cell) const;
    int SignsWidth() const;  // of arrow and funnel

    HeadingOrder m_order = HeadingOrder::None;
    bool m_isFiltered = false;
};

}  // namespace quorvane
