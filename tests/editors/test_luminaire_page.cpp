#include <QClipboard>
#include <QDir>
#include <QLineEdit>
#include <QMimeData>
#include <QTemporaryDir>

#include "editors/grid_setup.h"
#include "editors/luminaire/luminaire_page.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

enum { Ok = 1, Cancel, Filter = 1006, CopyButton = 1022, PasteButton = 1023, PhotoPath = 1025 };
enum {
    Number,
    Name,
    Categories = 6,
    LightSources,
    LightSourceCount,
    Photo = 12,
    FactorTable = 14,
};

const QString kFile =
    u"insert into 光源类别 values "
    u"(1,'荧光灯'),(2,'白炽灯'),(3,'常用灯具'),(5,'混光灯'),(15,'LED,模组'),(40,'无类别');"
    "insert into 光源 values (11,1,'T8',3350,36,'','直管'),(12,1,'T5',2600,28,'','细管'),"
    "(13,2,'Q',1,1,'','泡:a');"
    "insert into 灯具 values "
    "(31,'1','筒灯','D1',75.5,1,1.2,1.3,'甲厂','2',1,4.5,'12','fmt','\\Vexal\\LuminairePhotoLib\\31.jpg'),"
    "(32,'2,1','台灯','D2',1234567,0,0,0,'','1',0,0,'13','',''),"
    "(33,'5,1','混灯','D3',60,0,0,0,'乙厂','1,2',0,0,'11,12','',''),"
    "(34,'15,77','模组灯','D4',60,2,0,0,'','1',0,0,'999','',''),"
    "(35,'','无','','0',0,0,0,'','1',0,0,'','',''),(36,'77,78','失','','0',0,0,0,'','1',0,0,'','',''),"
    "(37,'40','同名','','0',0,0,0,'','1',0,0,'','','');"
    "insert into 利用系数 values (1,31,70,50,20,1,0.5);"_s;

const QString kBlankRow = u"追加|||0|0|0|||0|0|0|||RCR|"_s;
const QString kFilledRow = u"追加|||0|0|0||直管:T8|0|0|0|||RCR|"_s;

void PressIn(QWidget* dialog, int id) {
    QTest::mouseClick(DialogItem(dialog, id), Qt::LeftButton);
}

struct Fixture : ShownPage {
    Fixture() : ShownPage(kFile, MakePage<CQuorvaneLuminaireDlg>) {
        QCOMPARE(Rows(), QStringList(kBlankRow));
        ChooseCategory(u"荧光灯"_s);  // 1, which also stands in 15
    }

    void ChooseCategory(const QString& name) {
        Choose(Filter, DialogItem<QComboBox>(page, Filter)->findText(name));
    }
    // Where the button of a cell stands, also beside a text.
    void PressCell(int row, int column) {
        Activate();
        grid->EnsureVisible(row, column);
        const QRect cell = grid->CellRect(row, column);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, {cell.right() - 8, cell.center().y()});
    }
    void PressButton(int id, int row) {
        Click(row, Name);
        PressIn(page, id);
    }
    CLamphouseTypeChoiceWindow* Chooser() const { return page->findChild<CLamphouseTypeChoiceWindow*>(); }
    // Opens the list of categories and ticks or unticks names, by the mouse or, those after "_", by Space.
    QListWidget* ToggleTypes(int row, const QStringList& names) {
        Click(row, Categories);
        auto* list = Chooser()->findChild<QListWidget*>();
        for (QString name : names) {
            const bool byKey = name.startsWith(u'_');
            QListWidgetItem* item = list->findItems(name.remove(u'_'), Qt::MatchExactly).constFirst();
            if (byKey) {
                list->setCurrentItem(item);
                QTest::keyClick(list, Qt::Key_Space);
            } else {
                QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
            }
        }
        return list;
    }
    void PickTypes(int row, const QStringList& names, Qt::Key key) {
        QTest::keyClick(ToggleTypes(row, names), key);
    }
    QString Field(const char* field, int id) const {
        return file.Raw().Text(u"select %1 from 灯具 where ID=%2"_s.arg(QLatin1String(field)).arg(id));
    }
};

}  // namespace

