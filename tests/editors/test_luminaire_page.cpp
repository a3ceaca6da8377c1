#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include "tests/editors/shown_luminaires.h"

using namespace quorvane;

namespace {

const QString kFile =
    kLists +
    u"insert into 灯具 values "
    "(31,'1','筒灯','D1',75.5,1,1.2,1.3,'甲厂','2',1,4.5,'12','fmt','\\Vexal\\LuminairePhotoLib\\31.jpg'),"
    "(32,'2,1','台灯','D2',1234567,0,0,0,'','1',0,0,'14','',''),"
    "(33,'5,1','混灯','D3',60,0,0,0,'乙厂','1,2',0,0,'11,12','',''),"
    "(34,'15,77','模组灯','D4',60,2,0,0,'','1',0,0,'999','','');"
    "insert into 利用系数 values (1,31,70,50,20,1,0.5),(2,31,70,50,20,2,0.25),(3,32,80,50,20,1,0.125);"_qs;
const QString kFactors = u"select LuminaireID,Pcc,RCR_RI,UtilizationFactor from 利用系数 order by ID"_qs;
const QString kSubmitQuestion = u"灯具库|数据已经修改是否提交?|是/否"_qs;

struct Fixture : ShownLuminaires {
    Fixture() : ShownLuminaires(kFile) {}
    QStringList Factors() const { return file.Raw().Rows(kFactors); }
};

}  // namespace

class TestLuminairePage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ShowsACategory();
    void EditsTouchTheirOwnCellOnly();
    void TextsFindTheirWayBack();
    void AppendRowBecomesARecord();
    void ChosenTypesPrepareTheLightSources();
    void MixedLightIsSetInItsDialog();
    void PhotoIsChosenStoredAndTakenAway();
    void PasteGivesALuminaireOfItsOwn();
    void PasteOntoALuminaireReplacesIt();
    void FailuresLoseNothing();
    void LightSourcesAreThoseOfTheFile();
    void NewRowIsWholeOrNamesNoPicture();
    void LuminaireWithoutCategoryIsTold();
    void ChangeOfFilterAsks();
    void FillingAsksOnceForAll();
};

void TestLuminairePage::ShowsACategory() {
    Fixture fixture;
    QCOMPARE(fixture.Row(0),
             u"序号|灯具名称|灯具型号|灯具效率|A-A|B-B|灯具类别|默认光源|光源个数|镇流器数|"
             "镇流器功率|厂  家|灯具图片|利用系数类别|利用系数表"_qs);
    QCOMPARE(fixture.Rows(), QStringList(u"追加|||0|0|0|||0|0|0|||RCR|"_qs));
    QVERIFY(!DialogItem(fixture.page, PasteButton)->isEnabled());
    fixture.ChooseCategory(u"荧光灯"_qs);  // 1, which also stands in 15
    QCOMPARE(
        fixture.Rows(),
        QStringList(
            {u"1|筒灯|D1|75.5|1.2|1.3|荧光灯|细管:T5|2|1|4.5|甲厂|%1|RI|"_qs.arg(Relative(u"31.jpg"_qs)),
             u"2|台灯|D2|1.23457E+06|0|0|白炽灯,荧光灯|逗,号:|1|0|0|||RCR|"_qs,
             u"3|混灯|D3|60|0|0|混光灯,荧光灯|直管:T8,细管:T5|1,2|0|0|乙厂||RCR|"_qs,
             u"4|模组灯|D4|60|0|0|LED,模组|999|1|0|0|||RCR|"_qs, u"追加|||0|0|0||直管:T8|0|0|0|||RCR|"_qs}));
    QCOMPARE(fixture.grid->GetItemData(2, Number), 32);
    for (const auto& [row, isMixed] : {std::pair{1, false}, {2, false}, {3, true}, {4, true}, {5, false}}) {
        QCOMPARE(fixture.grid->IsCellEditable(row, LightSourceCount), !isMixed);
        QCOMPARE(fixture.grid->EditingOf({row, LightSources}) == CellEditing::Choice, !isMixed);
        QVERIFY(!fixture.grid->IsCellEditable(row, Categories));
    }
    fixture.ChooseCategory(u"白炽灯"_qs);
    QCOMPARE(fixture.grid->GetRowCount(), 3);
    QVERIFY(fixture.answers.TakeSeen().isEmpty());
}

