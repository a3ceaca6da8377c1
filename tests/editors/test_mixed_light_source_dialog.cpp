#include "editors/luminaire/mixed_light_source_dialog.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

enum Control { Ok = 1, Delete = 1015 };
enum { Number, Category, LightSource, Count };

const QString kRows =
    uR"(
    insert into 光源类别 values (1, '荧光灯'), (5, '混光灯'), (6, '金卤灯'), (7, '高压钠灯'), (10, '常用灯具');
    insert into 光源 (LamphouseType, LamphouseName, LamphouseModel, LuminousFlux, LamphousePower, Factory) values
        (6, '金卤', 'JLZ250', 1, 1, ''), (6, '金卤', 'JLZ400', 1, 1, ''), (7, '钠灯', 'NG250', 1, 1, ''),
        (7, '钠灯', 'NG:400', 1, 1, ''), (1, '管', '', 1, 1, ''), (5, '混', 'H1', 1, 1, ''),
        (99, '孤', 'G1', 1, 1, ''), (1, 'T5,长', 'T', 1, 1, ''), (1, 'T5:短', 'T', 1, 1, '');
)"_s;
const QString kAppendRow = u"追加|||0"_s;

struct Fixture : ShownGrid {
    explicit Fixture(const QString& lightSources, const QString& counts, const QString& rows = kRows)
        : ShownGrid(rows), dialog(database, lists, lightSources, counts, nullptr) {
        Show(&dialog);
    }

    QString Choices(int row, int column) {
        QListWidget* list = DropDown(row, column);
        QStringList texts;
        for (int i = 0; i < list->count(); ++i) {
            texts += list->item(i)->text();
        }
        QTest::keyClick(list, Qt::Key_Escape);
        return texts.join(u' ');
    }
    QString Results() const { return dialog.GetLightSources() + u'|' + dialog.GetCounts(); }

    CMixLuminaireSettingDlg dialog;
};

}  // namespace

class TestMixedLightSourceDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ShowsARowForEachLightSource() {
        Fixture fixture(u"钠灯:NG250,没有:X,混:H1,孤:G1,管,T5:短:T"_s, u",12个,3,many"_s);
        QCOMPARE(fixture.Rows(),
                 QStringList({u"1|高压钠灯|钠灯:NG250|0"_s, u"2|混光灯|混:H1|12"_s, u"3||孤:G1|3"_s,
                              u"4|荧光灯|管|0"_s, u"5|荧光灯|T5:短:T|0"_s, kAppendRow}));
        QCOMPARE(fixture.Results(), u"钠灯:NG250,混:H1,孤:G1,管,T5:短:T|0,12,3,0,0"_s);
        QCOMPARE(fixture.Choices(2, Category), u"荧光灯 金卤灯 高压钠灯"_s);
        QCOMPARE(fixture.Choices(1, LightSource), u"钠灯:NG250 钠灯:NG:400"_s);
        QCOMPARE(fixture.Choices(6, LightSource), QString());
        QVERIFY(!fixture.grid->IsCellEditable(1, Number));
    }

    void AnotherCategoryTakesTheLightSourceAway() {
        Fixture fixture(u"金卤:JLZ250,金卤:JLZ400"_s, u"1,2"_s);
        fixture.Pick(1, Category, u"金卤灯"_s);  // no other one
        fixture.Pick(2, Category, u"高压钠灯"_s);
        QCOMPARE(fixture.Results(), u"金卤:JLZ250,|1,2"_s);
        fixture.Press(Ok);  // its count would become another's
        QCOMPARE(fixture.Seen(), u"混合光源设置|第2行没有选择光源,请选择光源或删除该行。|确定|unplanned"_s);
        QVERIFY(fixture.dialog.isVisible());
        fixture.Pick(2, LightSource, u"钠灯:NG:400"_s);
        QCOMPARE(fixture.Results(), u"金卤:JLZ250,钠灯:NG:400|1,2"_s);
        fixture.file.Raw().Execute(u"delete from 光源"_s);  // each category is read once
        fixture.Pick(1, Category, u"高压钠灯"_s);
        QCOMPARE(fixture.Choices(1, LightSource), u"钠灯:NG250 钠灯:NG:400"_s);
    }

    void EntriesAreAddedAndDeletedOneRowAPress() {
        Fixture fixture(u"金卤:JLZ250,金卤:JLZ400"_s, u"1,2"_s);
        fixture.Type(3, Count, u"0"_s);
        QCOMPARE(fixture.Rows().last(), kAppendRow);
        fixture.Pick(3, Category, u"高压钠灯"_s);
        QCOMPARE(fixture.grid->GetItemText(3, Number), u"3"_s);
        fixture.Type(4, Count, u"4"_s);
        fixture.Pick(3, LightSource, u"钠灯:NG250"_s);
        fixture.answers.Plan(u"否"_s);
        fixture.Press(Delete);
        QCOMPARE(fixture.Seen(), u"混合光源设置|确定是否删除选中数据:第3行,钠灯:NG250的全部信息?|是/否"_s);
        fixture.grid->SetSelectedRange({1, 1, 2, 2});
        fixture.answers.Plan(u"是"_s);
        fixture.Press(Delete);
        QCOMPARE(fixture.Rows(), QStringList({u"1|金卤灯|金卤:JLZ400|2"_s, u"2|高压钠灯|钠灯:NG250|0"_s,
                                              u"3|||4"_s, kAppendRow}));
        // A row that is added now is its own.
        fixture.Pick(4, Category, u"荧光灯"_s);
        fixture.Type(2, Count, u"+8"_s);
        fixture.Pick(4, LightSource, u"管:"_s);
        fixture.Pick(3, Category, u"高压钠灯"_s);
        QCOMPARE(fixture.Results(), u"金卤:JLZ400,钠灯:NG250,,管:|2,8,4,0"_s);
    }

    // Esc in a cell keeps the dialog open, and Ok takes what is still being typed.
    void IsLeftByEscAndByOk() {
        Fixture fixture(u"金卤:JLZ250"_s, u"1"_s);
        QTest::keyClick(fixture.TypeOpen(2, Count, u"77"_s), Qt::Key_Escape);
        QTest::keyClick(fixture.DropDown(1, LightSource), Qt::Key_Escape);
        QVERIFY(fixture.dialog.isVisible());
        QTest::keyClick(fixture.grid, Qt::Key_Escape);
        QVERIFY(!fixture.dialog.isVisible() && fixture.dialog.result() == QDialog::Rejected);
        fixture.dialog.show();
        fixture.TypeOpen(1, Count, u"6"_s);
        fixture.Press(Ok);
        QVERIFY(!fixture.dialog.isVisible() && fixture.dialog.result() == QDialog::Accepted);
        QCOMPARE(fixture.Results(), u"金卤:JLZ250|6"_s);
    }

    void WhatCouldNotBeReadIsNotLost() {
        Fixture cutOff(u"金卤:JLZ400"_s, u"1"_s, kRows + u"drop table 光源;"_s);
        QCOMPARE(cutOff.Seen(), u"混合光源设置|数据未能全部读取,显示的内容不完整。|确定|unplanned"_s);
        cutOff.dialog.accept();  // would empty the luminaire
        QVERIFY(cutOff.dialog.isVisible());
    }
};

QTEST_MAIN(TestMixedLightSourceDialog)
#include "test_mixed_light_source_dialog.moc"
