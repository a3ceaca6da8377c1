// Who else has the file, what its columns can hold, and how far it grows.

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include "data/store/access/check/file_check.h"
#include "data/store/access/database.h"
#include "tests/data/simulated_disk.h"
#include "tests/support/files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane::access;

namespace {

const QString kPath = u"/data/file.mdb"_s;
const QString kCategories = u"光源类别"_s;

QByteArray Fixture(const char* name) {
    return quorvane::Contents(QStringLiteral(ACCESS_FIXTURES "/") + QLatin1String(name));
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

// Inserts a category; the reason when that is refused.
QString Insert(Database& database, const Value& id) {
    try {
        database.BeginStatement();
        database.Find(kCategories).Insert({id, u"x"_s});
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
    void RespectsOthers() {
        SimulatedDisk disk;
        const QByteArray file = Fixture("lighting-general.mdb");
        disk.Put(kPath, file);
        auto first = std::make_unique<Database>(disk, kPath);
        QCOMPARE(first->ReadOnlyReason(), QString());
        QVERIFY(Database(disk, kPath).ReadOnlyReason().contains(u"WORKBENCH"_s));
        QVERIFY(disk.Exists(u"/data/file.ldb"_s));

        // A log that can be neither written nor removed is used again.
        disk.Plan(2, SimulatedDisk::Trouble::Failure);
        QVERIFY(!Insert(*first, {}).isEmpty());
        disk.Plan(1, SimulatedDisk::Trouble::Failure);
        QVERIFY_THROWS_EXCEPTION(AccessError, first->EndSubmit());
        // Another program writes without asking.
        QCOMPARE(Insert(*first, {}), QString());
        const QByteArray others = QByteArray(file).replace(4096 * 46 + 4095, 1, "\1");
        disk.Open(kPath, FileSystem::Mode::ReadWrite)->Write(0, others);
        QVERIFY(Insert(*first, {}).contains(u"其他程序"_s));
        QVERIFY_THROWS_EXCEPTION(AccessError, first->EndSubmit());
        first.reset();
        Database second(disk, kPath);
        QCOMPARE(disk.Bytes(kPath), others);
        QCOMPARE(Insert(second, {}), QString());
        second.EndSubmit();
        // The lost statement is told, not dropped.
        QCOMPARE(disk.Names().filter(u"-redo"_s), QStringList(second.LogAside()));
    }

    // A row gives back what a column took. What would come back as another value is refused.
    void ColumnsHoldNumbersExactly() {
        SimulatedDisk disk;
        disk.Put(kPath, Fixture("lighting-general.mdb"));
        const Database database(disk, kPath);
        const std::tuple<ColumnType, Value, std::optional<Value>> cases[] = {
            {ColumnType::Currency, -0.0001, -0.0001}, {ColumnType::Currency, 0.00001, {}},
            {ColumnType::Single, 0.74, 0.74},         {ColumnType::Single, 0.7400000001, {}},
            {ColumnType::Integer, qint64{32768}, {}}, {ColumnType::Boolean, qint64{-1}, qint64{1}},
        };
        for (const auto& [type, value, held] : cases) {
            TableDefinition table;
            table.maxColumns = 1;
            Column& column =
                table.columns.emplace_back(Column{.name = {}, .type = type, .sortOrder = {}, .fixed = true});
            try {
                const StoredValue stored = ToStored(value, column);
                column.length = static_cast<int>(stored->size());
                const QByteArray row = EncodeRow(table, {stored});
                QVERIFY(ReadValue(database.AllPages(), RowView(table, row).All()[0], column) == held);
            } catch (const AccessError&) {
                QVERIFY(!held);
            }
        }
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
            QCOMPARE(Insert(database, qint64{ID}), QString());
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
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"large.mdb"_s);
        quorvane::WriteFile(path, Fixture("lighting-2003-memo.mdb"));
        QVERIFY(QFile::resize(path, qint64{4096} * 524'280));  // without a byte on the disk
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
};

QTEST_APPLESS_MAIN(TestAccessLimits)
#include "test_access_limits.moc"
