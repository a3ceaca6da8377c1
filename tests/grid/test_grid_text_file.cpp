// Saving the texts of a grid to a file and loading them again.
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "grid/grid_ctrl.h"
#include "grid/grid_text_file.h"

namespace quorvane {

class TestGridTextFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RoundTrip();
    void LoadTakesTheShapeOfTheFile();
    void FailedSaveLeavesTheFile();
    void FailedLoadLeavesTheGrid();

private:
    QTemporaryDir m_folder;
    CString m_failure;

    CString Path(const CString& name) const { return m_folder.filePath(name); }
    void Put(const CString& name, const QByteArray& bytes) {
        QFile file(Path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    QByteArray Content(const CString& name) {
        QFile file(Path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("not there");
    }
};

void TestGridTextFile::RoundTrip() {
    CGridCtrl grid(4, 3, 1, 0);
    const CString odd[] = {QStringLiteral("名    称"), QStringLiteral("tab\tand\nline"),
                           QStringLiteral("\"q\""),    QStringLiteral("100%s"),
                           CString(1'000'000, u'灯'),  QStringLiteral("😀\u0001")};
    for (int i = 0; i < 6; ++i) {
        grid.SetItemText(i / 3, i % 3, odd[i]);
    }
    grid.SetItemText(0, 0, QStringLiteral("\ufeffmark"));
    QVERIFY(SaveGridText(grid, Path(QStringLiteral("表格.txt")), m_failure));

    CGridCtrl read;
    QVERIFY(LoadGridText(read, Path(QStringLiteral("表格.txt")), m_failure));
    QCOMPARE(read.GetRowCount(), 4);  // the last two are empty
    QCOMPARE(read.GetColumnCount(), 3);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 3; ++column) {
            QCOMPARE(read.GetItemText(row, column), grid.GetItemText(row, column));
        }
    }
}

void TestGridTextFile::LoadTakesTheShapeOfTheFile() {
    Put(QStringLiteral("foreign.txt"), "\xEF\xBB\xBFone\ttwo\r\nthree\r\n");
    CGridCtrl grid(6, 1, 1, 0);
    grid.SetItemState(1, 0, CellState::ReadOnly);
    QVERIFY(LoadGridText(grid, Path(QStringLiteral("foreign.txt")), m_failure));
    QCOMPARE(grid.GetRowCount(), 2);
    QCOMPARE(grid.GetFixedRowCount(), 1);
    QCOMPARE(grid.GetColumnCount(), 2);
    QCOMPARE(grid.GetItemText(0, 0), QStringLiteral("one"));
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("three"));
    QVERIFY(grid.GetItemText(1, 1).isEmpty());
    QCOMPARE(grid.GetItemState(1, 0), CellState::ReadOnly);
}

void TestGridTextFile::FailedSaveLeavesTheFile() {
    CGridCtrl grid(1, 1);
    grid.SetItemText(0, 0, CString(QChar(0xD800)));  // half a character, which UTF-8 cannot hold
    Put(QStringLiteral("kept.txt"), "kept");
    QVERIFY(!SaveGridText(grid, Path(QStringLiteral("kept.txt")), m_failure));
    QCOMPARE(m_failure, QStringLiteral("Unable to save grid list"));
    QCOMPARE(Content(QStringLiteral("kept.txt")), "kept");

    m_failure.clear();
    QVERIFY(!SaveGridText(grid, Path(QStringLiteral("no folder/file.txt")), m_failure));
    QVERIFY(!SaveGridText(grid, m_folder.path(), m_failure));
    QCOMPARE(m_failure, QStringLiteral("Unable to save grid list"));
}

void TestGridTextFile::FailedLoadLeavesTheGrid() {
    CGridCtrl grid(1, 1);
    grid.SetItemText(0, 0, QStringLiteral("kept"));
    Put(QStringLiteral("bytes.txt"), "a\xFF\xFE");
    Put(QStringLiteral("cut.txt"), "\xE7\x81");
    Put(QStringLiteral("huge.txt"), QByteArray(10'000, '\t') + QByteArray(10'000, '\n'));
    for (const CString& name : {QStringLiteral("none.txt"), QStringLiteral("bytes.txt"),
                                QStringLiteral("cut.txt"), QStringLiteral("huge.txt"), QStringLiteral(".")}) {
        m_failure.clear();
        QVERIFY2(!LoadGridText(grid, Path(name), m_failure), qPrintable(name));
        QCOMPARE(m_failure, QStringLiteral("Unable to load grid data"));
        QCOMPARE(grid.GetRowCount(), 1);
        QCOMPARE(grid.GetItemText(0, 0), QStringLiteral("kept"));
    }
}

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridTextFile)
#include "test_grid_text_file.moc"
