#include <QTest>
#include <limits>

#include "editors/text_checks.h"
#include "editors/working_records.h"

using namespace quorvane;

namespace {

struct Row {
    int ID = 0;
    int value = 0;
    bool operator==(const Row&) const = default;
};

// The file behind WorkingRecords, with statements that can be made to fail.
struct FakeTable {
    SubmitFailures Submit(WorkingRecords<Row>& records) {
        return records.Submit([](const Row& row) { return row.ID == 0; },
                              [this](Row& row) {
                                  log.push_back({'i', row.ID});
                                  row.ID = fails ? row.ID : ++lastId;
                                  return !fails;
                              },
                              [this](const Row& row) {
                                  log.push_back({'u', row.ID});
                                  return !fails;
                              },
                              [this](int id) {
                                  log.push_back({'d', id});
                                  return !fails;
                              });
    }

    using Log = std::vector<std::pair<char, int>>;
    Log log;
    int lastId = 100;
    bool fails = false;
};

}  // namespace

class TestTextChecks : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RealCheck();
    void IntegerCheck();
    void Splitting();
    void SubmitWritesThenDeletes();
    void FailuresStayInSight();
    void OnlyChangesModify();
};

void TestTextChecks::RealCheck() {
    const std::vector<std::pair<CString, double>> accepted{
        {u"0"_qs, 0}, {u" 12.5\t"_qs, 12.5}, {u".5"_qs, 0.5}, {u"5."_qs, 5}, {u"0007"_qs, 7}};
    for (const auto& [text, value] : accepted) {
        QVERIFY2(CheckReal(text).has_value(), qUtf8Printable(text));
        QCOMPARE(*CheckReal(text), value);
    }
    for (const CString& text : {u""_qs, u" "_qs, u"."_qs, u"-5"_qs, u"+5"_qs, u"1.2.3"_qs, u"1e5"_qs,
                                u"1,5"_qs, u"１２"_qs, u"٣"_qs, u"1 2"_qs, u"NaN"_qs, CString(400, u'9')}) {
        QVERIFY2(!CheckReal(text).has_value(), qUtf8Printable(text));
    }
}

void TestTextChecks::IntegerCheck() {
    const std::vector<std::pair<CString, int>> accepted{
        {u""_qs, 0},   {u"-"_qs, 0},     {u"-1"_qs, -1},
        {u"+5"_qs, 5}, {u"300"_qs, 300}, {u"99999999999"_qs, std::numeric_limits<int>::max()}};
    for (const auto& [text, value] : accepted) {
        QVERIFY2(CheckInteger(text).has_value(), qUtf8Printable(text));
        QCOMPARE(*CheckInteger(text), value);
    }
    for (const CString& text : {u" 5"_qs, u"5 "_qs, u"5-"_qs, u"1.5"_qs, u"abc"_qs, u"３"_qs, u"-+5"_qs}) {
        QVERIFY2(!CheckInteger(text).has_value(), qUtf8Printable(text));
    }
}

void TestTextChecks::Splitting() {
    using Pieces = std::vector<CString>;
    QCOMPARE(Split(u"80,50,20,"_qs, u','), Pieces({u"80"_qs, u"50"_qs, u"20"_qs}));
    QCOMPARE(Split(u",a,,b"_qs, u','), Pieces({u""_qs, u"a"_qs, u""_qs, u"b"_qs}));
    QCOMPARE(Split(u"a"_qs, u','), Pieces({u"a"_qs}));
    QCOMPARE(Split(u""_qs, u','), Pieces());
}

void TestTextChecks::SubmitWritesThenDeletes() {
    WorkingRecords<Row> records;
    records.BeginLoad() = {{7, 1}, {8, 2}, {9, 3}};
    QCOMPARE(records.Append({}), -1);
    QCOMPARE(records.Append({}), -2);
    records.Remove(8);
    records.Remove(-1);
    FakeTable table;
    QVERIFY(table.Submit(records).None());
    QCOMPARE(table.log, FakeTable::Log({{'u', 7}, {'u', 9}, {'i', -2}, {'d', 8}, {'d', -1}}));
    QVERIFY(!records.IsModified() && records.Find(101) != nullptr);
    table.log.clear();
    table.Submit(records);
    QCOMPARE(table.log, FakeTable::Log({{'u', 7}, {'u', 9}, {'u', 101}}));
    records.BeginLoad().clear();
    QCOMPARE(records.Append({}), -1);
}

void TestTextChecks::FailuresStayInSight() {
    WorkingRecords<Row> records;
    records.BeginLoad() = {{7, 1}, {8, 2}};
    records.Append({});
    records.Remove(8);
    FakeTable table;
    table.fails = true;
    const SubmitFailures failures = table.Submit(records);
    QCOMPARE(failures.writes, 2);
    QCOMPARE(failures.deletes, 1);
    QVERIFY(records.IsUnwritten(7) && records.IsUnwritten(-1) && records.IsUnwritten(8));
    QCOMPARE(records.Records().size(), size_t{3});  // the record that still stands in the file is back
    table.fails = false;
    QVERIFY(table.Submit(records).None());
    QVERIFY(!records.IsUnwritten(7) && records.Find(101) != nullptr);
}

void TestTextChecks::OnlyChangesModify() {
    WorkingRecords<Row> records;
    records.BeginLoad() = {{7, 1}};
    records.Replace({7, 1});
    QVERIFY(!records.IsModified());
    records.Replace({7, 2});
    QVERIFY(records.IsModified());
    QCOMPARE(records.Find(7)->value, 2);
    records.DiscardChanges();
    QVERIFY(!records.IsModified());
}

QTEST_APPLESS_MAIN(TestTextChecks)
#include "test_text_checks.moc"
