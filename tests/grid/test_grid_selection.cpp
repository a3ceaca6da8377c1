// Moving the focus and selecting by mouse and keys, and dragging column edges.
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "grid/cell_text.h"
#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace quorvane;

class TestGridSelection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clicks();
    void drag();
    void dragBeyondTheEdgeScrolls();
    void headingsSelectLines();
    void keys();
    void keysPassOver();
    void tabKeys();
    void mergedBlocksCountAsOneCell();
    void deletingInsideABlock();
    void columnEdges();
};

void TestGridSelection::clicks() {
    const ShownGrid shown(8, 4);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy clicked(&grid, &CGridCtrl::CellClicked);
    shown.Click(2, 1);
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 2, 1}));
    shown.Click(4, 2, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 4, 2}));
    shown.Click(1, 0, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
    shown.Click(6, 3, Qt::ControlModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 6, 3}));
    QVERIFY(grid.IsSelected(6, 3));
    QVERIFY(!grid.IsSelected(5, 3));
    QCOMPARE(clicked.count(), 1);
    QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, shown.Middle(2, 0));
    QVERIFY(grid.IsSelected(6, 3));  // the menu is about all that is selected
    QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, shown.Middle(3, 3));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 3, 3, 3}));
}

void TestGridSelection::drag() {
    const ShownGrid shown(8, 4);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy clicked(&grid, &CGridCtrl::CellClicked);
    QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(2, 1));
    QTest::mouseMove(grid.viewport(), shown.Middle(5, 3));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 5, 3}));
    QTest::mouseMove(grid.viewport(), shown.Middle(0, 0));  // over the heading: the first row that scrolls
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
    QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, shown.Middle(0, 0));
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
    QCOMPARE(clicked.count(), 0);
}

void TestGridSelection::dragBeyondTheEdgeScrolls() {
    const ShownGrid shown(200, 2);
    CGridCtrl& grid = *shown.grid;
    QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(3, 1));
    const QPoint below(shown.Middle(3, 1).x(), grid.viewport()->height() + 15);
    QTest::mouseMove(grid.viewport(), below);
    QTRY_VERIFY(grid.verticalScrollBar()->value() > 60);
    QTRY_VERIFY(grid.GetSelectedCellRange().maxRow > 12);
    QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, below);
    const int value = grid.verticalScrollBar()->value();
    QTest::qWait(120);
    QCOMPARE(grid.verticalScrollBar()->value(), value);
    QCOMPARE(grid.GetSelectedCellRange().minRow, 3);
}

void TestGridSelection::headingsSelectLines() {
    const ShownGrid shown(8, 5, 1, 1);
    CGridCtrl& grid = *shown.grid;
    shown.Click(3, 0);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 1, 3, 4}));
    shown.Click(5, 0, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 1, 5, 4}));
    shown.Click(2, 0, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 3, 4}));
    shown.Click(7, 0, Qt::ControlModifier);
    QVERIFY(grid.IsSelected(7, 4) && grid.IsSelected(2, 1) && !grid.IsSelected(5, 1));
    shown.Click(0, 2);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 2, 7, 2}));
    shown.Click(0, 0);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 1, 7, 4}));

    QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(4, 0));
    QTest::mouseMove(grid.viewport(), shown.Middle(6, 2));
    QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, shown.Middle(6, 2));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{4, 1, 6, 4}));
}

void TestGridSelection::keys() {
    const ShownGrid shown(100, 4);
    CGridCtrl& grid = *shown.grid;
    const auto at = [&](int row, int column) { return grid.GetFocusCell() == CCellID{row, column}; };
    shown.Key(Qt::Key_Down);  // the first key gives the focus to a cell
    QVERIFY(at(1, 0));
    shown.Key(Qt::Key_Down);
    shown.Key(Qt::Key_Right);
    QVERIFY(at(2, 1));
    shown.Key(Qt::Key_End);
    QVERIFY(at(2, 3));
    shown.Key(Qt::Key_Right);
    QVERIFY(at(2, 3));
    shown.Key(Qt::Key_Home);
    QVERIFY(at(2, 0));
    shown.Key(Qt::Key_End, Qt::ControlModifier);
    QVERIFY(at(99, 3));
    QCOMPARE(grid.verticalScrollBar()->value(), grid.verticalScrollBar()->maximum());
    shown.Key(Qt::Key_PageUp);
    const int page = 99 - grid.GetFocusCell().row;
    QVERIFY(page > 3 && page * grid.GetRowHeight(5) <= grid.viewport()->height());
    shown.Key(Qt::Key_Home, Qt::ControlModifier);
    QVERIFY(at(1, 0));
    QCOMPARE(grid.verticalScrollBar()->value(), 0);
    shown.Key(Qt::Key_PageUp);
    shown.Key(Qt::Key_Up);
    QVERIFY(at(1, 0));

    shown.Key(Qt::Key_Down, Qt::ShiftModifier);
    shown.Key(Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
    shown.Key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 99, 3}));
}

