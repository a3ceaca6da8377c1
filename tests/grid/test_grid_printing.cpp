// How a grid is laid out on paper.
#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include "grid/grid_ctrl.h"
#include "grid/grid_printing.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
class TestGridPrinting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PagesHoldAllCellsOnce() {
        CGridCtrl grid(41, 6, 1, 1);
        for (int row = 0; row < 41; ++row) {
            grid.SetRowHeight(row, 20);
        }
        grid.MergeCells(9, 1, 3, 0);    // would be cut after row 10
        grid.MergeCells(20, 1, 15, 0);  // longer than a page
        const GridPages pages(grid, {6 * grid.GetColumnWidth(0), 11 * 20});
        const std::pair<int, int> rows[]{{1, 8}, {9, 18}, {19, 19}, {20, 29}, {30, 39}, {40, 40}};
        QCOMPARE(pages.Count(), 6);
        for (int page = 0; page < 6; ++page) {
            QVERIFY(std::pair(pages.Rows(page).first, pages.Rows(page).last) == rows[page]);
            QVERIFY(pages.Columns(page).first == 1 && pages.Columns(page).last == 5);
        }
        QCOMPARE(GridPages(grid, {0, 0}).Count(), 200);  // no room at all still comes to an end
    }

    void PrintsToAFile() {
        const QTemporaryDir folder;
        CGridCtrl grid(301, 7, 1, 0);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(folder.filePath(u"all.pdf"_s));
        QVERIFY(PrintGrid(grid, printer));
        QFile file(folder.filePath(u"all.pdf"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qsizetype pages = file.readAll().count("/Type /Page\n");
        QVERIFY2(pages >= 5 && pages <= 12, qPrintable(QString::number(pages)));
        printer.setOutputFileName(folder.filePath(u"no folder/file.pdf"_s));
        QVERIFY(!PrintGrid(grid, printer));
    }
};

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridPrinting)
#include "test_grid_printing.moc"
