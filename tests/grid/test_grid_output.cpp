// What leaves a grid: texts over the clipboard, texts saved to a file and loaded again, and pages on paper.
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QPrinter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <vector>

#include "grid/grid_controller.h"
#include "grid/grid_painter.h"
#include "grid/output/grid_import.h"
#include "grid/output/grid_printing.h"
#include "grid/output/grid_text_file.h"
#include "grid/output/separated_text.h"
#include "shown_grid.h"
#include "tests/support/process_limits.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridOutput : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_shown = std::make_unique<ShownGrid>(6, 4, 1, 1);
        m_grid = m_shown->grid;
    }

    void TextsComeBackAsTheyWere() {
        const TextTable table{{u"a\tb"_s, QString(), u" c "_s},
                              {u"two\nlines"_s, u"\r"_s, u"5\" lamp"_s},
                              {u"\""_s, u"\"\"\""_s, u"\"quoted\""_s},
                              {u"\ufeffmark"_s, u"\u2028"_s, u"%s 照度 😀"_s},
                              {QString()},
                              {QString(), QString()},
                              {u"end"_s}};
        QCOMPARE(ReadTabText(WriteTabText(table)), table);
        QVERIFY(ReadTabText({}).empty());
        QCOMPARE(ReadTabText(u"a\r\nb\rc\n"_s), (TextTable{{u"a"_s}, {u"b"_s}, {u"c"_s}}));
        for (const CString& text : {u"\"plain\""_s, u"\"no end"_s, u"\"a\" b"_s, u"a \"b\""_s, u"\""_s}) {
            QCOMPARE(ReadTabText(text), TextTable{{text}});
        }
    }

    void CopiesWhatIsSelected() {
        QCOMPARE(Copied(), u"before"_s);
        m_grid->Controller().Core().FocusWithoutSelecting({2, 2});
        QCOMPARE(Copied(), u"2,2"_s);
        m_grid->MergeCells(3, 1, 1, 1);
        m_grid->SetItemText(3, 1, u"a\nb"_s);
        m_grid->SetSelectedRange({3, 1, 4, 3});
        QCOMPARE(Copied(), u"\"a\nb\"\t\t3,3\n\t\t4,3"_s);
    }

    void PastesTextsIntoWhatMayBeEdited() {
        QSignalSpy edited(m_grid, &CGridCtrl::EndLabelEdit);
        Paste(u"without focus"_s);
        m_grid->SetFocusCell({2, 2});
        Paste({});
        QVERIFY(edited.isEmpty());
        Paste(u"  \"2650\" lm "_s);
        QCOMPARE(m_grid->GetItemText(2, 2), u"  \"2650\" lm "_s);
        QCOMPARE(edited.takeFirst(), (QVariantList{2, 2}));

        m_grid->SetFocusCell({3, 3});
        QTest::keyClick(m_grid, Qt::Key_Up, Qt::ShiftModifier);
        QTest::keyClick(m_grid, Qt::Key_Left, Qt::ShiftModifier);
        m_grid->Controller().Core().FocusWithoutSelecting({3, 3});
        Paste(u"all\r\n"_s);  // one text fills what is selected
        QCOMPARE(Texts({2, 2, 3, 3}), u"all all all all"_s);
        Paste(u"first\t\nx\ny"_s);  // another begins at the top left of it
        QCOMPARE(Texts({2, 2, 3, 3}), u"first  x all"_s);
        edited.clear();

        m_grid->SetItemState(4, 3, CellState::ReadOnly);
        m_grid->MergeCells(5, 2, 0, 1);
        m_grid->SetFocusCell({4, 2});
        Paste(u"a\tb\tc\nd\te\nf\n"_s);
        QCOMPARE(Texts({4, 2, 5, 3}), u"a 4,3 d 5,3"_s);  // the last one is covered
        QCOMPARE(edited.count(), 2);
        QCOMPARE(edited.at(1), (QVariantList{5, 2}));

        m_shown->MakeCombo(2, 1, {u"one"_s, u"two"_s});
        m_grid->SetFocusCell({2, 1});
        Paste(u"three\tx"_s);
        QCOMPARE(Texts({2, 1, 2, 2}), u"one x"_s);
        Paste(u"two"_s);
        QCOMPARE(Texts({2, 1, 2, 1}), u"two"_s);
    }

    void TellsWhatItLeavesOut() {
        PasteLoss loss;
        m_grid->SetPasteQuestion([&](const PasteLoss& asked) {
            loss = asked;
            return true;
        });
        m_shown->MakeCombo(5, 2, {u"one"_s, u"two"_s});
        m_grid->SetItemState(5, 3, CellState::ReadOnly);
        m_grid->SetFocusCell({5, 1});
        Paste(u"a\ttwo\t5,3\t\n"_s);  // the read-only cell shows its text already
        QCOMPARE(Texts({5, 1, 5, 3}), u"a two 5,3"_s);
        QCOMPARE(loss.texts, 0);
        Paste(u"b\tthree\tx\ty\nc\tfour"_s);
        QCOMPARE(Texts({5, 1, 5, 3}), u"b two 5,3"_s);
        QVERIFY(loss.texts == 6 && loss.beyondColumns == 1 && loss.belowRows == 2 && loss.lastRow == 5);
        QCOMPARE(loss.refused.size(), std::size_t(3));
        QVERIFY(loss.refused[0].text == u"three" && loss.refused[0].reason == PasteLoss::Refused::NoChoice);
        QVERIFY(loss.refused[1].text == u"x" && loss.refused[1].reason == PasteLoss::Refused::ReadOnly);
        QCOMPARE(loss.refused[2].cell, (CCellID{6, 2}));
    }

    void FollowsRowsThatComeAndEndsWhenThePlaceIsLost() {
        bool above = true;
        const auto handler = connect(m_grid, &CGridCtrl::EndLabelEdit, m_grid, [&] {
            if (std::exchange(above, false)) {
                m_grid->InsertRow({}, 1);
            }
        });
        m_grid->SetFocusCell({4, 1});
        Paste(u"a\tb\nc\td"_s);
        QCOMPARE(Texts({5, 1, 6, 2}), u"a b c d"_s);
        QCOMPARE(m_grid->GetSelectedCellRange(), (CCellRange{5, 1, 6, 2}));
        disconnect(handler);
        int edits = 0;
        connect(m_grid, &CGridCtrl::EndLabelEdit, m_grid, [&] {
            ++edits;
            m_grid->DeleteNonFixedRows();
            m_grid->SetRowCount(6);
        });
        m_grid->SetFocusCell({2, 1});
        Paste(u"a\nb"_s);
        QCOMPARE(edits, 1);
    }

    void SavesWhatSpreadsheetsRead() {
        m_grid->SetItemText(0, 0, u";;;;;;"_s);
        m_grid->SetItemText(1, 1, u"a,b"_s);
        m_grid->SetItemText(1, 2, u"5\" =1\n灯"_s);
        m_grid->SetItemText(2, 1, u"=1+1"_s);
        m_grid->SetItemText(2, 2, u"-1.5"_s);
        m_grid->MergeCells(0, 1, 0, 1);
        m_grid->SetHasAppendRow(true);
        const CString path = Path(u"表.csv"_s);
        QVERIFY(SaveGridText(m_grid->Core(), path));
        QCOMPARE(CountFormulas(m_grid->Core()), 1);
        const TextTable table = LoadTextTable(path).value();
        QCOMPARE(table.size(), std::size_t(5));  // without the append row
        QVERIFY(table[0][2] == table[0][1] && table[1][1] == u"a,b"_s && table[2][1] == u"=1+1"_s);
        QCOMPARE(table[1][2], u"5\" =1\n灯"_s);

        m_grid->SetItemText(1, 1, CString(QChar(0xD800)));  // half a character, which UTF-8 cannot hold
        QVERIFY(!SaveGridText(m_grid->Core(), path));
        QVERIFY(LoadTextTable(path).value() == table);
        QVERIFY(!SaveGridText(CGridCtrl(1, 1).Core(), Path(u"no folder/file.csv"_s)));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly) && file.read(3) == "\xEF\xBB\xBF");
    }

    void AFullDiskTakesNoPartOfAFile() {
        m_grid->SetItemText(1, 1, CString(5000, u'a'));
        const FullDiskScope full;
        QVERIFY(!SaveGridText(m_grid->Core(), Path(u"表.csv"_s)));
    }

    void LoadsWhatSpreadsheetsWrite() {
        const TextTable expected{{u"\"灯"_s, u"1,5"_s}, {u"b"_s}};
        for (const char* bytes : {"\xEF\xBB\xBF\"\xE7\x81\xAF,\"1,5\"\r\nb\r\n", "\"\xE7\x81\xAF;1,5\nb",
                                  "\"\"\"\xB5\xC6\",\"1,5\"\r\nb"}) {
            Put(u"in.csv"_s, bytes);
            QVERIFY2(LoadTextTable(Path(u"in.csv"_s)) == expected, bytes);
        }
        Put(u"bytes.csv"_s, "a\xFF\xFE");
        Put(u"picture.csv"_s, QByteArray("GIF\0", 4));
        for (const CString& name : {u"none.csv"_s, u"bytes.csv"_s, u"picture.csv"_s, u"."_s}) {
            QVERIFY2(!LoadTextTable(Path(name)), qPrintable(name));
        }
    }

    // By headings and row heads, in whatever order they stand; numbers are compared as such.
    void ImportsWhereItBelongs() {
        for (int row = 1; row < 6; ++row) {
            m_grid->SetItemText(row, 0, QString::number(row));
        }
        m_grid->SetItemText(2, 2, u"0.50"_s);
        m_grid->SetItemState(1, 2, CellState::ReadOnly);
        const TextTable table{{u"0, 2"_s, u"other"_s, u"0,0"_s, u"0,1"_s},
                              {u"0.5"_s, u"lost"_s, u"2"_s, u"2,1"_s},
                              {u"refused"_s, QString(), u"1.0"_s, u"changed"_s},
                              {u"new"_s, QString(), u"7"_s, u"also new"_s}};
        GridImport import = ImportOf(m_grid->Core(), table);
        QCOMPARE(QList({import.columns, import.changedCells, import.newRows, import.lostTexts}),
                 QList({2, 1, 0, 4}));
        m_grid->SetHasAppendRow(true);
        import = ImportOf(m_grid->Core(), table);
        QCOMPARE(QList({import.changedCells, import.newRows, import.lostTexts}), QList({1, 1, 2}));
        QSignalSpy edited(m_grid, &CGridCtrl::EndLabelEdit);
        QSignalSpy ended(m_grid, &CGridCtrl::StepEnded);
        m_grid->EnterTexts(u"导入"_s, import.entries);
        QVERIFY(edited.count() == 3 && ended.count() == 1);
        QCOMPARE(Texts({1, 1, 2, 2}), u"changed 1,2 2,1 0.50"_s);
        QCOMPARE(Texts({5, 1, 5, 2}), u"also new new"_s);
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
        QVERIFY(!IsWiderThanPage(grid.Core(), grid.logicalDpiX(), printer));
        grid.SetColumnWidth(0, 2000);
        QVERIFY(IsWiderThanPage(grid.Core(), grid.logicalDpiX(), printer));
        QFile file(Path(u"all.pdf"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const qsizetype pages = file.readAll().count("/Type /Page\n");
        QVERIFY2(pages >= 5 && pages <= 12, qPrintable(QString::number(pages)));
        printer.setOutputFileName(Path(u"no folder/file.pdf"_s));
        QVERIFY(!PrintGrid(grid.Core(), GridLooks(), grid.logicalDpiY(), printer));
    }

private:
    QTemporaryDir m_folder;

    CString Path(const CString& name) const { return m_folder.filePath(name); }
    void Put(const CString& name, const QByteArray& bytes) {
        QFile file(Path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    std::unique_ptr<ShownGrid> m_shown;
    CGridCtrl* m_grid = nullptr;

    static void PutOnClipboard(const CString& text) { QApplication::clipboard()->setText(text); }
    CString Copied() {
        PutOnClipboard(u"before"_s);
        QTest::keySequence(m_grid, QKeySequence(QKeySequence::Copy));
        return QApplication::clipboard()->text();
    }
    CString Texts(const CCellRange& range) const { return m_shown->Texts(range); }
    void Paste(const CString& text) {
        PutOnClipboard(text);
        QTest::keySequence(m_grid, QKeySequence(QKeySequence::Paste));
    }
};

QTEST_MAIN(TestGridOutput)
#include "test_grid_output.moc"
