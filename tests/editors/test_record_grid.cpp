#include <QSettings>
#include <QTemporaryDir>

#include "editors/record_grid.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

struct Item {
    int ID = 0;
    CString name;
    int count = 0;

    bool operator==(const Item&) const = default;
};

enum { Number, Name, Count, Label };

// Records 1 to `records`, named a1, a2, … A fresh append row has the count 7, and is blank without a name.
struct Fixture : WorkedGrid {
    explicit Fixture(int loaded = 3)
        : shown(window, records,
                {.caption = u"物品"_s,
                 .columns = {NumberColumn<Item>(0.1),
                             TextColumn(u"name", u"its name", 0.3, &Item::name),
                             IntegerColumn(u"count", u"how many", 0.2, &Item::count),
                             {.heading = u"label",
                              .share = 0.3,
                              .show = [](const Item& item) { return item.name + FormatInteger(item.count); },
                              .dependsOnRecord = true}},
                 .title = [](const Item& item) { return item.name; },
                 .isBlank = [](const Item& item) { return item.name.isEmpty(); },
                 .makeBlank = [] { return Item{.ID = 0, .name = {}, .count = 7}; }}) {
        window.resize(500, 300);
        std::vector<Item> items;
        for (int id = 1; id <= loaded; ++id) {
            items.push_back({id, u"a%1"_s.arg(id), 0});
        }
        records.TakeLoaded(items);
        shown.Create(100, window.rect(), SharesOf::WindowWidth);
        shown.Fill();
        Show(&window);
    }

    bool Submit(int failingId = 0) {
        const auto write = [failingId](const Item& item) { return item.ID != failingId; };
        return records
            .Submit({.isBlank = [](const Item&) { return false; },
                     .insert =
                         [write](Item& item) {
                             const bool written = write(item);
                             item.ID = written ? 100 - item.ID : item.ID;
                             return written;
                         },
                     .update = write,
                     .remove = [](int) { return true; }})
            .None();
    }
    bool DeleteSelected(int firstRow, int lastRow, const QStringList& replies) {
        Click(firstRow, Name);
        Click(lastRow, Name, Qt::ShiftModifier);
        for (const QString& reply : replies) {
            answers.Plan(reply);
        }
        return shown.DeleteSelected();
    }
    QColor HeadColour(int row) const { return grid->Cell(row, Number)->GetBackColour(); }

    QWidget window;
    WorkingRecords<Item> records;
    RecordGrid<Item> shown;
};

QString Question(int row, const QString& name) {
    return u"物品|确定是否删除选中数据:第%1行,%2的全部信息?|是/否"_s.arg(row).arg(name);
}

}  // namespace

