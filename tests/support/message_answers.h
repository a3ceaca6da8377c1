// Answers the message boxes of a test by plan, with real mouse clicks, and remembers what they asked.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTest>
#include <QTimer>
#include <deque>
#include <utility>

namespace quorvane {

class MessageAnswers : public QObject {
public:
    MessageAnswers() {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box != nullptr && box->objectName() == QStringLiteral("messageBox") && box->isVisible()) {
                Answer(*box);
            }
        });
        m_timer.start(5);
    }

    // The next box not yet planned for is answered by the button of that text.
    void Plan(const QString& buttonText) { m_plan.push_back(buttonText); }
    // "caption|text|buttons" of every box shown since the last call, for instance "光源库|…?|是/否". A box
    // that nothing was planned for is closed by its last button and ends in "|unplanned".
    QStringList TakeSeen() { return std::exchange(m_seen, {}); }

private:
    void Answer(const QMessageBox& box) {
        QStringList texts;
        QAbstractButton* chosen = box.buttons().constLast();
        for (QAbstractButton* button : box.buttons()) {
            texts += button->text();
            chosen = !m_plan.empty() && button->text() == m_plan.front() ? button : chosen;
        }
        m_seen += box.windowTitle() + u'|' + box.text() + u'|' + texts.join(u'/') +
                  (m_plan.empty() ? QStringLiteral("|unplanned") : QString());
        if (!m_plan.empty()) {
            m_plan.pop_front();
        }
        QTest::mouseClick(chosen, Qt::LeftButton);
    }

    QTimer m_timer;
    std::deque<QString> m_plan;
    QStringList m_seen;
};

}  // namespace quorvane
