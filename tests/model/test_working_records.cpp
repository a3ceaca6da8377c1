#include <QRandomGenerator>
#include <QStringList>
#include <QTest>

#include "model/working_records.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

struct Item {
    int ID = 0;
    int value = 0;

    bool operator==(const Item&) const = default;
};

bool IsSameInFile(const Item& left, const Item& right) {
    return left == right;
}

std::vector<Item> Loaded(int count) {
    std::vector<Item> items;
    for (int id = 1; id <= count; ++id) {
        items.push_back({id, 0});
    }
    return items;
}

// A table whose statements are recorded; those with a text in `failing` fail.
struct Table {
    RecordStatements<Item> Statements() {
        return {.isBlank = [](const Item& item) { return item.value == 99; },
                .insert =
                    [this](Item& item) {
                        const bool done = Run(u"insert %1"_s.arg(item.value));
                        item.ID = done ? ++lastId : item.ID;
                        return done;
                    },
                .update = [this](Item& item) { return Run(u"update %1"_s.arg(item.ID)); },
                .remove = [this](int id) { return Run(u"delete %1"_s.arg(id)); }};
    }
    bool Run(const QString& statement) {
        statements += statement;
        return !failing.contains(statement);
    }

    QStringList statements;
    QStringList failing;
    int lastId = 100;
};

QString Shown(const WorkingRecords<Item>& records) {
    QStringList texts;
    records.ForEach([&](const Item& item) { texts += u"%1:%2"_s.arg(item.ID).arg(item.value); });
    return texts.join(u' ');
}

}  // namespace

class TestWorkingRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AgreesWithAPlainList() {
        QRandomGenerator random(7);
        for (const int count : {0, 1, 5, 64, 100}) {
            WorkingRecords<Item> records;
            std::vector<Item> plain = Loaded(count);
            records.TakeLoaded(plain);
            int lastId = 0;
            for (int step = 0; step < 300; ++step) {
                const int position = plain.empty() ? 0 : random.bounded(static_cast<int>(plain.size()));
                const int kind = plain.empty() ? 0 : random.bounded(step < 150 ? 3 : 5);
                if (kind == 0) {
                    QCOMPARE(records.Append({0, step}), --lastId);
                    plain.push_back({lastId, step});
                } else if (kind == 1) {
                    plain[static_cast<size_t>(position)].value = step;
                    records.Replace(plain[static_cast<size_t>(position)]);
                } else {
                    const int id = plain[static_cast<size_t>(position)].ID;
                    records.Remove(id);
                    QVERIFY(records.Find(id) == nullptr);
                    plain.erase(plain.begin() + position);
                }
                QCOMPARE(records.Count(), static_cast<int>(plain.size()));
                for (int at = 0; at < records.Count(); ++at) {
                    QVERIFY(records.At(at) == plain[static_cast<size_t>(at)]);
                    QCOMPARE(records.Find(records.At(at).ID), &records.At(at));
                }
            }
        }
    }

    void ModifiedIsWhatSaysSomethingNew() {
        WorkingRecords<Item> records;
        records.TakeLoaded(Loaded(2));
        records.Replace({1, 0});
        records.Remove(2);
        QVERIFY(!records.IsModified());
        records.Replace({1, 5});
        QVERIFY(records.IsModified());
        records.SetModified(false);
        records.Replace({77, 0});
        QVERIFY(records.IsModified());
        records.TakeLoaded({});
        QVERIFY(!records.IsModified());
        records.Append({});
        QVERIFY(records.IsModified());
    }

    void SubmitWritesAndRemembersFailures() {
        WorkingRecords<Item> records;
        records.TakeLoaded(Loaded(5));
        records.Replace({2, 99});
        records.Append({0, 7});
        records.Append({0, 8});
        records.Append({0, 9});
        for (const int id : {4, 3, -3}) {
            records.Remove(id);
        }
        Table table;
        table.failing = QStringList{u"update 1"_s, u"insert 8"_s, u"delete 4"_s, u"delete -3"_s};
        QStringList progress;
        const SubmitFailures failures = records.Submit(
            table.Statements(), [&](int done, int total) { progress += u"%1/%2 "_s.arg(done).arg(total); });
        QCOMPARE(table.statements.join(u','),
                 u"update 1,update 5,insert 7,insert 8,delete 4,delete 3,delete -3"_s);
        QCOMPARE(progress.size(), 8);
        QCOMPARE(progress.constLast(), u"8/8 "_s);
        QCOMPARE(failures.writes, 1);  // nobody has changed record 1
        QCOMPARE(failures.deletes, 1);
        QCOMPARE(failures.row, 5);
        QCOMPARE(Shown(records), u"1:0 2:99 5:0 101:7 -2:8 4:0"_s);
        QCOMPARE(records.Find(101)->value, 7);
        QVERIFY(records.Find(-1) == nullptr && records.Find(4) != nullptr);
        QVERIFY(records.IsModified() && records.HasUnwritten());
        for (const int id : {1, -2, 4, 5, 101}) {
            QCOMPARE(records.IsUnwritten(id), id == -2 || id == 4);
        }
        // Nothing is deleted a second time, and nothing is unwritten any more.
        table = {};
        QVERIFY(records.Submit(table.Statements()).None() && !records.HasUnwritten());
        QCOMPARE(table.statements.join(u','), u"update 1,update 5,update 101,insert 8,update 4"_s);
    }

    // The slice of a record is its tens. One of those in the file cannot be read to its end.
    void WhatTheFileDoesNotHoldCountsAsUnwritten() {
        using enum Unwritten;
        const auto slice = [](const Item& item) { return QString::number(item.value / 10); };
        for (const bool isComplete : {true, false}) {
            QStringList read;
            StoredRecords<Item> file(
                slice,
                [&](const QString& name, std::vector<Item>& items) {
                    read += name;
                    items = name == u"0"_s ? std::vector<Item>{{1, 1}, {2, 7}} : std::vector<Item>{{4, 14}};
                    return isComplete;
                },
                u"0"_s);
            WorkingRecords<Item> records;
            records.TakeLoaded({{1, 1}, {2, 2}, {3, 3}, {4, 14}, {5, 15}, {6, 99}, {7, 7}});
            records.Replace({7, 8});
            Table table;
            table.failing = QStringList(u"update 7"_s);
            SubmitFailures failures = records.Submit(table.Statements());
            records.Compare(file, table.Statements().isBlank, failures);
            const Unwritten missing = isComplete ? Missing : No;
            const Unwritten expected[] = {No, Different, missing, No, missing, No, Failed};
            for (int id = 1; id <= 7; ++id) {
                QCOMPARE(records.WhyUnwritten(id), expected[id - 1]);
            }
            QCOMPARE(failures.different, isComplete ? 3 : 1);
            QCOMPARE(failures.unread, isComplete ? 0 : 2);
            QCOMPARE(read, QStringList({u"0"_s, u"1"_s}));
            QVERIFY(records.IsModified());
        }
    }

    void OneIsSavedAtOnce() {
        WorkingRecords<Item> records;
        records.TakeLoaded(Loaded(1));
        const int id = records.Append({0, 7});
        Table table;
        table.failing = QStringList{u"insert 7"_s};
        QCOMPARE(records.SubmitOne(id, table.Statements()).StoredId(), 0);
        QVERIFY(records.IsUnwritten(id));
        table.failing.clear();
        QCOMPARE(records.SubmitOne(id, table.Statements()).StoredId(), 101);
        QVERIFY(!records.HasUnwritten() && records.IsModified());
        QCOMPARE(records.Find(101)->value, 7);
    }

    void LoadsKeepConfirmedDeletions() {
        WorkingRecords<Item> records;
        records.TakeLoaded(Loaded(3));
        records.Append({});
        records.Remove(-1);
        records.Remove(2);
        records.TakeLoaded(Loaded(3));
        QCOMPARE(Shown(records), u"1:0 3:0"_s);
        QCOMPARE(records.Append({}), -1);
        Table table;
        records.Submit(table.Statements());
        QCOMPARE(table.statements.constLast(), u"delete 2"_s);
        QVERIFY(!table.statements.contains(u"delete -1"_s));
        records.Remove(3);
        records.DiscardChanges();
        records.TakeLoaded(Loaded(3));
        QCOMPARE(records.Count(), 3);
    }

    // Other programs can store them.
    void StoredNegativeIdsAreNotNew() {
        WorkingRecords<Item> records;
        records.TakeLoaded({{-1, 0}, {-5, 0}, {3, 0}});
        QCOMPARE(records.Append({0, 7}), -6);
        records.Remove(-5);
        Table table;
        table.failing = QStringList{u"delete -5"_s};
        QCOMPARE(records.Submit(table.Statements()).deletes, 1);
        QCOMPARE(table.statements.join(u','), u"update -1,update 3,insert 7,delete -5"_s);
    }

    void SerialIdsGoOnAboveTheHighest() {
        WorkingRecords<Item> records(NewIds::Serial);
        records.TakeLoaded(Loaded(3));
        records.Remove(2);
        QCOMPARE(records.Append({}), 4);
    }
};

QTEST_APPLESS_MAIN(TestWorkingRecords)
#include "test_working_records.moc"
