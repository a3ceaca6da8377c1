// Random statements on an Access file and on an SQLite file with the same rows: both must answer alike, and
// the Access file must stay sound. The first argument is the number of statements for each file, the second a
// folder in which states of both files are kept.

#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <random>

#include "data/store/access/check/file_check.h"
#include "tests/support/files.h"
#include "tests/support/raw_database.h"
#include "tests/support/rounds.h"
#include "tools/database_schema.h"

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QStringList kTables{u"光源类别"_s, u"光源"_s, u"灯具"_s, u"利用系数"_s, u"照度要求及功率密度"_s};
constexpr int kBatch = 200;
int statementCount = 0;
QString keptFolder;

QStringList ReadStatements() {
    const QByteArray text = Contents(QStringLiteral(STATEMENTS_FILE));
    const QStringList lines = QString::fromUtf8(text).replace(u"\\t"_s, u"\t"_s).split(u'\n');
    return lines.sliced(2).filter(u" "_s);
}

// The pages of all tables that no statement writes, those of the system among them.
QByteArray UnwrittenPages(const access::Database& database) {
    const access::Pages& pages = database.AllPages();
    QByteArray bytes;
    for (const access::CatalogEntry& entry : database.Catalog()) {
        if (entry.linked || kTables.indexOf(entry.name) > 0) {
            continue;
        }
        const access::TableDefinition table = ReadTableDefinition(pages, entry.definition);
        std::vector<std::vector<access::PageNumber>> parts{table.pages, MappedPages(pages, table.owned)};
        for (const access::IndexDescription& index : table.indexes) {
            parts.push_back(MappedPages(pages, index.map));
        }
        for (const std::vector<access::PageNumber>& part : parts) {
            for (const access::PageNumber page : part) {
                bytes += QByteArray(pages.Read(page)->data(), access::kPageSize);
            }
        }
    }
    return bytes;
}

QString Text(const FieldValue& value) {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        return QString::number(*whole);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return QString::number(*real, 'e', QLocale::FloatingPointShortest);
    }
    const auto* text = std::get_if<CString>(&value);
    return text == nullptr ? u"NULL"_s : u'\'' + *text + u'\'';
}

QString RowText(const Recordset& rows) {
    QStringList values;
    try {
        for (int column = 0;; ++column) {
            values += Text(rows.Value(column));
        }
    } catch (const ProviderError&) {
        return values.join(u',');  // past the last column
    }
}

// The rows that a statement gives, or the one word "failed".
QStringList Answer(Connection& connection, const QString& statement) {
    QStringList rows;
    try {
        for (const auto result = connection.Execute(statement); !result->AtEnd(); result->MoveNext()) {
            rows += RowText(*result);
        }
    } catch (const ProviderError&) {
        return {u"failed"_s};
    }
    return rows;
}

void MakeLoose(QStringList& rows) {
    for (QString& row : rows) {
        row = row.toLower();
    }
    rows.sort();
}

// The program's own columns, in the order of the SQLite file.
QString Columns(const RawDatabase& sqlite, const QString& table) {
    return sqlite.Rows(u"SELECT name FROM pragma_table_info('%1')"_s.arg(table)).join(u',').remove(u'\'');
}

// Makes an SQLite file with the rows of an Access file, which goes on counting where that one does.
void CopyToSqlite(const QString& accessFile, const QString& sqliteFile) {
    RawDatabase sqlite(sqliteFile);
    sqlite.Execute(u"BEGIN;"_s + QString::fromUtf8(kDatabaseSchema));
    const auto access = OpenStore(accessFile);
    for (const QString& table : kTables) {
        const QStringList rows = Answer(*access, u"select %1 from %2"_s.arg(Columns(sqlite, table), table));
        for (const QString& row : rows) {
            sqlite.Execute(u"INSERT INTO %1 VALUES (%2)"_s.arg(table, row));
        }
    }
    access->Close();
    access::Database database(access::NativeFiles(), accessFile);
    for (const QString& table : kTables) {
        sqlite.Execute(u"UPDATE sqlite_sequence SET seq=%1 WHERE name='%2'"_s
                           .arg(LastAutoNumber(database.AllPages(), database.Find(table).Definition()))
                           .arg(table));
    }
    sqlite.Execute(u"COMMIT"_s);
}

class Filler {
public:
    // Two files take no empty texts; one takes long texts as photos.
    explicit Filler(const QString& fixture)
        : m_random(static_cast<unsigned>(fixture.size())),
          m_shortest(fixture.startsWith(u"adox") || fixture.startsWith(u"with-nulls") ? 1 : 0),
          m_longPhotos(fixture.contains(u"memo")) {}

