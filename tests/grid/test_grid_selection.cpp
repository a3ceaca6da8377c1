// Moving the focus and selecting by mouse and keys, and dragging column edges.
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "grid/grid_controller.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridSelection : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void clicks() {
        const ShownGrid grid(8, 4);
        const QSignalSpy clicked(grid.get(), &CGridCtrl::CellClicked);
        const QSignalSpy focused(grid.get(), &CGridCtrl::FocusCellChanged);
        const QSignalSpy selected(grid.get(), &CGridCtrl::SelectionChanged);
        grid.Click(2, 1);
        grid.Click(2, 1);
        QCOMPARE(focused, (QList<QVariantList>{{2, 1}}));
        QCOMPARE(selected.count(), 1);
        QCOMPARE(grid->GetFocusCell(), (CCellID{2, 1}));
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{2, 1, 2, 1}));
        grid.Click(4, 2, Qt::ShiftModifier);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{2, 1, 4, 2}));
        grid.Click(6, 3, Qt::ControlModifier);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{2, 1, 6, 3}));
        QVERIFY(grid->IsSelected(6, 3) && !grid->IsSelected(5, 3));
        QCOMPARE(clicked.count(), 2);
        QCOMPARE(focused.count(), 3);
        QCOMPARE(selected.count(), 3);
        const auto clickRight = [&](int row) {
            QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, grid.Middle(row, 1));
            return grid->GetSelectedCellRange();
        };
        QCOMPARE(clickRight(3), (CCellRange{2, 1, 6, 3}));  // on what is selected
        QCOMPARE(clickRight(7), (CCellRange{7, 1, 7, 1}));
        grid->DeleteRow(3);
        grid.Click(4, 1, Qt::ShiftModifier);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{4, 1, 6, 1}));
    }

    void drag() {
        const ShownGrid grid(200, 4);
        const QSignalSpy clicked(grid.get(), &CGridCtrl::CellClicked);
        QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, grid.Middle(2, 1));
        QTest::mouseMove(grid->viewport(), grid.Middle(5, 3));
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{2, 1, 5, 3}));
        QTest::mouseMove(grid->viewport(), grid.Middle(0, 0));  // the heading: the first row that scrolls
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{1, 0, 2, 1}));
        const QPoint below(grid.Middle(2, 1).x(), grid->viewport()->height() + 15);
        QTest::mouseMove(grid->viewport(), below);
        QTRY_VERIFY(grid->verticalScrollBar()->value() > 60);
        QTRY_VERIFY(grid->GetSelectedCellRange().maxRow > 12);
        QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, below);
        const int value = grid->verticalScrollBar()->value();
        QTest::qWait(120);
        QCOMPARE(grid->verticalScrollBar()->value(), value);
        QCOMPARE(grid->GetFocusCell(), (CCellID{2, 1}));
        QCOMPARE(clicked.count(), 0);
    }

    void headingsSelectLines() {
        const ShownGrid grid(8, 5, 1, 1);
        grid.Click(3, 0);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{3, 1, 3, 4}));
        grid.Click(5, 0, Qt::ShiftModifier);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{3, 1, 5, 4}));
        grid.Click(0, 2);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{1, 2, 7, 2}));
        const auto drag = [&](CCellID from, CCellID to) {
            grid.Drag(grid.Middle(from.row, from.col), grid.Middle(to.row, to.col));
            return grid->GetSelectedCellRange();
        };
        QCOMPARE(drag({0, 1}, {0, 3}), (CCellRange{1, 1, 7, 3}));
        QCOMPARE(drag({2, 0}, {4, 0}), (CCellRange{2, 1, 4, 4}));
        QCOMPARE(drag({6, 1}, {6, 1}), (CCellRange{6, 1, 6, 1}));
        grid.Click(0, 0);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{1, 1, 7, 4}));
        // Dragging an edge selects nothing, and leaves something of the column to take hold of.
        grid.Drag({grid->CellRect(0, 2).right() + 1, 5}, {0, 5});
        QVERIFY(grid->GetColumnWidth(2) > 0);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{1, 1, 7, 4}));
    }

    void keys() {
        const ShownGrid grid(40, 4, 1, 1);
        grid->MergeCells(5, 2, 2, 1);
        QCOMPARE(grid->CellAt(grid.Middle(7, 3)), (CCellID{5, 2}));
        QVERIFY(!grid->IsCellEditable(7, 3) && grid->IsCellEditable(5, 2));
        grid->SetRowHeight(3, 0);
        grid->SetItemState(2, 1, CellState::ReadOnly);
        const int height = grid->GetRowHeight(1);
        const int page = grid->viewport()->height() - 2 * height;
        const int below = 9 + page / height;
        const int above = 39 - (page + height - 1) / height;
        const CCellRange none{40, 4, -1, -1};
        constexpr auto kCtrl = Qt::ControlModifier;
        constexpr auto kShift = Qt::ShiftModifier;
        const struct {
            CCellID focus;
            Qt::Key key;
            Qt::KeyboardModifiers modifiers;
            CCellRange selected;
            bool isPassedOn = false;
        } cases[]{{{}, Qt::Key_A, {}, none, true},
                  {{}, Qt::Key_Down, kCtrl, none},
                  {{}, Qt::Key_Down, {}, {1, 1, 1, 1}},  // the first key gives the focus to a cell
                  {{2, 1}, Qt::Key_Down, {}, {4, 1, 4, 1}},
                  {{4, 1}, Qt::Key_Up, {}, {2, 1, 2, 1}},
                  {{4, 3}, Qt::Key_Down, {}, {5, 2, 7, 3}},
                  {{5, 2}, Qt::Key_Down, {}, {8, 2, 8, 2}},
                  {{5, 2}, Qt::Key_Right, {}, {5, 2, 7, 3}},
                  {{6, 1}, Qt::Key_Right, kShift, {5, 1, 7, 3}},
                  {{9, 3}, Qt::Key_Home, {}, {9, 1, 9, 1}},
                  {{9, 1}, Qt::Key_End, kCtrl, {39, 3, 39, 3}},
                  {{39, 3}, Qt::Key_Up, kShift, {38, 3, 39, 3}},
                  {{39, 3}, Qt::Key_Home, kCtrl | kShift, {1, 1, 39, 3}},
                  {{9, 1}, Qt::Key_PageDown, {}, {below, 1, below, 1}},
                  {{39, 1}, Qt::Key_PageUp, {}, {above, 1, above, 1}},
                  {{9, 3}, Qt::Key_Tab, {}, {10, 1, 10, 1}},
                  {{9, 1}, Qt::Key_Backtab, kShift, {8, 3, 8, 3}},
                  {{39, 3}, Qt::Key_Return, {}, {39, 3, 39, 3}},
                  {{9, 3}, Qt::Key_Return, kShift, {8, 3, 8, 3}},
                  {{9, 3}, Qt::Key_F4, {}, {9, 3, 9, 3}, true},
                  {{9, 3}, Qt::Key_F5, {}, {9, 3, 9, 3}, true},
                  {{2, 1}, Qt::Key_F2, {}, {2, 1, 2, 1}, true},
                  {{2, 1}, Qt::Key_A, {}, {2, 1, 2, 1}, true},
                  {{2, 1}, Qt::Key_Delete, {}, {2, 1, 2, 1}, true},
                  {{2, 1}, Qt::Key_Space, {}, {2, 1, 2, 1}, true},
                  {{9, 3}, Qt::Key_A, kCtrl, {1, 1, 39, 3}},
                  {{9, 2}, Qt::Key_Space, kShift, {9, 1, 9, 3}},
                  {{9, 1}, Qt::Key_Space, kCtrl, {1, 1, 39, 1}}};
        for (const auto& [focus, key, modifiers, selected, isPassedOn] : cases) {
            grid->SetFocusCell(focus);
            QKeyEvent press(QEvent::KeyPress, key, modifiers, key == Qt::Key_A ? u"a"_s : QString());
            QCoreApplication::sendEvent(grid.get(), &press);
            const QByteArray which = QByteArray::number(key, 16) + " in row " + QByteArray::number(focus.row);
            QVERIFY2(grid->GetSelectedCellRange() == selected, which.constData());
            QVERIFY2(press.isAccepted() != isPassedOn && !grid->IsEditing(), which.constData());
            const CCellID now = grid->GetFocusCell();
            QVERIFY(!now.IsValid() || grid->viewport()->rect().contains(grid.Middle(now.row, now.col)));
        }
        grid.Key(Qt::Key_End, kCtrl);
        const int bottom = grid->verticalScrollBar()->value();
        grid.Key(Qt::Key_Up);
        QCOMPARE(grid->verticalScrollBar()->value(), bottom);  // it is in sight already
    }

    void rowHeadsAndWhatCtrlLeavesOut() {
        const ShownGrid grid(9, 4);
        for (int row = 1; row < 9; ++row) {
            grid->SetItemState(row, 0, CellState::ReadOnly | CellState::RowHead);
        }
        using Runs = std::vector<GridRowRun>;
        grid.Click(2, 0);
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{2, 0, 2, 3}));
        grid.Click(6, 0, Qt::ShiftModifier);
        grid.Click(8, 0, Qt::ControlModifier);
        QVERIFY((grid->GetSelectedRows() == Runs{{2, 6}, {8, 8}}));
        grid.Click(4, 0, Qt::ControlModifier);
        QVERIFY((grid->GetSelectedRows() == Runs{{2, 3}, {5, 6}, {8, 8}}));
        grid.Click(3, 2, Qt::ControlModifier);
        QVERIFY(!grid->IsSelected(3, 2) && grid->IsSelected(3, 1));
        grid.Drag(grid.Middle(5, 0), grid.Middle(7, 2));
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{5, 0, 7, 3}));
        QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, grid.Middle(3, 0));
        QVERIFY((grid->GetSelectedRows() == Runs{{3, 3}}));
    }

    void frozenColumnsStay() {
        const ShownGrid grid(8, 8);
        const QSignalSpy arranged(grid.get(), &CGridCtrl::ColumnsArranged);
        grid->SetFocusCell({2, 1});
        grid->Controller().Execute({GridCommand::Kind::Freeze, {2, 1}});
        QCOMPARE(arranged.count(), 1);
        grid->horizontalScrollBar()->setValue(grid->horizontalScrollBar()->maximum());
        const int stay = grid->GetColumnWidth(0) + grid->GetColumnWidth(1);
        QCOMPARE(grid->CellRect(3, 1).right() + 1, stay);
        QCOMPARE(grid->CellRect(3, 7).right() + 1, grid->viewport()->width());
        grid.Click(3, 1);
        QCOMPARE(grid->GetFocusCell(), (CCellID{3, 1}));
        QCOMPARE(grid->horizontalScrollBar()->value(), grid->horizontalScrollBar()->maximum());
        grid.Key(Qt::Key_Right);  // the next column lies beneath the frozen ones
        QCOMPARE(grid->CellRect(3, 2).left(), stay);
        QCOMPARE(grid->CellAt({stay - 5, 5}), (CCellID{0, 1}));
        grid->SetColumnWidth(0, grid->viewport()->width());  // now too little would be left to the rest
        QCOMPARE(grid->CellRect(3, 0).right() + 1,
                 -grid->horizontalScrollBar()->value() + grid->GetColumnWidth(0));
    }
};

QTEST_MAIN(TestGridSelection)
#include "test_grid_selection.moc"
