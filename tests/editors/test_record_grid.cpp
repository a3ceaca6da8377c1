#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>

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
    QString Heads() const {
        QStringList heads;
        for (const QString& row : Rows()) {
            heads += row.section(u'|', 0, 0);
        }
        return heads.join(u' ');
    }
    QColor HeadColour(int row) const { return grid->Cell(row, Number)->GetBackColour(); }

    QWidget window;
    WorkingRecords<Item> records;
    RecordGrid<Item> shown;
};

QString Question(int row, const QString& name, const QString& buttons = u"是/否/全部是"_s) {
    return u"物品|确定是否删除选中数据:第%1行,%2的全部信息?|%3"_s.arg(row).arg(name, buttons);
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
        QCOMPARE(fixture.answers.TakeSeen(),
                 QStringList({Question(2, u"a2"_s, u"是/否"_s), Question(2, u"a3"_s)}));
        QVERIFY(!fixture.records.IsModified());
        QCOMPARE(fixture.Rows().mid(1, 2), QStringList({u"2|a3|0|a30"_s, u"3|a4|0|a40"_s}));
        QVERIFY(fixture.DeleteSelected(3, 5, {u"是"_s, u"是"_s}));  // the append row as well
        QVERIFY(fixture.records.IsModified());
        QCOMPARE(fixture.Rows(), QStringList({u"1|a1|0|a10"_s, u"2|a3|0|a30"_s, u"追加||7|7"_s}));
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

    // Rows that Ctrl left out stay, and "all" asks no more.
    void OneAnswerDeletesAllSelectedRows() {
        Fixture fixture(8);
        fixture.Click(2, Name);
        fixture.Click(3, Name, Qt::ShiftModifier);
        for (const int row : {5, 7, 8, 9}) {
            fixture.Click(row, Name, Qt::ControlModifier);
        }
        for (const QString& reply : {u"是"_s, u"是"_s, u"全部是"_s}) {
            fixture.answers.Plan(reply);
        }
        QVERIFY(fixture.shown.DeleteSelected());
        QCOMPARE(fixture.answers.TakeSeen(),
                 QStringList({Question(2, u"a2"_s, u"是/否"_s), Question(2, u"a3"_s), Question(3, u"a5"_s)}));
        QCOMPARE(fixture.Rows(),
                 QStringList({u"1|a1|0|a10"_s, u"2|a4|0|a40"_s, u"3|a6|0|a60"_s, u"追加||7|7"_s}));
        QVERIFY(fixture.records.IsModified());
    }

    // The arrow of a heading sorts, turns round and restores; the records keep their order and their numbers.
    void AHeadingSortsTheRows() {
        Fixture fixture;
        fixture.records.TakeLoaded({{1, u"直管"_s, 10}, {2, u"LED"_s, 9}, {3, u"钠灯"_s, 9}});
        fixture.shown.Fill();
        const auto press = [&](int column) {
            const QRect heading = fixture.grid->CellRect(0, column);
            QTest::mouseClick(fixture.grid->viewport(), Qt::LeftButton, {},
                              {heading.right() - 5, heading.center().y()});
            return fixture.Rows().join(u' ');
        };
        QCOMPARE(press(Name), u"3|钠灯|9|钠灯9 1|直管|10|直管10 2|LED|9|LED9 追加||7|7"_s);
        QCOMPARE(press(Count), u"2|LED|9|LED9 3|钠灯|9|钠灯9 1|直管|10|直管10 追加||7|7"_s);
        // An edited and an appended row stay where they are until the rows are sorted again.
        fixture.Type(1, Count, u"99"_s);
        fixture.Type(4, Name, u"new"_s);
        QCOMPARE(fixture.Rows().join(u' '),
                 u"2|LED|99|LED99 3|钠灯|9|钠灯9 1|直管|10|直管10 追加|new|7|new7 追加||7|7"_s);
        fixture.answers.Plan(u"是"_s);
        fixture.Click(2, Name);
        QVERIFY(fixture.shown.DeleteSelected());
        QCOMPARE(fixture.answers.TakeSeen(), QStringList(Question(3, u"钠灯"_s, u"是/否"_s)));
        QCOMPARE(fixture.Rows().join(u' '), u"2|LED|99|LED99 1|直管|10|直管10 追加|new|7|new7 追加||7|7"_s);
        QCOMPARE(press(Count), u"2|LED|99|LED99 1|直管|10|直管10 3|new|7|new7 追加||7|7"_s);
        QCOMPARE(fixture.records.At(0).ID, 1);
        fixture.shown.Undo();
        QCOMPARE(press(Count), u"1|直管|10|直管10 2|LED|99|LED99 3|钠灯|9|钠灯9 4|new|7|new7 追加||7|7"_s);
    }

    void AFilterHidesRowsButNoUnwrittenOnes() {
        Fixture fixture(12);
        fixture.records.Replace({3, u"a3"_s, 5});
        fixture.records.Replace({4, u"a4"_s, 0});
        fixture.Submit(3);
        fixture.shown.Refresh();
        fixture.Click(1, Name);
        QTest::keyClick(fixture.grid, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClicks(QApplication::focusWidget(), u"A1"_s);
        QCOMPARE(fixture.Heads(), u"1 3 10 11 12 追加"_s);
        QCOMPARE(fixture.window.findChild<QLabel*>(u"filterCount"_s)->text(), u"显示 5 行,共 12 行"_s);
        fixture.Type(6, Name, u"b"_s);
        QCOMPARE(fixture.Heads(), u"1 3 10 11 12 追加 追加"_s);
        fixture.Submit();
        fixture.shown.Refresh();
        QCOMPARE(fixture.Heads(), u"1 10 11 12 追加"_s);
        QCOMPARE(fixture.records.Count(), 13);
        fixture.Click(1, Count);
        QTest::keyClick(fixture.grid, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        QTest::keyClicks(QApplication::focusWidget(), u"1"_s);
        QCOMPARE(fixture.Heads(), u"追加"_s);
        fixture.shown.Fill();
        QCOMPARE(fixture.grid->GetRowCount(), 15);
    }

    // Ctrl+F, the next and the previous one, Esc; then Ctrl+H, which takes as typing does.
    void FindsAndReplaces() {
        Fixture fixture;
        fixture.records.TakeLoaded({{1, u"荧光灯"_s, 16}, {2, u"T8"_s, 8}, {3, u"YG型"_s, 18}});
        fixture.shown.Fill();
        const auto focus = [&] { return fixture.grid->GetFocusCell(); };
        const auto count = [&] { return fixture.window.findChild<QLabel*>(u"findCount"_s)->text(); };
        fixture.Click(1, Name);
        QTest::keyClick(fixture.grid, Qt::Key_F, Qt::ControlModifier);
        QWidget* field = QApplication::focusWidget();
        QTest::keyClicks(field, u"yg"_s);
        QCOMPARE(focus(), (CCellID{1, Name}));
        QCOMPARE(count(), u"第 1 个,共 4 个"_s);  // the labels show the names too
        QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(focus(), (CCellID{3, Label}));
        QTest::keyClick(field, Qt::Key_Return);
        QTest::keyClick(field, Qt::Key_F3);
        QCOMPARE(count(), u"第 2 个,共 4 个"_s);
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!field->isVisible());
        QTest::keyClick(fixture.grid, Qt::Key_H, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), u"8"_s);
        auto* replacement = fixture.window.findChild<QLineEdit*>(u"replacementText"_s);
        QTest::keyClicks(replacement, u"x"_s);
        for (QToolButton* button : fixture.window.findChildren<QToolButton*>()) {
            if (button->text() == u"全部替换") {
                QTest::mouseClick(button, Qt::LeftButton);
            }
        }
        QCOMPARE(fixture.answers.TakeSeen().value(0),
                 u"物品|已替换1格。有4格不能替换:第2行“count”一列不能填入“x”。|确定|unplanned"_s);
        QCOMPARE(fixture.Rows().join(u' '), u"1|荧光灯|16|荧光灯16 2|Tx|8|Tx8 3|YG型|18|YG型18 追加||7|7"_s);
        fixture.shown.Undo();
        QCOMPARE(fixture.Row(2), u"2|T8|8|T88"_s);
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
