// Rows, columns and contents of the grid, and what focus and selection do when they come and go.
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>
#include <vector>

#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// A grid and a plain table that is changed at random in the same way.
class RandomTable {
public:
    RandomTable() {
        m_grid.SetColumnCount(m_columns);
        m_height = CGridCtrl(1, 1).GetRowHeight(0);
    }

    void Change(int step) {
        const int rows = static_cast<int>(m_lines.size());
        const int row = Below(rows + 1);
        const QString text = QString::number(step);
        const int kind = row == rows ? 0 : Below(9);
        if (kind < 3) {
            QCOMPARE(m_grid.InsertRow(text, row), row);
            m_lines.insert(m_lines.begin() + row, {std::vector<QString>(size_t(m_columns)), m_height});
            m_lines[size_t(row)].texts[0] = text;
            m_grid.SetItemData(row, 0, step + 1);
        } else if (kind == 3) {
            m_focusData = m_grid.GetFocusCell().row == row ? 0 : m_focusData;
            QVERIFY(m_grid.DeleteRow(row));
            m_lines.erase(m_lines.begin() + row);
        } else if (kind == 4) {
            m_grid.SetItemText(row, m_columns - 1, text);
            m_lines[size_t(row)].texts.back() = text;
        } else if (kind < 7) {
            // Often the default and often nothing: both are special inside.
            const int choices[] = {0, m_height, Below(60)};
            m_lines[size_t(row)].height = choices[Below(3)];
            m_grid.SetRowHeight(row, m_lines[size_t(row)].height);
        } else if (kind == 7) {
            m_grid.SetFocusCell({row, 0});
            m_focusData = m_grid.GetItemData(row, 0);
        } else if (step % 40 == 0) {
            InsertColumn(1 + Below(m_columns), text);
        }
    }

    void Check() {
        QCOMPARE(m_grid.GetRowCount(), static_cast<int>(m_lines.size()));
        QCOMPARE(m_grid.GetItemData(m_grid.GetFocusCell().row, 0), m_focusData);
        QCOMPARE(m_grid.IsValid(m_grid.GetSelectedCellRange()), m_focusData != 0);
    }
    void CheckTextsAndPlaces() {
        m_grid.verticalScrollBar()->setValue(0);
        int top = 0;
        for (int row = 0; row < m_grid.GetRowCount(); ++row) {
            const auto& [texts, height] = m_lines[size_t(row)];
            for (int column = 0; column < m_columns; ++column) {
                QCOMPARE(m_grid.GetItemText(row, column), texts[size_t(column)]);
            }
            QCOMPARE(m_grid.CellRect(row, 0).height(), height);
            if (height > 0) {
                QCOMPARE(m_grid.CellRect(row, 0).top(), top);
                QCOMPARE(m_grid.CellAt({1, top}), (CCellID{row, 0}));
                QCOMPARE(m_grid.CellAt({1, top + height - 1}), (CCellID{row, 0}));
            }
            top += height;
        }
    }

private:
    struct Line {
        std::vector<QString> texts;
        int height;
    };

    int Below(int limit) { return m_random.bounded(limit); }
    void InsertColumn(int column, const QString& text) {
        m_grid.InsertColumn(text, 0, column);
        for (Line& line : m_lines) {
            line.texts.insert(line.texts.begin() + column, QString());
        }
        m_lines[0].texts[size_t(column)] = text;
        ++m_columns;
    }

    QRandomGenerator m_random{31};
    CGridCtrl m_grid;
    std::vector<Line> m_lines;
    int m_columns = 3;
    int m_height = 0;
    int m_focusData = 0;
};

}  // namespace

class TestGridShape : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsStayInBounds() {
        CGridCtrl grid;
        QVERIFY(grid.SetFixedRowCount(4) && grid.SetFixedColumnCount(1));
        QVERIFY(grid.GetRowCount() == 4 && grid.GetColumnCount() == 1);
        QVERIFY(!grid.SetRowCount(-1) && !grid.SetFixedColumnCount(-1));
        grid.SetRowCount(2);
        QVERIFY(grid.DeleteRow(1) && !grid.DeleteRow(8));
        QCOMPARE(grid.GetFixedRowCount(), 1);
        QCOMPARE(grid.InsertRow({}, 4), -1);
        QCOMPARE(grid.InsertColumn({}, 0, -2), -1);
    }

    void randomChangesAgreeWithAPlainTable() {
        RandomTable table;
        for (int step = 1; step <= 2000 && !QTest::currentTestFailed(); ++step) {
            table.Change(step);
            table.Check();
            if (step % 100 == 0) {
                table.CheckTextsAndPlaces();
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
        grid.MergeCells(5, 0, 1, 1);  // a block takes the place of one it touches
        QCOMPARE(grid.MergeExtent(3, 1), (CCellRange{3, 1, 3, 1}));
        QCOMPARE(grid.MergeExtent(6, 1), (CCellRange{5, 0, 6, 1}));
    }

    void selectionFollowsRows() {
        CGridCtrl grid(10, 4);
        grid.SetFocusCell({0, 0});
        grid.SetSelectedRange({0, 0, 6, 2});
        grid.SetFixedRowCount(1);
        grid.SetFixedColumnCount(1);
        QCOMPARE(grid.GetFocusCell(), CCellID());  // fixed cells take neither
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 1, 6, 2}));
        grid.SetFocusCell({0, 2});
        QCOMPARE(grid.GetFocusCell(), CCellID());
        grid.SetSelectedRange({4, 1, 6, 2});
        grid.DeleteRow(2);
        QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 1, 5, 2}));
        // The way a page deletes what is selected: always at the first row.
        for (int row = 0; row < 3; ++row) {
            grid.DeleteRow(3);
        }
        QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));
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
