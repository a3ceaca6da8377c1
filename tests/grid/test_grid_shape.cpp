// Rows, columns and contents of the grid, and what focus and selection do when they come and go.
#include <QRandomGenerator>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <stdexcept>
#include <vector>

#include "grid/grid_ctrl.h"

using namespace quorvane;

class TestGridShape : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void countsAndFixedCounts();
    void headingsOfInsertedRowsAndColumns();
    void outsideTheGrid();
    void itemFieldsFollowTheMask();
    void replacedCellKeepsItsContents();
    void randomChangesAgreeWithAPlainTable();
    void deletingRowsMovesFocusAndSelection();
    void fixedCellsAreNeverSelected();
    void refillKeepsTheScrollPosition();
    void scrollBarsFollowTheContents();
};

void TestGridShape::countsAndFixedCounts() {
    CGridCtrl grid;
    QVERIFY(grid.SetFixedRowCount(4));
    QVERIFY(grid.SetFixedColumnCount(1));
    QCOMPARE(grid.GetRowCount(), 4);
    QCOMPARE(grid.GetColumnCount(), 1);
    QVERIFY(!grid.SetRowCount(-1));
    QVERIFY(!grid.SetFixedColumnCount(-1));
    grid.SetRowCount(2);
    QCOMPARE(grid.GetFixedRowCount(), 2);
    grid.SetRowCount(10);
    QVERIFY(grid.DeleteRow(1));
    QCOMPARE(grid.GetFixedRowCount(), 1);
    QVERIFY(grid.DeleteRow(5));
    QCOMPARE(grid.GetFixedRowCount(), 1);
    QVERIFY(!grid.DeleteRow(8));
    grid.DeleteNonFixedRows();
    QCOMPARE(grid.GetRowCount(), 1);
    grid.DeleteAllItems();
    QCOMPARE(
        grid.GetRowCount() + grid.GetColumnCount() + grid.GetFixedRowCount() + grid.GetFixedColumnCount(), 0);
}

void TestGridShape::headingsOfInsertedRowsAndColumns() {
    CGridCtrl grid;
    const unsigned centred = CellFormat::Centre | CellFormat::VCentre | CellFormat::SingleLine;
    QCOMPARE(grid.InsertColumn(QStringLiteral("序号"), centred), 0);
    QCOMPARE(grid.InsertColumn(QStringLiteral("光通量"), centred), 1);
    QCOMPARE(grid.GetItemText(0, 1), QStringLiteral("光通量"));
    QCOMPARE(grid.GetItemFormat(0, 1), centred);
    QCOMPARE(grid.InsertRow(QStringLiteral("追加")), 1);
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("追加"));
    QCOMPARE(grid.InsertRow(QStringLiteral("1"), 1), 1);
    QCOMPARE(grid.GetItemText(2, 0), QStringLiteral("追加"));
    QCOMPARE(grid.InsertRow(QString(), 4), -1);
    QCOMPARE(grid.InsertColumn(QString(), 0, -2), -1);

    QVERIFY(grid.SetColumnWidth(1, 77));
    QVERIFY(!grid.SetColumnWidth(2, 77));
    QCOMPARE(grid.InsertColumn(QStringLiteral("名称"), 0, 1), 1);
    QCOMPARE(grid.GetColumnWidth(2), 77);
}

void TestGridShape::outsideTheGrid() {
    CGridCtrl grid;
    grid.SetRowCount(3);  // rows without cells
    QCOMPARE(grid.GetItemText(1, 0), QString());
    QCOMPARE(grid.GetItemData(1, 0), 0);
    QVERIFY(!grid.SetItemText(1, 0, QStringLiteral("x")));
    QVERIFY(grid.Cell(1, 0) == nullptr);
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument, grid.Cell(3, 0));
    QVERIFY_THROWS_EXCEPTION(std::invalid_argument, grid.Cell(-1, 0));
    grid.SetColumnCount(2);
    QVERIFY(!grid.SetItemData(0, 2, 5));
    QVERIFY(!grid.SetItemFormat(-1, 0, 5));
    QVERIFY(!grid.SetItem({.row = 3, .mask = ItemMask::Text}));
    QVERIFY(!grid.SetCellType<CGridBtnCell>(0, 2));
    QVERIFY(!grid.MergeCells(0, 0, 3, 0));
    QVERIFY(!grid.MergeCells(0, 0, -1, 0));
    QVERIFY(!grid.IsValid(grid.GetSelectedCellRange()));
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{3, 2, -1, -1}));
    QVERIFY(!grid.IsValid({0, 1, 0, 0}));
    QVERIFY(grid.CellRect(3, 0).isEmpty());
    QCOMPARE(grid.CellAt({-5, 3}), CCellID());
}

