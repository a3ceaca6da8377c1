// What leaves the grid: its texts saved to a file and loaded again, and its pages on paper.
#include <QFile>
#include <QPrinter>
#include <QTemporaryDir>
#include <QTest>

#include "grid/grid_controller.h"
#include "grid/grid_painter.h"
#include "grid/output/grid_printing.h"
#include "grid/output/grid_text_file.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

class TestGridFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RoundTrip() {
        CGridCtrl grid(4, 3, 1, 0);
        grid.SetItemText(0, 1, u"tab\tand\nline"_s);
        grid.SetItemText(1, 2, CString(1'000'000, u'灯'));
        grid.SetItemText(0, 0, u"\ufeffmark"_s);
        QVERIFY(SaveGridText(grid.Core(), Path(u"表格.txt"_s), m_failure));

        CGridCtrl read;
        QVERIFY(LoadGridText(read.Controller().Core(), Path(u"表格.txt"_s), m_failure));
        QCOMPARE(read.GetRowCount(), 4);  // the last two are empty
        QCOMPARE(read.GetColumnCount(), 3);
        for (int i = 0; i < 12; ++i) {
            QCOMPARE(read.GetItemText(i / 3, i % 3), grid.GetItemText(i / 3, i % 3));
        }

        Put(u"foreign.txt"_s, "\xEF\xBB\xBFone\ttwo\r\nthree\r\n");
        QVERIFY(LoadGridText(grid.Controller().Core(), Path(u"foreign.txt"_s), m_failure));
        QVERIFY(grid.GetRowCount() == 2 && grid.GetFixedRowCount() == 1 && grid.GetColumnCount() == 2);
        QCOMPARE(grid.GetItemText(0, 0), u"one"_s);
        QCOMPARE(grid.GetItemText(1, 0), u"three"_s);
    }

    void FailedSaveLeavesTheFile() {
        CGridCtrl grid(1, 1);
        grid.SetItemText(0, 0, CString(QChar(0xD800)));  // half a character, which UTF-8 cannot hold
        Put(u"kept.txt"_s, "kept");
        QVERIFY(!SaveGridText(grid.Core(), Path(u"kept.txt"_s), m_failure));
        QCOMPARE(m_failure, u"Unable to save grid list"_s);
        QVERIFY(LoadGridText(grid.Controller().Core(), Path(u"kept.txt"_s), m_failure));
        QCOMPARE(grid.GetItemText(0, 0), u"kept"_s);
        QVERIFY(!SaveGridText(grid.Core(), Path(u"no folder/file.txt"_s), m_failure));
    }

    void FailedLoadLeavesTheGrid() {
        CGridCtrl grid(1, 1);
        grid.SetItemText(0, 0, u"kept"_s);
        Put(u"bytes.txt"_s, "a\xFF\xFE");
        Put(u"cut.txt"_s, "\xE7\x81");
        Put(u"huge.txt"_s, QByteArray(10'000, '\t') + QByteArray(10'000, '\n'));
        for (const CString& name : {u"none.txt"_s, u"bytes.txt"_s, u"cut.txt"_s, u"huge.txt"_s, u"."_s}) {
            m_failure.clear();
            QVERIFY2(!LoadGridText(grid.Controller().Core(), Path(name), m_failure), qPrintable(name));
            QCOMPARE(m_failure, u"Unable to load grid data"_s);
            QCOMPARE(grid.GetRowCount(), 1);
            QCOMPARE(grid.GetItemText(0, 0), u"kept"_s);
        }
    }

    void PagesHoldAllCellsOnce() {
        CGridCtrl grid(41, 6, 1, 1);
        for (int row = 0; row < 41; ++row) {
            grid.SetRowHeight(row, 20);
        }
        grid.MergeCells(9, 1, 3, 0);    // would be cut after row 10
        grid.MergeCells(20, 1, 15, 0);  // longer than a page
        const GridPages pages(grid.Core(), {6 * grid.GetColumnWidth(0), 11 * 20});
        const std::pair<int, int> rows[]{{1, 8}, {9, 18}, {19, 19}, {20, 29}, {30, 39}, {40, 40}};
        QCOMPARE(pages.Count(), 6);
        for (int page = 0; page < 6; ++page) {
            QVERIFY(std::pair(pages.Rows(page).first, pages.Rows(page).last) == rows[page]);
            QVERIFY(pages.Columns(page).first == 1 && pages.Columns(page).last == 5);
        }
        QCOMPARE(GridPages(grid.Core(), {0, 0}).Count(), 200);  // no room at all still comes to an end
    }

    void PrintsToAFile() {
        CGridCtrl grid(301, 7, 1, 0);
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(Path(u"all.pdf"_s));
        QVERIFY(PrintGrid(grid.Core(), GridLooks(), grid.logicalDpiY(), printer));
        QFile file(Path(u"all.pdf"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qsizetype pages = file.readAll().count("/Type /Page\n");
        QVERIFY2(pages >= 5 && pages <= 12, qPrintable(QString::number(pages)));
        printer.setOutputFileName(Path(u"no folder/file.pdf"_s));
        QVERIFY(!PrintGrid(grid.Core(), GridLooks(), grid.logicalDpiY(), printer));
    }

private:
    QTemporaryDir m_folder;
    CString m_failure;

    CString Path(const CString& name) const { return m_folder.filePath(name); }
    void Put(const CString& name, const QByteArray& bytes) {
        QFile file(Path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
};

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridFiles)
#include "test_grid_files.moc"
