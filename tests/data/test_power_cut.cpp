// What a kill, a power cut or a failing disk leaves of a database, at every moment of a sequence of
// statements and submits: a beginning of them that holds, after a kill, every statement that had reported
// success, and after a power cut every finished submit and every statement outside of one.

#include <QTest>

#include "data/store/access/sql/access_connection.h"
#include "data/store/sqlite_connection.h"
#include "tests/data/sqlite_on_simulated_disk.h"
#include "tests/support/files.h"
#include "tests/support/raw_database.h"
#include "tests/support/rounds.h"
#include "tools/database_schema.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;
using access::SimulatedDisk;

namespace {

using Trouble = SimulatedDisk::Trouble;

const QString kPath = u"/data/file.mdb"_s;
constexpr int kGroups[] = {1, 1, 4, 0, 1, 6};  // statements; a single one is outside of a submit
constexpr int kStatements = 13;

// An insert, an update or a delete, with memos within the row, in one piece and in a chain, and texts that
// make rows move.
QString Statement(int number) {
    const int row = number % 8 + 1;
    const QString name(number * 7 % 40 + 1, u'灯');
    const QString memo(number % 3 * number % 3 * 2000 + number, u'照');
    if (number % 5 == 4) {
        return u"delete * from 灯具 where ID=%1"_s.arg(row);
    }
    if (number % 4 == 3) {
        return u"update 光源类别 set LamphouseType='%1' where ID=%2"_s.arg(name).arg(row);
    }
    if (number % 2 == 0) {
        return u"insert into 灯具 (ID,LampName,LampPhoto) values (5%1,'%2','%3')"_s.arg(number).arg(name,
                                                                                                    memo);
    }
    return u"update 灯具 set LampName='%1', LampPhoto='%2' where ID=%3"_s.arg(name, memo).arg(row);
}

// Runs an action that may fail.
bool Succeeds(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const ProviderError&) {
        return false;
    }
}

// All rows as one text; empty when they cannot be read.
QString Dump(Connection& connection) {
    QString text;
    const auto read = [&] {
        for (const QString& query : {u"select ID||LamphouseType from 光源类别 order by ID"_s,
                                     u"select ID||'|'||LampName||'|'||LampPhoto from 灯具 "
                                     "where LampPhoto is not null order by ID"_s}) {
            for (const auto rows = connection.Execute(query); !rows->AtEnd(); rows->MoveNext()) {
                text += std::get<CString>(rows->Value(0)) + u'\n';
            }
        }
    };
    return Succeeds(read) ? text : QString();
}

}  // namespace

class TestPowerCut : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void KeepsWhatWasReported_data() {
        QTest::addColumn<bool>("isAccess");
        QTest::addColumn<Trouble>("trouble");
        QTest::addColumn<int>("powerCuts");
        for (const bool isAccess : {true, false}) {
            const auto add = [&](const char* name, Trouble trouble, int powerCuts) {
                QTest::addRow("%s: %s", isAccess ? "Access" : "SQLite", name)
                    << isAccess << trouble << powerCuts;
            };
            add("kill", Trouble::Kill, 0);
            add("kill within a write", Trouble::Torn, 0);
            add("power cut", Trouble::Kill, 3);
            add("power cut within a write", Trouble::Torn, 1);
            add("failure", Trouble::Failure, 0);
            if (isAccess) {  // SQLite takes the name of a journal for written whose sync has failed
                add("failure, then power cut", Trouble::Failure, 2);
            }
        }
    }

    void KeepsWhatWasReported() {
        QFETCH(bool, isAccess);
        QFETCH(Trouble, trouble);
        QFETCH(int, powerCuts);
        m_isAccess = isAccess;
        const int cuts = std::max(1, powerCuts * Rounds(nullptr, 1, 3));
        m_fixture = isAccess ? AccessFixture() : SqliteFixture();
        m_states.clear();
        SimulatedDisk& undisturbed = NewDisk();
        undisturbed.Plan(0, Trouble::None);
        Run(true);
        const int operations = undisturbed.Operations();
        QVERIFY(m_states.size() == kStatements + 1 && m_states.removeDuplicates() == 0);
        QCOMPARE(undisturbed.Names(), QStringList{kPath});
        for (int operation = 1; operation <= operations; ++operation) {
            for (int cut = 0; cut < cuts; ++cut) {
                SimulatedDisk& disk = NewDisk();
                disk.Plan(operation, trouble,
                          trouble == Trouble::Failure && powerCuts > 0 ? 4 * (cut + 1) : 0);
                Run(false);
                QRandomGenerator random(static_cast<quint32>(operation * 64 + cut));
                disk.Restart(powerCuts > 0 ? &random : nullptr);
                CheckWhatIsLeft(powerCuts > 0 ? m_safe : m_reported);
                if (QTest::currentTestFailed()) {
                    QFAIL(
                        qPrintable(u"operation %1 of %2, cut %3"_s.arg(operation).arg(operations).arg(cut)));
                }
            }
        }
        qInfo("cases: %d", operations * cuts);
    }

