#include "editors/first_paint.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>

namespace quorvane {
namespace {

// Right after the first paint the window is activated and its focus painted. That must not wait for the work.
constexpr std::chrono::milliseconds kQuietTime(200);

class FirstPaint : public QObject {
public:
    FirstPaint(QWidget& widget, std::function<void()> work) : QObject(&widget), m_work(std::move(work)) {
        widget.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(kQuietTime, this, [this] {
                m_work();
                deleteLater();
            });
        }
        return false;
    }

private:
    std::function<void()> m_work;
};

}  // namespace

void AfterFirstPaint(QWidget& widget, std::function<void()> work) {
    new FirstPaint(widget, std::move(work));  // child of the widget
}

}  // namespace quorvane