class TestRecordGrid : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnEditIsTakenIntoItsRecord() {
        Fixture fixture;
        fixture.PassThrough(2, Count);
        QVERIFY(!fixture.records.IsModified());
        fixture.Type(2, Name, u"b"_s);
        fixture.Type(2, Count, u"x"_s);
        fixture.Type(3, Count, u"5"_s);
        QCOMPARE(fixture.Rows().mid(1, 2), QStringList({u"2|b|0|b0"_s, u"3|a3|5|a35"_s}));
        QVERIFY(fixture.records.IsModified());
        QCOMPARE(*fixture.records.Find(2), (Item{2, u"b"_s, 0}));
    }

    void TheAppendRowBecomesARecordOnceItIsNotBlank() {
        Fixture fixture;
        fixture.Type(4, Count, u"8"_s);
        QVERIFY(!fixture.records.IsModified());
        fixture.Type(4, Name, u"b"_s);
        QVERIFY(fixture.records.IsModified());
        QCOMPARE(fixture.Rows().mid(3), QStringList({u"追加|b|8|b8"_s, u"追加||7|7"_s}));
        fixture.Type(5, Name, u"c"_s);
        fixture.Type(4, Count, u"9"_s);
        QCOMPARE(*fixture.records.Find(-1), (Item{-1, u"b"_s, 9}));
        QCOMPARE(fixture.grid->GetItemData(5, Number), -2);
        // The heads stay until the grid is filled again.
        QVERIFY(!fixture.Submit(-1));
        fixture.shown.RemakeRows();
        QCOMPARE(fixture.Row(4), u"追加|b|9|b9"_s);
        fixture.shown.Refresh();
        QCOMPARE(fixture.Rows().mid(3), QStringList({u"4|b|9|b9"_s, u"5|c|7|c7"_s, u"追加||7|7"_s}));
        QCOMPARE(fixture.grid->GetItemData(5, Number), 102);
    }

    void OneSavedRecordGetsTheNextNumber() {
        Fixture fixture;
        fixture.Type(4, Name, u"b"_s);
        fixture.shown.ShowSaved(4, -1, false);
        QCOMPARE(fixture.grid->GetItemText(4, Number), u"追加"_s);
        QCOMPARE(fixture.HeadColour(4), kUnwrittenColour);
        QVERIFY(fixture.Submit());
        fixture.shown.ShowSaved(4, 101, true);
        fixture.shown.RemakeRows();
        QCOMPARE(fixture.Row(4), u"4|b|7|b7"_s);
        QCOMPARE(fixture.HeadColour(4), kReadOnlyColour);
        QCOMPARE(fixture.grid->GetItemData(4, Number), 101);
    }

    void DeletingAsksForEachRow() {
        Fixture fixture(5);
        QVERIFY(fixture.DeleteSelected(6, 6, {}));  // the append row
        QVERIFY(!fixture.DeleteSelected(2, 4, {u"是"_s, u"否"_s}));
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({Question(2, u"a2"_s), Question(2, u"a3"_s)}));
        QVERIFY(!fixture.records.IsModified());
        QCOMPARE(fixture.Rows().mid(1, 2), QStringList({u"3|a3|0|a30"_s, u"4|a4|0|a40"_s}));
        QVERIFY(fixture.DeleteSelected(3, 5, {u"是"_s, u"是"_s}));  // the append row as well
        QVERIFY(fixture.records.IsModified());
        QCOMPARE(fixture.Rows(), QStringList({u"1|a1|0|a10"_s, u"3|a3|0|a30"_s, u"追加||7|7"_s}));
        fixture.shown.NumberRows();
        QCOMPARE(fixture.Rows(), QStringList({u"1|a1|0|a10"_s, u"2|a3|0|a30"_s, u"追加||7|7"_s}));
    }

    void RowsThatCtrlLeftOutStay() {
        Fixture fixture(6);
        fixture.Click(2, Name);
        fixture.Click(5, Name, Qt::ControlModifier);
        fixture.answers.Plan(u"是"_s);
        fixture.answers.Plan(u"是"_s);
        QVERIFY(fixture.shown.DeleteSelected());
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({Question(2, u"a2"_s), Question(4, u"a5"_s)}));
    }

    void ColumnsStayAsTheUserLeftThem() {
        const QTemporaryDir folder;
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
        Fixture before;
        const int width = before.grid->GetColumnWidth(Name);
        const QPoint edge(before.grid->CellRect(0, Name).right() + 1, 5);
        QTest::mousePress(before.grid->viewport(), Qt::LeftButton, {}, edge);
        QTest::mouseMove(before.grid->viewport(), edge + QPoint(20, 0));
        QTest::mouseRelease(before.grid->viewport(), Qt::LeftButton, {}, edge + QPoint(20, 0));
        const Fixture after;
        QCOMPARE(after.grid->GetColumnWidth(Name), width + 20);
    }

    // Rows are made when they are first shown, and keep the numbers that they had when the grid was filled.
    void ManyRowsKeepTheirNumbers() {
        Fixture fixture(900);
        fixture.DeleteSelected(2, 2, {u"是"_s});
        QCOMPARE(fixture.Row(800), u"801|a801|0|a8010"_s);
        fixture.shown.Refresh();
        QCOMPARE(fixture.Row(800), u"800|a801|0|a8010"_s);
    }

    void StepsAreUndoneAndMarksGo() {
        Fixture fixture(4);
        const QStringList loaded = fixture.Rows();
        fixture.Type(2, Count, u"5"_s);
        fixture.Type(5, Count, u"9"_s);  // stays the append row
        fixture.Type(5, Name, u"b"_s);
        QVERIFY(fixture.DeleteSelected(3, 4, {u"是"_s, u"是"_s}));
        const QStringList edited = fixture.Rows();
        const auto marks = [&fixture] {
            QStringList texts;
            for (int row = 1; row < fixture.grid->GetRowCount(); ++row) {
                for (const int column : {Number, Count}) {
                    texts += QString::number(fixture.grid->MarksOf({row, column}));
                }
            }
            return texts.join(u' ');
        };
        QCOMPARE(marks(), u"0 0 1 1 6 0 0 0"_s);  // changed; new and below deleted rows
        QCOMPARE(fixture.grid->TipOf({2, Count}).text, u"文件中的值: 0"_s);
        QCOMPARE(fixture.grid->TipOf({3, Number}).text, u"新行,尚未提交。\n上方已删除2行,尚未提交。"_s);
        QStringList names;
        fixture.Activate();
        for (int step = 0; step < 4; ++step) {
            names += *fixture.records.UndoName();
            QTest::keyClick(fixture.grid, Qt::Key_Z, Qt::ControlModifier);
        }
        QCOMPARE(names.join(u','), u"删除 2 行,输入 name,输入 count,输入 count"_s);
        QCOMPARE(fixture.Rows(), loaded);
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{2, Count}));
        QVERIFY(!fixture.records.IsModified() && fixture.records.EditCount() == 0);
        QCOMPARE(marks().remove(u"0"_s).trimmed(), QString());
        for (int step = 0; step < 4; ++step) {
            QTest::keyClick(fixture.grid, Qt::Key_Y, Qt::ControlModifier);
        }
        QCOMPARE(fixture.Rows(), QStringList(edited).replaceInStrings(u"追加|b"_s, u"3|b"_s));
        QVERIFY(fixture.records.IsModified() && fixture.records.RemovedCount() == 2);
    }

    void UnwrittenRecordsArePointedOut() {
        Fixture fixture(60);
        fixture.records.Replace({40, u"changed"_s, 0});
        fixture.grid->SetFocusCell({5, Count});
        fixture.Submit(40);
        fixture.shown.Refresh();
        QVERIFY(fixture.records.IsModified());
        QCOMPARE(fixture.HeadColour(40), kUnwrittenColour);
        QCOMPARE(fixture.HeadColour(39), kReadOnlyColour);
        QVERIFY(fixture.grid->viewport()->rect().contains(fixture.grid->CellRect(40, Number)));
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{5, Count}));
    }

    void BeforeOtherRecordsAreShownChangesAreSettled() {
        for (const QString& reply : {u""_s, u"否"_s, u"是"_s, u"是 unwritten"_s}) {
            Fixture fixture;
            if (!reply.isEmpty()) {
                fixture.TypeOpen(2, Count, u"5"_s);
                fixture.answers.Plan(reply.first(1));
                fixture.records.Remove(3);
            }
            bool submitted = false;
            const bool settled = fixture.shown.SettleChanges([&] {
                submitted = true;
                return fixture.Submit(reply.size() > 1 ? 2 : 0);
            });
            QCOMPARE(settled, reply.size() <= 1);
            QCOMPARE(submitted, reply.startsWith(u'是'));
            QCOMPARE(fixture.answers.TakeSeen().join(u' '),
                     reply.isEmpty() ? QString() : u"物品|数据已经修改是否提交?|是/否"_s);
            QCOMPARE(fixture.records.IsModified(), !settled);
            QCOMPARE(fixture.HeadColour(2), settled ? kReadOnlyColour : kUnwrittenColour);
            // Deletions that were dropped do not hold for the next records.
            fixture.records.TakeLoaded({{3, u"a3"_s, 0}});
            QCOMPARE(fixture.records.Count(), 1);
        }
    }
};

QTEST_MAIN(TestRecordGrid)
#include "test_record_grid.moc"
