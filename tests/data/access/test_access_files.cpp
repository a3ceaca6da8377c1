// Real Access files: every row of every table as an independent reader prints it, and every row and text put
// together again as it stands in the file.

#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "data/store/access/database.h"
#include "data/store/access/rows/long_values.h"
#include "data/store/access/rows/text.h"
#include "tests/support/files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane::access;

namespace {

const QString kFolder = QStringLiteral(ACCESS_FIXTURES);

// A field as the reader prints it.
QString Field(const Value& value) {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        return QString::number(*whole);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return QString::number(*real, 'g', 16);
    }
    const auto* text = std::get_if<QString>(&value);
    return text == nullptr || text->isEmpty() ? QString()
                                              : u'"' + QString(*text).replace(u'"', u"\"\""_s) + u'"';
}

QStringList Lines(Table& table) {
    std::vector<Column> columns = table.Columns();
    std::sort(columns.begin(), columns.end(),
              [](const Column& left, const Column& right) { return left.number < right.number; });
    QStringList lines;
    for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
        QStringList fields;
        for (const Column& column : columns) {
            fields += Field(table.Read(scan.Row(), column));
        }
        lines += fields.join(u',');
    }
    return lines;
}

QString ReadText(const QString& path) {
    return QString::fromUtf8(quorvane::Contents(path));
}

// Whether a row comes out as it stands in the file. What stands in the place of a NULL means nothing, and
// zeros may follow the last value.
bool ComesOutSame(const TableDefinition& table, const RowView& row, QByteArrayView bytes) {
    const auto isNull = [&](const Column& column) { return column.fixed && row.IsNull(column); };
    const QByteArray made = EncodeRow(table, row.All());
    const qsizetype rest =
        1 + 2 + 2 * (table.variableColumns + 1);  // behind the values, with up to 8 columns
    return std::any_of(table.columns.begin(), table.columns.end(), isNull) || made == bytes ||
           (table.maxColumns <= 8 && bytes.startsWith(made.chopped(rest)) && bytes.endsWith(made.last(rest)));
}

// Whether a text comes out as it is stored. Where both forms are of one length, either may be.
bool ComesOutSame(const Pages& pages, const Column& column, QByteArrayView bytes) {
    const QByteArray stored = column.IsLong() ? ReadLongValue(pages, bytes) : bytes.toByteArray();
    const QString text = DecodeText(stored);
    const StoredValue made = ToStored(text, column);
    return made == stored || (made->size() == stored.size() && stored.size() == 2 * text.size());
}

int CountOtherBytes(const Pages& pages, Table& table) {
    int others = 0;
    for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
        const RowView row(table.Definition(), scan.Row().bytes);
        others += !ComesOutSame(table.Definition(), row, scan.Row().bytes);
        for (const Column& column : table.Columns()) {
            others +=
                column.IsText() && !row.IsNull(column) && !ComesOutSame(pages, column, row.Bytes(column));
        }
    }
    return others;
}

}  // namespace

class TestAccessFiles : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ReadsEveryRow_data() {
        QTest::addColumn<QString>("file");
        for (const QString& file : QDir(kFolder).entryList({u"*.mdb"_s})) {
            QTest::newRow(qPrintable(file)) << file;
        }
    }

    void ReadsEveryRow() {
        QFETCH(QString, file);
        const QTemporaryDir folder;
        const QString copy = folder.filePath(file);
        quorvane::WriteFile(copy, quorvane::Contents(kFolder + u'/' + file));
        Database database(NativeFiles(), copy);
        QCOMPARE(database.ReadOnlyReason(), QString());
        const QString stem = file.chopped(4);
        const QStringList sums = ReadText(kFolder + "/expected/"_L1 + stem + ".txt"_L1).split(u'\n');
        for (const char16_t* name : {u"光源类别", u"光源", u"灯具", u"利用系数", u"照度要求及功率密度"}) {
            Table& table = database.Find(QString::fromUtf16(name));
            QStringList lines = Lines(table);
            QCOMPARE(RowCount(database.AllPages(), table.Definition()), lines.size());
            QCOMPARE(CountOtherBytes(database.AllPages(), table), 0);
            const QString expected =
                ReadText(kFolder + "/expected/"_L1 + stem + u'/' + table.Name() + ".csv"_L1);
            lines = lines.join(u'\n').split(u'\n');  // a text may hold some
            lines.sort();                            // the other reader meets moved rows elsewhere
            if (!expected.isEmpty()) {
                QStringList others = expected.chopped(1).split(u'\n').mid(1);
                others.sort();
                QCOMPARE(lines, others);
                continue;
            }
            QCryptographicHash hash(QCryptographicHash::Sha256);
            for (const QString& line : lines) {
                hash.addData(line.toUtf8() + '\n');
            }
            const QString sum = u"%1 %2 %3"_s.arg(table.Name())
                                    .arg(lines.size())
                                    .arg(QString::fromLatin1(hash.result().toHex()));
            QVERIFY2(sums.contains(sum), qPrintable(sum));
        }
    }
};

QTEST_APPLESS_MAIN(TestAccessFiles)
#include "test_access_files.moc"