void TestLuminairePage::EditsTouchTheirOwnCellOnly() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    const QStringList before = fixture.file.Raw().Rows(u"select * from 灯具 where ID>31"_qs);
    for (const QString& wrong : {u"-5"_qs, u"1e5"_qs, u""_qs}) {
        fixture.Type(1, MaxLhBB, wrong);
        QCOMPARE(fixture.grid->GetItemText(1, MaxLhBB), u"0"_qs);
    }
    fixture.Type(1, BallastCount, u"99999999999"_qs);
    QCOMPARE(fixture.grid->GetItemText(1, BallastCount), u"2147483647"_qs);
    fixture.Type(1, BallastCount, u"1.5"_qs);
    fixture.Type(1, BallastPower, u" 7.25 "_qs);
    fixture.Type(1, LightSourceCount, u""_qs);
    QCOMPARE(fixture.grid->GetItemText(1, LightSourceCount), u"0"_qs);
    fixture.PickEntry(1, FactorKind, u"RCR"_qs);
    fixture.Type(4, Maker, u"丁厂"_qs);
    QVERIFY(fixture.page->IsModified());
    fixture.Submit();
    QCOMPARE(fixture.file.Raw().Rows(u"select * from 灯具 where ID=31"_qs).constFirst(),
             u"31|'1'|'筒灯'|'D1'|75.5|0|1.2|0.0|'甲厂'|'0'|0|7.25|'12'|'fmt'|'%1'"_qs.arg(
                 Relative(u"31.jpg"_qs)));
    QStringList expected = before;
    expected[0].replace(u"1234567.0"_qs, u"1234570.0"_qs);
    expected[2].replace(u"2|0.0|0.0|''"_qs, u"2|0.0|0.0|'丁厂'"_qs);
    QCOMPARE(fixture.file.Raw().Rows(u"select * from 灯具 where ID>31"_qs), expected);
    QVERIFY(!fixture.page->IsModified());
}

void TestLuminairePage::TextsFindTheirWayBack() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    const std::pair<QString, const char*> choices[] = {
        {u"泡:a:Q"_qs, "13"}, {u"逗,号:"_qs, "14"}, {u"直管:T8"_qs, "11"}, {u"细管:T5"_qs, "12"}};
    for (const auto& [text, id] : choices) {
        fixture.PickEntry(2, LightSources, text);
        fixture.page->Submit();
        QCOMPARE(fixture.Field("DefaultLamphouse", 32), QString::fromLatin1(id));
    }
    // Two categories of which one has a comma in its name, and a light source without name and model.
    fixture.PickTypes(1, {u"荧光灯"_qs, u"LED,模组"_qs}, Qt::Key_Return);
    fixture.page->Submit();
    QCOMPARE(fixture.Field("LamphouseTypeID", 31), u"15"_qs);
    fixture.PickTypes(2, {u"常用灯具"_qs}, Qt::Key_Return);
    fixture.file.Raw().Execute(u"update 光源 set LamphouseType=3 where ID=16"_qs);
    fixture.Submit();
    fixture.PickEntry(2, LightSources, u":"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse", 32), u"16"_qs);
    // A light source that is gone, and a category that is gone, outlive a look into the chooser.
    fixture.PickTypes(4, {}, Qt::Key_Return);
    fixture.PickTypes(4, {u"白炽灯"_qs}, Qt::Key_Escape);
    fixture.Type(4, Name, u"改"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("LamphouseTypeID||DefaultLamphouse", 34), u"15,77999"_qs);
}

