#include "widgets/dialog_template.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScreen>
#include <QTabWidget>
#include <QTreeWidget>
#include <QWidget>
#include <algorithm>
#include <cmath>

#include "widgets/ease_combo_box.h"
#include "widgets/image_button.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

QString ControlName(int id) {
    return u"control%1"_s.arg(id);
}

QWidget* CreateControl(ControlKind kind, const QString& text, QWidget* dialog) {
    switch (kind) {
        case ControlKind::PushButton:
            return new CImageButton(text, dialog);
        case ControlKind::RadioButton:
            return new QRadioButton(text, dialog);
        case ControlKind::DropDownList:
            return new CEaseComboBox(dialog);
        case ControlKind::Label:
            return new QLabel(text, dialog);
        case ControlKind::Edit:
            return new QLineEdit(text, dialog);
        case ControlKind::TabControl:
            return new QTabWidget(dialog);
        case ControlKind::TreeView:
            return new QTreeWidget(dialog);
        case ControlKind::Frame:
        case ControlKind::Custom:
            break;
    }
    auto* frame = new QWidget(dialog);
    frame->hide();
    return frame;
}

}  // namespace

int WholePixelStep() {
    constexpr int largest = 4;  // for scales by quarters
    const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    int step = 1;
    while (step < largest && !qFuzzyCompare(step * scale, std::round(step * scale))) {
        step *= 2;
    }
    return step;
}

QRect ToWholePixels(const QRect& rect) {
    const int step = WholePixelStep();
    const auto snap = [step](const QPoint& point) {
        return QPoint(qRound(double(point.x()) / step), qRound(double(point.y()) / step)) * step;
    };
    return {snap(rect.topLeft()), snap(rect.bottomRight())};
}

void WholePixelRow::setGeometry(const QRect& rect) {
    QHBoxLayout::setGeometry(rect);
    for (int number = 0; number < count(); ++number) {
        itemAt(number)->setGeometry(ToWholePixels(itemAt(number)->geometry()));
    }
}

DialogUnits::DialogUnits(const QFont& font)
    : DialogUnits(font, QGuiApplication::primaryScreen()->availableSize().height()) {}

DialogUnits::DialogUnits(const QFont& font, int screenHeight) {
    const QFontMetricsF metrics(font);
    // A digit is as wide as the average letter. Measuring all letters would load 52 glyphs before the first
    // paint.
    m_baseWidth = metrics.horizontalAdvance(u'0');
    constexpr int tallest = 282;  // units, of a dialog
    constexpr int titleBar = 40;  // pixels, with the frame
    m_baseHeight = std::min(metrics.height(), (screenHeight - titleBar) * 8.0 / tallest);
}

QSize DialogUnits::ToPixels(const QSize& units) const {
    return {static_cast<int>(std::lround(units.width() * m_baseWidth / 4)),
            static_cast<int>(std::lround(units.height() * m_baseHeight / 8))};
}

QRect DialogUnits::ToPixels(const QRect& units) const {
    const QSize corner = ToPixels(QSize(units.x(), units.y()));
    return ToWholePixels({QPoint(corner.width(), corner.height()), ToPixels(units.size())});
}

void CreateControls(QWidget* dialog, std::span<const DialogControl> controls,
                    const ControlMaker& makeCustom) {
    const DialogUnits dialogUnits(dialog->font());
    for (const DialogControl& control : controls) {
        QWidget* widget = control.kind == ControlKind::Custom
                              ? makeCustom(control.id, dialog)
                              : CreateControl(control.kind, QString::fromUtf16(control.text), dialog);
        widget->setObjectName(ControlName(control.id));
        widget->setGeometry(dialogUnits.ToPixels(control.units));
    }
}

QWidget* DialogItem(const QWidget* dialog, int id) {
    return dialog->findChild<QWidget*>(ControlName(id), Qt::FindDirectChildrenOnly);
}

}  // namespace quorvane
