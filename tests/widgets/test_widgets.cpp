#include <QAbstractButton>
#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <functional>

#include "widgets/dialog_template.h"
#include "widgets/ease_combo_box.h"
#include "widgets/icons.h"
#include "widgets/label_edit_tree.h"
#include "widgets/message_box.h"
#include "widgets/submit_progress.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

// Shows a box and does the work in it. A box that is still open then is closed by its last button.
MessageAnswer AnswerBox(const QString& text, MessageButtons buttons,
                        const std::function<void(QMessageBox*)>& work) {
    QTimer::singleShot(0, [&work] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        work(box);
        if (box->isVisible()) {
            QTest::mouseClick(box->buttons().constLast(), Qt::LeftButton);
        }
    });
    return ShowMessage(nullptr, text, {}, buttons);
}

// A window with a button, in which a submit can go on.
struct Window : QWidget {
    Window() {
        resize(500, 300);
        other.setGeometry(10, 10, 100, 30);
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
    int clicks = 0, ticks = 0, ticksDuringSubmit = 0, paintings = 0;
};

}  // namespace

class TestWidgets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void DialogsFitOnALowScreen() {
        const QSize dialog(486, 282);
        const QFont font(u"Sans"_s, 12);
        QVERIFY(DialogUnits(font, 600).ToPixels(dialog).height() < 570);
        QVERIFY(DialogUnits(font, 2000).ToPixels(dialog).height() > 570);
    }

    void SortedListKeepsItsSelection() {
        CEaseComboBox list(nullptr);
        list.SetOrder([](const QString& left, const QString& right) { return left < right; });
        list.AddString(u"荧光灯"_s);
        list.SelectString(u"荧光灯"_s);
        for (const QString& text : {u"白炽灯"_s, u"金属卤化物灯"_s, u"高压钠灯"_s, u"卤钨灯"_s}) {
            list.AddString(text);
        }
        QCOMPARE(list.Strings(), std::vector<QString>({u"卤钨灯"_s, u"白炽灯"_s, u"荧光灯"_s,
                                                       u"金属卤化物灯"_s, u"高压钠灯"_s}));
        QCOMPARE(list.currentText(), u"荧光灯"_s);
        QVERIFY(!list.Holds(u"荧光"_s) && list.Holds(u"卤钨灯"_s));
    }

    void ListTellsNewChoicesOnly() {
        CEaseComboBox list(nullptr);
        list.AddString(u"乙"_s);
        list.AddString(u"甲"_s);
        int changes = 0;
        connect(&list, &CEaseComboBox::SelectionChanged, this, [&changes] { ++changes; });
        list.show();
        list.setFocus();
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(list.currentText(), u"乙"_s);
        QCOMPARE(changes, 1);
        QTest::keyClick(&list, Qt::Key_Home);
        list.SelectString(u"甲"_s);
        QCOMPARE(changes, 1);
        list.ClearSelection();
        QCOMPARE(list.currentIndex(), -1);
        QTest::keyClick(&list, Qt::Key_Home);
        QCOMPARE(changes, 2);
        list.showPopup();
        QTest::keyClick(list.view(), Qt::Key_Return);
        Q_EMIT list.activated(0);  // the same key once more, as it comes while a screen reader runs
        QCOMPARE(changes, 3);
    }

    void MessageBoxAnswersKeys() {
        using Buttons = MessageButtons;
        using Answer = MessageAnswer;
        const std::tuple<Buttons, Qt::Key, bool, Answer> cases[]{
            {Buttons::Ok, Qt::Key_Escape, true, Answer::Ok},
            {Buttons::YesNo, Qt::Key_Escape, false, Answer::No},
            {Buttons::YesNo, Qt::Key_Return, true, Answer::Yes},
            {Buttons::YesNo, Qt::Key_N, true, Answer::No},
            {Buttons::YesNoCancel, Qt::Key_Escape, true, Answer::Cancel},
            {Buttons::YesNoCancel, Qt::Key_Y, true, Answer::Yes},
        };
        for (const auto& [buttons, key, closes, answer] : cases) {
            bool closedByKey = false;
            const auto strike = [key = key, &closedByKey](QMessageBox* box) {
                QTest::keyClick(box, key);
                closedByKey = !box->isVisible();
            };
            QCOMPARE(AnswerBox(u"?"_s, buttons, strike), answer);
            QCOMPARE(closedByKey, closes);
        }
    }

    void AHeldKeyDoesNotAnswer() {
        const auto hold = [](QMessageBox* box) {
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Y}) {
                for (QWidget* target :
                     {static_cast<QWidget*>(box->defaultButton()), static_cast<QWidget*>(box)}) {
                    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
                        QKeyEvent repeated(type, key, Qt::NoModifier, {}, true);
                        QCoreApplication::sendEvent(target, &repeated);
                    }
                    QTest::keyRelease(target, key);
                }
            }
        };
        QCOMPARE(AnswerBox(u"?"_s, MessageButtons::YesNo, hold), MessageAnswer::No);
    }

    void MessageBoxShowsTextAsItStands() {
        const auto shown = [](const QString& text) {
            QString seen;
            AnswerBox(text, MessageButtons::Ok, [&seen](QMessageBox* box) {
                seen = box->textFormat() == Qt::PlainText ? box->text() : QString();
            });
            return seen;
        };
        QCOMPARE(shown(u"<b>%s & 100%</b>"_s), u"<b>%s & 100%</b>"_s);
        const QString cut = shown(u"头"_s + QString(1000000, u'长') + u"尾"_s);
        QVERIFY(cut.size() < 1000 && cut.startsWith(u'头') && cut.endsWith(u'尾'));
    }

    void EachIconIsAPictureOfItsOwn() {
        QList<QImage> pictures;
        for (int id = int(IconId::Application); id <= int(IconId::Clear); ++id) {
            const QImage picture = LoadIcon(IconId(id)).pixmap(48).toImage();
            if (!picture.isNull()) {
                QVERIFY(!pictures.contains(picture));
                pictures += picture;
            }
        }
        QCOMPARE(pictures.size(), 10);
    }

    void ATreeAsksForItsMenuByKey() {
        LabelEditTree tree(nullptr);
        auto* item = new QTreeWidgetItem(&tree, {u"甲"_s});
        tree.show();
        tree.setCurrentItem(item);
        QList<QTreeWidgetItem*> asked;
        connect(&tree, &LabelEditTree::MenuRequested, this, [&](QTreeWidgetItem* of) { asked += of; });
        QTest::keyClick(&tree, Qt::Key_Menu);
        QTest::keyClick(&tree, Qt::Key_F10, Qt::ShiftModifier);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, QPoint(500, 500));
        QCoreApplication::sendEvent(&tree, &event);
        QCOMPARE(asked, QList({item, item, item}));
    }

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
            QTRY_VERIFY(window.ticks > 0);
            window.clicks = 0;
            window.Strike();
            QTRY_COMPARE(window.clicks, 2);
        }
    }
};

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
