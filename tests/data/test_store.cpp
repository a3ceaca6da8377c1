// What stands behind the seam: the choice of a driver, bad files, locks, and the SQLite driver itself.

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QtEndian>
#include <cstdio>
#include <numeric>
#include <optional>
#include <thread>

#include "data/lighting_database.h"
#include "data/store/dialect.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"
#include "tests/support/unprivileged_scope.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

const CString kSomeRows =
    u"insert into 光源 values (1, 1, 'T5', 2600, 28, '晨光', '直管荧光灯');"
    "insert into 灯具 (LamphouseTypeID) values ('1')"_s;

// Whether every kind of write is refused.
bool RefusesWrites(CLightingDatabase& database) {
    tagLAMPHOUSEINFO record;
    record.ID = 1;
    return !database.UpdateLightSource(record) && !database.InsertLightSource(record) &&
           !database.DeleteLightSource(1) && !database.DeleteLuminaire(1);
}

bool Reads(CLightingDatabase& database) {
    std::vector<tagLAMPHOUSEINFO> records;
    return database.LoadAllLightSources(records) && records.size() == 1;
}

// Line n means that light source 1 has the luminous flux n and that n rows have been inserted besides it.
int WriteUntilKilled(const QString& executablePath, bool inSubmits) {
    CLightingDatabase database(CreateStoreConnection, executablePath);
    tagLAMPHOUSEINFO first;
    tagLAMPHOUSEINFO added;
    first.ID = 1;
    first.Factory = QString(5000, u'x');  // several pages a statement
    bool works = database.Connect();
    std::optional<SubmitScope> submit;
    for (int done = 1; works; ++done) {
        if (inSubmits && done % 8 == 1) {
            submit.reset();
            submit.emplace(database);
        }
        first.LuminousFlux = done;
        works = database.InsertLightSource(added) && database.UpdateLightSource(first);
        if (works) {
            std::printf("%d\n", done);
            std::fflush(stdout);
        }
    }
    return 1;
}

}  // namespace

class TestStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_file = std::make_unique<TemporaryLightingDatabase>();
        m_file->Raw().Execute(kSomeRows);
    }

    void RefusesBadFiles() {
        const QByteArray good = m_file->Bytes();
        const QByteArray noise = QByteArray("\x5a\xc3\x17").repeated(20000);
        const auto accessFile = [](const char* engine, char version) {
            return QByteArray("\0\1\0\0Standard ", 13) + engine + QByteArray(" DB\0", 4) + version +
                   QByteArray(4075, '\0');
        };
        const std::pair<QByteArray, QString> cases[] = {
            {"", u"is empty"_s},
            {"S", u"is not a database"_s},
            {QByteArray("照明设计 ").repeated(999), u"is not a database"_s},
            {accessFile("Jet", 0), u"Access 97"_s},
            {accessFile("ACE", 2), u"Access 2007"_s},
            {good.first(16), u""_s},
            {good.first(100), u""_s},
            {good.first(good.size() / 2 + 77), u""_s},
            {good.chopped(4096), u""_s},
            {good.first(100) + noise.first(good.size() - 100), u""_s},
            {QByteArray(good).replace(12288, 4096, QByteArray(4096, '\xff')), u"is damaged"_s},
        };
        for (const auto& [bytes, reason] : cases) {
            QFile file(m_file->FilePath());
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            QCOMPARE(file.write(bytes), bytes.size());
            file.close();
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^连接数据库失败!\n.*"_s + reason));
            CLightingDatabase database = Database();
            QVERIFY2(!database.Connect(), qPrintable(reason));
            QCOMPARE(m_file->Bytes(), bytes);
            QCOMPARE(QDir(m_file->DatabaseFolder()).entryList(QDir::Files), QStringList{u"灯具数据库.mdb"_s});
        }
    }

    void MissingTableOrFile() {
        m_file->Raw().Execute(u"drop table 光源类别"_s);
        CLightingDatabase database = Database();
        QVERIFY(database.Connect());
        std::vector<tagLAMPHOUSETYPE> types;
        QVERIFY(!database.LoadLampTypes(types));
        QVERIFY(Reads(database));  // the other tables still serve
        QVERIFY(database.Disconnect());
        QVERIFY(QFile::remove(m_file->FilePath()));
        QVERIFY(!database.Connect());
        QCOMPARE(database.LastFailure().kind, FailureKind::FileGone);
        QVERIFY(!QFile::exists(m_file->FilePath()));
        QVERIFY(QDir().mkdir(m_file->FilePath()));
        QVERIFY(!database.Connect());
    }

    void ReadsWhereWritingIsForbidden() {
        const auto readers = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
        const auto visitors = readers | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        QVERIFY(QFile::setPermissions(m_file->Folder(), visitors | QFile::WriteOwner));
        const QByteArray before = m_file->Bytes();
        for (const auto writers :
             {QFile::Permissions(QFile::WriteOwner | QFile::WriteOther), QFile::Permissions()}) {
            QVERIFY(QFile::setPermissions(m_file->FilePath(), readers | writers));
            QVERIFY(QFile::setPermissions(m_file->DatabaseFolder(), visitors));
            {
                const UnprivilegedScope nobody;
                CLightingDatabase database = Database();
                QVERIFY(database.Connect() && Reads(database));
                QVERIFY(RefusesWrites(database));
                QCOMPARE(database.LastFailure().kind, FailureKind::ReadOnly);
                QVERIFY(Reads(database));
            }
            QVERIFY(QFile::setPermissions(m_file->DatabaseFolder(), visitors | QFile::WriteOwner));
            QCOMPARE(m_file->Bytes(), before);
            QCOMPARE(QDir(m_file->DatabaseFolder()).entryList(QDir::Files).size(), 1);
        }
    }

    void YieldsToAnotherProgramsLock() {
        CLightingDatabase database = Database();
        QVERIFY(database.Connect());
        const QStringList before = m_file->Snapshot();
        RawDatabase other = m_file->Raw();

        other.Execute(u"begin immediate"_s);
        QVERIFY(Reads(database));
        QVERIFY(RefusesWrites(database));
        QCOMPARE(database.LastFailure().kind, FailureKind::Locked);
        QElapsedTimer timer;
        timer.start();
        for (int row = 0; row < 10; ++row) {
            QVERIFY(RefusesWrites(database));
        }
        QVERIFY2(timer.elapsed() < 2000, "a locked file must not hold up the window");
        other.Execute(u"commit; begin exclusive"_s);
        QVERIFY(!Reads(database));
        QVERIFY(RefusesWrites(database));
        other.Execute(u"commit"_s);

        QVERIFY(Reads(database));
        QCOMPARE(m_file->Snapshot(), before);
        QVERIFY(database.DeleteLightSource(1));
    }

    void RunsOneStatementOnly() {
        const std::shared_ptr<Connection> connection = OpenConnection();
        const QStringList before = m_file->Snapshot();
        for (const CString& statement :
             {u"delete from 光源; delete from 灯具"_s, u"delete from 光源;;"_s, u"delete from 光源; --"_s,
              u""_s, u" ; "_s, u"delete from 光源\0"_s, u"nonsense"_s}) {
            QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(statement));
        }
        QCOMPARE(m_file->Snapshot(), before);
        QVERIFY(connection->Execute(u"delete from 光源 ; \r\n\t "_s)->AtEnd());
        QCOMPARE(m_file->Raw().Text(u"select count(*) from 光源"_s), QByteArray("0"));
        QCOMPARE(ToSqliteDialect(u"delete * from 光源 where Factory='delete * from x'"_s),
                 u"delete from 光源 where Factory='delete * from x'"_s);
        // The faster list of makers is the same list.
        const CString makers = u"select DISTINCT Factory from 光源 order by Factory"_s;
        m_file->Raw().Execute(u"insert into 光源 (Factory) values ('b'),('a'),(NULL),('A'),('照'),('B')"_s);
        QVERIFY(ToSqliteDialect(makers) != makers);
        QCOMPARE(m_file->Raw().Rows(ToSqliteDialect(makers)), m_file->Raw().Rows(makers));
        QCOMPARE(ToSqliteDialect(u"update 光源 set Factory='delete * from x'"_s),
                 u"update 光源 set Factory='delete * from x'"_s);
    }

    // A process that is killed while it writes loses nothing it has finished.
    void SurvivesKilling() {
        for (int attempt = 0; attempt < 25; ++attempt) {
            init();
            QProcess writer;
            const QString kind = attempt % 2 == 0 ? u"write"_s : u"submit"_s;
            writer.start(QCoreApplication::applicationFilePath(), {kind, m_file->ExecutablePath()});
            QVERIFY(writer.waitForReadyRead());
            // Somewhere else in the course of a statement each time.
            QTest::qSleep(3 + attempt);
            writer.kill();
            QVERIFY(writer.waitForFinished());
            QCOMPARE(writer.exitStatus(), QProcess::CrashExit);
            const QByteArray said = writer.readAllStandardOutput();
            const int done = said.first(said.lastIndexOf('\n')).split('\n').last().toInt();
            QVERIFY(done > 0);

            CLightingDatabase database = Database();
            QVERIFY(database.Connect());
            tagLAMPHOUSEINFO first;
            QVERIFY(database.LoadLightSourceByID(1, first));
            std::vector<tagLAMPHOUSEINFO> all;
            QVERIFY(database.LoadAllLightSources(all));
            const int inserted = static_cast<int>(all.size()) - 1;
            // One more of each may have been finished without time to say so.
            QVERIFY(first.LuminousFlux == done || first.LuminousFlux == done + 1);
            QVERIFY(inserted == done || inserted == done + 1);
            QVERIFY(database.UpdateLightSource(first));
            QVERIFY(IsOneFile());
            QCOMPARE(m_file->Raw().Rows(u"PRAGMA integrity_check"_s), QStringList{u"'ok'"_s});
        }
    }

    // Others that use the file hold up no submit and lose nothing.
    void SubmitsBesideAnotherProgram() {
        CLightingDatabase database = Database();
        QVERIFY(database.Connect());
        tagLAMPHOUSEINFO record;
        record.ID = 1;
        RawDatabase other = m_file->Raw();
        for (const CString& use :
             {u"select 1"_s, u"PRAGMA journal_mode=WAL"_s, u"begin; select * from 光源"_s}) {
            other.Execute(use);
            SubmitScope submit(database);
            record.LuminousFlux += 1;
            const bool updated = database.UpdateLightSource(record);
            QVERIFY(updated || use.startsWith(u"begin"));
            QVERIFY(submit.Finish());
            QCOMPARE(other.Text(u"select LuminousFlux from 光源"_s),
                     QByteArray::number(record.LuminousFlux - (updated ? 0 : 1), 'f', 1));
        }
        other.Execute(u"commit"_s);
        QVERIFY(database.UpdateLightSource(record));
        SubmitScope submit(database);
        QVERIFY(database.UpdateLightSource(record) && submit.Finish() && IsOneFile());
        const SubmitScope unfinished(database);
        QVERIFY(database.UpdateLightSource(record) && database.Disconnect() && IsOneFile());
    }

    // Nothing that stands in the file runs, and no other file is touched.
    void RefusesStrangersSchemas() {
        const CString standIn = u"alter table 光源 rename to x; create %1"_s;
        const std::pair<CString, bool> cases[] = {
            {standIn.arg(u"view 光源 as select * from x"_s), false},
            {standIn.arg(u"virtual table 光源 using fts5(ID)"_s), false},
            {u"create trigger 光源 after update on 光源 begin select raise(abort, 'x'); end"_s, true}};
        for (const auto& [schema, isUsable] : cases) {
            init();
            m_file->Raw().Execute(schema);
            CLightingDatabase database = Database();
            QCOMPARE(database.Connect(), isUsable);
            tagLAMPHOUSEINFO record;
            record.ID = 1;
            QCOMPARE(database.UpdateLightSource(record), isUsable);
        }
    }
    void RefusesAJournalThatNamesAnotherFile() {
        const auto number = [](quint32 value) {
            QByteArray bytes(4, '\0');
            qToBigEndian(value, bytes.data());
            return bytes;
        };
        const QByteArray mark = QByteArray::fromHex("d9d505f920a163d7");
        const QByteArray victim = (m_file->Folder() + u"/victim"_s).toUtf8();
        const auto sum = std::accumulate(victim.begin(), victim.end(), quint32{0},
                                         [](quint32 total, char byte) { return total + quint32(byte); });
        QByteArray journal = mark + number(0) + number(7) + number(1) + number(512) + number(4096);
        journal = journal.leftJustified(512, '\0') + number(262145) + victim +
                  number(quint32(victim.size())) + number(sum) + mark;
        for (const auto& [path, bytes] : {std::pair{CString::fromUtf8(victim), QByteArray("kept")},
                                          {m_file->FilePath() + u"-journal"_s, journal}}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        }
        CLightingDatabase database = Database();
        QVERIFY(!database.Connect());
        QVERIFY(QFile::exists(CString::fromUtf8(victim)));
        QVERIFY(QFile::remove(m_file->FilePath() + u"-journal"_s) && database.Connect());
    }

    void InterruptsAnEndlessStatement() {
        const std::shared_ptr<Connection> connection = OpenConnection();
        try {
            connection->Execute(
                u"with recursive n(i) as (select 1 union all select 2 from n) select sum(i) from n"_s);
            QFAIL("an endless statement has ended");
        } catch (const ProviderError& error) {
            QCOMPARE(error.Kind(), FailureKind::TimeLimit);
        }
        QVERIFY(!connection->Execute(u"select 1"_s)->AtEnd());
        connection->Execute(u"PRAGMA max_page_count=20"_s);
        try {
            connection->Execute(u"insert into 光源 (Factory) values ('%1')"_s.arg(u"x"_s.repeated(200000)));
            QFAIL("a full disk took a row");
        } catch (const ProviderError& error) {
            QCOMPARE(error.Kind(), FailureKind::DiskFull);
        }
    }

    // An index that lacks a row hides it from every query that uses the index.
    void FindsDamageInAnIndex() {
        for (const int rows : {0, 20000}) {
            init();
            m_file->Raw().Execute(
                u"PRAGMA writable_schema=1; create table kept as select * from sqlite_schema where name like "
                u"'光源^_%' escape '^';"
                "delete from sqlite_schema where name like '光源^_%' escape '^'"_s);
            m_file->Raw().Execute(
                u"PRAGMA writable_schema=1; insert into 光源 (Factory) values ('hidden');"
                "with recursive n(i) as (select 0 union all select i + 1 from n where i < %1) "
                "insert into 照度要求及功率密度 (Location) select '%2' from n;"
                "insert into sqlite_schema select * from kept; drop table kept"_s.arg(rows)
                    .arg(u"x"_s.repeated(60)));
            CLightingDatabase database = Database();
            QCOMPARE(database.Connect(), rows > 0);  // a small file is checked at once
            if (rows > 0) {
                QVERIFY(RefusesWrites(database));
                QCOMPARE(database.LastFailure().kind, FailureKind::Damaged);
                QVERIFY(!database.IsSound() && !database.IsCheckRunning());
                QVERIFY(database.Disconnect());
            }
        }
    }

    void FollowsAFileThatWasReplaced() {
        CLightingDatabase database = Database();
        QVERIFY(database.Connect());
        const CString path = m_file->FilePath();
        const CString other = path + u".new"_s;
        tagLAMPHOUSEINFO record;
        record.ID = 1;
        for (const bool isInSubmit : {false, true}) {
            QVERIFY(QFile::copy(path, other) && QFile::remove(path));
            record.LuminousFlux += 1;
            QVERIFY(!database.UpdateLightSource(record));
            QCOMPARE(database.LastFailure().kind, FailureKind::FileGone);
            QVERIFY(QFile::rename(other, path));
            {
                const auto submit = isInSubmit ? std::make_unique<SubmitScope>(database) : nullptr;
                QVERIFY(database.UpdateLightSource(record));
            }
            QCOMPARE(m_file->Raw().Text(u"select LuminousFlux from 光源"_s),
                     QByteArray::number(record.LuminousFlux, 'f', 1));
        }
    }

    void WaitsForALockAtTheStart() {
        RawDatabase other = m_file->Raw();
        other.Execute(u"begin exclusive"_s);
        std::thread user([&] {
            QTest::qSleep(700);
            other.Execute(u"commit"_s);
        });
        CLightingDatabase database = Database();
        const bool isConnected = database.Connect();
        user.join();
        QVERIFY(isConnected && Reads(database));
    }

    void RefusesBytesThatAreNoText() {
        m_file->Raw().Execute(u"update 光源 set Factory=cast(x'41ff' as text)"_s);
        CLightingDatabase database = Database();
        QVERIFY(database.Connect() && !Reads(database));
    }

private:
    // In rollback mode and without anything beside it.
    bool IsOneFile() const {
        QFile file(m_file->FilePath());
        return file.open(QIODevice::ReadOnly) && file.read(19).back() == 1 &&
               QDir(m_file->DatabaseFolder()).entryList(QDir::Files).size() == 1;
    }
    CLightingDatabase Database() const { return {CreateStoreConnection, m_file->ExecutablePath()}; }
    std::shared_ptr<Connection> OpenConnection() const {
        const CString connectionString = u"Data Source = %1;"_s.arg(m_file->FilePath());
        std::shared_ptr<Connection> connection = CreateStoreConnection(connectionString);
        connection->Open(connectionString, CString(), CString(), -1);
        return connection;
    }

    std::unique_ptr<TemporaryLightingDatabase> m_file;
};

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3) {
        return WriteUntilKilled(arguments[2], arguments[1] == u"submit"_s);
    }
    TestStore test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_store.moc"
