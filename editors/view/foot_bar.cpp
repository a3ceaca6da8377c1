#include "editors/view/foot_bar.h"

#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include "grid/grid_ctrl.h"

namespace quorvane {

GridFoot::GridFoot(CGridCtrl& grid) : m_grid(grid) {
    auto* lines = new QVBoxLayout(this);
    lines->setContentsMargins(4, 2, 4, 2);
    lines->setSpacing(2);
    setAutoFillBackground(true);
    hide();
    grid.SetFootBar(this);
}

void GridFoot::AddLine(QWidget* line) {
    layout()->addWidget(line);
    line->hide();
}

void GridFoot::ShowLine(QWidget* line, bool isShown) {
    const bool hadKeyboard = line->isAncestorOf(m_grid.window()->focusWidget());
    line->setVisible(isShown);
    bool isAnyShown = false;
    for (int index = 0; index < layout()->count(); ++index) {
        isAnyShown = isAnyShown || !layout()->itemAt(index)->widget()->isHidden();
    }
    setVisible(isAnyShown);
    if (hadKeyboard && !isShown) {
        m_grid.setFocus();
    }
}

QLineEdit* AddField(QWidget* line, const QString& accessibleName, int characters) {
    auto* field = new QLineEdit(line);
    field->setAccessibleName(accessibleName);
    field->setMaximumWidth(characters * field->fontMetrics().averageCharWidth());
    // Some platforms name no colour for placeholders, and the toolkit's own suits light windows only.
    QPalette palette = field->palette();
    QColor faint = palette.color(QPalette::Text);
    faint.setAlphaF(0.5F);
    palette.setColor(QPalette::PlaceholderText, faint);
    field->setPalette(palette);
    line->layout()->addWidget(field);
    return field;
}

QToolButton* AddButton(QWidget* line, const QString& text, const QString& toolTip) {
    auto* button = new QToolButton(line);
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip.isEmpty() ? text : toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    line->layout()->addWidget(button);
    return button;
}

}  // namespace quorvane
