// What stands behind the seam: the choice of a driver, bad files, the copy before the first write, locks, and
// the SQLite driver itself.

#include <QDir>
#include <QElapsedTimer>
#include <QTest>
#include <QtEndian>
#include <atomic>
#include <numeric>
#include <optional>
#include <thread>

#include "data/lighting_database.h"
#include "data/store/background_check.h"
#include "data/store/dialect.h"
#include "tests/support/files.h"
#include "tests/support/process_limits.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

const CString kSomeRows =
    u"insert into 光源 values (1, 1, 'T5', 2600, 28, '晨光', '直管荧光灯');"
    "insert into 灯具 (LamphouseTypeID) values ('1')"_s;

tagLAMPHOUSEINFO LightSource(double luminousFlux = 0) {
    return {1, 0, u""_s, luminousFlux, 0, u""_s, u""_s};
}

// Whether every kind of write is refused.
bool RefusesWrites(CLightingDatabase& database) {
    tagLAMPHOUSEINFO record = LightSource();
    return !database.UpdateLightSource(record) && !database.InsertLightSource(record) &&
           !database.DeleteLightSource(1) && !database.DeleteLuminaire(1);
}

bool Reads(CLightingDatabase& database) {
    std::vector<tagLAMPHOUSEINFO> records;
    return database.LoadAllLightSources(records) && records.size() == 1;
}

}  // namespace