    QString Next() {
        QString statement = m_statements[Number(static_cast<int>(m_statements.size()))];
        for (qsizetype from = 0; (from = statement.indexOf(u'{', from)) >= 0;) {
            const qsizetype to = statement.indexOf(u'}', from);
            const QString value = Value(statement.mid(from + 1, to - from - 1));
            statement.replace(from, to - from + 1, value);
            from += value.size();
        }
        return statement;
    }

private:
    int Number(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    QString Value(const QString& kind) {
        if (kind == u"id") {
            return QString::number(Number(Number(3) == 0 ? 6000 : 90));
        }
        if (kind == u"int") {
            return QString::number(Number(20) == 0 ? 2'000'000'000 - Number(9) : Number(40) - 5);
        }
        if (kind == u"real") {
            return QString::asprintf("%G", Number(3) == 0 ? Number(2000) : (Number(200000) - 100) / 997.0);
        }
        if (kind == u"key") {
            static const QStringList kKeys{u""_s, u"1"_s, u"1,7"_s, u"12,3,4"_s, u"T5-a"_s, u"x y"_s};
            return kKeys[m_shortest + Number(static_cast<int>(kKeys.size()) - m_shortest)];
        }
        const bool isLong = kind == u"photo" && m_longPhotos && Number(3) == 0;
        return RandomText(isLong ? Number(9000) : m_shortest + Number(Number(4) == 0 ? 49 : 8));
    }

    // Few different ones among the short, so that conditions are met.
    QString RandomText(int length) {
        static const QString kCharacters = u"aAbT5 -/,照度一言é荧光灯０𠀀"_s;
        QString text;
        while (text.size() < length) {
            const int place = Number(length < 4 ? 4 : static_cast<int>(kCharacters.size()) - 2);
            text += place == kCharacters.size() - 2 ? kCharacters.last(2) : kCharacters.mid(place, 1);
        }
        return text;
    }

    const QStringList m_statements = ReadStatements();
    std::mt19937 m_random;
    int m_shortest;
    bool m_longPhotos;
};

}  // namespace

class TestAccessStatements : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void BothStoresAnswerAlike_data() {
        QTest::addColumn<QString>("fixture");
        for (const QString& file : QDir(QStringLiteral(ACCESS_FIXTURES)).entryList({u"*.mdb"_s})) {
            QTest::newRow(qPrintable(file)) << file;
        }
    }

    void BothStoresAnswerAlike() {
        QFETCH(QString, fixture);
        const QTemporaryDir folder;
        const QString accessFile = folder.filePath(u"access.mdb"_s);
        const QString sqliteFile = folder.filePath(u"sqlite.mdb"_s);
        QVERIFY(QFile::copy(QStringLiteral(ACCESS_FIXTURES) + u'/' + fixture, accessFile));
        QFile::setPermissions(accessFile, QFile::ReadOwner | QFile::WriteOwner);
        CopyToSqlite(accessFile, sqliteFile);
        m_unwritten = UnwrittenPages(access::Database(access::NativeFiles(), accessFile));

        const auto access = OpenStore(accessFile);
        const auto sqlite = OpenStore(sqliteFile);
        Filler filler(fixture);
        for (int done = 0; done < statementCount && !QTest::currentTestFailed(); done += kBatch) {
            access->BeginSubmit();
            sqlite->BeginSubmit();
            RunBatch(*access, *sqlite, filler);
            access->EndSubmit();
            sqlite->EndSubmit();
            CompareTables(*access, *sqlite, sqliteFile);
            const QString copy = u"%1/%2-%3"_s.arg(keptFolder.isEmpty() ? folder.path() : keptFolder,
                                                   QFileInfo(fixture).baseName(), QString::number(done));
            QVERIFY(QFile::copy(sqliteFile, copy + u".sqlite"_s));
            CheckCopy(accessFile, copy + u".mdb"_s);
        }
        access->Close();
        QCOMPARE(QDir(folder.path()).entryList({u"access*"_s}), QStringList{u"access.mdb"_s});
        qInfo("cases: %d", statementCount);
    }

private:
    void RunBatch(Connection& access, Connection& sqlite, Filler& filler) {
        for (int step = 0; step < kBatch; ++step) {
            const QString given = filler.Next();
            const bool isLoose = given.startsWith(u'~');
            const QString statement = given.mid(isLoose ? 1 : 0);
            QStringList expected = Answer(sqlite, statement);
            QStringList found = Answer(access, statement);
            if (isLoose) {
                MakeLoose(expected);
                MakeLoose(found);
            }
            if (statement.startsWith(u"insert") && found == expected) {
                const QString readBack = u"select max(ID) from %1"_s.arg(statement.section(u' ', 2, 2));
                expected = Answer(sqlite, readBack);
                found = Answer(access, readBack);
            }
            const QStringList report{statement, found.join(u'\n'), u"instead of"_s, expected.join(u'\n')};
            QVERIFY2(found == expected, qPrintable(report.join(u'\n')));
        }
    }

    void CompareTables(Connection& access, Connection& sqlite, const QString& sqliteFile) {
        const RawDatabase raw(sqliteFile);
        for (const QString& table : kTables) {
            const QString query = u"select %1 from %2"_s.arg(Columns(raw, table), table);
            QCOMPARE(Answer(access, query), Answer(sqlite, query));
        }
    }

    void CheckCopy(const QString& accessFile, const QString& copy) {
        QVERIFY(QFile::copy(accessFile, copy));
        access::Database database(access::NativeFiles(), copy);
        QCOMPARE(CheckFile(database), QStringList());
        QVERIFY(UnwrittenPages(database) == m_unwritten);
    }

    QByteArray m_unwritten;
};

int main(int argc, char* argv[]) {
    statementCount = Rounds(TakeArgument(argc, argv), 600, 3000);
    keptFolder = QString::fromLocal8Bit(TakeArgument(argc, argv));
    TestAccessStatements test;
    return QTest::qExec(&test, argc, argv);
}
#include "test_access_statements.moc"
