#include "tests/support/message_answers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <utility>

namespace quorvane {

MessageAnswers::MessageAnswers() {
    m_timer.setInterval(5);
    connect(&m_timer, &QTimer::timeout, this, &MessageAnswers::Look);
    m_timer.start();
}

QStringList MessageAnswers::TakeSeen() {
    return std::exchange(m_seen, {});
}

void MessageAnswers::Look() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box != nullptr && box->objectName() == QStringLiteral("messageBox") && box->isVisible()) {
        Answer(box);
    }
}

void MessageAnswers::Answer(QMessageBox* box) {
    QStringList texts;
    for (const QAbstractButton* button : box->buttons()) {
        texts += button->text();
    }
    QString seen = box->windowTitle() + u'|' + box->text() + u'|' + texts.join(u'/');
    QAbstractButton* chosen = box->buttons().constLast();
    if (m_plan.empty()) {
        seen += QStringLiteral("|unplanned");
    } else {
        for (QAbstractButton* button : box->buttons()) {
            chosen = button->text() == m_plan.front() ? button : chosen;
        }
        m_plan.pop_front();
    }
    m_seen += seen;
    QTest::mouseClick(chosen, Qt::LeftButton);
}

}  // namespace quorvane