class TestStore : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_file = std::make_unique<TemporaryLightingDatabase>();
        m_file->Raw().Execute(kSomeRows);
        m_database = std::make_unique<CLightingDatabase>(CreateStoreConnection, m_file->ExecutablePath());
    }

    void RefusesBadFiles() {
        const QByteArray good = m_file->Bytes();
        const QByteArray access = Contents(QStringLiteral(ACCESS_FIXTURES "/lighting-general.mdb"));
        const std::pair<QByteArray, QString> cases[] = {
            {"", u"is empty"_s},
            {"S", u"is not a database"_s},
            {QByteArray("照明设计 ").repeated(999), u"is not a database"_s},
            {QByteArray("\0\1\0\0Standard ACE DB\0\2", 21).leftJustified(4096, '\0'), u"Access 2007"_s},
            {QByteArray(access).replace(20, 1, "\0", 1), u"Access 97"_s},
            {QByteArray(access).replace(20, 1, "\2"), u"Access 2007"_s},
            {QByteArray(access).replace(62, 1, "x"), u"encrypted"_s},
            {QByteArray(access).replace(8192, 1, "\1"), u"已损坏"_s},  // the catalogue
            {access.first(4095), u"no Access file"_s},
            {access.first(8192), u"size of 8192"_s},
            {access.chopped(1), u"is impossible"_s},
            {good.first(16), u""_s},
        };
        for (const auto& [bytes, reason] : cases) {
            WriteFile(m_file->FilePath(), bytes);
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^连接数据库失败!\n.*"_s + reason));
            QVERIFY2(!m_database->Connect(), qPrintable(reason));
            QCOMPARE(m_file->Bytes(), bytes);
            QCOMPARE(Files(), QStringList{u"灯具数据库.mdb"_s});
        }
    }

    void CopiesBeforeTheFirstWrite() {
        // Some in the future: a clock may go back.
        const QStringList older{u".2997-01-01-000000.bak"_s, u".2998-01-01-000000.bak"_s,
                                u".2999-01-01-000000.bak"_s, u".2003-01-01.bak"_s};
        for (const QString& name : older) {
            WriteFile(m_file->FilePath() + name, {});
        }
        const QByteArray before = m_file->Bytes();
        const auto connection = OpenStore(m_file->FilePath(), BackedUpStore({}));
        connection->Execute(u"select * from 光源"_s);
        QCOMPARE(Files().size(), 5);
        for (int ID = 1; ID <= 2; ++ID) {
            connection->Execute(u"insert into 光源类别 values (%1, '直管')"_s.arg(ID));
        }
        const QStringList copies = Files().filter(u".bak"_s);
        QCOMPARE(copies.size(), 4);  // three, and one of another name
        QVERIFY(copies.filter(older[0]).isEmpty() && !copies.filter(older[3]).isEmpty());
        QCOMPARE(Contents(m_file->DatabaseFolder() + u'/' + copies[1]), before);
        QVERIFY(m_file->Bytes() != before);
        for (const QString& name : older) {
            QFile::remove(m_file->FilePath() + name);
        }
        for (int run = 0; run < 2; ++run) {
            OpenStore(m_file->FilePath(), BackedUpStore({}))->Execute(u"delete from 光源 where ID=0"_s);
        }
        QCOMPARE(Files().filter(u".bak"_s).size(), 2);  // one a state of the file
    }

    void AsksOnceWithoutACopy() {
        for (const bool goOn : {true, false}) {
            init();
            int asked = 0;
            const auto ask = [&](const CString&) { return ++asked > 0 && goOn; };
            const auto connection = OpenStore(m_file->FilePath(), BackedUpStore(ask));
            WriteFile(m_file->FilePath() + u"-wal"_s, "x");
            int failed = 0;
            for (int round = 0; round < 2; ++round) {
                try {
                    connection->Execute(u"insert into 光源类别 (LamphouseType) values ('直管')"_s);
                } catch (const ProviderError& error) {
                    failed += error.Message().contains(u"未能备份"_s);
                }
            }
            QCOMPARE(failed, goOn ? 0 : 2);
            QCOMPARE(asked, 1);
        }
    }

    void MissingTableOrFile() {
        m_file->Raw().Execute(u"drop table 光源类别"_s);
        QVERIFY(m_database->Connect());
        std::vector<tagLAMPHOUSETYPE> types;
        QVERIFY(!m_database->LoadLampTypes(types));
        QVERIFY(Reads(*m_database));  // the other tables still serve
        QVERIFY(m_database->Disconnect());
        QVERIFY(QFile::remove(m_file->FilePath()));
        QVERIFY(!m_database->Connect());
        QCOMPARE(m_database->LastFailure().kind, FailureKind::FileGone);
        QVERIFY(!QFile::exists(m_file->FilePath()));
        QVERIFY(QDir().mkdir(m_file->FilePath()));
        QVERIFY(!m_database->Connect());
    }

    void ReadsWhereWritingIsForbidden() {
        const auto readers = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
        const auto visitors = readers | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
        QVERIFY(QFile::setPermissions(m_file->Folder(), visitors | QFile::WriteOwner));
        const QByteArray before = m_file->Bytes();
        for (const auto writers : {QFile::WriteOwner | QFile::WriteOther, QFile::Permissions()}) {
            QVERIFY(QFile::setPermissions(m_file->FilePath(), readers | writers));
            QVERIFY(QFile::setPermissions(m_file->DatabaseFolder(), visitors));
            {
                const UnprivilegedScope nobody;
                QVERIFY(m_database->Connect() && Reads(*m_database) && RefusesWrites(*m_database));
                QCOMPARE(m_database->LastFailure().kind, FailureKind::ReadOnly);
                QVERIFY(Reads(*m_database) && m_database->Disconnect());
            }
            QVERIFY(QFile::setPermissions(m_file->DatabaseFolder(), visitors | QFile::WriteOwner));
            QCOMPARE(m_file->Bytes(), before);
            QCOMPARE(Files().size(), 1);
        }
    }

    void YieldsToAnotherProgramsLock() {
        QVERIFY(m_database->Connect());
        const QStringList before = m_file->Snapshot();
        RawDatabase other = m_file->Raw();

        other.Execute(u"begin immediate"_s);
        QVERIFY(Reads(*m_database));
        QVERIFY(RefusesWrites(*m_database));
        QCOMPARE(m_database->LastFailure().kind, FailureKind::Locked);
        QElapsedTimer timer;
        timer.start();
        for (int row = 0; row < 10; ++row) {
            QVERIFY(RefusesWrites(*m_database));
        }
        QVERIFY2(timer.elapsed() < 2000, "a locked file must not hold up the window");
        other.Execute(u"commit; begin exclusive"_s);
        QVERIFY(!Reads(*m_database));
        QVERIFY(RefusesWrites(*m_database));
        other.Execute(u"commit"_s);

        QVERIFY(Reads(*m_database));
        QCOMPARE(m_file->Snapshot(), before);
        QVERIFY(m_database->DeleteLightSource(1));
    }

    void RunsOneStatementOnly() {
        const auto connection = OpenStore(m_file->FilePath());
        const QStringList before = m_file->Snapshot();
        for (const CString& statement :
             {u"delete from 光源; delete from 灯具"_s, u"delete from 光源;;"_s, u"delete from 光源; --"_s,
              u""_s, u" ; "_s, u"delete from 光源\0"_s, u"nonsense"_s}) {
            QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(statement));
        }
        QCOMPARE(m_file->Snapshot(), before);
        QVERIFY(connection->Execute(u"delete from 光源 ; \r\n\t "_s)->AtEnd());
        QCOMPARE(m_file->Raw().Text(u"select count(*) from 光源"_s), QByteArray("0"));
        const CString typed = u"光源 set Factory='delete * from x'"_s;
        QCOMPARE(ToSqliteDialect(u"delete * from "_s + typed), u"delete from "_s + typed);
        QCOMPARE(ToSqliteDialect(u"update "_s + typed), u"update "_s + typed);
        // The faster list of makers is the same list.
        const CString makers = u"select DISTINCT Factory from 光源 order by Factory"_s;
        m_file->Raw().Execute(u"insert into 光源 (Factory) values ('b'),('a'),(NULL),('A'),('照'),('B')"_s);
        QVERIFY(ToSqliteDialect(makers) != makers);
        QCOMPARE(m_file->Raw().Rows(ToSqliteDialect(makers)), m_file->Raw().Rows(makers));
    }

    // Others that use the file hold up no submit and lose nothing.
    void SubmitsBesideAnotherProgram() {
        QVERIFY(m_database->Connect());
        RawDatabase other = m_file->Raw();
        double stored = 0;
        for (const CString& use :
             {u"select 1"_s, u"PRAGMA journal_mode=WAL"_s, u"begin; select * from 光源"_s}) {
            other.Execute(use);
            SubmitScope submit(*m_database);
            const bool isUpdated = m_database->UpdateLightSource(LightSource(stored + 1));
            QVERIFY((isUpdated || use.startsWith(u"begin")) && submit.Finish());
            stored += isUpdated ? 1 : 0;
            QCOMPARE(other.Text(u"select LuminousFlux from 光源"_s).toDouble(), stored);
        }
        other.Execute(u"commit"_s);
        QVERIFY(m_database->UpdateLightSource(LightSource()));
        SubmitScope submit(*m_database);
        QVERIFY(m_database->UpdateLightSource(LightSource()) && submit.Finish() && IsOneFile());
        const SubmitScope unfinished(*m_database);
        QVERIFY(m_database->UpdateLightSource(LightSource()) && m_database->Disconnect() && IsOneFile());
    }

    // Nothing that stands in the file runs, and no other file is touched.
    void RefusesStrangersSchemas() {
        const CString standIn = u"alter table 光源 rename to x; create %1"_s;
        const std::pair<CString, bool> cases[] = {
            {standIn.arg(u"view 光源 as select * from x"_s), false},
            {standIn.arg(u"virtual table 光源 using fts5(ID)"_s), false},
            {standIn.arg(u"table 光源 (ID, Factory, LamphouseName as (instr(Factory, 'x')))"_s), false},
            {standIn.arg(u"table 光源 (ID, Factory check (instr(Factory, 'x') = 0))"_s), false},
            {standIn.arg(u"table 光源 (ID, Factory default (instr('xx', 'x')))"_s), false},
            {u"create index longest on 光源 (instr(Factory, 'x'))"_s, false},
            {u"create index longest on 光源 (ID) where instr(Factory, 'x')"_s, false},
            {u"create unique index shortest on 光源 (ID, Factory)"_s, true},
            {u"create trigger 光源 after update on 光源 begin select raise(abort, 'x'); end"_s, true}};
        for (const auto& [schema, isUsable] : cases) {
            init();
            m_file->Raw().Execute(schema);
            const QByteArray before = Contents(m_file->FilePath());
            QCOMPARE(m_database->Connect(), isUsable);
            QVERIFY(Contents(m_file->FilePath()) == before);
            QCOMPARE(m_database->UpdateLightSource(LightSource()), isUsable);
        }
    }
    void RefusesAJournalThatNamesAnotherFile() {
        const auto number = [](auto value) {
            QByteArray bytes(4, '\0');
            qToBigEndian(static_cast<quint32>(value), bytes.data());
            return bytes;
        };
        const QByteArray mark = QByteArray::fromHex("d9d505f920a163d7");
        const QString victim = m_file->Folder() + u"/victim"_s;
        const QByteArray name = victim.toUtf8();
        const QByteArray head = mark + number(0) + number(7) + number(1) + number(512) + number(4096);
        const QString journal = m_file->FilePath() + u"-journal"_s;
        WriteFile(victim, "kept");
        WriteFile(journal, head.leftJustified(512, '\0') + number(262145) + name + number(name.size()) +
                               number(std::accumulate(name.begin(), name.end(), 0)) + mark);
        QVERIFY(!m_database->Connect() && QFile::exists(victim));
        WriteFile(journal, {});  // as a kill leaves it
        QVERIFY(m_database->Connect() && !QFile::exists(journal));
    }

    void EndsWhatFindsNoEndOrNoRoom() {
        const auto connection = OpenStore(m_file->FilePath());
        connection->Execute(u"PRAGMA max_page_count=20"_s);
        const std::pair<CString, FailureKind> cases[] = {
            {u"with recursive n(i) as (select 1 union all select 2 from n) select sum(i) from n"_s,
             FailureKind::TimeLimit},
            {u"insert into 光源 (Factory) values ('%1')"_s.arg(u"x"_s.repeated(200000)),
             FailureKind::DiskFull}};
        for (const auto& [statement, kind] : cases) {
            std::optional<FailureKind> found;
            try {
                connection->Execute(statement);
            } catch (const ProviderError& error) {
                found = error.Kind();
            }
            QVERIFY(found == kind && !connection->Execute(u"select 1"_s)->AtEnd());
        }
    }

    // An index that lacks a row hides it from every query that uses the index.
    void FindsDamageInAnIndex() {
        m_file->Raw().Execute(
            u"PRAGMA writable_schema=1; create table kept as select * from sqlite_schema where name like "
            u"'光源^_%' "
            "escape '^';"
            "delete from sqlite_schema where name like '光源^_%' escape '^'"_s);
        m_file->Raw().Execute(
            u"PRAGMA writable_schema=1; insert into 光源 (Factory) values ('hidden');"
            "insert into sqlite_schema select * from kept; drop table kept"_s);
        QVERIFY(m_database->Connect());
        QVERIFY(RefusesWrites(*m_database));
        QCOMPARE(m_database->LastFailure().kind, FailureKind::Damaged);
        QVERIFY(!m_database->IsSound() && !m_database->IsCheckRunning());
        const auto connection = OpenStore(m_file->FilePath(), BackedUpStore({}));
        QVERIFY_THROWS_EXCEPTION(ProviderError, connection->Execute(u"delete from 灯具"_s));
        QCOMPARE(Files().size(), 1);  // a copy of it would push out a good one
        QVERIFY(m_database->Disconnect());
    }

    void WhatACheckHasFoundIsLookedForAgain() {
        std::atomic<int> runs = 0;
        BackgroundCheck check([&](const CheckLimits&) {
            if (++runs == 1) {
                throw ProviderError(u"locked"_s);
            }
        });
        QVERIFY_THROWS_EXCEPTION(ProviderError, check.RequireSoundFile());
        QVERIFY_THROWS_EXCEPTION(ProviderError, check.RequireSoundFile());  // by the first run
        QTest::qWait(1100);
        check.RequireSoundFile();
        QCOMPARE(runs, 2);
    }

    void FollowsAFileThatWasReplaced() {
        QVERIFY(m_database->Connect());
        const CString path = m_file->FilePath();
        const CString other = path + u".new"_s;
        for (const bool isInSubmit : {false, true}) {
            QVERIFY(QFile::copy(path, other) && QFile::remove(path));
            QVERIFY(!m_database->UpdateLightSource(LightSource(5)));
            QCOMPARE(m_database->LastFailure().kind, FailureKind::FileGone);
            QVERIFY(QFile::rename(other, path));
            {
                const auto submit = isInSubmit ? std::make_unique<SubmitScope>(*m_database) : nullptr;
                QVERIFY(m_database->UpdateLightSource(LightSource(isInSubmit ? 7 : 6)));
            }
            QCOMPARE(m_file->Raw().Text(u"select LuminousFlux from 光源"_s), isInSubmit ? "7.0" : "6.0");
        }
    }

    void WaitsForALockAtTheStart() {
        RawDatabase other = m_file->Raw();
        other.Execute(u"begin exclusive"_s);
        QVERIFY(!m_database->Connect() &&
                m_database->LastFailure().kind == FailureKind::Locked);  // after 3 s
        std::thread user([&] {
            QTest::qSleep(700);
            other.Execute(u"commit"_s);
        });
        const bool isConnected = m_database->Connect();
        user.join();
        QVERIFY(isConnected && Reads(*m_database));
    }

    void RefusesBytesThatAreNoText() {
        m_file->Raw().Execute(u"update 光源 set Factory=cast(x'41ff' as text)"_s);
        QVERIFY(m_database->Connect() && !Reads(*m_database));
    }

private:
    QStringList Files() const { return QDir(m_file->DatabaseFolder()).entryList(QDir::Files); }
    // In rollback mode and without anything beside it.
    bool IsOneFile() const { return m_file->Bytes().at(18) == 1 && Files().size() == 1; }

    std::unique_ptr<TemporaryLightingDatabase> m_file;
    std::unique_ptr<CLightingDatabase> m_database;
};

QTEST_GUILESS_MAIN(TestStore)
#include "test_store.moc"
