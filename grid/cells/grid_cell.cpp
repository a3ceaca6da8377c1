#include "grid/cells/grid_cell.h"

#include <QPainter>
#include <algorithm>

#include "grid/cells/cell_text.h"

namespace quorvane {

template <typename Value>
void CGridCellBase::SetAttribute(Value CellAttributes::*attribute, const Value& value) {
    CellAttributes changed = *m_attributes;
    changed.*attribute = value;
    m_attributes = changed;
}

void CGridCellBase::SetImage(int image) {
    SetAttribute(&CellAttributes::image, image);
}

void CGridCellBase::SetSecondImage(int image) {
    SetAttribute(&CellAttributes::secondImage, image);
}

void CGridCellBase::SetState(unsigned state) {
    SetAttribute(&CellAttributes::state, state);
}

void CGridCellBase::SetFormat(unsigned format) {
    SetAttribute(&CellAttributes::format, format);
}

void CGridCellBase::SetTextColour(const QColor& colour) {
    SetAttribute(&CellAttributes::textColour, colour);
}

void CGridCellBase::SetBackColour(const QColor& colour) {
    SetAttribute(&CellAttributes::backColour, colour);
}

void CGridCellBase::SetFont(const std::optional<QFont>& font) {
    SetAttribute(&CellAttributes::font, font);
}

void CGridCellBase::SetMargin(int pixels) {
    SetAttribute(&CellAttributes::margin, std::max(0, pixels));
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
    const auto besideText = [this](int image) { return GetMargin() + (image >= 0 ? kImageRoom : 0); };
    return FreeRect(cell, font).adjusted(besideText(GetImage()), 0, -besideText(GetSecondImage()), 0);
}

void CGridCellBase::PaintImages(QPainter& painter, const CellLook& look) const {
    const QRect text = TextRect(look.rect, look.font);
    const QRect place(0, text.top(), kImageSide, text.height());
    const auto paint = [&](int image, int left) {
        if (look.images != nullptr && image >= 0 && image < static_cast<int>(look.images->size())) {
            (*look.images)[static_cast<std::size_t>(image)].paint(
                &painter, place.translated(left, 0), Qt::AlignCenter,
                look.enabled ? QIcon::Normal : QIcon::Disabled);
        }
    };
    paint(GetImage(), text.left() - kImageRoom);
    paint(GetSecondImage(), text.right() + 1 + kImageRoom - kImageSide);
}

int CGridCellBase::ContentWidth(const QFont& font, int limit) const {
    const QRect cell(0, 0, limit, QFontMetrics(font).height());
    const int besideText = cell.width() - TextRect(cell, font).width();
    return std::min(limit, besideText + CellTextWidth(font, m_text, limit));
}

void CGridCellBase::Paint(QPainter& painter, const CellLook& look) const {
    painter.setFont(look.font);
    painter.setPen(look.textColour);
    PaintImages(painter, look);
    DrawCellText(painter, TextRect(look.rect, look.font), m_text, GetFormat());
}

int CGridCellBase::BtnAt(const QRect& /*cell*/, const QFont& /*font*/, const QPoint& /*position*/) const {
    return -1;
}

bool CGridCellBase::PressBtn(int /*button*/) {
    return false;
}

}  // namespace quorvane
