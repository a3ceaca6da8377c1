// How a grid is laid out on paper and what is drawn there.
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include "grid/grid_ctrl.h"
#include "grid/grid_printing.h"

namespace quorvane {
namespace {

constexpr int RowHeight = 20;
constexpr int ColumnWidth = 100;

void SetSizes(CGridCtrl& grid) {
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        grid.SetRowHeight(row, RowHeight);
    }
    for (int column = 0; column < grid.GetColumnCount(); ++column) {
        grid.SetColumnWidth(column, ColumnWidth);
    }
}

void SetBackColour(CGridCtrl& grid, int row, int column, const QColor& colour) {
    GridItem item{.row = row, .col = column, .mask = ItemMask::BackColour};
    item.backColour = colour;
    grid.SetItem(item);
}

QImage Page(const GridPrinting& printing, int page, const QSize& paper) {
    QImage image(paper, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    printing.DrawPage(painter, page);
    return image;
}

bool HasInk(const QImage& image, const QRect& area) {
    QImage blank(area.size(), image.format());
    blank.fill(Qt::white);
    return image.copy(area) != blank;
}

qsizetype PagesOf(const CString& path) {
    QFile file(path);
    const QByteArray pdf = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return pdf.count("/Type /Page\n");
}

}  // namespace

class TestGridPrinting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PagesHoldAllRowsOnce();
    void MergedCellsStayWhole();
    void WideGridsShrinkAndThenGoOn();
    void HeadingsAndNumbersOnEachPage();
    void PrintsToAFile();
};

void TestGridPrinting::PagesHoldAllRowsOnce() {
    CGridCtrl grid(101, 3, 1, 1);
    SetSizes(grid);
    const GridPages pages(grid, {400, 11 * RowHeight + 5});
    QCOMPARE(pages.Count(), 10);
    int next = 1;
    for (int page = 0; page < pages.Count(); ++page) {
        QCOMPARE(pages.Rows(page).first, next);
        next = pages.Rows(page).last + 1;
        QCOMPARE(pages.Columns(page).first, 1);
        QCOMPARE(pages.Columns(page).last, 2);
    }
    QCOMPARE(next, 101);
    // A row that is higher than the paper has a page of its own, and no room at all still comes to an end.
    grid.SetRowHeight(50, 1000);
    QCOMPARE(GridPages(grid, {400, 11 * RowHeight}).Count(), 11);
    QCOMPARE(GridPages(grid, {0, 0}).Count(), 200);
}

void TestGridPrinting::MergedCellsStayWhole() {
    CGridCtrl grid(41, 3, 1, 0);
    SetSizes(grid);
    grid.MergeCells(9, 1, 3, 0);    // would be cut after row 10
    grid.MergeCells(20, 0, 15, 0);  // longer than a page
    const GridPages pages(grid, {400, 11 * RowHeight});
    QCOMPARE(pages.Rows(0).last, 8);
    QCOMPARE(pages.Rows(1).first, 9);
    QCOMPARE(pages.Rows(1).last, 18);
    QCOMPARE(pages.Rows(2).last, 19);
    QCOMPARE(pages.Rows(3).first, 20);
    QCOMPARE(pages.Rows(3).last, 29);
}

void TestGridPrinting::WideGridsShrinkAndThenGoOn() {
    CGridCtrl grid(2, 6, 1, 1);
    SetSizes(grid);
    QCOMPARE(GridPrinting(grid, {400, 600}).PageCount(), 1);
    const GridPrinting printing(grid, {250, 600});  // 416 pixels at the smallest size
    QCOMPARE(printing.PageCount(), 2);
    QCOMPARE(printing.Pages().Columns(0).last, 3);
    QCOMPARE(printing.Pages().Columns(1).first, 4);
    QCOMPARE(printing.Pages().Columns(1).last, 5);
}

void TestGridPrinting::HeadingsAndNumbersOnEachPage() {
    CGridCtrl grid(101, 2, 1, 0);
    SetSizes(grid);
    SetBackColour(grid, 0, 0, Qt::red);
    SetBackColour(grid, 1, 1, Qt::green);
    SetBackColour(grid, 11, 1, Qt::blue);
    grid.MergeCells(11, 0, 0, 1);
    SetBackColour(grid, 11, 0, Qt::cyan);
    grid.SetItemText(12, 0, QStringLiteral("████████"));
    const QSize paper(300, 11 * RowHeight + 32);
    const GridPrinting printing(grid, paper);
    QCOMPARE(printing.PageCount(), 10);

    const QImage first = Page(printing, 0, paper);
    QCOMPARE(first.pixelColor(10, 10), Qt::red);
    QCOMPARE(first.pixelColor(ColumnWidth + 10, RowHeight + 10), Qt::green);
    const QImage second = Page(printing, 1, paper);
    QCOMPARE(second.pixelColor(10, 10), Qt::red);
    QCOMPARE(second.pixelColor(ColumnWidth + 10, RowHeight + 10), Qt::cyan);
    QVERIFY(HasInk(second, {5, 2 * RowHeight + 3, ColumnWidth / 2, RowHeight - 6}));
    const QRect footer(0, paper.height() - 20, paper.width(), 20);
    QVERIFY(HasInk(first, footer) && HasInk(second, footer));
    QVERIFY(first.copy(footer) != second.copy(footer));
}

void TestGridPrinting::PrintsToAFile() {
    const QTemporaryDir folder;
    CGridCtrl grid(301, 7, 1, 0);
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        grid.SetItemText(row, 1, QStringLiteral("光源 %1").arg(row));
    }
    const auto print = [&](const CString& name, int from, int to) {
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(folder.filePath(name));
        if (from > 0) {
            printer.setPrintRange(QPrinter::PageRange);
            printer.setFromTo(from, to);
        }
        return PrintGrid(grid, printer);
    };
    QVERIFY(print(QStringLiteral("all.pdf"), 0, 0));
    const qsizetype pages = PagesOf(folder.filePath(QStringLiteral("all.pdf")));
    QVERIFY2(pages >= 5 && pages <= 12, qPrintable(QString::number(pages)));
    QVERIFY(print(QStringLiteral("some.pdf"), 2, 3));
    QCOMPARE(PagesOf(folder.filePath(QStringLiteral("some.pdf"))), 2);
    QVERIFY(!print(QStringLiteral("no folder/file.pdf"), 0, 0));
    grid.DeleteAllItems();
    QVERIFY(!print(QStringLiteral("nothing.pdf"), 0, 0));
}

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridPrinting)
#include "test_grid_printing.moc"
