// The sample database, checking what a database holds, and copying one kind of file into the other.

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "tests/support/failing_connection.h"
#include "tests/support/files.h"
#include "tests/support/raw_database.h"
#include "tools/database_copy.h"
#include "tools/database_schema.h"
#include "tools/database_sense.h"
#include "tools/sample_database.h"
#include "tools/sample_error.h"
#include "tools/self_check.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

// The statements of a file, with the comments before them.
QStringList Statements(const QString& file) {
    QStringList statements = QString::fromUtf8(Contents(file)).split(u';');
    statements.removeLast();
    return statements;
}

// What the operation complains of, or an empty text.
template <typename Operation>
QString Complaint(const Operation& operation) {
    try {
        operation();
    } catch (const SampleError& error) {
        return error.Message();
    }
    return {};
}

}  // namespace

class TestDatabaseTools : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_access = m_folder.filePath(u"access/灯具数据库.mdb"_s);
        m_sqlite = m_folder.filePath(u"sqlite/灯具数据库.mdb"_s);
        WriteSampleDatabase(ReadSampleData({}), m_access, DatabaseKind::Access);
        WriteSampleDatabase(ReadSampleData({}), m_sqlite);
        QCOMPARE(QFileInfo(m_sqlite).dir().entryList(QDir::Files).size(), 1);
    }

    void TheSampleBreaksNoRule() {
        const QStringList rules = Statements(QStringLiteral(SAMPLE_RULES));
        QVERIFY(rules.size() > 5);
        for (const QString& rule : rules) {
            const QStringList rows = RawDatabase(m_sqlite).Rows(rule);
            QVERIFY2(rows.isEmpty(), qPrintable(rule + rows.join(u' ')));
        }
    }

    void SelfCheckFindsWhatADriverLoses() {
        const auto failure = [&](const ConnectionFactory& factory) {
            return CheckOperations(m_access, factory).lines.filter(u"失败"_s).value(0);
        };
        QCOMPARE(failure(CreateStoreConnection), QString());
        StatementLog log;
        log.onStatement = [](QString& statement) { statement.replace(u" '"_s, u"'"_s); };
        QCOMPARE(failure(FailingConnection::Factory(log)),
                 u"失败  LoadAllLightSources 读回：读回的内容与写入的不同"_s);
    }

    void NonsenseIsFound() {
        QCOMPARE(CheckStoreFile(m_access), QStringList());
        const auto database = OpenDatabase(m_access);
        const auto findings = [&] { return CheckSense(*database, QFileInfo(m_access).path()); };
        QCOMPARE(findings(), QStringList());
        qsizetype found = 0;
        for (const QString& statement : Statements(QStringLiteral(NONSENSE))) {
            const QString finding = statement.section(u"-- "_s, -1).section(u'\n', 0, 0);
            database->Execute(statement);
            QVERIFY2(findings().size() == ++found && findings().filter(finding).size() == 1,
                     qPrintable(findings().join(u'\n')));
        }
        QVERIFY(found > 5);
    }

    // With what the other test has left there.
    void CopiesAreTheSame() {
        const QString copy = m_folder.filePath(u"copy.mdb"_s);
        RawDatabase(copy).Execute(QString::fromUtf8(kDatabaseSchema));
        const auto from = OpenDatabase(m_access);
        from->Execute(u"update 照度要求及功率密度 set UGR=null, Location=null where ID=7"_s);
        from->Close();
        QCOMPARE(QProcess::execute(QStringLiteral(CONVERT_PROGRAM), {m_access, copy}), 0);
        QCOMPARE(QProcess::execute(QStringLiteral(CONVERT_PROGRAM), {m_access, copy}),
                 1);  // it holds rows now
        // An SQLite file as it was made, with what has been changed since.
        RawDatabase same(m_sqlite);
        same.Execute(u"attach '%1' as copy"_s.arg(copy));
        QCOMPARE(same.Rows(u"select ID, UGR, Location from (select * from copy.照度要求及功率密度 except "
                           "select * from main.照度要求及功率密度)"_s),
                 QStringList{u"7|NULL|NULL"_s});
        QCOMPARE(same.Rows(u"select count(*) from copy.利用系数 natural join main.利用系数"_s),
                 QStringList{u"6538"_s});
    }

    void OverwritesNothing() {
        const SampleData data = ReadSampleData({});
        const QString folder = m_folder.filePath(u"b/"_s);
        const QString file = folder + u"x.mdb"_s;
        const QString photo = folder + u"LuminairePhotoLib/1.jpg"_s;
        WriteSampleDatabase(data, file);
        const QByteArray before = Contents(file);
        QProcess program;
        program.start(QStringLiteral(SAMPLE_PROGRAM), {file});
        QVERIFY(program.waitForFinished() && program.exitCode() == 1);
        const QByteArray said = program.readAllStandardError();
        QVERIFY2(said.contains("x.mdb: exists already") && said.count('\n') == 1, said.constData());
        QCOMPARE(Contents(file), before);

        const auto make = [&] { WriteSampleDatabase(data, file); };
        QVERIFY(QFile::remove(file));
        WriteFile(file + u"-journal"_s, "left behind");
        QVERIFY(Complaint(make).contains(u"x.mdb-journal: exists already"_s));
        QVERIFY(QFile::remove(file + u"-journal"_s));

        WriteFile(photo, "a photo of somebody else");
        QVERIFY(Complaint(make).contains(u"1.jpg: another photo"_s));
        QCOMPARE(Contents(photo), "a photo of somebody else"_ba);
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList());
    }

    void ABadRowIsNamedByFileAndLine() {
        const QTemporaryDir data;
        for (const QFileInfo& source : QDir(u":/quorvane/sample"_s).entryInfoList()) {
            WriteFile(data.filePath(source.fileName()), Contents(source.filePath()));
        }
        const QStringList cases =
            QString::fromUtf8(Contents(QStringLiteral(BAD_ROWS))).split(u'\n').filter(u" | "_s);
        QVERIFY(cases.size() > 10);
        for (const QString& line : cases) {
            const QStringList parts = line.split(u" | "_s);  // a file, a row, and what is said
            const QString path = data.filePath(parts[0]);
            const QByteArray good = Contents(path);
            WriteFile(path, good + "\r\n" + parts[1].toUtf8().replace('?', '\xff') + "\r\n");
            const QString said = Complaint([&] { ReadSampleData(data.path()); });
            const QString place = u"/%1:%2: "_s.arg(parts[0]).arg(good.count('\n') + 2);
            QVERIFY2(said.contains(place) && said.contains(parts[2]), qPrintable(said));
            WriteFile(path, good);
        }
    }

    void ALargeOneHasTheRowsAskedFor() {
        SampleData data = ReadSampleData({});
        QVERIFY(!Complaint([&] { EnlargeSampleData(data, 60); }).isEmpty());
        EnlargeSampleData(data, 30'000);
        const QString file = m_folder.filePath(u"large.mdb"_s);
        WriteSampleDatabase(data, file);
        QCOMPARE(RawDatabase(file).Rows(
                     u"select (select count(*) from 光源), (select count(*) from 灯具), "
                     "(select count(distinct LuminaireID) from 利用系数), "
                     "(select count(*) from 照度要求及功率密度), "
                     "(select count(distinct LamphouseName || ':' || LamphouseModel) from 光源), "
                     "(select count(distinct LamphouseType) from 光源)"_s),
                 QStringList(u"30000|1200|976|15000|30000|8"_s));
    }

private:
    QTemporaryDir m_folder;
    QString m_access;
    QString m_sqlite;
};

QTEST_GUILESS_MAIN(TestDatabaseTools)
#include "test_database_tools.moc"
