#include <QRandomGenerator>
#include <QStringList>
#include <QTest>

#include "model/records/working_records.h"

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

void Compare(const WorkingRecords<Item>& records, const std::pair<std::vector<Item>, int>& expected) {
    const auto& [plain, draft] = expected;
    QCOMPARE(records.Draft().value, draft);
    QCOMPARE(records.Count(), static_cast<int>(plain.size()));
    for (int at = 0; at < records.Count(); ++at) {
        QVERIFY(records.At(at) == plain[static_cast<size_t>(at)]);
        QCOMPARE(records.Find(records.At(at).ID), &records.At(at));
    }
    QVERIFY(records.IsModified() || records.EditCount() == records.RemovedCount());
}

}  // namespace

class TestWorkingRecords : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A plain list after each step, and the steps undone and done again at random; at last undone to the
    // file.
    void AgreesWithAPlainList() {
        using Plain = std::vector<Item>;
        QRandomGenerator random(7);
        for (const int count : {0, 1, 5, 64, 100}) {
            WorkingRecords<Item> records;
            records.TakeLoaded(Loaded(count));
            int lastId = 0;
            std::vector<std::pair<Plain, int>> done{{Loaded(count), 0}};  // with the drafts
            std::vector<std::pair<Plain, int>> undone;
            for (int step = 1; step <= 400; ++step) {
                auto [plain, draft] = done.back();
                const int kind = random.bounded(step < 150 ? 6 : 8);
                if (kind == 0 && done.size() > 1) {
                    records.Undo();
                    undone.push_back(done.back());
                    done.pop_back();
                } else if (kind == 1 && !undone.empty()) {
                    records.Redo();
                    done.push_back(undone.back());
                    undone.pop_back();
                } else {
                    const StepScope scope(records, u"step"_s);
                    bool changes = false;
                    for (int change = random.bounded(1, 4); change > 0; --change) {
                        const int position = random.bounded(std::max(1, static_cast<int>(plain.size())));
                        const Plain before = plain;
                        if (kind == 2 || plain.empty()) {
                            QCOMPARE(records.Append({0, step}), --lastId);
                            plain.push_back({lastId, step});
                            records.SetDraft({0, draft = step});
                        } else if (kind <= 5) {
                            plain[static_cast<size_t>(position)].value = random.bounded(3);
                            records.Replace(plain[static_cast<size_t>(position)]);
                        } else {
                            const int id = plain[static_cast<size_t>(position)].ID;
                            records.Remove(id);
                            QVERIFY(records.Find(id) == nullptr);
                            plain.erase(plain.begin() + position);
                        }
                        changes = changes || plain != before;
                    }
                    if (changes) {
                        done.emplace_back(plain, draft);
                        undone.clear();
                    }
                }
                Compare(records, done.back());
                QCOMPARE(records.UndoName() == nullptr, done.size() == 1);
                QCOMPARE(records.RedoName() == nullptr, undone.empty());
            }
            for (; done.size() > 1; done.pop_back()) {
                Compare(records, done.back());
                records.Undo();
            }
            Compare(records, done.back());
            QVERIFY(!records.IsModified() && records.EditCount() == 0 && records.UndoName() == nullptr);
            Table table;
            records.Submit(table.Statements());
            QCOMPARE(table.statements.size(), count);  // the updates: nothing is inserted or deleted
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
                QCOMPARE(records.WhyUnwritten(id).why, expected[id - 1]);
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
        records.Replace({1, 5});
        const int id = records.Append({0, 7});
        Table table;
        table.failing = QStringList{u"insert 7"_s};
        QCOMPARE(records.SubmitOne(id, table.Statements()).StoredId(), 0);
        QVERIFY(records.IsUnwritten(id));
        table.failing.clear();
        QCOMPARE(records.SubmitOne(id, table.Statements()).StoredId(), 101);
        QVERIFY(!records.HasUnwritten() && records.IsModified());
        QCOMPARE(records.Find(101)->value, 7);
        // That is not undone, what was done before is.
        QCOMPARE(*records.Stored(101), (Item{101, 7}));
        QCOMPARE(*records.Stored(1), (Item{1, 0}));
        records.Undo();
        QCOMPARE(Shown(records), u"1:0 101:7"_s);
        QVERIFY(records.UndoName() == nullptr && records.EditCount() == 0);
        records.Redo();
        records.Submit(table.Statements());
        QVERIFY(records.UndoName() == nullptr && *records.Stored(1) == (Item{1, 5}));
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
