// What a kill, a power cut or a failing disk leaves of an Access file: exactly the statements that had
// reported success, for a power cut a beginning of them that holds every finished submit.

#include <QFile>
#include <QTest>

#include "data/store/access/check/file_check.h"
#include "data/store/access/database.h"
#include "tests/data/access/simulated_disk.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane::access;

namespace {

using Trouble = SimulatedDisk::Trouble;

const QString kPath = u"/data/file.mdb"_s;
constexpr int kStatements = 12;
constexpr int kSubmit = 4;  // statements
const QStringList kTables{u"灯具"_s, u"光源类别"_s};

QByteArray Fixture() {
    QFile file(QStringLiteral(ACCESS_FIXTURES "/lighting-2003-memo.mdb"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Memos within the row, in one piece and in a chain; texts that make rows move.
Value SomeValue(const Column& column, int number) {
    switch (column.type) {
        case ColumnType::Long:
            return qint64{number};
        case ColumnType::Double:
            return number / 8.0;
        case ColumnType::Memo:
            return QString(number % 3 * number % 3 * 2000 + number, u'照');
        default:
            return QString(number * 7 % 40 + 1, u'灯');
    }
}

// Statement NUMBER of the sequence: an insert, an update or a delete.
void RunStatement(Database& database, int number) {
    Table& table = database.Find(kTables[number % 4 == 3 ? 1 : 0]);
    TableScan scan = table.Scan();
    for (int row = 0; row < number % 9; ++row) {
        scan.MoveNext();
    }
    const RowAddress row = scan.Row().home;
    if (number % 5 == 4) {
        return table.Delete(row);
    }
    std::vector<Value> values;
    std::vector<std::optional<Value>> changes;
    for (const Column& column : table.Columns()) {
        values.push_back(column.autoNumber ? Value() : SomeValue(column, number));
        changes.push_back(column.autoNumber ? std::nullopt : std::optional<Value>(values.back()));
    }
    if (number % 2 == 0) {
        table.Insert(values);
    } else {
        table.Update(row, changes);
    }
}

// All rows as one text.
QString Dump(Database& database) {
    QString text;
    for (const QString& name : kTables) {
        Table& table = database.Find(name);
        for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
            for (const Column& column : table.Columns()) {
                std::visit(
                    [&](const auto& value) {
                        if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>) {
                            text += QString::number(value);
                        } else if constexpr (std::is_same_v<std::decay_t<decltype(value)>, QString>) {
                            text += value;
                        }
                    },
                    table.Read(scan.Row(), column));
                text += u'|';
            }
        }
    }
    return text;
}

struct Outcome {
    int reported = 0;       // statements
    int safe = 0;           // of them, those of finished submits
    QByteArray submitted;   // the file after the last finished submit
    bool inSubmit = false;  // the end came while a submit ended
};

// Runs the sequence until the process ends. A statement or submit that fails otherwise is tried once more.
Outcome Run(SimulatedDisk& disk, const std::function<void(Database&)>& afterEach = {}) {
    Outcome outcome{0, 0, disk.Bytes(kPath)};
    const auto tryTwice = [&](const auto& action) {
        try {
            action();
        } catch (const AccessError&) {
            if (disk.IsDead()) {
                throw;
            }
            action();
        }
    };
    try {
        Database database(disk, kPath);
        while (outcome.reported < kStatements) {
            tryTwice([&] {
                database.BeginStatement();
                try {
                    RunStatement(database, outcome.reported);
                    database.Commit();
                } catch (const AccessError&) {
                    database.Rollback();
                    throw;
                }
            });
            ++outcome.reported;
            if (afterEach) {
                afterEach(database);
            }
            if (outcome.reported % kSubmit == 0) {
                outcome.inSubmit = true;
                tryTwice([&] { database.EndSubmit(); });
                outcome.inSubmit = false;
                outcome.safe = outcome.reported;
                outcome.submitted = disk.Bytes(kPath);
            }
        }
    } catch (const AccessError&) {
        // The process has ended.
    }
    return outcome;
}

}  // namespace

class TestAccessRecovery : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        SimulatedDisk disk;
        disk.Put(kPath, Fixture());
        m_states.push_back(Dump(*std::make_unique<Database>(disk, kPath)));
        disk.Plan(0, Trouble::None);
        Run(disk, [this](Database& database) { m_states.push_back(Dump(database)); });
        m_operations = disk.Operations();
        QCOMPARE(m_states.size(), kStatements + 1);
        QCOMPARE(disk.Names(), QStringList{kPath});
    }

    void KeepsWhatWasReported_data() {
        QTest::addColumn<Trouble>("trouble");
        QTest::addColumn<int>("powerCuts");
        QTest::newRow("kill") << Trouble::Kill << 0;
        QTest::newRow("kill after an operation") << Trouble::KillAfter << 0;
        QTest::newRow("kill within a write") << Trouble::Torn << 0;
        QTest::newRow("power cut") << Trouble::KillAfter << 3;
        QTest::newRow("power cut within a write") << Trouble::Torn << 2;
        QTest::newRow("failure") << Trouble::Failure << 0;
        QTest::newRow("failure, then power cut") << Trouble::Failure << 3;
    }

    void KeepsWhatWasReported() {
        QFETCH(Trouble, trouble);
        QFETCH(int, powerCuts);
        for (int operation = 1; operation <= m_operations; ++operation) {
            for (int cut = 0; cut < std::max(1, powerCuts); ++cut) {
                SimulatedDisk disk;
                disk.Put(kPath, Fixture());
                disk.Plan(operation, trouble,
                          trouble == Trouble::Failure && powerCuts > 0 ? 4 * (cut + 1) : 0);
                const Outcome outcome = Run(disk);
                if (powerCuts == 0 && !outcome.inSubmit) {
                    QCOMPARE(disk.Bytes(kPath), outcome.submitted);
                }
                QRandomGenerator random(static_cast<quint32>(operation * 16 + cut));
                disk.Restart(powerCuts > 0 ? &random : nullptr);
                Database database(disk, kPath);
                QCOMPARE(database.ReadOnlyReason(), QString());
                const auto state = std::find(m_states.begin(), m_states.end(), Dump(database));
                const auto kept = static_cast<int>(state - m_states.begin());
                const int least = powerCuts > 0 ? outcome.safe : outcome.reported;
                QVERIFY2(kept >= least && kept <= outcome.reported,
                         qPrintable(u"operation %1, cut %2: %3 kept, %4 to %5 reported"_s.arg(operation)
                                        .arg(cut)
                                        .arg(kept)
                                        .arg(least)
                                        .arg(outcome.reported)));
                database.BeginStatement();
                RunStatement(database, kept);
                database.Commit();
                database.EndSubmit();
                if (cut == 0 && operation % 4 == 0) {
                    QCOMPARE(CheckFile(database), QStringList());
                }
                QCOMPARE(disk.Names().size(), 2);  // the file and its lock: no log is left
            }
        }
    }

    // A log is applied to the file for which it was written, and to no other.
    void PutsAStrangeLogAside() {
        SimulatedDisk disk;
        disk.Put(kPath, Fixture());
        disk.Plan(0, Trouble::None);
        {
            auto database = std::make_unique<Database>(disk, kPath);
            const int opened = disk.Operations();
            database.reset();
            disk.Plan(opened + 3, Trouble::Kill);  // the second statement of the first submit
            Run(disk);
        }
        disk.Restart(nullptr);
        const QByteArray others = disk.Bytes(kPath).replace(4096 * 40 + 3000, 1, "x");
        disk.Put(kPath, others);
        Database database(disk, kPath);
        QVERIFY(database.Notice().contains(u"put aside"_s));
        QCOMPARE(disk.Bytes(kPath), others);
        QCOMPARE(disk.Names().filter(u"-redo-"_s).size(), 1);
    }

private:
    QStringList m_states;  // after each statement
    int m_operations = 0;
};

QTEST_APPLESS_MAIN(TestAccessRecovery)
#include "test_access_recovery.moc"
