// Rows, columns and contents of the grid, and what focus and selection do when they come and go.
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <vector>

#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridShape : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsAndFixedCounts() {
        CGridCtrl grid;
        QVERIFY(grid.SetFixedRowCount(4) && grid.SetFixedColumnCount(1));
        QVERIFY(grid.GetRowCount() == 4 && grid.GetColumnCount() == 1);
        QVERIFY(!grid.SetRowCount(-1) && !grid.SetFixedColumnCount(-1));
        grid.SetRowCount(2);
        QCOMPARE(grid.GetFixedRowCount(), 2);
        grid.SetRowCount(10);
        QVERIFY(grid.DeleteRow(1) && grid.DeleteRow(5) && !grid.DeleteRow(8));
        QCOMPARE(grid.GetFixedRowCount(), 1);
        grid.DeleteNonFixedRows();
        QCOMPARE(grid.GetRowCount(), 1);
        grid.DeleteAllItems();
        QCOMPARE(grid.InsertColumn(u"序号"_s, CellFormat::Centre), 0);
        QCOMPARE(grid.InsertColumn(u"光通量"_s, CellFormat::Centre), 1);
        QCOMPARE(grid.GetItemText(0, 1), u"光通量"_s);
        QCOMPARE(grid.GetItemFormat(0, 1), CellFormat::Centre);
        QCOMPARE(grid.InsertRow(u"追加"_s), 1);
        QCOMPARE(grid.InsertRow({}, 4), -1);
        QCOMPARE(grid.InsertColumn({}, 0, -2), -1);
    }

    void randomChangesAgreeWithAPlainTable() {
        QRandomGenerator random(31);
        CGridCtrl grid;
        std::vector<std::vector<QString>> table;
        grid.SetColumnCount(3);
        int columns = 3;
        int focusData = 0;
        for (int step = 0; step < 1500; ++step) {
            const int rows = static_cast<int>(table.size());
            const int row = random.bounded(rows + 1);
            const QString text = QString::number(step);
            switch (random.bounded(6)) {
                case 0:
                case 1:
                    QCOMPARE(grid.InsertRow(text, row), row);
                    table.insert(table.begin() + row, std::vector<QString>(size_t(columns)));
                    table[size_t(row)][0] = text;
                    grid.SetItemData(row, 0, step + 1);
                    break;
                case 2:
                    if (row < rows) {
                        focusData = grid.GetFocusCell().row == row ? 0 : focusData;
                        QVERIFY(grid.DeleteRow(row));
                        table.erase(table.begin() + row);
                    }
                    break;
                case 3:
                    if (row < rows) {
                        grid.SetItemText(row, columns - 1, text);
                        table[size_t(row)][size_t(columns) - 1] = text;
                    }
                    break;
                case 4:
                    if (step % 40 == 0 && rows > 0 && columns < 8) {
                        const int column = 1 + random.bounded(columns);
                        grid.InsertColumn(text, 0, column);
                        for (auto& line : table) {
                            line.insert(line.begin() + column, QString());
                        }
                        table[0][size_t(column)] = text;
                        ++columns;
                    }
                    break;
                default:
                    if (row < rows) {
                        grid.SetFocusCell({row, 0});
                        focusData = grid.GetItemData(row, 0);
                    }
                    break;
            }
            QCOMPARE(grid.GetRowCount(), static_cast<int>(table.size()));
            QCOMPARE(grid.GetItemData(grid.GetFocusCell().row, 0), focusData);
            QCOMPARE(grid.IsValid(grid.GetSelectedCellRange()), focusData != 0);
        }
        for (int cell = 0; cell < grid.GetRowCount() * columns; ++cell) {
            const int row = cell / columns;
            const int column = cell % columns;
            QCOMPARE(grid.GetItemText(row, column), table[size_t(row)][size_t(column)]);
        }
    }

    void deletingRowsMovesFocusAndSelection() {
        CGridCtrl grid(10, 3, 1);
        grid.SetFocusCell({5, 1});
        QSignalSpy focusSpy(&grid, &CGridCtrl::FocusCellChanged);
        grid.SetSelectedRange({4, 0, 6, 2});
        grid.DeleteRow(2);
        QCOMPARE(grid.GetFocusCell(), (CCellID{4, 1}));
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 0, 5, 2}));
        grid.DeleteRow(4);
        QCOMPARE(grid.GetFocusCell(), CCellID());
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 0, 4, 2}));
        QCOMPARE(focusSpy.count(), 2);
        // The way a page deletes what is selected: always at the first row.
        grid.DeleteRow(3);
        grid.DeleteRow(3);
        QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));
    }

    void fixedCellsAreNeverSelected() {
        CGridCtrl grid(5, 4);
        grid.SetFocusCell({0, 0});
        grid.SetSelectedRange({0, 0, 4, 3});
        grid.SetFixedRowCount(1);
        grid.SetFixedColumnCount(1);
        QCOMPARE(grid.GetFocusCell(), CCellID());
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 1, 4, 3}));
        grid.SetFocusCell({0, 2});
        QCOMPARE(grid.GetFocusCell(), CCellID());
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
};

QTEST_MAIN(TestGridShape)
#include "test_grid_shape.moc"