void TestLuminairePage::AppendRowBecomesARecord() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.Type(5, Efficiency, u"0"_qs);
    fixture.PickPhoto(5, fixture.WriteFile(fixture.file.Folder() + u"/p.bmp"_qs, "p"));
    QVERIFY(!fixture.page->IsModified());
    QCOMPARE(fixture.AppendRow(), 5);
    fixture.PressCell(5, FactorTable);  // opens nothing for no luminaire
    fixture.Type(5, Name, u"新灯"_qs);
    QCOMPARE(fixture.grid->GetItemData(5, Number), -1);
    QCOMPARE(fixture.AppendRow(), 6);
    fixture.PickTypes(5, {u"荧光灯"_qs}, Qt::Key_Return);
    fixture.PickEntry(6, LightSources, u"细管:T5"_qs);
    QCOMPARE(fixture.grid->GetItemData(6, Number), -2);
    fixture.Submit();
    QCOMPARE(fixture.file.Raw().Rows(u"select * from 灯具 where ID>34"_qs),
             QStringList(
                 {u"35|'1'|'新灯'|''|0.0|0|0.0|0.0|''|'0'|0|0.0|'11'|''|'%1'"_qs.arg(Relative(u"35.bmp"_qs)),
                  u"36|''|''|''|0.0|0|0.0|0.0|''|'0'|0|0.0|'12'|''|''"_qs}));
    QCOMPARE(fixture.Photos(), QStringList(u"35.bmp=p"_qs));
    QCOMPARE(fixture.grid->GetItemText(5, Number), u"5"_qs);
    // The factor table is that of a stored luminaire: opening it stores the row.
    fixture.Type(7, Name, u"带表"_qs);
    const DialogAnswer answer(u"factorTableDialog"_qs,
                              [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    fixture.PressCell(7, FactorTable);
    QVERIFY(answer.WasShown);
    QCOMPARE(fixture.Field("LampName", 37), u"带表"_qs);
    QCOMPARE(fixture.grid->GetItemData(7, Number), 37);
    QCOMPARE(fixture.grid->GetItemText(7, Number), u"7"_qs);
}

void TestLuminairePage::ChosenTypesPrepareTheLightSources() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.PickTypes(1, {u"混光灯"_qs}, Qt::Key_Tab);
    QCOMPARE(fixture.grid->GetItemText(1, Categories), u"混光灯"_qs);
    QCOMPARE(fixture.grid->GetItemText(1, LightSources), u"细管:T5"_qs);
    QVERIFY(!fixture.grid->IsCellEditable(1, LightSourceCount));
    fixture.PickTypes(3, {u"混光灯"_qs, u"白炽灯"_qs}, Qt::Key_Return);
    QCOMPARE(fixture.grid->GetItemText(3, LightSources), u"泡:a:Q"_qs);  // none of the old two is offered
    QVERIFY(fixture.grid->IsCellEditable(3, LightSourceCount));
    fixture.Submit();
    QCOMPARE(fixture.Field("LamphouseTypeID||'|'||DefaultLamphouse||'|'||LamphouseCount", 31), u"5|12|2"_qs);
    QVERIFY(fixture.Field("LamphouseTypeID", 33).contains(u'2'));
    QCOMPARE(fixture.Field("DefaultLamphouse", 33), u"13"_qs);
}

void TestLuminairePage::MixedLightIsSetInItsDialog() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    for (const auto& [leave, isTaken] : {std::pair{Cancel, false}, {Ok, true}}) {
        const DialogAnswer answer(u"mixedLightSourceDialog"_qs, [&, button = leave](QWidget* dialog) {
            auto* entries = dialog->findChild<CGridCtrl*>();
            QCOMPARE(entries->GetItemText(2, 2), u"细管:T5"_qs);
            entries->SetFocusCell({2, 3});
            entries->setFocus();
            QTest::keyClicks(entries, u"7"_qs);
            PressIn(dialog, button);
        });
        fixture.PressCell(3, LightSources);
        QVERIFY(answer.WasShown);
        QCOMPARE(fixture.page->IsModified(), isTaken);
        QCOMPARE(fixture.grid->GetItemText(3, LightSourceCount), isTaken ? u"1,7"_qs : u"1,2"_qs);
    }
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse||'|'||LamphouseCount", 33), u"11,12|1,7"_qs);
}

