// What is refused, at opening and in a statement, and how far a file grows.

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <limits>

#include "data/store/access/check/file_check.h"
#include "data/store/access/database.h"
#include "tests/data/simulated_disk.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane::access;

namespace {

const QString kPath = u"/data/file.mdb"_s;
const QString kCategories = u"光源类别"_s;

QByteArray Fixture(const char* name = "lighting-general.mdb") {
    QFile file(QStringLiteral(ACCESS_FIXTURES "/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray Patched(QByteArray file, qsizetype offset, QByteArrayView bytes) {
    return file.replace(offset, bytes.size(), bytes.toByteArray());
}

// What the rows have in their last column, sorted.
QStringList Texts(const Table& table) {
    QStringList texts;
    for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
        const Value value = table.Read(scan.Row(), table.Columns().back());
        texts += std::holds_alternative<QString>(value) ? std::get<QString>(value) : QString();
    }
    texts.sort();
    return texts;
}

int CountStates(const Pages& pages, const Table& table, SlotState state) {
    int count = 0;
    for (const PageNumber number : MappedPages(pages, table.Definition().owned)) {
        const PagePointer page = pages.Read(number);
        for (int row = 0; row < CountSlots(*page); ++row) {
            count += ReadSlot(*page, row).state == state;
        }
    }
    return count;
}

// Every long memo gives its place to another one, in its row and in a new row.
void RewriteLongMemos(Database& database) {
    Table& table = database.Find(u"灯具"_s);
    std::vector<RowAddress> rows;
    for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
        const Value memo = table.Read(scan.Row(), table.Columns().back());
        if (std::holds_alternative<QString>(memo) && std::get<QString>(memo).size() > 50'000) {
            rows.push_back(scan.Row().home);
        }
    }
    const PageNumber count = database.AllPages().Count();
    database.BeginStatement();
    for (const RowAddress row : rows) {
        std::vector<std::optional<Value>> changes(table.Columns().size());
        changes.back() = table.Read(*table.Find(row), table.Columns().back());
        std::vector<Value> values(changes.size());
        values.back() = *changes.back();
        std::get<QString>(*changes.back()).back() = u'乙';
        table.Update(row, changes);
        table.Delete(row);
        table.Insert(values);
    }
    database.Commit();
    QCOMPARE(database.AllPages().Count(), count);
}

// Inserts or updates category 1; the reason when that is refused.
QString Write(Database& database, bool update, const Value& id, const Value& name) {
    try {
        database.BeginStatement();
        Table& table = database.Find(kCategories);
        if (update) {
            table.Update(table.Scan().Row().home, {id, name});
        } else {
            table.Insert({id, name});
        }
        database.Commit();
        return QString();
    } catch (const AccessError& error) {
        database.Rollback();
        return error.Message();
    }
}

}  // namespace

