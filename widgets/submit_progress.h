// SubmitProgress: tells the user how far a submit has come when it takes longer than half a second.
//
// The object lives as long as the submit and is called after each row. After half a second it shows a bar in
// the middle of the window and keeps the window painted. From then on the window takes no input: a click, a
// key or a request to close it that was made during the submit is dropped, also one made before the bar came
// up. Timers are put off until the submit has ended. A shorter submit touches nothing.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QString>
#include <memory>

class QProgressBar;
class QWidget;

namespace quorvane {

class SubmitProgress {
public:
    // parent is any widget of the window in which the submit was started. text stands above the bar.
    SubmitProgress(QWidget* parent, QString text);
    // Drops the input that is still waiting and gives the window back as it was, the focus included.
    ~SubmitProgress();
    SubmitProgress(const SubmitProgress&) = delete;
    SubmitProgress& operator=(const SubmitProgress&) = delete;

    // done of total rows have been written.
    void operator()(int done, int total);

private:
    class InputBlock;

    void Show();

    QPointer<QWidget> m_window;
    QString m_text;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceRepaint;
    std::unique_ptr<InputBlock> m_block;  // null: nothing is shown yet
    QPointer<QWidget> m_panel;
    QPointer<QProgressBar> m_bar;
};

}  // namespace quorvane
