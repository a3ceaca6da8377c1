// Cells with buttons and cells with a list of choices.
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <vector>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace quorvane;

class TestGridBtnCell : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void setupRefusals();
    void setupsAreShared();
    void choicesDecideTheFirstText();
    void listByMouse();
    void listByKeys();
    void listLeavesTheCell();
    void listClosesWhenTheGridChanges();
    void pushButtonByMouseAndKey();
    void buttonBesideText();
    void checkBox();
};

namespace {

CGridBtnCellCombo& MakeCombo(CGridCtrl& grid, int row, int column, CBtnDataBase* store) {
    grid.SetCellType<CGridBtnCellCombo>(row, column);
    auto& cell = dynamic_cast<CGridBtnCellCombo&>(*grid.Cell(row, column));
    cell.SetComboStyle(CGridBtnCellCombo::DropDownList);
    grid.SetItemState(row, column, grid.GetItemState(row, column) | CellState::DropDown);
    cell.SetChoices(std::make_shared<const std::vector<CString>>(
        std::vector<CString>{QStringLiteral("RCR"), QStringLiteral("RI"), QStringLiteral("荧光灯")}));
    cell.SetBtnDataBase(store);
    cell.SetMargin(0);
    return cell;
}

CGridBtnCell& MakeButton(CGridCtrl& grid, int row, int column, const CString& caption, CBtnDataBase* store) {
    grid.SetCellType<CGridBtnCell>(row, column);
    auto& cell = dynamic_cast<CGridBtnCell&>(*grid.Cell(row, column));
    cell.SetBtnDataBase(store);
    cell.SetupBtns(0, BtnType::Button, BtnState::PushButton, 0, 0, 0, caption);
    return cell;
}

QListWidget* List() {
    auto* list = qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    return list != nullptr && list->objectName() == QStringLiteral("gridComboList") ? list : nullptr;
}

}  // namespace

void TestGridBtnCell::setupRefusals() {
    CGridBtnCell cell;
    const auto setup = [&](int index, int position) {
        return cell.SetupBtns(index, BtnType::Button, BtnState::PushButton, position, 0, 0, {});
    };
    QVERIFY(!setup(-1, 1));
    QVERIFY(!setup(CGridBtnCell::MaxBtns, 1));
    QVERIFY(!setup(0, -1));
    QVERIFY(!setup(0, 3));
    QVERIFY(!setup(1, 0));
    QCOMPARE(cell.GetBtnCount(), 0);
    QVERIFY(setup(0, 0));
    QVERIFY(setup(2, 1));
    QCOMPARE(cell.GetBtnCount(), 3);
    QVERIFY(cell.SetupBtns(0, 3, 5, 2, 17, 4, QStringLiteral("x")));
    QCOMPARE(cell.GetBtn(0), (BtnSetup{3, 5, 2, 17, 4, QStringLiteral("x")}));
    QCOMPARE(cell.GetBtnCount(), 3);
}

void TestGridBtnCell::setupsAreShared() {
    CGridCtrl grid(100, 2);
    {
        CBtnDataBase store;
        for (int row = 0; row < 100; ++row) {
            MakeButton(grid, row, 1, row % 2 == 0 ? QStringLiteral(">>>") : QStringLiteral("..."), &store);
        }
        QCOMPARE(store.Count(), 2);
    }
    // The cells may live longer than the page's store.
    QCOMPARE(dynamic_cast<CGridBtnCell&>(*grid.Cell(99, 1)).GetBtn(0).caption, QStringLiteral("..."));
}

void TestGridBtnCell::choicesDecideTheFirstText() {
    CGridCtrl grid(3, 1);
    grid.SetItemText(0, 0, QStringLiteral("RI"));
    grid.SetItemText(1, 0, QStringLiteral("unknown"));
    for (int row = 0; row < 3; ++row) {
        MakeCombo(grid, row, 0, nullptr);
    }
    QCOMPARE(grid.GetItemText(0, 0), QStringLiteral("RI"));
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("RCR"));
    dynamic_cast<CGridBtnCellCombo&>(*grid.Cell(2, 0)).SetChoices(nullptr);
    QCOMPARE(grid.GetItemText(2, 0), QString());
    grid.SetItemText(0, 0, QStringLiteral("混光灯"));
    QCOMPARE(grid.GetItemText(0, 0), QStringLiteral("混光灯"));
}

void TestGridBtnCell::listByMouse() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    CBtnDataBase store;
    MakeCombo(grid, 2, 1, &store);
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    shown.Click(2, 1);
    QVERIFY(List() == nullptr);  // the first click only gives the focus
    shown.Click(2, 1);
    QVERIFY(List() != nullptr);
    QCOMPARE(List()->currentItem()->text(), QStringLiteral("RCR"));
    QVERIFY(List()->width() >= grid.CellRect(2, 1).width() - 1);
    QTest::mouseClick(List()->viewport(), Qt::LeftButton, {},
                      List()->visualItemRect(List()->item(1)).center());
    QVERIFY(List() == nullptr);
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("RI"));
    QCOMPARE(ended.count(), 1);
    QCOMPARE(ended.at(0), (QVariantList{2, 1}));

    shown.Click(1, 0);
    const QRect cell = grid.CellRect(2, 1);
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 6, cell.center().y()));
    QVERIFY(List() != nullptr);  // the arrow opens at once
    List()->close();
}

