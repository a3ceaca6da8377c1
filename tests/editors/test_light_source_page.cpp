#include <QRadioButton>
#include <QTest>

#include "editors/light_source_page.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kByMaker = 1008;
constexpr int kCategoryList = 1004;
constexpr int kMakerList = 1005;

enum { Number, Category, Name, Model, Flux, Power, Maker };

// By pinyin the category list reads 白炽灯, 荧光灯.
const QString kFile =
    u"insert into 光源类别 values (1,'荧光灯'),(2,'白炽灯'),(3,'常用灯具'),(5,'混光灯');"
    "insert into 光源 values (11,1,'T8-36',3350,36,'甲厂','直管'),"
    "(12,1,'T5-28',2600,28,'乙厂','细管'),(13,1,'T5-14',1234567,14,'甲厂','短管'),"
    "(14,5,'MIX',5000,250,'甲厂','混光'),(15,9,'X',1,1,'丙厂','无类');"_s;

struct Fixture : ShownPage {
    explicit Fixture(const QString& rows = kFile) : ShownPage(rows, MakePage<CQuorvaneLamphouseDlg>) {}

    void ChooseFluorescent() { Choose(kCategoryList, 1); }
    void ByMaker() { QTest::mouseClick(DialogItem(page, kByMaker), Qt::LeftButton, {}, QPoint(8, 8)); }
    void ChooseMaker(int entry) {
        ByMaker();
        Choose(kMakerList, entry);
    }
    // Deletes the row of a name cell, saying yes.
    void Delete(int row) {
        Click(row, Name);
        answers.Plan(u"是"_s);
        page->DeleteSelected();
        answers.TakeSeen();
    }
    QStringList File() const { return file.Raw().Rows(u"select * from 光源 order by ID"_s); }
};

QString DeleteQuestion(int row, const QString& name) {
    return u"光源库|确定是否删除选中数据:第%1行,%2的全部信息?|是/否"_s.arg(row).arg(name);
}

}  // namespace

