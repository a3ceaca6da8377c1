#include <QTreeWidget>

#include "editors/requirement_page.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

enum { Number, Location, Plane, ActualLPD, ObjectiveLPD, Illuminance, Glare, Ra };

const QString kFile =
    u"insert into 照度要求及功率密度 values "
    "(1,'公共','办公','办公室','桌面',11,9,300,19,80),(2,'公共','办公','会议室','桌面',11,9,300,19,80),"
    "(3,'公共','办公','档案室','桌面',8,7,200,0,80),(4,'公共','学校','教室','课桌',11,9,300,19,80),"
    "(5,'居住','住宅','卧室','地面',7,6,75,0,80);"_s;

struct Fixture : ShownPage {
    explicit Fixture(const QString& rows = kFile)
        : ShownPage(rows, [](ShownGrid& shown, QWidget* parent) {
              return new CQuorvaneDemandDlg(shown.database, parent);
          }) {
        tree = page->findChild<QTreeWidget*>();
        tree->expandAll();
    }

    // By the mouse, as a user would leave a cell that is still being typed into.
    void Select(int trade, int buildingType = -1) {
        Activate();
        QTreeWidgetItem* item = tree->topLevelItem(trade);
        item = buildingType < 0 ? item : item->child(buildingType);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(item).center());
    }
    QStringList File() const { return file.Raw().Rows(u"select * from 照度要求及功率密度 order by ID"_s); }

    QTreeWidget* tree = nullptr;
};

}  // namespace

class TestRequirementPage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // By clicks in the tree, where a cell may still be typed into: its text belongs to the old building type.
    void ChangeOfBuildingTypeAsks() {
        for (const bool submit : {true, false}) {
            Fixture fixture;
            QCOMPARE(fixture.grid->GetRowCount(), 1);
            fixture.Select(0, 0);
            fixture.Type(1, Illuminance, u"abc"_s);
            fixture.Click(2, Location);
            fixture.answers.Plan(u"是"_s);
            fixture.page->DeleteSelected();
            fixture.answers.TakeSeen();
            fixture.Type(1, ObjectiveLPD, u" 6.5 "_s);
            fixture.Type(3, Ra, u"0"_s);
            fixture.TypeOpen(3, Glare, u"-1"_s);
            fixture.answers.Plan(submit ? u"是"_s : u"否"_s);
            fixture.Select(1, 0);
            QCOMPARE(fixture.Seen(), u"照度要求|数据已经修改是否提交?|是/否"_s);
            QCOMPARE(fixture.Rows(), QStringList({u"1|卧室|地面|7|6|75|0|80"_s, u"追加|||0|0|0|0|0"_s}));
            QVERIFY(!fixture.page->IsModified());
            QCOMPARE(fixture.File().first(), submit
                                                 ? u"1|'公共'|'办公'|'办公室'|'桌面'|11.0|6.5|0|19|80"_s
                                                 : u"1|'公共'|'办公'|'办公室'|'桌面'|11.0|9.0|300|19|80"_s);
            QCOMPARE(fixture.File().value(submit ? 4 : 5),
                     submit ? u"6|'公共'|'办公'|''|''|0.0|0.0|0|-1|0"_s : QString());
            fixture.Click(1, Location);
            fixture.answers.Plan(u"是"_s);
            QVERIFY(fixture.page->DeleteSelected() && fixture.page->Submit());
            QCOMPARE(fixture.File().filter(u"卧室"_s), QStringList());
            QCOMPARE(fixture.File().filter(u"会议室"_s).isEmpty(), submit);  // not deleted after a No
            QCOMPARE(fixture.Seen(), u"照度要求|确定是否删除选中数据:第1行,卧室的全部信息?|是/否"_s);
            fixture.Select(0);
            QCOMPARE(fixture.grid->GetRowCount(), 1);  // no append row
        }
    }

    void WhatCouldNotBeWrittenStaysInSight() {
        Fixture fixture;
        fixture.Select(0, 0);
        fixture.Type(2, Location, u"改"_s);
        fixture.log.failing = {u"update "_s};
        fixture.answers.Plan(u"是"_s);
        fixture.answers.Plan(u"确定"_s);
        fixture.Select(1, 0);
        QCOMPARE(fixture.tree->currentItem()->text(0), u"办公"_s);
        QCOMPARE(fixture.grid->GetItemText(2, Location), u"改"_s);
        const auto tip = [&](int row) { return fixture.grid->TipOf({row, Number}).text; };
        QVERIFY(tip(2).endsWith(u"原因:数据库文件被其他程序占用。"_s));
        fixture.log.failing.clear();
        fixture.file.Raw().Execute(u"delete from 照度要求及功率密度 where ID=1"_s);
        fixture.page->Submit();
        QVERIFY(tip(1).startsWith(u"数据库文件中没有这一行"_s) && tip(2).isEmpty());
    }

    void EditsOfAnEarlierRunAreMadeAgain() {
        Fixture earlier;
        earlier.Select(0, 1);
        earlier.Type(1, Location, u"实验室"_s);
        Fixture later;
        QVERIFY(later.page->MakeEditsAgain(earlier.page->KeepEdits()()).isEmpty());
        QCOMPARE(later.Rows(), earlier.Rows());
    }

    void AFailedLoadLeavesNothingToTypeInto() {
        Fixture fixture(kFile + u"update 照度要求及功率密度 set UGR=null where ID=2;"_s);
        fixture.Select(1, 0);
        fixture.Select(0, 0);
        QCOMPARE(fixture.answers.TakeSeen().size(), 1);
        QVERIFY(!fixture.grid->isEnabled());
        fixture.Select(0, 1);
        QVERIFY(fixture.grid->isEnabled());
    }
};

QTEST_MAIN(TestRequirementPage)
#include "test_requirement_page.moc"
