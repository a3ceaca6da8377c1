#include "grid/cells/cell_text.h"

#include <QFontMetrics>
#include <algorithm>

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

namespace {

// The start of text that is enough for `room` pixels, as no visible character is narrower than one pixel.
// Does not split a surrogate pair.
CString VisibleStart(const CString& text, qsizetype room) {
    const qsizetype most = std::max<qsizetype>(room, 0) + 32;
    if (text.size() <= most) {
        return text;
    }
    return text.left(text.at(most - 1).isHighSurrogate() ? most - 1 : most);
}

bool IsUndrawable(QChar character) {
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

CString OnOneLine(CString text) {
    if (std::any_of(text.cbegin(), text.cend(), IsUndrawable)) {
        std::replace_if(text.begin(), text.end(), IsUndrawable, QChar(u' '));
    }
    return text;
}

bool IsWrapped(unsigned format) {
    return (format & CellFormat::SingleLine) == 0 && (format & CellFormat::WordBreak) != 0;
}

void DrawWrapped(QPainter& painter, const QRect& rect, const CString& text, unsigned format) {
    const qsizetype lines = rect.height() / std::max(1, painter.fontMetrics().height()) + 1;
    painter.drawText(rect, static_cast<int>(CellTextAlignment(format)) | Qt::TextWrapAnywhere,
                     VisibleStart(text, lines * rect.width()));
}

}  // namespace

Qt::Alignment CellTextAlignment(unsigned format) {
    Qt::Alignment alignment = (format & CellFormat::VCentre) != 0 ? Qt::AlignVCenter : Qt::AlignTop;
    if ((format & CellFormat::Centre) != 0) {
        alignment |= Qt::AlignHCenter;
    } else if ((format & CellFormat::Right) != 0) {
        alignment |= Qt::AlignRight | Qt::AlignAbsolute;
    } else {
        alignment |= Qt::AlignLeft | Qt::AlignAbsolute;
    }
    return alignment;
}

void DrawCellText(QPainter& painter, const QRect& rect, const CString& text, unsigned format) {
    if (text.isEmpty() || rect.isEmpty()) {
        return;
    }
    if (IsWrapped(format)) {
        DrawWrapped(painter, rect, text, format);
        return;
    }
    CString line = OnOneLine(VisibleStart(text, rect.width()));
    Qt::Alignment alignment = CellTextAlignment(format);
    const QFontMetrics metrics = painter.fontMetrics();
    if (metrics.horizontalAdvance(line) > rect.width()) {
        // A text that is too long is cut at its end, never on both sides: its start says more.
        alignment = (alignment & Qt::AlignVertical_Mask) | Qt::AlignLeft | Qt::AlignAbsolute;
        if ((format & CellFormat::EndEllipsis) != 0) {
            line = metrics.elidedText(line, Qt::ElideRight, rect.width());
        }
    }
    painter.drawText(rect, static_cast<int>(alignment) | Qt::TextSingleLine, line);
}

bool CellTextFits(const QFont& font, const QSize& size, const CString& text, unsigned format) {
    const QFontMetrics metrics(font);
    if (!IsWrapped(format)) {
        return CellTextWidth(font, text, size.width() + 1) <= size.width();
    }
    const qsizetype lines = size.height() / std::max(1, metrics.height()) + 1;
    const CString start = VisibleStart(text, lines * size.width());
    const QRect needed = metrics.boundingRect(QRect(QPoint(), size), Qt::TextWrapAnywhere, start);
    return start.size() == text.size() && needed.height() <= size.height();
}

int CellTextWidth(const QFont& font, const CString& text, int limit) {
    const CString start = OnOneLine(VisibleStart(text, limit));
    return std::min(limit, QFontMetrics(font).horizontalAdvance(start));
}

int AverageCharWidth() {
    const CString sample = u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSATUVWXYZ"_s;
    const QFontMetrics metrics(QFont(u"Arial"_s));
    return std::max(1, metrics.horizontalAdvance(sample) / static_cast<int>(sample.size()));
}

}  // namespace quorvane
