#include <QTest>

#include "model/factor_table/factor_table_editing.h"
#include "model/records/index_after_change.h"
#include "tests/support/failing_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Branch = FactorTableBranch;

// The headings 80,50,20 and 70,50,20 and the row values 0.6 and 1.256.
struct Fixture : FailingDatabase {
    Fixture()
        : FailingDatabase(
              u"insert into 利用系数 values (1,7,80,50,20,0.6,0.61),(2,7,80,50,20,1.256,0.52),"
              "(3,7,70,50,20,0.6,0.634),(4,7,70,50,20,1.256,0.54)"_s) {
        Load();
    }
    bool Load() { return editing.Load(7); }
    QStringList Labels(Branch branch) const {
        QStringList labels;
        for (int index = 0; index < editing.Count(branch); ++index) {
            labels += editing.Label(branch, index);
        }
        return labels;
    }

    FactorTableEditing editing{database, [](const CString&) {}};
};

}  // namespace

class TestFactorTableEditing : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void LabelsAreUnderstoodOrRefused() {
        // typed=label; without "=": refused
        const QStringList headings =
            u"10,20,30=10,20,30;60,50,20,=60,50,20;-0,50,20=0,50,20;60,,20=60,0,20;,,,=0,0,0;+5+5,1,1=5,1,1;"
            "100,0,100=100,0,100;,,;60,50;60,50,20,10;60,50,20,,;101,50,20;-1,50,20;60, 50,20;60.0,50,20;a,b,c"_s
                .split(u';');
        const QStringList rows = u" 2 =2.00;.5=0.50;5.=5.00;1.254=1.25;-1;+1;1e2;1.2.3;.;1,5"_s.split(u';');
        Fixture fixture;
        for (const Branch branch : {Branch::Headings, Branch::Rows}) {
            for (const QString& text : branch == Branch::Headings ? headings : rows) {
                for (const int index : {-1, 1}) {
                    fixture.Load();
                    const QStringList before = fixture.Labels(branch);
                    const bool valid = text.contains(u'=');
                    QCOMPARE(fixture.editing.TakeLabel(branch, index, text.section(u'=', 0, 0)), valid);
                    QCOMPARE(fixture.editing.IsModified(), valid);
                    QStringList expected = before;
                    index < 0 ? expected.append(text.section(u'=', 1))
                              : expected.replace(1, text.section(u'=', 1));
                    expected = valid ? expected : before;
                    QStringList labels = fixture.Labels(branch);
                    expected.sort();
                    labels.sort();
                    QCOMPARE(labels, expected);
                }
            }
        }
    }

    void RowValuesAreThoseThatTheFileKeeps() {
        Fixture fixture;
        QVERIFY(fixture.editing.TakeLabel(Branch::Rows, -1, u"2.23456789"_s));
        QCOMPARE(fixture.editing.Table().RowValues()[2], 2.23457);
        QVERIFY(fixture.editing.TakeLabel(Branch::Rows, 1, u"2.234568"_s));     // the same six digits
        QVERIFY(fixture.editing.TakeLabel(Branch::Rows, 1, u"1.26"_s, false));  // as it is shown
        QCOMPARE(fixture.editing.Table().RowValues()[1], 1.256);
    }

    void OnlyChangesModify() {
        using Edit = void (*)(FactorTableEditing&);
        const std::tuple<const char*, Edit, bool> edits[] = {
            {"a heading as it was", [](auto& e) { e.TakeLabel(Branch::Headings, 0, u"80,50,20"_s); }, false},
            {"a rounded row value looked at", [](auto& e) { e.TakeLabel(Branch::Rows, 1, u"1.26"_s, false); },
             false},
            {"a rounded row value typed", [](auto& e) { e.TakeLabel(Branch::Rows, 1, u"1.26"_s); }, true},
            {"a duplicate heading", [](auto& e) { e.TakeLabel(Branch::Headings, -1, u"80,50,20"_s); }, false},
            {"a duplicate row value", [](auto& e) { e.TakeLabel(Branch::Rows, 0, u"1.256"_s); }, false},
            {"a new row value that is shown like another",
             [](auto& e) { e.TakeLabel(Branch::Rows, -1, u"1.26"_s); }, true},
            {"a deleted heading", [](auto& e) { e.Delete(Branch::Headings, 0); }, true},
            {"a deleted row value", [](auto& e) { e.Delete(Branch::Rows, 0); }, true},
            {"a factor that is no number", [](auto& e) { e.TakeFactor(4, 1, u"-1"_s, false); }, false},
            {"a factor", [](auto& e) { e.TakeFactor(4, 1, u"0.7"_s, false); }, true},
            {"a factor left as it was", [](auto& e) { e.TakeFactor(4, 1, u"0.61"_s, true); }, true},
            {"clearing", [](auto& e) { e.Clear(); }, true},
        };
        Fixture fixture;
        for (const auto& [what, edit, modifies] : edits) {
            fixture.Load();
            edit(fixture.editing);
            QVERIFY2(fixture.editing.IsModified() == modifies, what);
            // A refused change leaves the flag of an earlier one alone.
            fixture.editing.Clear();
            fixture.editing.TakeLabel(Branch::Headings, -1, u"80,50,20"_s);
            QVERIFY2(fixture.editing.IsModified(), what);
            UndoesToTheFile(fixture, what);
        }
    }

    static void UndoesToTheFile(Fixture& fixture, const char* what) {
        FactorTableEditing& editing = fixture.editing;
        FactorTableEditing stored(fixture.database, {});
        stored.Load(7);
        const auto changed = editing.Table().Factors();
        int steps = 0;
        for (; editing.UndoName() != nullptr; ++steps) {
            editing.Undo();
        }
        QVERIFY2(editing.Table().Factors() == stored.Table().Factors(), what);
        QVERIFY2(editing.Table().DeletedIds().empty(), what);
        for (; steps > 0; --steps) {
            editing.Redo();
        }
        QVERIFY2(editing.Table().Factors() == changed && editing.RedoName() == nullptr, what);
        QVERIFY2(editing.IsModified(), what);
    }

    void AStepIsUndoneAsAWhole() {
        Fixture fixture;
        FactorTableEditing& editing = fixture.editing;
        editing.Delete(Branch::Headings, 1);
        {
            const StepScope step(editing, u"粘贴 2 格"_s);
            editing.TakeFactor(5, 1, u"0.1"_s, false);
            editing.TakeLabel(Branch::Headings, -1, u"60,50,20"_s);
        }
        QCOMPARE(editing.StoredFactor(5, 1), 0.52);
        QCOMPARE(editing.StoredFactor(5, 2), std::nullopt);
        QCOMPARE(*editing.UndoName(), u"粘贴 2 格"_s);
        QCOMPARE(editing.Undo(), std::pair(5, 1));
        QCOMPARE(fixture.Labels(Branch::Headings), QStringList(u"80,50,20"_s));
        QVERIFY(editing.IsModified());
        QCOMPARE(editing.Undo(), std::pair(4, 2));
        QVERIFY(!editing.IsModified() && editing.UndoName() == nullptr);
        editing.Redo();
        editing.Submit();
        QVERIFY(editing.UndoName() == nullptr && editing.RedoName() == nullptr);
    }

    void FactorsKeepTheirDigits() {
        Fixture fixture;
        QCOMPARE(fixture.editing.TakeFactor(4, 1, u"0.12345678"_s, false), u"0.123457"_s);
        QCOMPARE(fixture.editing.TakeFactor(5, 1, u" .5"_s, false), u" .5"_s);
        QCOMPARE(fixture.editing.TakeFactor(4, 2, u"0.63"_s, true), u"0.63"_s);
        QCOMPARE(fixture.editing.TakeFactor(5, 2, u"1e2"_s, false), std::nullopt);
        const double factors[] = {0.12345678, 0.5, 0.634, 0.54};
        for (std::size_t index = 0; index < 4; ++index) {
            QCOMPARE(fixture.editing.Table().Factors()[index].UtilizationFactor, factors[index]);
        }
    }

    void BlocksAreToldFromOtherTexts() {
        // Rows separated by "/", texts by blanks, "_" for an empty one. The first two are blocks.
        const QStringList blocks =
            u"R 80 _/_ 50 30/_ 20 _/R _ _/1 .5 .6;a 80/b 50/c 20/1 -;5 80/6 50/7 20/1 .5;"
            "_ 80/_ 50/_ 101/1 .5;_ 80/_ .5/_ 20/1 .5;_ _ 80/_ 1 1/_ 1 1/1 .5 .5;"
            "_ 80/_ 50/_ 20/1 .5/x .6;_ 80/_ 50/_ 20;_/_/_/1"_s.split(u';');
        for (const QString& block : blocks) {
            FactorTexts texts;
            for (const QString& row : QString(block).remove(u'_').split(u'/')) {
                const QStringList cells = row.split(u' ');
                texts.emplace_back(cells.begin(), cells.end());
            }
            QVERIFY2(ReadFactorBlock(texts).has_value() == (blocks.indexOf(block) < 2), qPrintable(block));
        }
    }

    void WhatWasNotWrittenStaysModified() {
        Fixture fixture;
        fixture.log.failing = {u"ID=2"_s, u"ID=3"_s};
        fixture.editing.Clear();
        QCOMPARE(fixture.editing.Submit().writes, 2);
        QVERIFY(fixture.editing.IsModified());
        fixture.file.Raw().Execute(u"update 利用系数 set UtilizationFactor=null where ID=1"_s);
        QVERIFY(!fixture.Load() && !fixture.editing.IsModified());
    }

    void FollowsAnEntryOverAChange() {
        const std::vector<int> before{10, 20, 30};
        const std::tuple<int, std::vector<int>, int> changes[] = {
            {1, {10, 20, 30}, 1},      {1, {5, 10, 20, 30}, 2},
            {-1, {10, 15, 20, 30}, 1}, {1, {10, 30, 40}, 2},
            {0, {20, 25, 30}, 1},      {1, {10, 30}, 1},
            {2, {10, 20}, 1},          {0, {}, -1},
            {-1, {10, 20, 30}, -1},    {-1, {10, 20, 30, 40}, 3},
        };
        for (const auto& [index, now, expected] : changes) {
            QCOMPARE(IndexAfterChange(index, before, now), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestFactorTableEditing)
#include "test_factor_table_editing.moc"