void TestLuminairePage::PhotoIsChosenStoredAndTakenAway() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.WriteFile(fixture.Library() + u"31.jpg"_qs, "old");
    fixture.WriteFile(fixture.Library() + u"131.jpg"_qs, "other");
    const QString source = fixture.WriteFile(fixture.file.Folder() + u"/新 图.gif"_qs, "new");
    fixture.PickPhoto(1, source, Cancel);
    QVERIFY(!fixture.page->IsModified());
    fixture.PickPhoto(1, source);
    QCOMPARE(fixture.grid->GetItemText(1, Photo), source);
    QCOMPARE(fixture.Photos(), QStringList({u"131.jpg=other"_qs, u"31.jpg=old"_qs}));
    fixture.Submit();
    QCOMPARE(fixture.Photos(), QStringList({u"131.jpg=other"_qs, u"31.gif=new"_qs}));
    QCOMPARE(fixture.grid->GetItemText(1, Photo), Relative(u"31.gif"_qs));
    // Pictures of the library change hands in one go, also when one row is stored before the others.
    fixture.PickPhoto(2, fixture.Library() + u"31.gif"_qs);
    fixture.PickPhoto(1, fixture.WriteFile(fixture.file.Folder() + u"/b.bmp"_qs, "b"));
    fixture.Submit();
    fixture.PickPhoto(1, fixture.Library() + u"32.gif"_qs);
    fixture.PickPhoto(2, fixture.Library() + u"31.bmp"_qs);
    const DialogAnswer answer(u"factorTableDialog"_qs,
                              [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    fixture.PressCell(1, FactorTable);
    fixture.Submit();
    QCOMPARE(fixture.Photos(), QStringList({u"131.jpg=other"_qs, u"31.gif=new"_qs, u"32.bmp=b"_qs}));
    fixture.PickPhoto(2, {});
    fixture.PickPhoto(1, {});
    fixture.Submit();
    QCOMPARE(fixture.Photos(), QStringList(u"131.jpg=other"_qs));
    QCOMPARE(fixture.Field("LampPhoto", 31), QString());
}

void TestLuminairePage::PasteGivesALuminaireOfItsOwn() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.WriteFile(fixture.Library() + u"31.jpg"_qs, "picture");
    fixture.PressButton(CopyButton, 5);  // nothing to copy
    QVERIFY(!DialogItem(fixture.page, PasteButton)->isEnabled());
    fixture.PressButton(CopyButton, 1);
    fixture.PressButton(PasteButton, 5);
    fixture.PressButton(PasteButton, 6);
    QVERIFY(!fixture.page->IsModified());
    QCOMPARE(fixture.Row(6),
             u"6|筒灯|D1|75.5|1.2|1.3|荧光灯|细管:T5|2|1|4.5|甲厂|%1|RI|"_qs.arg(Relative(u"36.jpg"_qs)));
    QCOMPARE(fixture.grid->GetItemData(5, Number), 35);
    QCOMPARE(fixture.Factors().mid(3), QStringList({u"35|70|1.0|0.5"_qs, u"35|70|2.0|0.25"_qs,
                                                    u"36|70|1.0|0.5"_qs, u"36|70|2.0|0.25"_qs}));
    QCOMPARE(fixture.Field("UtilizationFactorFormat", 36), u"fmt"_qs);
    // What happens to the original leaves the copies alone.
    fixture.DeleteRow(1);
    fixture.Submit();
    QCOMPARE(fixture.Photos(), QStringList({u"35.jpg=picture"_qs, u"36.jpg=picture"_qs}));
    QCOMPARE(fixture.Factors().size(), 5);
    // A copy of a luminaire that was never stored, with a photo that was not either.
    const int append = fixture.AppendRow();
    fixture.Type(append, Name, u"未存"_qs);
    fixture.PickPhoto(append, fixture.WriteFile(fixture.file.Folder() + u"/p.bmp"_qs, "p"));
    fixture.PressButton(CopyButton, append);
    fixture.PressButton(PasteButton, append + 1);
    QCOMPARE(fixture.grid->GetItemData(append, Number), -3);
    QVERIFY(fixture.page->IsModified());
    QCOMPARE(fixture.Field("LampPhoto", 37), Relative(u"37.bmp"_qs));
    fixture.Submit();
    QCOMPARE(fixture.Photos().mid(2), QStringList({u"37.bmp=p"_qs, u"38.bmp=p"_qs}));
}

