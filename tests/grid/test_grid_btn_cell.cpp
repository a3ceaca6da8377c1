// Cells with buttons and cells with a list of choices.
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <functional>

#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

QListWidget* List() {
    auto* list = qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    return list != nullptr && list->objectName() == u"gridComboList"_s ? list : nullptr;
}

}  // namespace

class TestGridBtnCell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void listByMouse() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        shown.MakeCombo(2, 1, {u"RCR"_s, u"2,1"_s, u"荧光灯"_s});
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        shown.Click(2, 1);
        QVERIFY(List() == nullptr);  // the first click only gives the focus
        shown.Click(2, 1);
        QCOMPARE(List()->currentItem()->text(), u"2,1"_s);
        const QRect third = List()->visualItemRect(List()->item(2));
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, third.center());
        QVERIFY(List() == nullptr);
        QCOMPARE(grid.GetItemText(2, 1), u"荧光灯"_s);
        QCOMPARE(ended.count(), 1);
        QCOMPARE(ended.at(0), (QVariantList{2, 1}));

        const std::function<void()> changes[]{[&] { grid.DeleteRow(3); }, [&] { grid.RemakeRow(2); }};
        for (const auto& change : changes) {
            shown.Click(2, 1);
            QVERIFY(List() != nullptr && List()->hasFocus());
            change();
            QVERIFY(List() == nullptr);
        }
    }

    void listByKeys() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        shown.MakeCombo(2, 1, {u"RCR"_s, u"RI"_s, u"荧光灯"_s});
        grid.SetFocusCell({2, 1});
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        using Keys = std::pair<Qt::Key, Qt::KeyboardModifiers>;
        for (const auto& [key, modifiers] :
             {Keys(Qt::Key_Space, {}), Keys(Qt::Key_F2, {}), Keys(Qt::Key_Down, Qt::AltModifier)}) {
            shown.Key(key, modifiers);
            QVERIFY(List() != nullptr);
            QTest::keyClick(List(), Qt::Key_Escape);
            QVERIFY(List() == nullptr);
        }
        QCOMPARE(ended.count(), 0);

        shown.Key(Qt::Key_Space);
        QTest::keyClick(List(), Qt::Key_End);
        QTest::keyClick(List(), Qt::Key_Up);
        QTest::keyClick(List(), Qt::Key_Return);
        QCOMPARE(grid.GetItemText(2, 1), u"RI"_s);
        shown.Key(Qt::Key_Space);
        QTest::keyClicks(List(), u"rc"_s);
        QTest::keyClick(List(), Qt::Key_Enter);
        QCOMPARE(grid.GetItemText(2, 1), u"RCR"_s);
        grid.SetItemText(2, 1, u"no choice"_s);
        shown.Key(Qt::Key_Space);
        QTest::keyClick(List(), Qt::Key_Return);  // nothing is current
        QTest::keyClick(List(), Qt::Key_Escape);
        QCOMPARE(grid.GetItemText(2, 1), u"no choice"_s);
        QCOMPARE(ended.count(), 2);

        grid.SetItemState(2, 1, CellState::DropDown | CellState::ReadOnly);
        shown.Key(Qt::Key_F4);
        QVERIFY(List() == nullptr);
    }

    void pushButtonByMouseAndKey() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        shown.MakeButton(2, 2, BtnState::PushButton, u"利用系数表"_s);
        const QSignalSpy pressed(&grid, &CGridCtrl::ButtonClicked);
        const QSignalSpy clicked(&grid, &CGridCtrl::CellClicked);
        shown.Click(2, 2);
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(pressed.at(0), (QVariantList{2, 2, 0}));
        QCOMPARE(clicked.count(), 0);
        shown.Key(Qt::Key_Space);
        QCOMPARE(pressed.count(), 2);
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(2, 2));
        QTest::mouseMove(grid.viewport(), shown.Middle(1, 0));
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, shown.Middle(1, 0));
        QCOMPARE(pressed.count(), 2);
        shown.Key(Qt::Key_F2);
        QTest::keyClicks(&grid, u"a"_s);
        QVERIFY(!grid.IsEditing());
    }
};

QTEST_MAIN(TestGridBtnCell)
#include "test_grid_btn_cell.moc"