class TestLuminairePage : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TipsShowLightSourcesAndPhotos() {
        Fixture fixture;
        QCOMPARE(fixture.grid->TipOf({3, LightSources}).text, u"直管:T8 × 1\n细管:T5 × 2"_s);
        QTRY_COMPARE(fixture.grid->TipOf({1, Photo}).text, u"图片文件不存在。"_s);
        const QTemporaryDir folder;
        const QString path = QDir::toNativeSeparators(folder.filePath(u"a.png"_s));
        const auto drop = [&](int column, const QUrl& what) {
            QMimeData files;
            files.setUrls({what});
            fixture.grid->EnsureVisible(2, column);
            const QPoint place = fixture.grid->CellRect(2, column).center();
            QDragEnterEvent enter(place, Qt::CopyAction, &files, Qt::LeftButton, {});
            QCoreApplication::sendEvent(fixture.grid->viewport(), &enter);
            QDropEvent dropped(place, Qt::CopyAction, &files, Qt::LeftButton, {});
            dropped.ignore();
            QCoreApplication::sendEvent(fixture.grid->viewport(), &dropped);
            QCoreApplication::processEvents();
            return dropped.isAccepted();
        };
        const QUrl file = QUrl::fromLocalFile(path);
        QVERIFY(!drop(Name, file) && !drop(Photo, QUrl(u"https://example.org/a.png"_s)) && drop(Photo, file));
        QCOMPARE(fixture.Seen(), u"灯具库|图片文件不存在。|确定|unplanned"_s);
        QVERIFY(!fixture.page->IsModified());
        QVERIFY(QImage(30, 60, QImage::Format_RGB32).save(path));
        drop(Photo, file);
        QCOMPARE(fixture.grid->GetItemText(2, Photo), path);
        QVERIFY(fixture.page->IsModified());
        QTRY_COMPARE(fixture.grid->TipOf({2, Photo}).picture.size(), QSize(90, 180));
    }

    void ShowsACategory() {
        Fixture fixture;
        QCOMPARE(fixture.Row(0),
                 u"序号|灯具名称|灯具型号|灯具效率|A-A|B-B|灯具类别|默认光源|光源个数|镇流器数|"
                 "镇流器功率|厂  家|灯具图片|利用系数类别|利用系数表"_s);
        // The list has the order of the database, not that of pinyin.
        QCOMPARE(DialogItem<CEaseComboBox>(fixture.page, Filter)->Strings().at(1), u"常用灯具"_s);
        const QString photo = u"\\Vexal\\LuminairePhotoLib\\31.jpg"_s;
        QCOMPARE(fixture.Rows(),
                 QStringList({u"1|筒灯|D1|75.5|1.2|1.3|荧光灯|细管:T5|2|1|4.5|甲厂|%1|RI|"_s.arg(photo),
                              u"2|台灯|D2|1.23457E+06|0|0|白炽灯,荧光灯|泡:a:Q|1|0|0|||RCR|"_s,
                              u"3|混灯|D3|60|0|0|混光灯,荧光灯|直管:T8,细管:T5|1,2|0|0|乙厂||RCR|"_s,
                              u"4|模组灯|D4|60|0|0|LED,模组|999|1|0|0|||RCR|"_s, kFilledRow}));
        QCOMPARE(fixture.grid->GetItemData(2, Number), 32);
        for (const int row : {1, 2, 3, 4, 5}) {
            const bool isMixed = row == 3 || row == 4;
            QCOMPARE(fixture.grid->IsCellEditable(row, LightSourceCount), !isMixed);
            QCOMPARE(fixture.grid->EditingOf({row, LightSources}) == CellEditing::Choice, !isMixed);
            QVERIFY(!fixture.grid->IsCellEditable(row, Categories));
        }
    }

    // Behind the categories, one of which may have the same name.
    void ListsLuminairesThatNoCategoryLists() {
        Fixture fixture;
        fixture.Type(5, Name, u"新灯"_s);
        for (const int rows : {7, 3}) {  // told, and the page stays once to let the user correct it
            fixture.answers.Plan(u"是"_s);
            fixture.ChooseCategory(u"白炽灯"_s);
            QCOMPARE(fixture.answers.TakeSeen().size(), rows == 7 ? 2 : 0);
            QCOMPARE(fixture.grid->GetRowCount(), rows);
        }
        const auto names = [&](int entry) {
            fixture.Choose(Filter, entry);
            return fixture.Texts(Name).trimmed();
        };
        auto* list = DialogItem<CEaseComboBox>(fixture.page, Filter);
        const int count = list->count();
        QCOMPARE(names(count - 2), u"筒灯 台灯 混灯 模组灯 无 失 同名 新灯"_s);
        QCOMPARE(names(count - 1), u"无 失 新灯"_s);
        QCOMPARE(fixture.Rows().constLast(), kBlankRow);
        QCOMPARE(names(list->findText(u"无类别"_s)), u"同名"_s);
        names(count - 1);
        fixture.Type(1, Name, u"b"_s);
        fixture.answers.Plan(u"是"_s);  // a luminaire without a category holds nobody up here
        QCOMPARE(names(count - 2), u"筒灯 台灯 混灯 模组灯 b 失 同名 新灯"_s);
        QCOMPARE(fixture.Seen(), u"灯具库|数据已经修改是否提交?|是/否"_s);
    }

    // A factor table belongs to a stored luminaire.
    void AFactorTableOpensForAStoredLuminaireOnly() {
        Fixture fixture;
        const DialogAnswer answer(u"factorTableDialog"_s,
                                  [](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
        fixture.PressCell(5, FactorTable);  // there is no luminaire yet
        QVERIFY(!answer.WasShown && !fixture.page->IsModified());
        fixture.Type(5, Name, u"带表"_s);
        fixture.log.failing = {u"insert "_s};
        fixture.PressCell(5, FactorTable);
        QCOMPARE(fixture.answers.TakeSeen().size(), 1);
        QVERIFY(!answer.WasShown);
        const auto head = [&] {
            fixture.grid->RemakeRows();
            const bool isUnwritten = fixture.grid->Cell(5, Number)->GetBackColour() == kUnwrittenColour;
            return fixture.grid->GetItemText(5, Number) + (isUnwritten ? u" red"_s : QString());
        };
        QCOMPARE(head(), u"追加 red"_s);
        fixture.log.failing.clear();
        fixture.PressCell(5, FactorTable);
        QVERIFY(answer.WasShown);
        QCOMPARE(head(), u"5"_s);
        QCOMPARE(fixture.grid->GetItemData(5, Number), 38);
    }

    // Mixed light stands alone, but for the common luminaires.
    void TicksFollowTheMixedLightRule() {
        Fixture fixture;
        // What is toggled in the first row, and what it has then.
        const QString steps =
            u"白炽灯:白炽灯,荧光灯;常用灯具,混光灯:常用灯具,混光灯;_白炽灯:常用灯具,白炽灯;_混光灯:常用灯具,"
            u"混光灯;"
            "_常用灯具:混光灯;常用灯具:常用灯具,混光灯;_荧光灯,白炽灯,白炽灯,常用灯具:荧光灯"_s;
        for (const QString& step : steps.split(u';')) {
            fixture.PickTypes(1, step.section(u':', 0, 0).split(u','), Qt::Key_Enter);
            QCOMPARE(fixture.grid->GetItemText(1, Categories), step.section(u':', 1));
        }
        fixture.PickTypes(3, {u"荧光灯"_s}, Qt::Key_Enter);
        QCOMPARE(fixture.grid->GetItemText(3, Categories), u"混光灯"_s);
    }

    // Whether a press outside goes on to what it hit is asked of the list, for a platform without a screen
    // keeps it back.
    void TheListOfTypesClosesOnAPressOutside() {
        Fixture fixture;
        int reports = 0;
        connect(fixture.Chooser(), &CLamphouseTypeChoiceWindow::Chosen, this, [&] { ++reports; });
        for (const bool inCell : {true, false, true}) {
            fixture.ToggleTypes(2, {});
            const QRect cell = fixture.grid->CellRect(2, Categories);
            const QWidget* cells = fixture.grid->viewport();
            QCOMPARE(fixture.Chooser()->pos(), cells->mapToGlobal(cell.bottomLeft() + QPoint(0, 1)));
            // As the window system sends it: the open list is asked first.
            QTest::mouseClick(fixture.window.windowHandle(), Qt::LeftButton, {},
                              inCell ? cells->mapTo(&fixture.window, cell.center()) : QPoint(9, 500));
            QCoreApplication::processEvents();
            QVERIFY(!fixture.Chooser()->isVisible());
            QCOMPARE(std::exchange(reports, 0), 1);
            QCOMPARE(fixture.Chooser()->testAttribute(Qt::WA_NoMouseReplay), inCell);
        }
        fixture.ToggleTypes(2, {u"荧光灯"_s});
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_COMPARE(fixture.grid->GetItemText(2, Categories), u"白炽灯"_s);
    }

    void ChosenTypesChangeTheirRow() {
        Fixture fixture;
        fixture.PickTypes(3, {u"混光灯"_s, u"白炽灯"_s, u"荧光灯"_s}, Qt::Key_Return);
        QCOMPARE(fixture.grid->GetItemText(3, LightSources), u"泡:a:Q"_s);
        QVERIFY(fixture.grid->IsCellEditable(3, LightSourceCount));
        // A category that is gone outlives a look into the list.
        fixture.DropDown(4, Categories);
        QVERIFY(fixture.Chooser()->isVisible());
        QTest::keyClick(fixture.Chooser()->findChild<QListWidget*>(), Qt::Key_Return);
        fixture.PickTypes(4, {u"白炽灯"_s}, Qt::Key_Escape);
        fixture.PickTypes(5, {u"白炽灯"_s}, Qt::Key_Tab);
        fixture.Submit();
        QCOMPARE(fixture.Seen(), QString());
        QCOMPARE(
            fixture.file.Raw().Rows(
                u"select LamphouseTypeID||'|'||DefaultLamphouse from 灯具 where ID>32 and DefaultLamphouse<>''"_s),
            QStringList({u"'2|13'"_s, u"'15,77|999'"_s, u"'2|13'"_s}));
    }

    void ACancelledDialogChangesNothing() {
        Fixture fixture;
        const DialogAnswer answer(u"mixedLightSourceDialog"_s, [&](QWidget* dialog) {
            auto* entries = dialog->findChild<CGridCtrl*>();
            entries->SetFocusCell({2, 3});
            entries->setFocus();
            QTest::keyClicks(entries, u"7"_s);
            PressIn(dialog, Cancel);
        });
        fixture.PressCell(3, LightSources);
        const DialogAnswer photo(u"photoDialog"_s, [](QWidget* dialog) {
            DialogItem<QLineEdit>(dialog, PhotoPath)->setText(u"/x.bmp"_s);
            PressIn(dialog, Cancel);
        });
        fixture.PressCell(1, Photo);
        const DialogAnswer unchanged(u"photoDialog"_s, [](QWidget* dialog) { PressIn(dialog, Ok); });
        fixture.PressCell(1, Photo);
        fixture.Type(1, LightSourceCount, u"2"_s);
        QVERIFY(answer.WasShown && photo.WasShown && unchanged.WasShown && !fixture.page->IsModified());
        fixture.Type(1, LightSourceCount, {});
        fixture.Submit();
        QCOMPARE(fixture.Field("LamphouseCount", 31), u"0"_s);
    }

    void PastesOverARow() {
        Fixture fixture;
        fixture.file.Raw().Execute(u"update 灯具 set LampPhoto=''"_s);
        fixture.ChooseCategory(u"荧光灯"_s);
        fixture.PressButton(CopyButton, 5);  // nothing to copy
        QVERIFY(!DialogItem(fixture.page, PasteButton)->isEnabled());
        fixture.PressButton(CopyButton, 3);
        fixture.PressButton(PasteButton, 2);
        QVERIFY(!fixture.page->IsModified());
        QVERIFY(!fixture.grid->IsCellEditable(2, LightSourceCount) && fixture.grid->GetRowCount() == 6);
        QCOMPARE(fixture.Field("LampName", 32), u"混灯"_s);
        fixture.file.Raw().Execute(u"update 利用系数 set UtilizationFactor=null"_s);
        fixture.PressButton(CopyButton, 1);
        QCOMPARE(fixture.answers.TakeSeen().size(), 1);
        QVERIFY(!DialogItem(fixture.page, PasteButton)->isEnabled());
    }

    // Its photo came with the file and names no picture of the library, so it is no copy that could fail.
    void AFailedPasteOutlivesTheRun() {
        QCborMap kept;
        {
            Fixture fixture;
            fixture.file.Raw().Execute(u"update 灯具 set LampPhoto='Z:\\a.jpg' where ID=31"_s);
            fixture.page->Reload();
            fixture.PressButton(CopyButton, 1);
            fixture.log.failing = {u"insert "_s};
            fixture.PressButton(PasteButton, 5);
            QCOMPARE(fixture.answers.TakeSeen().size(), 1);
            QVERIFY(fixture.grid->GetItemData(5, Number) == -1 && fixture.Row(6) == kFilledRow);
            QVERIFY(fixture.page->IsModified());
            kept = fixture.page->KeepEdits()();
        }
        Fixture later;
        QVERIFY(later.page->MakeEditsAgain(kept).isEmpty());
        later.Submit();
        QCOMPARE(later.Seen(), QString());
        QCOMPARE(later.file.Raw().Text(u"select count(*) from 利用系数 where LuminaireID=38"_s), u"1"_s);
    }

    // What hangs on the categories is judged by those that come with it.
    void CategoriesArePastedByTheirTexts() {
        Fixture fixture;
        QApplication::clipboard()->setText(
            u"混\t\t\t\t\t混光灯\t直管:T8,泡:a:Q\t2,1\n白\t\t\t\t\t白炽灯\t泡:a:Q\t3\n错\t\t\t\t\t白炽灯,混光灯\t直管:T8\t4"_s);
        fixture.Click(5, Name);
        fixture.answers.Plan(u"是"_s);
        QTest::keySequence(fixture.grid, QKeySequence(QKeySequence::Paste));
        QCOMPARE(fixture.Seen(),
                 u"灯具库|剪贴板中有24个单元格的内容,其中1个超出表格或不能填入所在的单元格,不会粘贴。\n"
                 "不是可选的内容:“白炽灯,混光灯”。\n是否粘贴其余内容?|是/否"_s);
        QCOMPARE(fixture.Rows().mid(4, 3),
                 QStringList({u"追加|混||0|0|0|混光灯|直管:T8,泡:a:Q|2,1|0|0|||RCR|"_s,
                              u"追加|白||0|0|0|白炽灯|泡:a:Q|3|0|0|||RCR|"_s,
                              u"追加|错||0|0|0||直管:T8|4|0|0|||RCR|"_s}));
    }

    void WhatTheFileDoesNotHoldIsMarked() {
        Fixture fixture;
        fixture.ChooseCategory(u"荧光灯"_s);
        fixture.file.Raw().Execute(u"delete from 灯具 where ID=31"_s);
        fixture.Type(2, Name, u"a'b"_s);
        fixture.Submit();
        const auto tip = [&](int row) { return fixture.grid->TipOf({row, Number}).text; };
        QVERIFY(tip(1).startsWith(u"数据库文件中没有这一行"_s) && !tip(1).contains(u"新行"_s));
        QVERIFY(tip(2).endsWith(u"原因:“灯具名称”一列中含有单引号,不能写入。"_s));
        // Where the row number is scrolled away, the first cell in sight tells of the row.
        const int last = fixture.grid->GetRowCount() - 1;
        fixture.Type(last, Name, u"新"_s);
        QCOMPARE(fixture.grid->MarksOf({last, Number}), CellMark::New);
        fixture.grid->EnsureVisible(last, fixture.grid->GetColumnCount() - 1);
        const CCellID first{last, fixture.grid->LeftmostColumn()};
        QVERIFY(first.col > 0 && fixture.grid->TipOf(first).text.contains(u"新行"_s));
        QCOMPARE(fixture.grid->MarksOf(first) + fixture.grid->MarksOf({last, first.col + 1}), CellMark::New);
    }

    void LightSourcesAreThoseOfTheFile() {
        Fixture fixture;
        // A name that changed hands since it was listed.
        fixture.file.Raw().Execute(
            u"update 光源 set LamphouseName='旧' where ID=11;"
            "update 光源 set LamphouseName='直管',LamphouseModel='T8' where ID=12"_s);
        fixture.Pick(2, LightSources, u"直管:T8"_s);
        fixture.Submit();
        QCOMPARE(fixture.Field("DefaultLamphouse", 32), u"12"_s);
        // One that was added on its own page is offered when this page is shown again.
        fixture.file.Raw().Execute(u"insert into 光源 values (10,1,'N',1,1,'','新')"_s);
        fixture.page->hide();
        fixture.page->show();
        QCOMPARE(fixture.grid->GetItemText(5, LightSources), u"新:N"_s);
    }
};

QTEST_MAIN(TestLuminairePage)
#include "test_luminaire_page.moc"