void TestLuminairePage::PasteOntoALuminaireReplacesIt() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.WriteFile(fixture.Library() + u"31.jpg"_qs, "picture");
    fixture.WriteFile(fixture.Library() + u"32.bmp"_qs, "own");
    fixture.PressButton(CopyButton, 3);
    fixture.PressButton(PasteButton, 4);
    fixture.PressButton(CopyButton, 1);
    fixture.PressButton(PasteButton, 2);
    QCOMPARE(fixture.Field("LampName||DefaultLamphouse", 34), u"混灯11,12"_qs);
    QCOMPARE(fixture.Row(2),
             u"2|筒灯|D1|75.5|1.2|1.3|荧光灯|细管:T5|2|1|4.5|甲厂|%1|RI|"_qs.arg(Relative(u"32.jpg"_qs)));
    QCOMPARE(fixture.Factors().mid(2), QStringList({u"32|70|1.0|0.5"_qs, u"32|70|2.0|0.25"_qs}));
    QCOMPARE(fixture.Photos(), QStringList({u"31.jpg=picture"_qs, u"32.jpg=picture"_qs}));
    // What was copied outlives what it was copied from.
    fixture.DeleteRow(1);
    fixture.Submit();
    fixture.PressButton(PasteButton, 3);
    QCOMPARE(fixture.Photos(), QStringList({u"32.jpg=picture"_qs, u"34.jpg=picture"_qs}));
}

void TestLuminairePage::FailuresLoseNothing() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.WriteFile(fixture.Library() + u"31.jpg"_qs, "old");
    fixture.WriteFile(fixture.Library() + u"32.jpg"_qs, "stray");
    const QString source = fixture.WriteFile(fixture.file.Folder() + u"/new.bmp"_qs, "new");
    fixture.PressButton(CopyButton, 2);
    const QStringList rows = fixture.file.Snapshot();
    RawDatabase other = fixture.file.Raw();
    other.Execute(u"begin immediate"_qs);
    fixture.PickPhoto(1, source);
    fixture.DeleteRow(2);
    fixture.answers.TakeSeen();
    fixture.Submit();
    QVERIFY(fixture.answers.TakeSeen().constFirst().contains(u"有1条数据未能从数据库删除。"_qs));
    QCOMPARE(fixture.grid->GetItemText(1, Photo), source);
    QCOMPARE(fixture.grid->GetItemData(4, Number), 32);
    const QStringList photos{u"31.jpg=old"_qs, u"32.jpg=stray"_qs};
    QCOMPARE(fixture.Photos(), photos);
    fixture.PressButton(PasteButton, 5);
    fixture.PickPhoto(1, {});
    fixture.Submit();
    fixture.answers.TakeSeen();
    QCOMPARE(fixture.Photos(), photos);
    QCOMPARE(fixture.grid->GetItemText(5, Name), u"台灯"_qs);
    QCOMPARE(fixture.file.Snapshot(), rows);
    // Neither does a change of the filter when the submit that it asked for fails.
    fixture.Type(1, Name, u"改名"_qs);
    fixture.answers.Plan(u"是"_qs);
    fixture.ChooseCategory(u"白炽灯"_qs);
    QCOMPARE(fixture.answers.TakeSeen().size(), 2);
    QCOMPARE(DialogItem<QComboBox>(fixture.page, Filter)->currentText(), u"荧光灯"_qs);
    QCOMPARE(fixture.grid->GetItemText(1, Name), u"改名"_qs);
    other.Execute(u"rollback"_qs);
    fixture.Submit();
    QVERIFY(fixture.answers.TakeSeen().isEmpty());
    QCOMPARE(fixture.Field("LampName||LampPhoto", 31), u"改名"_qs);
    QVERIFY(fixture.Photos().isEmpty());  // the stray one was that of a luminaire without a photo
    QCOMPARE(fixture.Factors().constLast(), u"35|80|1.0|0.125"_qs);  // they came along with the pasted row
    QCOMPARE(fixture.file.Raw().Rows(u"select ID from 灯具"_qs).size(), 5);

    // A factor table that cannot be read whole is not copied: a paste would put a part in a table's place.
    other.Execute(u"update 利用系数 set UtilizationFactor=null where ID=2"_qs);
    fixture.PressButton(CopyButton, 1);
    QCOMPARE(fixture.answers.TakeSeen().size(), 1);
    QVERIFY(!DialogItem(fixture.page, PasteButton)->isEnabled());
}