private:
    static QByteArray AccessFixture() {
        return Contents(QStringLiteral(ACCESS_FIXTURES "/lighting-2003-memo.mdb"));
    }
    static QByteArray SqliteFixture() {
        SimulatedDisk disk;
        PutSqliteOn(disk);
        RawDatabase(kPath).Execute(
            QString::fromUtf8(kDatabaseSchema) +
            u"with recursive n(i) as (select 1 union all select i+1 from n where i<12) "
            "insert into 灯具 (ID,LampName,LampPhoto) select i,'灯','' from n;"
            "insert into 光源类别 select ID,LampName from 灯具"_s);
        return disk.Bytes(kPath);
    }
    SimulatedDisk& NewDisk() {
        m_disk.emplace();
        m_disk->Put(kPath, m_fixture);
        PutSqliteOn(*m_disk);
        return *m_disk;
    }
    std::shared_ptr<Connection> Open() {
        std::shared_ptr<Connection> connection =
            m_isAccess ? std::make_shared<AccessConnection>(*m_disk) : CreateSqliteConnection();
        connection->Open(u"Data Source = %1;"_s.arg(kPath), {}, {}, -1);
        // The check of the file ends before anything else happens: one thread at a time may use the disk.
        Succeeds([&] { connection->RequireSoundFile(); });
        return connection;
    }

    // Runs the sequence until the process ends. A statement that fails otherwise is tried once more; it fails
    // again when it is in the file after all.
    void Run(bool isNoting) {
        m_reported = 0;
        m_safe = 0;
        std::shared_ptr<Connection> connection;
        if (!Succeeds([&] { connection = Open(); }) && !Succeeds([&] { connection = Open(); })) {
            return;
        }
        if (isNoting) {
            m_states += Dump(*connection);
        }
        for (const int group : kGroups) {
            const bool isSubmit = group != 1;
            bool isSafe = false;
            if (isSubmit) {
                Succeeds([&] { connection->BeginSubmit(); });
            }
            for (int statement = 0; statement < group; ++statement) {
                const auto run = [&] { connection->Execute(Statement(m_reported)); };
                isSafe = Succeeds(run) || Succeeds(run);
                if (!isSafe && Dump(*connection) != m_states.value(m_reported + 1)) {
                    return;
                }
                ++m_reported;
                if (isNoting) {
                    m_states += Dump(*connection);
                }
            }
            isSafe = isSubmit ? Succeeds([&] { connection->EndSubmit(); }) : isSafe;
            if (isSafe && !m_disk->IsDead()) {
                m_safe = m_reported;
            }
        }
        Succeeds([&] { connection->Close(); });
    }

    void CheckWhatIsLeft(int least) {
        auto connection = Open();
        const qsizetype kept = m_states.indexOf(Dump(*connection));
        QVERIFY2(kept >= least && kept <= m_reported + 1,
                 qPrintable(u"%1 kept, %2 to %3 reported"_s.arg(kept).arg(least).arg(m_reported)));
        try {
            connection->Execute(Statement(static_cast<int>(kept)));
        } catch (const ProviderError& error) {
            QFAIL(qPrintable(error.Message()));  // a damaged file is not written
        }
        connection->Close();
        QCOMPARE(m_disk->Names(), QStringList{kPath});
    }

    bool m_isAccess = false;
    QByteArray m_fixture;
    QStringList m_states;  // after each statement
    std::optional<SimulatedDisk> m_disk;
    int m_reported = 0;  // statements
    int m_safe = 0;      // of them, those outside of a submit and those of finished submits
};

QTEST_APPLESS_MAIN(TestPowerCut)
#include "test_power_cut.moc"
