// Cells with buttons and cells with a list of choices.
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <vector>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

void MakeCombo(CGridCtrl& grid, int row, int column) {
    grid.SetCellType<CGridBtnCellCombo>(row, column);
    auto& cell = dynamic_cast<CGridBtnCellCombo&>(*grid.Cell(row, column));
    cell.SetComboStyle(CGridBtnCellCombo::DropDownList);
    grid.SetItemState(row, column, grid.GetItemState(row, column) | CellState::DropDown);
    cell.SetChoices(
        std::make_shared<const std::vector<CString>>(std::vector<CString>{u"RCR"_s, u"RI"_s, u"荧光灯"_s}));
    cell.SetMargin(0);
}

void MakeButton(CGridCtrl& grid, int row, int column, const CString& caption, CBtnDataBase* store = nullptr) {
    grid.SetCellType<CGridBtnCell>(row, column);
    auto& cell = dynamic_cast<CGridBtnCell&>(*grid.Cell(row, column));
    cell.SetBtnDataBase(store);
    cell.SetupBtns(0, BtnType::Button, BtnState::PushButton, 0, 0, 0, caption);
}

QListWidget* List() {
    auto* list = qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    return list != nullptr && list->objectName() == u"gridComboList"_s ? list : nullptr;
}

}  // namespace

class TestGridBtnCell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setupsOutliveTheirStore() {
        CGridCtrl grid(100, 2);
        {
            CBtnDataBase store;
            for (int row = 0; row < 100; ++row) {
                MakeButton(grid, row, 1, row % 2 == 0 ? u">>>"_s : u"..."_s, &store);
            }
            QCOMPARE(store.Count(), 2);
        }
        QCOMPARE(dynamic_cast<CGridBtnCell&>(*grid.Cell(99, 1)).GetBtn(0).caption, u"..."_s);
    }

    void listByMouse() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        MakeCombo(grid, 2, 1);
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        shown.Click(2, 1);
        QVERIFY(List() == nullptr);  // the first click only gives the focus
        shown.Click(2, 1);
        QCOMPARE(List()->currentItem()->text(), u"RCR"_s);
        const QRect second = List()->visualItemRect(List()->item(1));
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, second.center());
        QVERIFY(List() == nullptr);
        QCOMPARE(grid.GetItemText(2, 1), u"RI"_s);
        QCOMPARE(ended.count(), 1);
        QCOMPARE(ended.at(0), (QVariantList{2, 1}));

        shown.Click(1, 0);
        const QRect cell = grid.CellRect(2, 1);
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 6, cell.center().y()));
        QVERIFY(List() != nullptr);  // the arrow opens at once
        grid.DeleteRow(1);
        QVERIFY(List() == nullptr);
    }

    void listByKeys() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        MakeCombo(grid, 2, 1);
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
        QCOMPARE(ended.count(), 2);

        grid.SetItemState(2, 1, CellState::DropDown | CellState::ReadOnly);
        shown.Key(Qt::Key_F4);
        QVERIFY(List() == nullptr);
    }

    void pushButtonByMouseAndKey() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        MakeButton(grid, 2, 2, u"利用系数表"_s);
        grid.SetItemText(2, 2, {});
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

        grid.SetItemText(2, 2, u"\\a.jpg"_s);
        const QRect cell = grid.CellRect(2, 2);
        QCOMPARE(grid.ButtonAt({2, 2}, cell.topLeft() + QPoint(3, 3)), -1);
        QCOMPARE(grid.ButtonAt({2, 2}, QPoint(cell.right() - 3, cell.center().y())), 0);
    }
};

QTEST_MAIN(TestGridBtnCell)
#include "test_grid_btn_cell.moc"
