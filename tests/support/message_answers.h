// Answers the message boxes of a test by plan, with real mouse clicks, and remembers what they asked.
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <deque>

class QMessageBox;

namespace quorvane {

class MessageAnswers : public QObject {
public:
    MessageAnswers();

    // The next box not yet planned for is answered by the button of that text.
    void Plan(const QString& buttonText) { m_plan.push_back(buttonText); }
    // "caption|text|buttons" of every box shown since the last call, for instance "光源库|…?|是/否". A box
    // that nothing was planned for is closed by its last button and ends in "|unplanned".
    QStringList TakeSeen();

private:
    void Look();
    void Answer(QMessageBox* box);

    QTimer m_timer;
    std::deque<QString> m_plan;
    QStringList m_seen;
};

}  // namespace quorvane