void TestLuminairePage::LightSourcesAreThoseOfTheFile() {
    Fixture fixture;
    RawDatabase raw = fixture.file.Raw();
    raw.Execute(
        u"insert into 光源 values (41,2,'T8',1,1,'','直管'); "
        "update 灯具 set DefaultLamphouse='41,12' where ID=33"_qs);
    fixture.ChooseCategory(u"荧光灯"_qs);
    // Of two that read the same, the one that was not touched stays.
    const DialogAnswer answer(u"mixedLightSourceDialog"_qs, [&](QWidget* dialog) {
        dialog->findChild<CGridCtrl*>()->SetFocusCell({2, 1});
        fixture.answers.Plan(u"是"_qs);
        PressIn(dialog, 1015);
        PressIn(dialog, Ok);
    });
    fixture.PressCell(3, LightSources);
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse", 33), u"41"_qs);
    // A list that is not whole takes no light source away.
    raw.Execute(u"update 光源 set Factory=null where ID=11"_qs);
    fixture.PickTypes(1, {u"常用灯具"_qs}, Qt::Key_Return);
    QCOMPARE(fixture.answers.TakeSeen().size(), 2);
    QCOMPARE(fixture.grid->GetItemText(1, LightSources), u"细管:T5"_qs);
    // Names that changed hands, and a light source that is gone, since they were listed.
    raw.Execute(u"update 光源 set Factory='' where ID=11; delete from 光源 where ID=41"_qs);
    fixture.page->Refresh();
    raw.Execute(u"update 光源 set LamphouseName='旧' where ID=11"_qs);
    raw.Execute(u"update 光源 set LamphouseName='直管',LamphouseModel='T8' where ID=12"_qs);
    fixture.PickEntry(2, LightSources, u"直管:T8"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse", 32), u"12"_qs);
    raw.Execute(u"delete from 光源 where ID=14"_qs);
    fixture.PickEntry(2, LightSources, u"逗,号:"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse", 32), u"逗,号:"_qs);
    // One that was added on its own page is offered when this page is shown again.
    raw.Execute(u"insert into 光源 values (42,1,'N',1,1,'','新')"_qs);
    fixture.page->hide();
    fixture.page->show();
    fixture.PickEntry(2, LightSources, u"新:N"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("DefaultLamphouse", 32), u"42"_qs);
}

// A picture's own path, which may hold anything, never gets into the file.
void TestLuminairePage::NewRowIsWholeOrNamesNoPicture() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.PickTypes(5, {u"荧光灯"_qs}, Qt::Key_Return);
    fixture.PickPhoto(5, fixture.WriteFile(fixture.file.Folder() + u"/it's/p.bmp"_qs, "p"));
    RawDatabase raw = fixture.file.Raw();
    raw.Execute(u"create trigger t before update on 灯具 begin select raise(abort, 't'); end"_qs);
    fixture.grid->horizontalScrollBar()->setValue(1000);
    fixture.Submit();
    QVERIFY(fixture.answers.TakeSeen().constFirst().contains(u"有5条数据未能写入数据库。"_qs));
    QVERIFY(fixture.grid->viewport()->rect().contains(fixture.grid->CellRect(1, Number)));  // the red mark
    QCOMPARE(fixture.Field("LampPhoto", 35), QString());
    raw.Execute(u"drop trigger t"_qs);
    fixture.Submit();
    QCOMPARE(fixture.Field("LampPhoto", 35), Relative(u"35.bmp"_qs));
    QCOMPARE(fixture.Photos(), QStringList(u"35.bmp=p"_qs));
    QCOMPARE(fixture.answers.TakeSeen(), QStringList());
}

// No filter would show it again, so the page stays once to have it set right.
void TestLuminairePage::LuminaireWithoutCategoryIsTold() {
    Fixture fixture;
    fixture.ChooseCategory(u"荧光灯"_qs);
    fixture.Type(5, Name, u"新灯"_qs);
    for (const bool stays : {true, false}) {
        if (stays) {
            fixture.answers.Plan(u"是"_qs);
        }
        fixture.ChooseCategory(u"白炽灯"_qs);
        QCOMPARE(fixture.answers.TakeSeen().size(), stays ? 2 : 0);
        QCOMPARE(fixture.Field("LampName", 35), u"新灯"_qs);
        QCOMPARE(fixture.grid->GetRowCount(), stays ? 7 : 3);
        QVERIFY(!stays || fixture.grid->GetItemData(5, Number) == 35);
    }
}

void TestLuminairePage::ChangeOfFilterAsks() {
    for (const bool submit : {false, true}) {
        Fixture fixture;
        fixture.ChooseCategory(u"荧光灯"_qs);
        fixture.WriteFile(fixture.Library() + u"31.jpg"_qs, "p");
        fixture.Type(2, Name, u"改名"_qs);
        fixture.DeleteRow(1);
        fixture.answers.TakeSeen();
        fixture.answers.Plan(submit ? u"是"_qs : u"否"_qs);
        fixture.ChooseCategory(u"白炽灯"_qs);
        QCOMPARE(fixture.answers.TakeSeen(), QStringList(kSubmitQuestion));
        QCOMPARE(fixture.grid->GetItemText(1, Name), submit ? u"改名"_qs : u"台灯"_qs);
        fixture.Submit();
        QCOMPARE(fixture.Photos().size(), submit ? 0 : 1);
        QCOMPARE(fixture.file.Raw().Rows(u"select ID from 灯具"_qs).size(), submit ? 3 : 4);
    }
}

namespace {

// Counts the statements that hold a text.
struct CountingConnection : Connection {
    explicit CountingConnection(std::shared_ptr<Connection> opened) : inner(std::move(opened)) {}
    void Open(const CString& name, const CString& user, const CString& password, int options) override {
        inner->Open(name, user, password, options);
    }
    std::unique_ptr<Recordset> Execute(const CString& statement) override {
        statements += statement;
        return inner->Execute(statement);
    }
    void Close() override { inner->Close(); }

    std::shared_ptr<Connection> inner;
    QStringList statements;
};

}  // namespace

void TestLuminairePage::FillingAsksOnceForAll() {
    TemporaryLightingDatabase file;
    file.Raw().Execute(kLists +
                       u"delete from 光源类别 where ID>2; with recursive n(i) as (select 1 union all select "
                       u"i + 1 from n where i < 90) "
                       "insert into 灯具 select i,'1,2','灯','',1,0,0,0,'','1',0,0,'12','','' from n"_qs);
    std::shared_ptr<CountingConnection> counter;
    CLightingDatabase database(
        [&counter](const CString& name) {
            counter = std::make_shared<CountingConnection>(CreateStoreConnection(name));
            return counter;
        },
        file.ExecutablePath());
    QVERIFY(database.Connect());
    ReferenceLists lists(database);
    CQuorvaneLuminaireDlg page(database, lists, nullptr);
    page.show();
    counter->statements.clear();
    QTest::keyClick(DialogItem(&page, Filter), Qt::Key_Down);
    QVERIFY(page.findChild<CGridCtrl*>()->GetRowCount() > 90);
    // The category's ID twice, the luminaires, two names, two lists, the light source offered first.
    QVERIFY2(counter->statements.size() <= 8, qPrintable(counter->statements.join(u'\n')));
    counter->statements.clear();
    page.Refresh();
    QVERIFY2(counter->statements.size() <= 7, qPrintable(counter->statements.join(u'\n')));
}

QTEST_MAIN(TestLuminairePage)
#include "test_luminaire_page.moc"