void TestGridBtnCell::listByKeys() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    MakeCombo(grid, 2, 1, nullptr);
    grid.SetFocusCell({2, 1});
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    struct Opener {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    for (const Opener& opener : {Opener{Qt::Key_Space, {}}, Opener{Qt::Key_F2, {}}, Opener{Qt::Key_F4, {}},
                                 Opener{Qt::Key_Down, Qt::AltModifier}}) {
        shown.Key(opener.key, opener.modifiers);
        QVERIFY(List() != nullptr);
        QTest::keyClick(List(), Qt::Key_Escape);
        QVERIFY(List() == nullptr);
    }
    QCOMPARE(ended.count(), 0);

    shown.Key(Qt::Key_Space);
    QTest::keyClick(List(), Qt::Key_End);
    QTest::keyClick(List(), Qt::Key_Up);
    QTest::keyClick(List(), Qt::Key_Return);
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("RI"));
    shown.Key(Qt::Key_Space);
    QTest::keyClicks(List(), QStringLiteral("rc"));
    QTest::keyClick(List(), Qt::Key_Enter);
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("RCR"));
    QCOMPARE(ended.count(), 2);

    grid.SetItemState(2, 1, CellState::DropDown | CellState::ReadOnly);
    shown.Key(Qt::Key_F4);
    QVERIFY(List() == nullptr);
}

void TestGridBtnCell::listLeavesTheCell() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    MakeCombo(grid, 2, 1, nullptr);
    grid.SetItemText(2, 1, QStringLiteral("not a choice"));
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    QVERIFY(grid.BeginEdit(2, 1));
    QVERIFY(List()->currentItem() == nullptr);
    QTest::keyClick(List(), Qt::Key_Return);
    QVERIFY(List() != nullptr);  // nothing to take
    QTest::mousePress(List(), Qt::LeftButton, {}, QPoint(-20, -20));
    QVERIFY(List() == nullptr);
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("not a choice"));
    QCOMPARE(ended.count(), 0);
}

void TestGridBtnCell::listClosesWhenTheGridChanges() {
    const ShownGrid shown(4, 3);
    MakeCombo(*shown.grid, 2, 1, nullptr);
    shown.grid->BeginEdit(2, 1);
    QVERIFY(List() != nullptr);
    shown.grid->DeleteRow(1);
    QVERIFY(List() == nullptr);
}

void TestGridBtnCell::pushButtonByMouseAndKey() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    CBtnDataBase store;
    MakeButton(grid, 2, 2, QStringLiteral("利用系数表"), &store);
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
    QCOMPARE(grid.PressedButton({2, 2}), 0);
    QTest::mouseMove(grid.viewport(), shown.Middle(1, 0));
    QCOMPARE(grid.PressedButton({2, 2}), -1);
    QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, shown.Middle(1, 0));
    QCOMPARE(pressed.count(), 2);

    shown.Key(Qt::Key_F2);
    QTest::keyClicks(&grid, QStringLiteral("a"));
    QVERIFY(!grid.IsEditing());
    shown.Click(1, 0);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0), (QVariantList{1, 0}));
}

void TestGridBtnCell::buttonBesideText() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    MakeButton(grid, 2, 2, QStringLiteral(">>>"), nullptr);
    grid.SetItemText(2, 2, QStringLiteral("\\a.jpg"));
    const QRect cell = grid.CellRect(2, 2);
    QCOMPARE(grid.ButtonAt({2, 2}, cell.topLeft() + QPoint(3, 3)), -1);
    QCOMPARE(grid.ButtonAt({2, 2}, QPoint(cell.right() - 3, cell.center().y())), 0);
}

void TestGridBtnCell::checkBox() {
    const ShownGrid shown(4, 3);
    CGridCtrl& grid = *shown.grid;
    CGridBtnCell& cell = MakeButton(grid, 2, 1, {}, nullptr);
    cell.SetupBtns(0, BtnType::Button, BtnState::CheckBox, 1, 0, 0, {});
    CGridBtnCell& other = MakeButton(grid, 3, 1, {}, nullptr);
    other.SetupBtns(0, BtnType::Button, BtnState::CheckBox, 1, 0, 0, {});
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.CellRect(2, 1).topLeft() + QPoint(6, 6));
    QVERIFY((cell.GetBtn(0).state & BtnState::Checked) != 0);
    QVERIFY((other.GetBtn(0).state & BtnState::Checked) == 0);
    cell.SetupBtns(0, BtnType::Button, BtnState::Inactive, 1, 0, 0, {});
    QVERIFY(!grid.PressButton({2, 1}, 0));
    shown.DoubleClick(2, 1);  // beside its check box the cell is text
    QVERIFY(grid.IsEditing());
}

QTEST_MAIN(TestGridBtnCell)
#include "test_grid_btn_cell.moc"