void TestGridShape::itemFieldsFollowTheMask() {
    CGridCtrl grid(2, 2);
    GridItem item{.row = 1,
                  .col = 1,
                  .mask = 511,
                  .text = QStringLiteral("文"),
                  .image = 3,
                  .data = -7,
                  .state = CellState::ReadOnly,
                  .backColour = Qt::yellow,
                  .textColour = Qt::red,
                  .format = 37,
                  .font = QFont(QStringLiteral("Arial"), 30),
                  .margin = 9};
    QVERIFY(grid.SetItem(item));
    const CGridCellBase& cell = *grid.Cell(1, 1);
    QCOMPARE(cell.GetText(), item.text);
    QCOMPARE(cell.GetImage(), 3);
    QCOMPARE(grid.GetItemData(1, 1), -7);
    QCOMPARE(grid.GetItemState(1, 1), CellState::ReadOnly);
    QCOMPARE(cell.GetBackColour(), QColor(Qt::yellow));
    QCOMPARE(cell.GetTextColour(), QColor(Qt::red));
    QCOMPARE(grid.GetItemFormat(1, 1), 37U);
    QCOMPARE(cell.GetFont(), item.font);
    QCOMPARE(cell.GetMargin(), 9);

    grid.SetItem(
        {.row = 1, .col = 1, .mask = ItemMask::Format, .text = QStringLiteral("not meant"), .format = 4});
    QCOMPARE(cell.GetText(), item.text);
    QCOMPARE(cell.GetFormat(), 4U);
    QCOMPARE(cell.GetBackColour(), QColor(Qt::yellow));
    QVERIFY(!grid.Cell(0, 0)->GetBackColour().isValid());  // shared attributes must not leak to neighbours
}

void TestGridShape::replacedCellKeepsItsContents() {
    CGridCtrl grid(2, 3);
    grid.SetItem({.row = 1,
                  .col = 2,
                  .mask = ItemMask::Text | ItemMask::Data | ItemMask::BackColour,
                  .text = QStringLiteral("a"),
                  .data = 12,
                  .backColour = Qt::green});
    QVERIFY(grid.SetCellType<CGridBtnCellCombo>(1, 2));
    QVERIFY(dynamic_cast<CGridBtnCellCombo*>(grid.Cell(1, 2)) != nullptr);
    QCOMPARE(grid.GetItemText(1, 2), QStringLiteral("a"));
    QCOMPARE(grid.GetItemData(1, 2), 12);
    QCOMPARE(grid.Cell(1, 2)->GetBackColour(), QColor(Qt::green));
    grid.InsertColumn(QString(), 0, 0);
    grid.InsertRow(QString(), 0);
    QVERIFY(dynamic_cast<CGridBtnCellCombo*>(grid.Cell(2, 3)) != nullptr);
    QVERIFY(dynamic_cast<CGridBtnCellCombo*>(grid.Cell(1, 2)) == nullptr);
}

void TestGridShape::randomChangesAgreeWithAPlainTable() {
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
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        for (int column = 0; column < columns; ++column) {
            QCOMPARE(grid.GetItemText(row, column), table[size_t(row)][size_t(column)]);
        }
    }
}

void TestGridShape::deletingRowsMovesFocusAndSelection() {
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

void TestGridShape::fixedCellsAreNeverSelected() {
    CGridCtrl grid(5, 4);
    grid.SetFocusCell({0, 0});
    grid.SetSelectedRange({0, 0, 4, 3});
    grid.SetFixedRowCount(1);
    grid.SetFixedColumnCount(1);
    QCOMPARE(grid.GetFocusCell(), CCellID());
    QCOMPARE(grid.GetSelectedCellRange(), (CCellRange{1, 1, 4, 3}));
    grid.SetFocusCell({0, 2});
    QCOMPARE(grid.GetFocusCell(), CCellID());
    QVERIFY(!grid.IsCellEditable(0, 2));
    QVERIFY(!grid.BeginEdit(0, 2));
}

void TestGridShape::refillKeepsTheScrollPosition() {
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
    grid.SetRowCount(3);
    QCoreApplication::processEvents();
    QCOMPARE(grid.verticalScrollBar()->value(), 0);
    QCOMPARE(grid.verticalScrollBar()->maximum(), 0);
}

void TestGridShape::scrollBarsFollowTheContents() {
    CGridCtrl grid(1, 1, 1);
    grid.setFrameShape(QFrame::NoFrame);
    grid.resize(300, 200);
    grid.show();
    QCoreApplication::processEvents();
    QCOMPARE(grid.verticalScrollBar()->maximum(), 0);
    grid.SetRowCount(50);
    grid.SetColumnWidth(0, 400);
    QCoreApplication::processEvents();
    QCOMPARE(grid.verticalScrollBar()->maximum(), 50 * grid.GetRowHeight(0) - grid.viewport()->height());
    QCOMPARE(grid.horizontalScrollBar()->maximum(), 400 - grid.viewport()->width());
    // Filling the window exactly needs no bars, although each would be needed beside the other.
    grid.SetRowCount(2);
    grid.SetRowHeight(0, 100);
    grid.SetRowHeight(1, 100);
    grid.SetColumnWidth(0, 300);
    QCoreApplication::processEvents();
    QCOMPARE(grid.viewport()->size(), QSize(300, 200));
}

QTEST_MAIN(TestGridShape)
#include "test_grid_shape.moc"