class TestAccessLimits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OpensOrRefuses() {
        const QByteArray good = Fixture();
        // The global map as references: its first pointer names no page.
        const QByteArray references = "\1" + QByteArray(68, '\0');
        const auto mapRow = static_cast<qsizetype>(ReadU16(good, 4096 + 14) & 0x1FFF);
        // A file, why it is refused, and why it is only read.
        const std::tuple<QByteArray, QString, QString> cases[] = {
            {good, u""_s, u""_s},
            {good.first(4095), u"no Access file"_s, u""_s},
            {good.first(8192), u"size of 8192"_s, u""_s},
            {good.chopped(1), u"is impossible"_s, u""_s},
            {Patched(good, 4, "Standard Jot DB"), u"no Access file"_s, u""_s},
            {Patched(good, 20, QByteArrayView("\0", 1)), u"Access 97"_s, u""_s},
            {Patched(good, 20, "\2"), u"Access 2007"_s, u""_s},
            {Patched(good, 4, "Standard ACE DB"), u"Access 2007"_s, u""_s},
            {Patched(good, 62, "x"), u"encrypted"_s, u""_s},
            {Patched(good, 68, "x"), u""_s, u"password"_s},
            {Patched(good, qsizetype{2} * 4096, "\1"), u"damaged"_s, u""_s},  // the catalogue
            {Patched(good, 4096 + mapRow, references), u""_s, u"free pages"_s},
        };
        for (const auto& [file, refused, readOnly] : cases) {
            SimulatedDisk disk;
            disk.Put(kPath, file);
            QString reason;
            try {
                Database database(disk, kPath);
                QVERIFY(database.ReadOnlyReason().contains(readOnly) &&
                        database.ReadOnlyReason().isEmpty() == readOnly.isEmpty());
                QCOMPARE(Write(database, false, {}, u"x"_s).isEmpty(), readOnly.isEmpty());
                QVERIFY(!database.Find(kCategories).Scan().AtEnd());
            } catch (const AccessError& error) {
                reason = error.Message();
            }
            QVERIFY2(reason.contains(refused) && reason.isEmpty() == refused.isEmpty(), qPrintable(reason));
            QCOMPARE(disk.Bytes(kPath) == file, !refused.isEmpty() || !readOnly.isEmpty());
            QCOMPARE(disk.Names(), QStringList{kPath});
        }
    }

    void RespectsOthers() {
        const QByteArray slot =
            QByteArray("OFFICE-7").leftJustified(32, '\0') + QByteArray("Admin").leftJustified(32, '\0');
        SimulatedDisk disk;
        disk.Put(kPath, Fixture());
        disk.Put(u"/data/file.ldb"_s, slot);
        QVERIFY(Database(disk, kPath).ReadOnlyReason().contains(u"OFFICE-7"_s));
        QCOMPARE(disk.Bytes(u"/data/file.ldb"_s), slot);
        disk.Remove(u"/data/file.ldb"_s);

        auto first = std::make_unique<Database>(disk, kPath);
        QCOMPARE(first->ReadOnlyReason(), QString());
        QVERIFY(Database(disk, kPath).ReadOnlyReason().contains(u"WORKBENCH"_s));
        QVERIFY(disk.Exists(u"/data/file.ldb"_s));

        // Another program writes without asking.
        QCOMPARE(Write(*first, false, {}, u"一"_s), QString());
        const QByteArray others = Patched(Fixture(), 4096 * 46 + 4095, "\1");
        disk.Open(kPath, FileSystem::Mode::ReadWrite)->Write(0, others);
        QVERIFY(Write(*first, false, {}, u"二"_s).contains(u"another program"_s));
        QVERIFY_THROWS_EXCEPTION(AccessError, first->EndSubmit());
        first.reset();
        QCOMPARE(disk.Bytes(kPath), others);
        Database second(disk, kPath);
        QCOMPARE(Write(second, false, {}, u"三"_s), QString());
        second.EndSubmit();
        QCOMPARE(disk.Names().filter(u"-redo"_s).size(), 1);  // the lost statement is told, not dropped
    }

    void Grows_data() {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("every");
        QTest::addColumn<int>("pages");
        // The map of free pages outgrows its row; an index's map names pages that the map of free pages gives
        // free.
        QTest::newRow("long memos") << Fixture("lighting-2003-memo.mdb") << 61'080 << 20
                                    << 512;  // 30 whole pieces
        QTest::newRow("long texts") << Fixture("general-large.mdb") << 255 << 2 << 300;
    }

    // More rows come and go on a page than its slots can number, and a row moves to and fro.
    void Grows() {
        QFETCH(QByteArray, file);
        QFETCH(int, length);
        QFETCH(int, every);
        QFETCH(int, pages);
        constexpr int kRounds = 600;
        SimulatedDisk disk;
        disk.Put(kPath, file);
        Database database(disk, kPath);
        Table& categories = database.Find(kCategories);
        Table& luminaires = database.Find(u"灯具"_s);
        QStringList expected = Texts(luminaires);
        const qsizetype before = Texts(categories).size();
        const RowAddress moving = luminaires.Scan().Row().home;
        for (const int ID : {1000, 500}) {  // the next AutoNumber is 1001 nevertheless
            QCOMPARE(Write(database, false, qint64{ID}, u"x"_s), QString());
        }
        for (int round = 0; round < kRounds; ++round) {
            database.BeginStatement();
            const RowAddress row = categories.Insert({{}, QString::number(round)});
            if (round % 2 == 0) {
                categories.Delete(row);
                const auto withRoom = MappedPages(database.AllPages(), categories.Definition().withRoom);
                QCOMPARE(std::count(withRoom.begin(), withRoom.end(), row.page), row.row == 254 ? 0 : 1);
            }
            if (round % every == 0) {
                std::vector<Value> values(luminaires.Columns().size());
                values.back() = QString(length, QChar(u'甲' + round));
                luminaires.Insert(values);
                expected += QString(length, QChar(u'甲' + round));
            }
            std::vector<std::optional<Value>> name(luminaires.Columns().size());
            name[2] = QString(round * 37 % 127, u'名') + QString(round * 37 % 127, u'x') + u'一';
            luminaires.Update(moving, name);
            QCOMPARE(luminaires.Read(*luminaires.Find(moving), luminaires.Columns()[2]), *name[2]);
            database.Commit();
        }
        database.EndSubmit();
        QCOMPARE(CountStates(database.AllPages(), luminaires, SlotState::Target),
                 CountStates(database.AllPages(), luminaires, SlotState::Pointer));
        QVERIFY(disk.Bytes(kPath).size() > qsizetype{4096} * pages);
        RewriteLongMemos(database);
        QCOMPARE(Texts(categories).size(), before + 2 + kRounds / 2);
        expected.sort();
        QCOMPARE(Texts(luminaires), expected);
        QCOMPARE(CheckFile(database), QStringList());
    }

    void RefusesToExceedTwoGigabytes() {
        const QString path = m_folder.filePath(u"large.mdb"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(Fixture("lighting-2003-memo.mdb"));
        QVERIFY(file.resize(qint64{4096} * 524'280));  // without a byte on the disk
        file.close();
        Database database(NativeFiles(), path);
        Table& luminaires = database.Find(u"灯具"_s);
        std::vector<Value> values(luminaires.Columns().size());
        values.back() = QString(2'000'000, u'甲');
        database.BeginStatement();
        try {
            luminaires.Insert(values);
            QFAIL("inserted");
        } catch (const AccessError& error) {
            QVERIFY2(error.Message().contains(u"2 GB"_s), qPrintable(error.Message()));
        }
        database.Rollback();
        database.EndSubmit();
        QCOMPARE(QFileInfo(path).size(), qint64{4096} * 524'280);
    }

    void RefusesValues() {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        // Whether category 1 is updated, or else a row inserted; its ID, its text, and why it is refused.
        const std::tuple<bool, Value, Value, QString> cases[] = {
            {false, {}, QString(255, u'长'), u""_s},
            {false,
             {},
             QString(256, u'x'),
             u"table 光源类别, row 21: column LamphouseType: the text has 256"_s},
            {false, {}, QString(QChar(0xFEFF)), u"byte order mark"_s},
            {true, qint64{1}, QString(QChar(0xD83D)), u"row 1: column LamphouseType: the text holds half"_s},
            {false, {}, u""_s, u""_s},
            {false, {}, {}, u""_s},
            {false, {}, 1.5, u""_s},
            {false, {}, QByteArray("x"), u"takes texts"_s},
            {false, qint64{7}, u"x"_s, u"row 7: index PrimaryKey has the same value"_s},
            {false, qint64{70}, u"x"_s, u""_s},
            {true, qint64{70}, u"x"_s, u"row 1: column ID: an AutoNumber cannot be changed"_s},
            {true, 1.0, u"x"_s, u""_s},
            {false, qint64{1} << 31, u"x"_s, u"is not between"_s},
            {false, 7.5, u"x"_s, u"column ID: the column takes whole numbers"_s},
            {false, kInfinity, u"x"_s, u"is no number"_s},
        };
        for (const auto& [update, id, name, reason] : cases) {
            SimulatedDisk disk;
            disk.Put(kPath, Fixture());
            {
                Database database(disk, kPath);
                const QString message = Write(database, update, id, name);
                QVERIFY2(message.contains(reason) && message.isEmpty() == reason.isEmpty(),
                         qPrintable(message));
            }
            QCOMPARE(disk.Bytes(kPath) == Fixture(), !reason.isEmpty());
        }
    }

private:
    QTemporaryDir m_folder;
};

QTEST_APPLESS_MAIN(TestAccessLimits)
#include "test_access_limits.moc"