void TestGridSelection::keysPassOver() {
    const ShownGrid shown(6, 4);
    CGridCtrl& grid = *shown.grid;
    grid.SetFocusCell({2, 1});
    for (const auto& [key, modifiers] :
         {std::pair(Qt::Key_B, Qt::ControlModifier), std::pair(Qt::Key_F5, Qt::NoModifier),
          std::pair(Qt::Key_Return, Qt::ControlModifier), std::pair(Qt::Key_Left, Qt::AltModifier)}) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(&grid, &press);
        QVERIFY(!press.isAccepted());
    }
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
    grid.SetRowHeight(3, 0);
    shown.Key(Qt::Key_Down);
    QCOMPARE(grid.GetFocusCell(), (CCellID{4, 1}));  // over the hidden row
}

void TestGridSelection::tabKeys() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    shown.other->setFocus();
    QTest::keyClick(shown.other, Qt::Key_Backtab, Qt::ShiftModifier);
    QVERIFY(grid.hasFocus());
    QCOMPARE(grid.GetFocusCell(), (CCellID{1, 0}));
    QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));  // seen, but nothing is selected yet
    shown.Key(Qt::Key_Tab);
    shown.Key(Qt::Key_Tab);
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 0}));
    shown.Key(Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(grid.GetFocusCell(), (CCellID{1, 1}));
    shown.Key(Qt::Key_Tab, Qt::ControlModifier);
    QVERIFY(shown.other->hasFocus());
}

void TestGridSelection::mergedBlocksCountAsOneCell() {
    const ShownGrid shown(8, 5);
    CGridCtrl& grid = *shown.grid;
    QVERIFY(grid.MergeCells(2, 1, 2, 1));
    QCOMPARE(grid.CellAt(shown.Middle(2, 1)), (CCellID{2, 1}));
    QCOMPARE(grid.CellRect(4, 2), grid.CellRect(2, 1));
    grid.SetFocusCell({3, 0});
    shown.Key(Qt::Key_Right);
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 4, 2}));
    shown.Key(Qt::Key_Right);
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 3}));
    shown.Key(Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 4, 3}));
    QVERIFY(!grid.IsCellEditable(3, 2));
    QVERIFY(grid.BeginEdit(2, 1));
    QVERIFY(shown.Editor()->height() > 2 * grid.GetRowHeight(2));
    grid.CancelEdit();
    QVERIFY(grid.MergeCells(2, 1, 0, 0));
    QVERIFY(grid.IsCellEditable(3, 2));
}

void TestGridSelection::deletingInsideABlock() {
    CGridCtrl grid(8, 5);
    grid.MergeCells(2, 1, 2, 1);
    grid.DeleteRow(2);  // the row of its first cell
    QCOMPARE(grid.MergeExtent(3, 2), (CCellRange{2, 1, 3, 2}));
    grid.InsertRow({}, 3);
    QCOMPARE(grid.MergeExtent(3, 2), (CCellRange{2, 1, 4, 2}));
    grid.SetColumnCount(2);
    QCOMPARE(grid.MergeExtent(3, 1), (CCellRange{2, 1, 4, 1}));
    grid.DeleteRow(3);
    grid.DeleteRow(3);
    QCOMPARE(grid.MergeExtent(2, 1), (CCellRange{2, 1, 2, 1}));
}

void TestGridSelection::columnEdges() {
    const ShownGrid shown(6, 3);
    CGridCtrl& grid = *shown.grid;
    grid.SetColumnWidth(0, 60);
    grid.SetColumnWidth(1, 80);
    const int y = grid.CellRect(0, 0).center().y();
    const auto drag = [&](int from, int to) {
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, QPoint(from, y));
        QTest::mouseMove(grid.viewport(), QPoint(to, y));
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, QPoint(to, y));
    };
    QTest::mouseMove(grid.viewport(), QPoint(140, y));
    QCOMPARE(grid.viewport()->cursor().shape(), Qt::SplitHCursor);
    QTest::mouseMove(grid.viewport(), QPoint(140, 60));
    QCOMPARE(grid.viewport()->cursor().shape(), Qt::ArrowCursor);
    drag(141, 171);
    QCOMPARE(grid.GetColumnWidth(1), 110);
    QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));
    drag(170, 0);
    QVERIFY(grid.GetColumnWidth(1) > 0);
    QCOMPARE(grid.GetColumnWidth(0), 60);

    grid.SetColumnWidth(1, 80);
    grid.SetItemText(3, 1, QStringLiteral("三基色直管荧光灯 T5"));
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, QPoint(139, y));
    const int needed = CellTextWidth(grid.font(), grid.GetItemText(3, 1), 10'000);
    QVERIFY(grid.GetColumnWidth(1) > needed && grid.GetColumnWidth(1) < needed + 30);

    // The edges inside a merged heading are no edges.
    grid.SetColumnWidth(1, 80);
    grid.MergeCells(0, 0, 0, 1);
    drag(60, 90);
    QCOMPARE(grid.GetColumnWidth(0), 60);
}

QTEST_MAIN(TestGridSelection)
#include "test_grid_selection.moc"