class TestLightSourcePage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ShowsASliceByEitherList() {
        Fixture fixture;
        QCOMPARE(fixture.Rows(), QStringList(u"追加|白炽灯|||0|0|"_s));
        QCOMPARE(DialogItem<CEaseComboBox>(fixture.page, kCategoryList)->Strings(),
                 std::vector<QString>({u"白炽灯"_s, u"荧光灯"_s}));
        QVERIFY(!DialogItem(fixture.page, kMakerList)->isEnabled());
        fixture.ChooseFluorescent();
        QCOMPARE(fixture.Rows(),
                 QStringList({u"1|荧光灯|直管|T8-36|3350|36|甲厂"_s, u"2|荧光灯|细管|T5-28|2600|28|乙厂"_s,
                              u"3|荧光灯|短管|T5-14|1.23457E+06|14|甲厂"_s, u"追加|荧光灯|||0|0|"_s}));
        fixture.ByMaker();
        QVERIFY(!DialogItem(fixture.page, kCategoryList)->isEnabled());
        fixture.Choose(kMakerList, 1);  // 丙厂, 甲厂, 乙厂
        QCOMPARE(fixture.Rows().last(), u"追加|白炽灯|||0|0|甲厂"_s);
        QCOMPARE(fixture.Rows().at(2), u"3|混光灯|混光|MIX|5000|250|甲厂"_s);
    }

    // A flux that its cell shows in a form which may not be typed, and a category that its cell does not
    // offer, outlive the edit of another cell.
    void AnEditTouchesItsOwnCellOnly() {
        Fixture fixture;
        fixture.ChooseMaker(1);
        fixture.PassThrough(2, Flux);
        QVERIFY(!fixture.page->IsModified());
        fixture.Type(2, Name, u"改名"_s);
        fixture.Type(3, Power, u" 12.50 "_s);
        fixture.Type(1, Flux, u"-5"_s);
        QCOMPARE(fixture.Rows().first(3), QStringList({u"1|荧光灯|直管|T8-36|0|36|甲厂"_s,
                                                       u"2|荧光灯|改名|T5-14|1.23457E+06|14|甲厂"_s,
                                                       u"3|混光灯|混光|MIX|5000|12.5|甲厂"_s}));
        // A category chosen from its list.
        fixture.Click(1, Category);
        QTest::keyClick(fixture.grid, Qt::Key_F4);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        fixture.page->Submit();
        QCOMPARE(fixture.File(),
                 QStringList(
                     {u"11|2|'T8-36'|0.0|36.0|'甲厂'|'直管'"_s, u"12|1|'T5-28'|2600.0|28.0|'乙厂'|'细管'"_s,
                      u"13|1|'T5-14'|1234570.0|14.0|'甲厂'|'改名'"_s,
                      u"14|5|'MIX'|5000.0|12.5|'甲厂'|'混光'"_s, u"15|9|'X'|1.0|1.0|'丙厂'|'无类'"_s}));
    }

    void AppendRowBecomesARecord() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        fixture.Type(4, Maker, u"丁厂"_s);
        QVERIFY(!fixture.page->IsModified());
        const QString odd = u"%s %d %% \\ \" <b> \u202eעברית 😀"_s;
        fixture.Type(4, Model, odd);
        QCOMPARE(fixture.Row(4), u"追加|荧光灯||%1|0|0|丁厂"_s.arg(odd));
        QVERIFY(fixture.page->IsModified());
        fixture.Type(5, Flux, u"100"_s);
        fixture.Delete(1);
        fixture.page->Submit();
        QCOMPARE(fixture.Row(3), u"追加|荧光灯||%1|0|0|丁厂"_s.arg(odd));
        fixture.page->Refresh();
        QCOMPARE(fixture.File().mid(4),
                 QStringList({u"16|1|'%1'|0.0|0.0|'丁厂'|''"_s.arg(odd), u"17|1|''|100.0|0.0|''|''"_s}));
        QCOMPARE(fixture.Row(3), u"3|荧光灯||%1|0|0|丁厂"_s.arg(odd));
        QCOMPARE(fixture.grid->GetItemData(3, Number), 16);
        QVERIFY(!fixture.page->IsModified());
    }

    // Rows are made when they are first shown, and keep the numbers that they had when the list was filled.
    void ManyRowsKeepTheirNumbers() {
        Fixture fixture(kFile +
                        u"with recursive n(i) as (select 100 union all select i + 1 from n where i < 999) "
                        "insert into 光源 select i,2,'M'||i,1,1,'','' from n;"_s);
        fixture.Choose(kCategoryList, 0);
        fixture.Delete(2);
        QCOMPARE(fixture.grid->GetItemText(2, Number), u"3"_s);
        QCOMPARE(fixture.Row(800), u"801|白炽灯||M900|1|1|"_s);
        fixture.page->Refresh();
        QCOMPARE(fixture.Row(800), u"800|白炽灯||M900|1|1|"_s);
    }

    void DeleteAsksForEachRow() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        fixture.Click(1, Name);
        fixture.Click(4, Name, Qt::ShiftModifier);  // the append row as well
        for (const QString& answer : {u"是"_s, u"否"_s, u"是"_s, u"是"_s}) {
            fixture.answers.Plan(answer);
        }
        QVERIFY(!fixture.page->DeleteSelected());
        QVERIFY(!fixture.page->IsModified());
        QCOMPARE(fixture.grid->GetRowCount(), 4);
        // Confirmed is confirmed: the row stays away, whatever is loaded meanwhile, until the submit deletes
        // it.
        fixture.Choose(kCategoryList, 0);
        fixture.ChooseFluorescent();
        QCOMPARE(fixture.grid->GetRowCount(), 4);
        fixture.Click(1, Name);
        fixture.Click(3, Name, Qt::ShiftModifier);
        QVERIFY(fixture.page->DeleteSelected());
        QCOMPARE(fixture.answers.TakeSeen(),
                 QStringList({DeleteQuestion(1, u"直管"_s), DeleteQuestion(1, u"细管"_s),
                              DeleteQuestion(1, u"细管"_s), DeleteQuestion(1, u"短管"_s)}));
        QCOMPARE(fixture.File().size(), 5);
        fixture.page->Submit();
        QCOMPARE(fixture.file.Raw().Rows(u"select ID from 光源"_s), QStringList({u"14"_s, u"15"_s}));
    }

    void ChangeOfFilterAsks() {
        for (const auto& [answer, byMaker] : {std::pair{u"是"_s, false}, {u"否"_s, false}, {u"否"_s, true}}) {
            const bool submit = answer == u"是"_s;
            Fixture fixture;
            fixture.ChooseFluorescent();
            fixture.Type(1, Name, u"改名"_s);
            fixture.Delete(2);
            fixture.answers.Plan(answer);
            byMaker ? fixture.ByMaker() : fixture.Choose(kCategoryList, 0);
            QCOMPARE(fixture.answers.TakeSeen(), QStringList(u"光源库|数据已经修改是否提交?|是/否"_s));
            QCOMPARE(fixture.grid->GetRowCount(), 2);
            fixture.page->Submit();  // nothing of what was dropped comes back
            QCOMPARE(fixture.File().size(), submit ? 4 : 5);
            QCOMPARE(fixture.File().at(0).endsWith(u"'改名'"_s), submit);
        }
    }

    void WhatCouldNotBeWrittenStaysInSight() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        RawDatabase other = fixture.file.Raw();
        other.Execute(u"begin immediate"_s);
        fixture.Type(1, Name, u"改"_s);
        fixture.Delete(2);
        fixture.page->Submit();
        fixture.page->Refresh();
        QVERIFY(fixture.answers.TakeSeen().constFirst().contains(
            u"有2条数据未能写入数据库。\n有1条数据未能从数据库删除。"_s));
        QCOMPARE(fixture.grid->GetItemText(3, Name), u"细管"_s);  // still in the file, so back on the screen
        QCOMPARE(fixture.grid->Cell(1, Number)->GetBackColour(), QColor(255, 150, 120));
        QVERIFY(fixture.page->IsModified());
        // Another category would take them off the screen: the list goes back.
        fixture.answers.Plan(u"是"_s);
        fixture.answers.Plan(u"确定"_s);
        fixture.Choose(kCategoryList, 0);
        QCOMPARE(fixture.answers.TakeSeen().size(), 2);
        QCOMPARE(DialogItem<QComboBox>(fixture.page, kCategoryList)->currentText(), u"荧光灯"_s);
        QCOMPARE(fixture.grid->GetItemText(4, Category), u"荧光灯"_s);  // that of the append row
        QCOMPARE(fixture.grid->GetItemText(1, Name), u"改"_s);
        other.Execute(u"rollback"_s);
        fixture.page->Submit();
        QVERIFY(fixture.answers.TakeSeen().isEmpty());
        QVERIFY(fixture.File().at(0).endsWith(u"'改'"_s));
    }

    void IncompleteLoadIsTold() {
        Fixture fixture(kFile + u"update 光源 set Factory=null where ID=12;"_s);
        QStringList seen;
        QTRY_COMPARE((seen += fixture.answers.TakeSeen()).size(), 1);  // about the list of makers
        fixture.ByMaker();
        QTest::mouseClick(DialogItem(fixture.page, 1007), Qt::LeftButton, {}, QPoint(8, 8));
        QVERIFY(fixture.answers.TakeSeen().isEmpty());
        fixture.ChooseFluorescent();
        QCOMPARE(fixture.answers.TakeSeen().size(), 1);
        QCOMPARE(fixture.grid->GetRowCount(), 3);
    }
};

QTEST_MAIN(TestLightSourcePage)
#include "test_light_source_page.moc"
