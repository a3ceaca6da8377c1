// Rows that come and go, and rows whose cells are made when they are first shown or touched.
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <functional>
#include <vector>

#include "grid/grid_controller.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// Three columns below a heading, and the rows that the maker was asked for, in their order.
struct LazyGrid {
    CGridCtrl& grid;
    std::vector<int> made = {};
    CString text = u"text %1"_s;

    explicit LazyGrid(CGridCtrl& lazy, int rows) : grid(lazy) {
        grid.SetRowCount(1);
        grid.SetFixedRowCount(1);
        grid.SetColumnCount(3);
        grid.SetRowCount(rows);
        grid.SetRowMaker([this](int row) {
            made.push_back(row);
            grid.SetCellType<CGridBtnCellCombo>(row, 2);
            grid.SetItem({.row = row, .col = 1, .mask = ItemMask::Text, .text = text.arg(row)});
            grid.SetItemData(row, 0, grid.GetItemData(row, 0) + row);
        });
    }
};

}  // namespace

class TestGridRows : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void randomChangesAgreeWithAPlainTable() {
        struct Line {
            QString text;
            int height;
        };
        QRandomGenerator random(31);
        CGridCtrl grid;
        grid.SetColumnCount(3);
        const int usualHeight = CGridCtrl(1, 1).GetRowHeight(0);
        std::vector<Line> lines;
        int focused = 0;  // the item data of the row with the focus
        for (int step = 1; step <= 2000; ++step) {
            const int rows = static_cast<int>(lines.size());
            const int row = random.bounded(rows + 1);
            const int kind = row == rows ? 0 : random.bounded(7);
            if (kind < 3) {
                QCOMPARE(grid.InsertRow(QString::number(step), row), row);
                lines.insert(lines.begin() + row, {QString::number(step), usualHeight});
                grid.SetItemData(row, 0, step);
            } else if (kind == 3) {
                focused = grid.GetFocusCell().row == row ? 0 : focused;
                QVERIFY(grid.DeleteRow(row));
                lines.erase(lines.begin() + row);
            } else if (kind < 6) {
                // Often the default and often nothing: both are special inside.
                const int heights[] = {0, usualHeight, random.bounded(60)};
                lines[size_t(row)].height = heights[random.bounded(3)];
                grid.SetRowHeight(row, lines[size_t(row)].height);
            } else {
                grid.SetFocusCell({row, 0});
                focused = grid.GetItemData(row, 0);
            }
            QCOMPARE(grid.GetItemData(grid.GetFocusCell().row, 0), focused);
            QCOMPARE(grid.IsValid(grid.GetSelectedCellRange()), focused != 0);
            grid.verticalScrollBar()->setValue(0);
            for (int at = 0, top = 0; step % 100 == 0 && at < grid.GetRowCount(); ++at) {
                const auto& [text, height] = lines[size_t(at)];
                QCOMPARE(grid.GetItemText(at, 0), text);
                QCOMPARE(grid.CellRect(at, 0).height(), height);
                QVERIFY(height == 0 || grid.CellAt({1, top}) == (CCellID{at, 0}));
                QVERIFY(height == 0 || grid.CellAt({1, top + height - 1}) == (CCellID{at, 0}));
                top += height;
            }
        }
    }

    void mergedBlocksFollowRows() {
        CGridCtrl grid(8, 4);
        grid.MergeCells(2, 1, 2, 1);
        grid.DeleteRow(2);  // the row of its first cell
        QCOMPARE(grid.MergeExtent(3, 2), (CCellRange{2, 1, 3, 2}));
        grid.InsertRow({}, 3);
        QCOMPARE(grid.MergeExtent(3, 2), (CCellRange{2, 1, 4, 2}));
        grid.InsertRow({}, 0);
        QCOMPARE(grid.MergeExtent(3, 2), (CCellRange{3, 1, 5, 2}));
        grid.MergeCells(5, 0, 1, 1);  // a block takes the place of one it touches
        QCOMPARE(grid.MergeExtent(3, 1), (CCellRange{3, 1, 3, 1}));
        QCOMPARE(grid.MergeExtent(6, 1), (CCellRange{5, 0, 6, 1}));
    }

    void refillKeepsTheScrollPosition() {
        CGridCtrl grid(200, 3, 1);
        grid.resize(200, 200);
        grid.show();
        QCoreApplication::processEvents();
        grid.verticalScrollBar()->setValue(1000);
        grid.DeleteAllItems();
        grid.SetColumnCount(3);
        grid.SetRowCount(200);
        QCoreApplication::processEvents();
        QCOMPARE(grid.verticalScrollBar()->value(), 1000);
    }

    void eachTouchMakesItsRowOnce() {
        const std::function<void(CGridCtrl&)> touches[]{
            [](CGridCtrl& grid) { grid.GetItemText(7, 0); },
            [](CGridCtrl& grid) { grid.SetItemData(7, 2, 3); },
            [](CGridCtrl& grid) { grid.SetCellType<CGridBtnCell>(7, 0); },
            [](CGridCtrl& grid) { grid.Cell(7, 1); },
            [](CGridCtrl& grid) { grid.IsCellEditable(7, 1); },
            [](CGridCtrl& grid) {
                grid.Controller().Core().FocusWithoutSelecting({7, 1});
                QTest::keySequence(&grid, QKeySequence(QKeySequence::Copy));
            },
            [](CGridCtrl& grid) {
                auto* table = QAccessible::queryAccessibleInterface(&grid)->tableInterface();
                QCOMPARE(table->cellAt(7, 1)->text(QAccessible::Name), u"text 7"_s);
            },
        };
        for (const auto& touch : touches) {
            CGridCtrl grid;
            const LazyGrid lazy(grid, 10);
            touch(grid);
            QCOMPARE(lazy.made, std::vector{7});
            QCOMPARE(grid.GetItemText(7, 1), u"text 7"_s);
            QVERIFY(grid.GetItemText(0, 1).isEmpty());
            QCOMPARE(lazy.made, std::vector{7});
        }
    }

    void nothingElseMakesRows() {
        CGridCtrl grid;
        const LazyGrid lazy(grid, 50'000);
        grid.SetItemText(0, 0, u"made"_s);
        grid.InsertColumn(u"heading"_s, CellFormat::Right, 1);
        QCOMPARE(grid.GetItemFormat(0, 1), CellFormat::Right);
        grid.InsertRow({}, 5);
        grid.SetSelectedRange({1, 0, grid.GetRowCount() - 1, 3});
        grid.MergeCells(3, 0, 1, 1);
        grid.SetRowHeight(9, 40);
        grid.DeleteRow(7);
        auto* table = QAccessible::queryAccessibleInterface(&grid)->tableInterface();
        QCOMPARE(table->selectedRowCount(), 49'999);
        grid.RemakeRows();
        grid.DeleteNonFixedRows();
        QVERIFY(lazy.made.empty());
        grid.SetRowCount(2);
        QCOMPARE(grid.GetItemFormat(1, 1), CellFormat::Right);
    }

    void shownRowsAreMade() {
        const ShownGrid shown(1, 3);
        const LazyGrid lazy(*shown.grid, 10'000);
        QTRY_VERIFY(!lazy.made.empty());
        const int inSight = shown.grid->CellAt({1, shown.grid->viewport()->height() - 1}).row;
        QCOMPARE(lazy.made.front(), 1);
        QCOMPARE(lazy.made.back(), inSight);
        QCOMPARE(int(lazy.made.size()), inSight);
        shown.grid->SetFocusCell({1, 0});
        shown.Key(Qt::Key_End, Qt::ControlModifier);
        QTRY_VERIFY(std::ranges::find(lazy.made, 9999) != lazy.made.end());
        QVERIFY(int(lazy.made.size()) <= 2 * inSight + 2);
    }

    void rowsKeepTheirCellsWhenOthersComeAndGo() {
        CGridCtrl grid;
        LazyGrid lazy(grid, 8);
        grid.SetItemText(4, 0, u"own"_s);
        grid.InsertRow({}, 2);
        grid.DeleteRow(1);
        grid.InsertRow({}, 6);
        grid.DeleteRow(7);
        QCOMPARE(grid.GetItemText(4, 0), u"own"_s);
        QCOMPARE(grid.GetItemText(4, 1), u"text 4"_s);
        grid.GetItemText(6, 0);  // was inserted, and takes the number that it has now
        QCOMPARE(lazy.made, (std::vector{4, 6}));
        lazy.text = u"new %1"_s;
        grid.RemakeRow(4);
        grid.RemakeRow(0);
        QCOMPARE(grid.GetItemText(4, 0) + grid.GetItemText(4, 1), u"new 4"_s);
        QCOMPARE(grid.GetItemText(6, 1), u"text 6"_s);
        grid.SetItemText(0, 1, u"heading"_s);
        grid.RemakeRows();
        QCOMPARE(grid.GetItemText(6, 1) + grid.GetItemText(0, 1), u"new 6heading"_s);
    }

    void remadeRowsKeepPlaceAndEdit() {
        const ShownGrid grid(1, 3);
        LazyGrid lazy(*grid.get(), 500);
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        QCoreApplication::processEvents();
        grid->verticalScrollBar()->setValue(200);
        const auto edit = [&](const CString& typed) {
            QVERIFY(grid->BeginEdit(12, 1));
            QTest::keyClicks(grid.Editor(), typed);
            lazy.text += u'*';
            grid->RemakeRows();
            QCoreApplication::processEvents();
        };
        const int place = grid->verticalScrollBar()->value();
        edit({});  // an unchanged text is the cell's new one
        QCOMPARE(grid.Editor()->text(), u"text 12*"_s);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(12, 1), u"text 12*"_s);
        edit(u"typed"_s);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(12, 1), u"typed"_s);
        QCOMPARE(ended.count(), 2);
        grid->SetRowMaker([&grid](int row) { grid->SetItemState(row, 1, CellState::ReadOnly); });
        edit(u"typed"_s);
        QVERIFY(!grid->IsEditing());
        QCOMPARE(ended.count(), 2);
        QCOMPARE(grid->verticalScrollBar()->value(), place);
        QCOMPARE(grid->GetFocusCell(), (CCellID{12, 1}));
        QCOMPARE(grid->GetSelectedCellRange(), (CCellRange{12, 1, 12, 1}));
    }
};

QTEST_MAIN(TestGridRows)
#include "test_grid_rows.moc"
