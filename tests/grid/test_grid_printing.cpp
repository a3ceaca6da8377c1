// How a grid is laid out on paper.
#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include "grid/grid_ctrl.h"
#include "grid/grid_printing.h"

using namespace Qt::Literals::StringLiterals;

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

qsizetype PagesOf(const CString& path) {
    QFile file(path);
    const QByteArray pdf = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return pdf.count("/Type /Page\n");
}

}  // namespace

class TestGridPrinting : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void PagesHoldAllCellsOnce() {
        CGridCtrl grid(41, 6, 1, 1);
        SetSizes(grid);
        grid.MergeCells(9, 1, 3, 0);    // would be cut after row 10
        grid.MergeCells(20, 1, 15, 0);  // longer than a page
        const GridPages pages(grid, {600, 11 * RowHeight});
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
        for (int row = 0; row < grid.GetRowCount(); ++row) {
            grid.SetItemText(row, 1, u"光源 %1"_s.arg(row));
        }
        const auto print = [&](const CString& name) {
            QPrinter printer(QPrinter::HighResolution);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(folder.filePath(name));
            return PrintGrid(grid, printer);
        };
        QVERIFY(print(u"all.pdf"_s));
        const qsizetype pages = PagesOf(folder.filePath(u"all.pdf"_s));
        QVERIFY2(pages >= 5 && pages <= 12, qPrintable(QString::number(pages)));
        QVERIFY(!print(u"no folder/file.pdf"_s));
        grid.DeleteAllItems();
        QVERIFY(!print(u"nothing.pdf"_s));
    }
};

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridPrinting)
#include "test_grid_printing.moc"
