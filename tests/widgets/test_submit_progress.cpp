// The progress bar of a long submit, with events that wait in the window's queue.

#include <QApplication>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>

#include "widgets/submit_progress.h"

using namespace quorvane;

class TestSubmitProgress : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DropsWhatIsClickedAndTypedDuringALongSubmit() {
        for (const auto& [rows, shows] : {std::pair{3, false}, {70, true}}) {
            Window window;
            window.Submit(rows);
            QCOMPARE(window.paintings > 2, shows);
            QCOMPARE(window.barSeen, shows);
            QCOMPARE(window.ticksDuringSubmit, 0);
            QVERIFY(window.isVisible() && window.isEnabled());
            QVERIFY(window.other.hasFocus());
            QVERIFY(window.findChild<QProgressBar*>() == nullptr || !window.bar->isVisible());
            QCoreApplication::processEvents();
            // Two strikes of a mouse click and a key each.
            QCOMPARE(window.clicks, shows ? 0 : 4);
            QCOMPARE(window.reached, shows ? 0 : 4);
            QTRY_VERIFY(window.ticks > 0);
            window.clicks = 0;
            window.Strike();
            QTRY_COMPARE(window.clicks, 2);
        }
    }

private:
    struct Window : QWidget {
        Window() {
            resize(500, 300);
            other.setGeometry(10, 10, 100, 30);
            other.installEventFilter(this);
            connect(&other, &QPushButton::clicked, this, [this] { ++clicks; });
            connect(&timer, &QTimer::timeout, this, [this] { ++ticks; });
            show();
            activateWindow();
            if (!QTest::qWaitForWindowActive(this)) {
                qFatal("the window was not activated");
            }
            other.setFocus();
            timer.start(0);
        }
        void paintEvent(QPaintEvent* /*event*/) override { ++paintings; }
        bool eventFilter(QObject* /*receiver*/, QEvent* event) override {
            reached += event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress ? 1 : 0;
            return false;
        }

        // A click and a key, queued as they are while the program is busy.
        void Strike() {
            const QPoint place = other.geometry().center();
            for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                const bool down = type == QEvent::MouseButtonPress;
                QCoreApplication::postEvent(windowHandle(),
                                            new QMouseEvent(type, place, mapToGlobal(place), Qt::LeftButton,
                                                            down ? Qt::LeftButton : Qt::NoButton, {}));
            }
            for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                QCoreApplication::postEvent(windowHandle(), new QKeyEvent(type, Qt::Key_Space, {}));
            }
        }
        void Submit(int rows) {
            paintings = 0;
            const int before = ticks;
            Strike();
            SubmitProgress progress(&other, QStringLiteral("正在提交"));
            for (int row = 1; row <= rows; ++row) {
                QThread::msleep(10);
                update();
                progress(row, rows);
                bar = findChild<QProgressBar*>();
                if (bar != nullptr && !barSeen) {
                    barSeen = bar->isVisible() && bar->value() == row && bar->maximum() == rows;
                    Strike();
                    QCoreApplication::postEvent(windowHandle(), new QEvent(QEvent::Close));
                    other.click();  // as an assistive program presses it
                }
            }
            Strike();
            ticksDuringSubmit = ticks - before;
        }

        QPushButton other{this};
        QTimer timer;
        QPointer<QProgressBar> bar;
        bool barSeen = false;
        int clicks = 0, reached = 0, ticks = 0, ticksDuringSubmit = 0, paintings = 0;
    };
};

QTEST_MAIN(TestSubmitProgress)
#include "test_submit_progress.moc"
