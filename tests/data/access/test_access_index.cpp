// Changing an index in place, against a sorted set of the entries it should hold.

#include <QTest>
#include <random>
#include <set>

#include "data/store/access/disk/paged_file.h"
#include "data/store/access/index/index_writer.h"
#include "data/store/access/index/key.h"
#include "tests/data/simulated_disk.h"
#include "tests/support/files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane::access;

namespace {

using Entries = std::set<QByteArray>;

// Keys with many equal ones; long ones with long common beginnings; rising ones.
QByteArray MakeKey(int style, std::mt19937& random, int step) {
    QByteArray key;
    if (style == 0) {
        const int number = static_cast<int>(random() % 500);
        AppendKey(key, {}, QByteArray(reinterpret_cast<const char*>(&number), 4));
    } else if (style == 1) {
        const QString text =
            QString(static_cast<qsizetype>(random() % 12), u'a') + QString::number(random() % 90);
        AppendTextKey(key, {ColumnType::Text, true, kGeneralOrder}, text);
    } else {
        AppendKey(key, {}, QByteArray(reinterpret_cast<const char*>(&step), 4));
    }
    return key;
}

void Compare(const Index& index, const UsageMap& map, const Entries& expected) {
    Entries found;
    for (IndexCursor cursor = index.First(); !cursor.AtEnd(); cursor.MoveNext()) {
        found.insert(found.end(), cursor.Entry());
    }
    QVERIFY(found == expected);
    Entries backwards;
    for (IndexCursor cursor = index.Last(); !cursor.AtEnd(); cursor.MovePrevious()) {
        backwards.insert(backwards.begin(), cursor.Entry());
    }
    QVERIFY(backwards == expected);
    QCOMPARE(map.All(), index.CheckedPages());
}

}  // namespace

class TestAccessIndex : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RandomChangesKeepTheTree_data() {
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("capacity");
        QTest::addColumn<int>("levels");  // that the tree reaches
        QTest::newRow("equal keys") << 0 << 60 << 4;
        QTest::newRow("texts") << 1 << 100 << 4;
        QTest::newRow("rising keys") << 2 << 60 << 4;
        QTest::newRow("texts, whole pages") << 1 << int{kIndexCapacity} << 2;
    }

    void RandomChangesKeepTheTree() {
        QFETCH(int, style);
        QFETCH(int, capacity);
        QFETCH(int, levels);
        SimulatedDisk disk;
        disk.Put(u"/a.mdb"_s, quorvane::Contents(QStringLiteral(ACCESS_FIXTURES "/lighting-general.mdb")));
        PagedFile pages(disk, u"/a.mdb"_s, true);
        pages.BeginStatement();
        const TableDefinition table = ReadTableDefinition(pages, 24);
        const IndexDescription& description = table.indexes.front();
        PageAllocator allocator(pages, [&] { return std::vector<bool>(pages.Count()); });
        const UsageMap map(pages, description.map);
        const Index index(pages, table, description);
        IndexWriter writer(pages, allocator, table, description, capacity);

        Entries expected;
        for (IndexCursor cursor = index.First(); !cursor.AtEnd(); cursor.MoveNext()) {
            expected.insert(cursor.Entry());
        }
        std::mt19937 random(static_cast<unsigned>(style * 7919 + capacity));
        const auto removeOne = [&] {
            auto entry = expected.begin();
            std::advance(entry, static_cast<int>(random() % expected.size()));
            writer.Remove(KeyOfEntry(*entry), RowOfEntry(*entry));
            expected.erase(entry);
        };
        int mostLevels = 1;
        std::size_t unique = UniqueEntryCount(pages, table, description);
        for (int step = 0; step < 3000; ++step) {
            const bool grow = step % 1000 < 600 ? random() % 4 != 0 : random() % 4 == 0;
            if (grow || expected.empty()) {
                const QByteArray key = MakeKey(style, random, step);
                const RowAddress row{static_cast<PageNumber>(1000 + step), static_cast<quint8>(random())};
                const auto next = expected.lower_bound(key);
                unique += next == expected.end() || KeyOfEntry(*next) != key ? 1 : 0;
                writer.Insert(key, row);
                expected.insert(IndexEntry(key, row));
            } else {
                removeOne();
            }
            if (step % 100 == 0) {
                Compare(index, map, expected);
                mostLevels =
                    std::max(mostLevels, IndexPageView(pages, description.root, table.page).Level() + 1);
            }
            if (QTest::currentTestFailed()) {
                QFAIL(qPrintable(QStringLiteral("step %1").arg(step)));
            }
        }
        QVERIFY2(mostLevels >= levels, qPrintable(QString::number(mostLevels)));
        QCOMPARE(UniqueEntryCount(pages, table, description), unique);
        while (!expected.empty()) {
            removeOne();
        }
        Compare(index, map, expected);
        QCOMPARE(index.CheckedPages(), std::vector<PageNumber>{description.root});
    }
};

QTEST_GUILESS_MAIN(TestAccessIndex)
#include "test_access_index.moc"
