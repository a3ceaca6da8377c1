#include <QAbstractButton>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include "widgets/chinese_order.h"
#include "widgets/dialog_template.h"
#include "widgets/ease_combo_box.h"
#include "widgets/message_box.h"

using namespace quorvane;

class TestWidgets : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ChineseSortsByPinyin();
    void SortedListKeepsItsSelection();
    void ListTellsNewChoicesOnly();
    void MessageBoxAnswersKeys_data();
    void MessageBoxAnswersKeys();
    void MessageBoxShowsTextAsItStands();
    void DialogUnitsFollowTheFont();
};

void TestWidgets::ChineseSortsByPinyin() {
    CEaseComboBox list(true, nullptr);
    for (const char16_t* text : {u"荧光灯", u"白炽灯", u"金属卤化物灯", u"高压钠灯", u"卤钨灯", u"白炽灯"}) {
        list.AddString(QString::fromUtf16(text));
    }
    const std::vector<QString> expected{u"白炽灯"_qs,       u"白炽灯"_qs, u"高压钠灯"_qs,
                                        u"金属卤化物灯"_qs, u"卤钨灯"_qs, u"荧光灯"_qs};
    QCOMPARE(list.Strings(), expected);
    QCOMPARE(list.currentIndex(), -1);
}

void TestWidgets::SortedListKeepsItsSelection() {
    CEaseComboBox list(true, nullptr);
    list.AddString(u"荧光灯"_qs);
    list.SelectString(u"荧光灯"_qs);
    list.AddString(u"白炽灯"_qs);
    list.AddString(u"紫外灯"_qs);
    QCOMPARE(list.currentText(), u"荧光灯"_qs);
    QVERIFY(!list.Holds(u"荧光"_qs));
}

void TestWidgets::ListTellsNewChoicesOnly() {
    CEaseComboBox list(false, nullptr);
    for (const QString& text : {u"乙"_qs, u"甲"_qs}) {
        list.AddString(text);
    }
    int changes = 0;
    connect(&list, &CEaseComboBox::SelectionChanged, this, [&changes] { ++changes; });
    list.show();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.currentText(), u"乙"_qs);
    QCOMPARE(changes, 1);
    QTest::keyClick(&list, Qt::Key_Home);
    QCOMPARE(changes, 1);
    list.SelectString(u"甲"_qs);
    QCOMPARE(changes, 1);
}

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
    return ShowMessage(nullptr, u"?"_qs, {}, buttons);
}

}  // namespace

void TestWidgets::MessageBoxAnswersKeys_data() {
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<int>("answer");
    const auto row = [](const char* name, MessageButtons buttons, Qt::Key key, bool closes,
                        MessageAnswer answer) {
        QTest::newRow(name) << int(buttons) << int(key) << closes << int(answer);
    };
    row("ok, Esc", MessageButtons::Ok, Qt::Key_Escape, true, MessageAnswer::Ok);
    row("yes/no, Esc", MessageButtons::YesNo, Qt::Key_Escape, false, MessageAnswer::No);
    row("yes/no, Enter", MessageButtons::YesNo, Qt::Key_Return, true, MessageAnswer::Yes);
    row("yes/no, N", MessageButtons::YesNo, Qt::Key_N, true, MessageAnswer::No);
    row("yes/no/cancel, Esc", MessageButtons::YesNoCancel, Qt::Key_Escape, true, MessageAnswer::Cancel);
    row("yes/no/cancel, Y", MessageButtons::YesNoCancel, Qt::Key_Y, true, MessageAnswer::Yes);
}

void TestWidgets::MessageBoxAnswersKeys() {
    QFETCH(int, buttons);
    QFETCH(int, key);
    QFETCH(bool, closes);
    QFETCH(int, answer);
    bool closedByKey = false;
    QCOMPARE(int(AnswerWithKey(MessageButtons(buttons), Qt::Key(key), &closedByKey)), answer);
    QCOMPARE(closedByKey, closes);
}

void TestWidgets::MessageBoxShowsTextAsItStands() {
    QString shown;
    const auto show = [&shown](const QString& text) {
        QTimer::singleShot(0, [&shown] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            shown = box->textFormat() == Qt::PlainText ? box->text() : QString();
            QTest::keyClick(box, Qt::Key_Escape);
        });
        ShowMessage(nullptr, text);
    };
    show(u"<b>%s & 100%</b>"_qs);
    QCOMPARE(shown, u"<b>%s & 100%</b>"_qs);
    show(u"头"_qs + QString(1000000, u'长') + u"尾"_qs);
    QVERIFY(shown.size() < 1000 && shown.startsWith(u'头') && shown.endsWith(u'尾'));
}

void TestWidgets::DialogUnitsFollowTheFont() {
    QFont small;
    small.setPixelSize(12);
    QFont large(small);
    large.setPixelSize(24);
    const QRect units(7, 30, 456, 203);
    const QRect once = DialogUnits(small).ToPixels(units);
    const QRect twice = DialogUnits(large).ToPixels(units);
    QVERIFY(once.width() > 456 && once.height() > 203);
    QVERIFY(qAbs(twice.width() - 2 * once.width()) < once.width() / 10);
    QVERIFY(qAbs(twice.height() - 2 * once.height()) < once.height() / 10);
}

QTEST_MAIN(TestWidgets)
#include "test_widgets.moc"
