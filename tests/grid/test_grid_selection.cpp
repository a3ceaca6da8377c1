// Moving the focus and selecting by mouse and keys, and dragging column edges.
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridSelection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clicks() {
        const ShownGrid shown(8, 4);
        CGridCtrl& grid = *shown.grid;
        const QSignalSpy clicked(&grid, &CGridCtrl::CellClicked);
        const QSignalSpy focused(&grid, &CGridCtrl::FocusCellChanged);
        const QSignalSpy selected(&grid, &CGridCtrl::SelectionChanged);
        shown.Click(2, 1);
        shown.Click(2, 1);
        QCOMPARE(focused, (QList<QVariantList>{{2, 1}}));
        QCOMPARE(selected.count(), 1);
        QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 2, 1}));
        shown.Click(4, 2, Qt::ShiftModifier);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 4, 2}));
        shown.Click(6, 3, Qt::ControlModifier);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 6, 3}));
        QVERIFY(grid.IsSelected(6, 3) && !grid.IsSelected(5, 3));
        QCOMPARE(clicked.count(), 2);
        QCOMPARE(focused.count(), 3);
        QCOMPARE(selected.count(), 3);
        const auto clickRight = [&](int row) {
            QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, shown.Middle(row, 1));
            return grid.GetSelectedCellRange();
        };
        QCOMPARE(clickRight(3), (CCellRange{2, 1, 6, 3}));  // on what is selected
        QCOMPARE(clickRight(7), (CCellRange{7, 1, 7, 1}));
    }

    void drag() {
        const ShownGrid shown(200, 4);
        CGridCtrl& grid = *shown.grid;
        const QSignalSpy clicked(&grid, &CGridCtrl::CellClicked);
        QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(2, 1));
        QTest::mouseMove(grid.viewport(), shown.Middle(5, 3));
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{2, 1, 5, 3}));
        QTest::mouseMove(grid.viewport(), shown.Middle(0, 0));  // the heading: the first row that scrolls
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
        const QPoint below(shown.Middle(2, 1).x(), grid.viewport()->height() + 15);
        QTest::mouseMove(grid.viewport(), below);
        QTRY_VERIFY(grid.verticalScrollBar()->value() > 60);
        QTRY_VERIFY(grid.GetSelectedCellRange().maxRow > 12);
        QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, below);
        const int value = grid.verticalScrollBar()->value();
        QTest::qWait(120);
        QCOMPARE(grid.verticalScrollBar()->value(), value);
        QCOMPARE(grid.GetFocusCell(), (CCellID{2, 1}));
        QCOMPARE(clicked.count(), 0);
    }

    void headingsSelectLines() {
        const ShownGrid shown(8, 5, 1, 1);
        CGridCtrl& grid = *shown.grid;
        shown.Click(3, 0);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 1, 3, 4}));
        shown.Click(5, 0, Qt::ShiftModifier);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 1, 5, 4}));
        shown.Click(0, 2);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 2, 7, 2}));
        const auto drag = [&](CCellID from, CCellID to) {
            QTest::mousePress(grid.viewport(), Qt::LeftButton, {}, shown.Middle(from.row, from.col));
            QTest::mouseMove(grid.viewport(), shown.Middle(to.row, to.col));
            QTest::mouseRelease(grid.viewport(), Qt::LeftButton, {}, shown.Middle(to.row, to.col));
            return grid.GetSelectedCellRange();
        };
        QCOMPARE(drag({0, 1}, {0, 3}), (CCellRange{1, 1, 7, 3}));
        QCOMPARE(drag({2, 0}, {4, 0}), (CCellRange{2, 1, 4, 4}));
        QCOMPARE(drag({6, 1}, {6, 1}), (CCellRange{6, 1, 6, 1}));
    }

    void keys() {
        const ShownGrid shown(100, 4);
        CGridCtrl& grid = *shown.grid;
        grid.SetRowHeight(3, 0);
        const struct {
            Qt::Key key;
            Qt::KeyboardModifiers modifiers;
            CCellID focus;
        } steps[]{{Qt::Key_Down, {}, {1, 0}},  // the first key gives the focus to a cell
                  {Qt::Key_Down, {}, {2, 0}},
                  {Qt::Key_Down, {}, {4, 0}},  // over the hidden row
                  {Qt::Key_End, {}, {4, 3}},
                  {Qt::Key_Right, {}, {4, 3}},
                  {Qt::Key_Home, {}, {4, 0}},
                  {Qt::Key_End, Qt::ControlModifier, {99, 3}},
                  {Qt::Key_Home, Qt::ControlModifier, {1, 0}},
                  {Qt::Key_PageUp, {}, {1, 0}},
                  {Qt::Key_Up, {}, {1, 0}}};
        for (const auto& step : steps) {
            shown.Key(step.key, step.modifiers);
            QCOMPARE(grid.GetFocusCell(), step.focus);
            QVERIFY(grid.viewport()->rect().contains(shown.Middle(step.focus.row, step.focus.col)));
        }
        shown.Key(Qt::Key_End, Qt::ControlModifier);
        const int bottom = grid.verticalScrollBar()->value();
        shown.Key(Qt::Key_Up);
        QCOMPARE(grid.verticalScrollBar()->value(), bottom);  // it is in sight already
        grid.SetFocusCell({1, 0});
        shown.Key(Qt::Key_PageDown);
        const int page = grid.GetFocusCell().row - 1;
        QVERIFY(page > 3 && (page - 1) * grid.GetRowHeight(5) <= grid.viewport()->height());
        grid.SetFocusCell({1, 0});
        shown.Key(Qt::Key_Down, Qt::ShiftModifier);
        shown.Key(Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
        shown.Key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 0, 99, 3}));
        QKeyEvent help(QEvent::KeyPress, Qt::Key_F5, {});
        QCoreApplication::sendEvent(&grid, &help);
        QVERIFY(!help.isAccepted());  // passed on
    }

    void mergedBlocksCountAsOneCell() {
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
        grid.CancelEdit();
    }

    void columnEdges() {
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
        drag(141, 171);
        QCOMPARE(grid.GetColumnWidth(1), 110);
        QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));
    }
};

QTEST_MAIN(TestGridSelection)
#include "test_grid_selection.moc"
