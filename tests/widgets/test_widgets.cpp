#include <QAbstractButton>
#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "widgets/ease_combo_box.h"
#include "widgets/icons.h"
#include "widgets/label_edit_tree.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

// Shows a box and sends it one key; the box is closed by its last button when the key did not close it.
MessageAnswer AnswerWithKey(MessageButtons buttons, Qt::Key key, bool* closedByKey) {
    QTimer::singleShot(0, [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QTest::keyClick(box, key);
        *closedByKey = !box->isVisible();
        if (!*closedByKey) {
            QTest::mouseClick(box->buttons().constLast(), Qt::LeftButton);
        }
    });
    return ShowMessage(nullptr, u"?"_s, {}, buttons);
}

// The text as a box shows it.
QString ShownText(const QString& text) {
    QString shown;
    QTimer::singleShot(0, [&shown] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        shown = box->textFormat() == Qt::PlainText ? box->text() : QString();
        QTest::keyClick(box, Qt::Key_Escape);
    });
    ShowMessage(nullptr, text);
    return shown;
}

}  // namespace

class TestWidgets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void SortsByPinyinAndKeepsItsSelection() {
        CEaseComboBox list(true, nullptr);
        list.AddString(u"荧光灯"_s);
        list.SelectString(u"荧光灯"_s);
        for (const QString& text : {u"白炽灯"_s, u"金属卤化物灯"_s, u"高压钠灯"_s, u"卤钨灯"_s}) {
            list.AddString(text);
        }
        QCOMPARE(list.Strings(), std::vector<QString>({u"白炽灯"_s, u"高压钠灯"_s, u"金属卤化物灯"_s,
                                                       u"卤钨灯"_s, u"荧光灯"_s}));
        QCOMPARE(list.currentText(), u"荧光灯"_s);
        QVERIFY(!list.Holds(u"荧光"_s) && list.Holds(u"卤钨灯"_s));
    }

    void ListTellsNewChoicesOnly() {
        CEaseComboBox list(false, nullptr);
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
            QCOMPARE(AnswerWithKey(buttons, key, &closedByKey), answer);
            QCOMPARE(closedByKey, closes);
        }
    }

    void AHeldKeyDoesNotAnswer() {
        QTimer::singleShot(0, [] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
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
            QVERIFY(box->isVisible());
            QTest::keyClick(box, Qt::Key_N);
        });
        QCOMPARE(ShowMessage(nullptr, u"?"_s, {}, MessageButtons::YesNo), MessageAnswer::No);
    }

    void MessageBoxShowsTextAsItStands() {
        QCOMPARE(ShownText(u"<b>%s & 100%</b>"_s), u"<b>%s & 100%</b>"_s);
        const QString cut = ShownText(u"头"_s + QString(1000000, u'长') + u"尾"_s);
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
        new QTreeWidgetItem(&tree, {u"乙"_s});
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
};

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
