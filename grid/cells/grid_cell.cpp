#include "grid/cells/grid_cell.h"

#include <QPainter>
#include <algorithm>

#include "grid/cells/cell_text.h"

namespace quorvane {

void CGridCellBase::SetImage(int image) {
    CellAttributes changed = *m_attributes;
    changed.image = image;
    m_attributes = changed;
}

void CGridCellBase::SetSecondImage(int image) {
    CellAttributes changed = *m_attributes;
    changed.secondImage = image;
    m_attributes = changed;
}

void CGridCellBase::SetState(unsigned state) {
    CellAttributes changed = *m_attributes;
    changed.state = state;
    m_attributes = changed;
}

void CGridCellBase::SetFormat(unsigned format) {
    CellAttributes changed = *m_attributes;
    changed.format = format;
    m_attributes = changed;
}

void CGridCellBase::SetTextColour(const QColor& colour) {
    CellAttributes changed = *m_attributes;
    changed.textColour = colour;
    m_attributes = changed;
}

void CGridCellBase::SetBackColour(const QColor& colour) {
    CellAttributes changed = *m_attributes;
    changed.backColour = colour;
    m_attributes = changed;
}

void CGridCellBase::SetFont(const std::optional<QFont>& font) {
    CellAttributes changed = *m_attributes;
    changed.font = font;
    m_attributes = changed;
}

void CGridCellBase::SetMargin(int pixels) {
    CellAttributes changed = *m_attributes;
    changed.margin = std::max(0, pixels);
    m_attributes = changed;
}

void CGridCellBase::Set(const GridItem& item) {
    const auto names = [&](unsigned bit) { return (item.mask & bit) != 0; };
    if (names(ItemMask::Text)) {
        SetText(item.text);
    }
    if (names(ItemMask::Data)) {
        m_data = item.data;
    }
    if (!names(~(ItemMask::Text | ItemMask::Data))) {
        return;
    }
    CellAttributes changed = *m_attributes;
    changed.image = names(ItemMask::Image) ? item.image : changed.image;
    changed.state = names(ItemMask::State) ? item.state : changed.state;
    changed.backColour = names(ItemMask::BackColour) ? item.backColour : changed.backColour;
    changed.textColour = names(ItemMask::TextColour) ? item.textColour : changed.textColour;
    changed.format = names(ItemMask::Format) ? item.format : changed.format;
    changed.margin = names(ItemMask::Margin) ? std::max(0, item.margin) : changed.margin;
    if (names(ItemMask::Font)) {
        changed.font = item.font;
    }
    m_attributes = changed;
}

void CGridCellBase::CopyFrom(const CGridCellBase& other) {
    m_text = other.m_text;
    m_data = other.m_data;
    m_attributes = other.m_attributes;
}

QRect CGridCellBase::FreeRect(const QRect& cell, const QFont& /*font*/) const {
    return cell;
}

QRect CGridCellBase::TextRect(const QRect& cell, const QFont& font) const {
    return FreeRect(cell, font).adjusted(GetMargin(), 0, -GetMargin(), 0);
}

int CGridCellBase::ContentWidth(const QFont& font, int limit) const {
    const QRect cell(0, 0, limit, QFontMetrics(font).height());
    const int besideText = cell.width() - TextRect(cell, font).width();
    return std::min(limit, besideText + CellTextWidth(font, m_text, limit));
}

void CGridCellBase::Paint(QPainter& painter, const CellLook& look) const {
    painter.setFont(look.font);
    painter.setPen(look.textColour);
    DrawCellText(painter, TextRect(look.rect, look.font), m_text, GetFormat());
}

int CGridCellBase::BtnAt(const QRect& /*cell*/, const QFont& /*font*/, const QPoint& /*position*/) const {
    return -1;
}

bool CGridCellBase::PressBtn(int /*button*/) {
    return false;
}

}  // namespace quorvane
