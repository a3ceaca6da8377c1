#include <QClipboard>
#include <QLineEdit>
#include <QPrintPreviewWidget>
#include <QRadioButton>
#include <QTemporaryDir>

#include "editors/grid_setup.h"
#include "editors/light_source_page.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

enum Control { kCategoryList = 1004, kMakerList, kByCategory = 1007, kByMaker };
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
    void ByCategory() { QTest::mouseClick(DialogItem(page, kByCategory), Qt::LeftButton, {}, QPoint(8, 8)); }
    QString Chosen(int list) const { return DialogItem<QComboBox>(page, list)->currentText(); }
    void ChooseMaker(int entry) {
        ByMaker();
        Choose(kMakerList, entry);
    }
    // Chooses a command of the context menu, and a file in the dialog that it opens.
    void ChooseFile(const QString& command, const QString& path) {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);  // they cannot be filled in here
        const DialogAnswer fill(u"fileDialog"_s, [path](QWidget* dialog) {
            auto* name = dialog->findChild<QLineEdit*>(u"fileNameEdit"_s);
            name->setText(path);
            QTest::keyClick(name, Qt::Key_Return);
        });
        Command(command);
    }
    QStringList File() const { return file.Raw().Rows(u"select * from 光源 order by ID"_s); }
};

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
        // A list that was left has nothing chosen: an append row of the other one has its presets alone.
        fixture.ByCategory();
        QCOMPARE(fixture.Rows(), QStringList(u"追加|白炽灯|||0|0|"_s));
        fixture.Choose(kCategoryList, 1);
        QCOMPARE(fixture.Rows().last(), u"追加|荧光灯|||0|0|"_s);
    }

    void IsPrintedAndLeavesAsCsvAndComesBack() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a.csv"_s);
        fixture.Click(1, Name);
        fixture.ChooseFile(u"导出 CSV…"_s, path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray text = file.readAll();
        QVERIFY(text.contains("\r\n3,荧光灯,短管,T5-14,1.23457E+06,14,甲厂\r\n"));
        file.resize(0);
        file.write(text.replace("直管", "长管") + ",荧光灯,新,M,1e3,7,乙厂\r\n");
        file.close();
        for (const QString& answer : {u"否"_s, u"是"_s}) {
            QVERIFY(!fixture.page->IsModified());
            fixture.answers.Plan(answer);
            fixture.ChooseFile(u"导入 CSV…"_s, path);
        }
        QCOMPARE(
            fixture.answers.TakeSeen().value(1),
            u"光源库 荧光灯|将修改1格,追加1行。\n另有1格不能填入(没有相应的行或列、不可修改或不是可填的内容),"
            "不会导入。\n是否导入?|是/否"_s);
        QCOMPARE(fixture.Rows(),
                 QStringList({u"1|荧光灯|长管|T8-36|3350|36|甲厂"_s, u"2|荧光灯|细管|T5-28|2600|28|乙厂"_s,
                              u"3|荧光灯|短管|T5-14|1.23457E+06|14|甲厂"_s, u"追加|荧光灯|新|M|0|7|乙厂"_s,
                              u"追加|荧光灯|||0|0|"_s}));
        // The key loads the file's rows again.
        fixture.answers.Plan(u"否"_s);
        fixture.page->Reload();
        QCOMPARE(fixture.Rows().size(), 4);
        QVERIFY(!fixture.page->IsModified());
        fixture.ChooseFile(u"导出 PDF…"_s, folder.filePath(u"a"_s));
        QVERIFY(QFile(folder.filePath(u"a.pdf"_s)).size() > 1000);
        int pages = 0;
        const DialogAnswer look(u"printPreview"_s, [&pages](QWidget* dialog) {
            const auto* preview = dialog->findChild<QPrintPreviewWidget*>();
            (void)QTest::qWaitFor([&] { return (pages = preview->pageCount()) == 1; });
            dialog->close();
        });
        fixture.Command(u"打印预览…"_s);
        QCOMPARE(pages, 1);
    }

    void APasteSaysWhatItLeavesOut() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        QApplication::clipboard()->setText(u"水银灯\t甲\r\n荧光灯\t乙\r\n荧光灯\t丙\tM\t1e3\r\n"_s);
        for (const QString& answer : {u"否"_s, u"是"_s}) {
            QCOMPARE(fixture.Rows().size(), 4);
            fixture.Click(3, Category);
            fixture.answers.Plan(answer);
            QTest::keySequence(fixture.grid, QKeySequence(QKeySequence::Paste));
        }
        const QString question =
            u"光源库|剪贴板中有8个单元格的内容,其中2个超出表格或不能填入所在的单元格,"
            "不会粘贴。\n不是可选的内容:“水银灯”。\n不是数值:“1e3”。\n是否粘贴其余内容?|是/否"_s;
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({question, question}));
        QCOMPARE(fixture.Rows().mid(2),
                 QStringList({u"3|荧光灯|甲|T5-14|1.23457E+06|14|甲厂"_s, u"追加|荧光灯|乙||0|0|"_s,
                              u"追加|荧光灯|丙|M|0|0|"_s, u"追加|荧光灯|||0|0|"_s}));
    }

    // A category that its cell does not offer outlives the edit of another cell.
    void EditsReachTheFile() {
        Fixture fixture;
        fixture.ChooseMaker(1);
        fixture.Type(2, Name, u"改名"_s);
        fixture.Type(3, Power, u" 12.50 "_s);
        fixture.Pick(1, Category, u"白炽灯"_s);
        const QString odd = u"%s %d %% \\ \" <b> \u202eעברית 😀"_s;
        fixture.Type(4, Model, odd);
        fixture.Type(5, Maker, u"丁厂"_s);  // alone it says nothing
        QVERIFY(fixture.page->Submit());
        QCOMPARE(
            fixture.File(),
            QStringList(
                {u"11|2|'T8-36'|3350.0|36.0|'甲厂'|'直管'"_s, u"12|1|'T5-28'|2600.0|28.0|'乙厂'|'细管'"_s,
                 u"13|1|'T5-14'|1234570.0|14.0|'甲厂'|'改名'"_s, u"14|5|'MIX'|5000.0|12.5|'甲厂'|'混光'"_s,
                 u"15|9|'X'|1.0|1.0|'丙厂'|'无类'"_s, u"16|2|'%1'|0.0|0.0|'甲厂'|''"_s.arg(odd)}));
        QVERIFY(!fixture.page->IsModified());
        // A chosen category that has gone from the file changes nothing.
        fixture.file.Raw().Execute(u"delete from 光源类别 where ID=1"_s);
        fixture.Pick(1, Category, u"荧光灯"_s);
        QCOMPARE(fixture.grid->GetItemText(1, Category), u"白炽灯"_s);
        QVERIFY(!fixture.page->IsModified());
    }

    // Another choice would take what could not be written off the screen: the list goes back.
    void WhatCouldNotBeWrittenStaysInSight() {
        Fixture fixture;
        const auto afterRefusal = [&](const std::function<void()>& choose) {
            fixture.Type(1, Name, fixture.grid->GetItemText(1, Name) + u'a');
            const QString typed = fixture.grid->GetItemText(1, Name);
            fixture.log.failing = {u"update 光源 "_s, u"insert into 光源 "_s};
            fixture.answers.TakeSeen();
            fixture.answers.Plan(u"是"_s);
            fixture.answers.Plan(u"确定"_s);
            choose();
            const bool stays = fixture.grid->GetItemText(1, Name) == typed &&
                               fixture.grid->Cell(1, Number)->GetBackColour() == kUnwrittenColour;
            const bool isTold = fixture.answers.TakeSeen().size() == 2;
            fixture.log.failing.clear();
            fixture.page->Submit();
            const QString preset = fixture.grid->GetItemText(fixture.grid->GetRowCount() - 1, Category);
            return stays && isTold ? fixture.Chosen(kCategoryList) + u'|' + preset : QString();
        };
        QCOMPARE(afterRefusal([&] { fixture.ChooseFluorescent(); }), u"|白炽灯"_s);
        fixture.ChooseFluorescent();
        QCOMPARE(afterRefusal([&] { fixture.Choose(kCategoryList, 0); }), u"荧光灯|荧光灯"_s);
        QCOMPARE(afterRefusal([&] { fixture.ByMaker(); }), u"荧光灯|荧光灯"_s);
        QVERIFY(DialogItem<QRadioButton>(fixture.page, kByCategory)->isChecked());
        // Once a mode has been left, its former choice is no place to go back to.
        fixture.ByMaker();
        fixture.ByCategory();
        const auto down = [&] { QTest::keyClick(DialogItem(fixture.page, kCategoryList), Qt::Key_Down); };
        QCOMPARE(afterRefusal(down), u"|白炽灯"_s);
    }

    void WhyAnAccessFileRefusesIsTold() {
        Fixture fixture;
        const QString path = fixture.file.FilePath();
        QVERIFY(fixture.database.Disconnect() && QFile::remove(path));
        QVERIFY(QFile::copy(QStringLiteral(ACCESS_FIXTURES "/adox-chinese.mdb"), path));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner) &&
                fixture.database.Connect());
        fixture.ChooseMaker(0);
        const std::pair<QString, QString> cases[] = {
            {u""_s, u"原因:第2行“厂家”一列是空的,而数据库的这一列不允许空字符串。"_s},
            {QString(256, u'x'),
             u"原因:第2行“厂家”一列,数据库报告:表 光源,ID=%1 的记录:字段 Factory:"
             "文字有256个字符,而字段大小为"_s.arg(fixture.grid->GetItemData(2, 0))}};
        for (const auto& [maker, reason] : cases) {
            fixture.Type(2, Maker, maker);
            fixture.page->Submit();
            const QString seen = fixture.answers.TakeSeen().join(u'\n');
            QVERIFY2(seen.contains(reason), qPrintable(seen));
        }
        QVERIFY(fixture.database.Disconnect());
        QFile lock(path.chopped(3) + u"ldb"_s);
        QVERIFY(lock.open(QIODevice::WriteOnly) && lock.write("OFFICE-7") == 8 && lock.flush());
        QVERIFY(fixture.database.Connect());
        fixture.page->Submit();
        QVERIFY(fixture.answers.TakeSeen().join(u'\n').contains(u"OFFICE-7正在使用该文件"_s));
    }

    // Another program deletes one row before the submit and changes one between the submit and the
    // comparison.
    void WhatTheFileDoesNotHoldIsMarked() {
        Fixture fixture;
        fixture.ChooseFluorescent();
        fixture.file.Raw().Execute(u"delete from 光源 where ID=11"_s);
        fixture.log.onStatement = [&](const QString& statement) {
            if (statement.startsWith(u"select ID, Lamp"_s)) {
                fixture.file.Raw().Execute(u"update 光源 set LuminousFlux=LuminousFlux+1 where ID>11"_s);
            }
        };
        fixture.Pick(3, Category, u"白炽灯"_s);
        fixture.Submit();
        QVERIFY(fixture.Seen().contains(u"有2条数据提交后与数据库文件中的不同"_s));
        QVERIFY(fixture.page->IsModified());
        const auto tip = [&](int row) { return fixture.grid->TipOf({row, Number}).text.left(9); };
        QCOMPARE(tip(1) + tip(2) + tip(3), u"数据库文件中没有这数据库文件中的这一"_s);  // six digits are kept
    }

    void EditsOfAnEarlierRunAreMadeAgain() {
        Fixture earlier;
        earlier.ChooseMaker(1);
        const QStringList loaded = earlier.Rows();
        earlier.Type(1, Flux, u"3351"_s);
        earlier.Type(2, Flux, u"7"_s);
        earlier.Type(4, Name, u"新"_s);
        const QCborMap kept = earlier.page->KeepEdits()();
        Fixture later(QString(kFile).replace(u"3350,36"_s, u"3300,36"_s));
        QCOMPARE(later.page->MakeEditsAgain(kept),
                 QStringList(u"光源库 直管: 光通量: 文件中的值 3300,上次改为 3351"_s));
        QStringList expected = earlier.Rows();
        expected[0].replace(u"3351"_s, u"3300"_s);
        expected[3].replace(u"追加"_s, u"4"_s);
        QCOMPARE(later.Rows(), expected);
        QVERIFY(later.page->IsModified() && later.page->EditCount() == 2);
        QCOMPARE(later.Chosen(kMakerList), u"甲厂"_s);
        later.Activate();
        QTest::keyClick(later.grid, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(later.Rows(), QStringList(loaded).replaceInStrings(u"3350"_s, u"3300"_s));
    }

    void IncompleteLoadIsTold() {
        Fixture fixture(kFile + u"update 光源 set Factory=null where ID=12;"_s);
        QStringList seen;
        QTRY_COMPARE((seen += fixture.answers.TakeSeen()).size(), 1);  // about the list of makers
        fixture.ByMaker();
        fixture.ByCategory();
        QVERIFY(fixture.Seen().isEmpty());
        fixture.ChooseFluorescent();
        QCOMPARE(fixture.answers.TakeSeen().size(), 1);
        QCOMPARE(fixture.grid->GetRowCount(), 3);
        // The category that is shown is loaded again when it is chosen again.
        fixture.file.Raw().Execute(u"update 光源 set Factory=''"_s);
        fixture.ChooseFluorescent();
        QCOMPARE(fixture.grid->GetRowCount(), 5);
    }
};

QTEST_MAIN(TestLightSourcePage)
#include "test_light_source_page.moc"
