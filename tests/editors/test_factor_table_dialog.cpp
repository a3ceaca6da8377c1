#include <QClipboard>
#include <QLineEdit>
#include <QMenu>

#include "editors/factor_table/factor_table_dialog.h"
#include "editors/user_settings.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

const QString kFile =
    u"insert into 利用系数 values (1,7,80,50,20,0.6,0.61),(2,7,80,50,20,1.25,0.52),(3,7,70,50,20,0.6,0.63),"
    "(4,7,70,50,20,1.25,0.54),(5,7,80,30,20,0.6,0.654),(6,7,80,30,20,1.25,0.56),(9,8,80,50,20,1,0.9);"_s;
const QString kExists = u"QuorvaneTest|数据已存在|确定|unplanned"_s;
const QString kBadHeading = u"错误|输入列表头内容不正确.|确定|unplanned"_s;
const QString kBadRow = u"错误|输入室空间比RCR内容不正确.|确定|unplanned"_s;
const QString kBadFactor = u"错误|输入数据不正确.|确定|unplanned"_s;
const QString kLeave = u"甲灯 利用系数表|数据已经修改是否提交?|是/否"_s;

enum Control { Ok = 1, Submit = 3, Tree = 1018, Clear = 1023 };
enum Root { HeadingRoot, RowRoot };

// An edit, a menu and a click each end a few turns of the event loop later.
void Settle() {
    for (int turn = 0; turn < 4; ++turn) {
        QCoreApplication::processEvents();
    }
}

// The dialog of luminaire 7.
struct Fixture : ShownGrid {
    explicit Fixture(const QString& rows = kFile) : ShownGrid(rows) {
        QCoreApplication::setApplicationName(u"QuorvaneTest"_s);
        UserSettings().clear();
        Open();
    }
    void Open(const QString& kind = u"RCR"_s) {
        dialog = std::make_unique<CCoefficientTableDlg>(database, 7, u"甲灯"_s, kind, nullptr);
        tree = DialogItem<QTreeWidget>(dialog.get(), Tree);
        Show(dialog.get());
    }

    QTreeWidgetItem* Item(Root root, int child) const { return tree->topLevelItem(root)->child(child); }
    // Opens the menu of an item, whose one enabled entry is returned, and chooses that.
    QString Menu(QTreeWidgetItem* item, bool choose = true) {
        Activate();
        tree->setCurrentItem(item);
        QTest::keyClick(tree, Qt::Key_Menu);
        const QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QStringList enabled;
        for (QAction* action : menu->actions()) {
            enabled += action->isEnabled() ? QStringList(action->text()) : QStringList();
            const bool isChosen = menu->activeAction() != nullptr && menu->activeAction()->isEnabled();
            if (choose && !isChosen) {
                QTest::keyClick(menu, Qt::Key_Down);  // some styles stop at disabled entries, too
            }
        }
        QTest::keyClick(menu, choose ? Qt::Key_Return : Qt::Key_Escape);
        Settle();
        return enabled.join(u' ');
    }
    QLineEdit* Editor() const { return tree->findChild<QLineEdit*>(u"labelEdit"_s); }
    // Types a label over the one being edited.
    void Label(const QString& text, Qt::Key end = Qt::Key_Return) {
        if (Editor() == nullptr) {
            qFatal("no label is being edited");
        }
        QTest::keyClicks(Editor(), text.isEmpty() ? u"\b"_s : text);
        if (end != Qt::Key_unknown) {  // else it stays open
            QTest::keyClick(Editor(), end);
        }
        Settle();
    }
    void Rename(QTreeWidgetItem* item, const QString& text, Qt::Key end = Qt::Key_Return) {
        Activate();
        tree->setCurrentItem(item);
        QTest::keyClick(tree, Qt::Key_F2);
        Label(text, end);
    }
    void Add(Root root, const QString& text, Qt::Key end = Qt::Key_Return) {
        Menu(tree->topLevelItem(root));
        Label(text, end);
    }
    void Delete(Root root, int child, const QString& answer = u"是"_s) {
        answers.Plan(answer);
        Menu(Item(root, child));
    }

    QStringList Grid() const { return QStringList(Row(0)) + Rows(); }
    QString Children(Root root) const {
        QStringList texts;
        for (int child = 0; child < tree->topLevelItem(root)->childCount(); ++child) {
            texts += Item(root, child)->text(0);
        }
        return texts.join(u' ');
    }
    QStringList File() const {
        return file.Raw().Rows(
            u"select Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where LuminaireID=7 "
            "order by Pcc desc,Pw desc,Pf desc,RCR_RI"_s);
    }
    QString Value(int id) const {
        return file.Raw().Text(u"select UtilizationFactor from 利用系数 where ID=%1"_s.arg(id));
    }

    std::unique_ptr<CCoefficientTableDlg> dialog;
    QTreeWidget* tree = nullptr;
};

}  // namespace

class TestFactorTableDialog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void StepsAreUndone() {
        Fixture fixture;
        const QStringList stored = fixture.Grid();
        fixture.Type(5, 2, u"0.7"_s);
        QCOMPARE(fixture.grid->MarksOf({5, 2}), CellMark::Changed);
        QCOMPARE(fixture.grid->TipOf({5, 2}).text, u"文件中的值: 0.56"_s);
        fixture.Add(HeadingRoot, u"60,50,20"_s);
        QCOMPARE(fixture.grid->MarksOf({5, 4}), CellMark::New);
        fixture.Delete(RowRoot, 0);
        for (int step = 0; step < 3; ++step) {
            QVERIFY(fixture.dialog->IsModified());
            fixture.Activate();
            QWidget* place = step == 0 ? static_cast<QWidget*>(fixture.tree) : fixture.grid;
            place->setFocus();
            QTest::keyClick(place, Qt::Key_Z, Qt::ControlModifier);
        }
        QCOMPARE(fixture.Grid(), stored);
        QCOMPARE(fixture.Children(HeadingRoot), u"80,50,20 80,30,20 70,50,20"_s);
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{5, 2}));
        QVERIFY(!fixture.dialog->IsModified() && fixture.grid->MarksOf({5, 2}) == 0);
    }

    void ATableIsPastedWithItsHeadings() {
        QStringList whole;
        {
            Fixture source;
            whole = source.Grid() + source.File();
            source.Click(4, 1);
            QTest::keyClick(source.grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        }
        Fixture fixture(u"insert into 利用系数 values (9,8,80,50,20,1,0.9);"_s);
        const QString question = u"甲灯 利用系数表|将新增%1个列表头和%2个室空间比RCR。\n是否粘贴?|是/否"_s;
        const auto paste = [&](const QString& answer) {
            fixture.answers.Plan(answer);
            fixture.Activate();
            fixture.tree->setFocus();  // as when the dialog has opened
            QTest::keyClick(fixture.tree, Qt::Key_V, Qt::ControlModifier);
            return fixture.answers.TakeSeen().value(0);
        };
        QCOMPARE(paste(u"否"_s), question.arg(3).arg(2));
        QVERIFY(!fixture.dialog->IsModified());
        paste(u"是"_s);
        fixture.Press(Submit);
        QCOMPARE(fixture.Grid() + fixture.File(), whole);
        // From a data sheet: merged cells, no label, one heading and one ratio that are there.
        QGuiApplication::clipboard()->setText(
            u"\t80\t\r\n\t50\t10\r\n\t20\t\r\n1.25\t.5\t.4\r\n2\t\t0.3\r\n"_s);
        QCOMPARE(paste(u"是"_s), question.arg(1).arg(1));
        QCOMPARE(fixture.Grid().mid(4),
                 QStringList({u"0.60|0.61|0.65|0.00|0.63"_s, u"1.25|0.50|0.56|0.40|0.54"_s,
                              u"2.00|0.00|0.00|0.30|0.00"_s}));
        fixture.Activate();
        QTest::keyClick(fixture.grid, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(fixture.Grid(), whole.mid(0, 6));
    }

    void FactorsAreLookedAt() {
        Fixture fixture;
        fixture.Click(4, 1);
        QTest::keyClick(fixture.grid, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(QApplication::focusWidget(), u"0.65"_s);
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{4, 2}));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(fixture.grid->TipOf({4, 2}).text, u"未取舍的数值:0.654"_s);
        for (const bool isOpenedAnew : {false, true}) {
            isOpenedAnew ? fixture.Open() : fixture.Command(u"显示3位小数"_s);
            QCOMPARE(fixture.Row(4), u"0.60|0.610|0.654|0.630"_s);
        }
        QVERIFY(fixture.grid->TipOf({4, 2}).text.isEmpty() && fixture.grid->TipOf({3, 0}).text.isEmpty());
        fixture.Type(4, 1, u"6.1"_s);
        QCOMPARE(fixture.grid->MarksOf({4, 1}), CellMark::Unlikely | CellMark::Changed);
        QVERIFY(fixture.grid->TipOf({4, 1}).text.contains(u"请核对"_s));

        fixture.tree->expandAll();
        fixture.tree->setFocus();
        fixture.tree->setCurrentItem(fixture.Item(HeadingRoot, 1));
        QTest::keyClick(fixture.tree, Qt::Key_Down);
        QCOMPARE(fixture.grid->GetSelectedCellRange(), (CCellRange{4, 3, 5, 3}));
        QTest::mouseClick(fixture.tree->viewport(), Qt::LeftButton, {},
                          fixture.tree->visualItemRect(fixture.Item(RowRoot, 1)).center());
        QCOMPARE(fixture.grid->GetSelectedCellRange(), (CCellRange{5, 1, 5, 3}));

        fixture.Click(4, 2);
        fixture.Command(u"曲线图…"_s);
        auto* plot = fixture.dialog->findChild<QWidget*>(u"factorPlot"_s);
        QVERIFY(plot != nullptr && plot->isVisible());
        const QImage before = plot->grab().toImage();
        fixture.Type(4, 1, u"0.61"_s);
        QVERIFY(plot->grab().toImage() != before);
    }

    void ShowsTheTable() {
        Fixture fixture;
        QCOMPARE(fixture.dialog->windowTitle(), u"甲灯 利用系数表"_s);
        QCOMPARE(fixture.Grid(),
                 QStringList({u"有效顶棚反射比|80|80|70"_s, u"墙反射比|50|30|50"_s, u"地面反射比|20|20|20"_s,
                              u"室空间比RCR|||"_s, u"0.60|0.61|0.65|0.63"_s, u"1.25|0.52|0.56|0.54"_s}));
        QCOMPARE(fixture.Children(HeadingRoot), u"80,50,20 80,30,20 70,50,20"_s);
        QCOMPARE(fixture.Children(RowRoot), u"0.60 1.25"_s);
        QCOMPARE(fixture.grid->MergeExtent(0, 2), (CCellRange{0, 1, 0, 2}));
        fixture.Rename(fixture.Item(HeadingRoot, 0), u"70,60,20"_s);  // ceilings are merged anew
        QCOMPARE(fixture.grid->MergeExtent(0, 3), (CCellRange{0, 2, 0, 3}));
        QCOMPARE(fixture.Menu(fixture.Item(HeadingRoot, 1), false), u"删除列表头"_s);
        fixture.Open(u"RI"_s);
        QCOMPARE(fixture.Grid()[3], u"室形系数RI|||"_s);
        QCOMPARE(fixture.Menu(fixture.tree->topLevelItem(RowRoot), false), u"新建室形系数RI"_s);
        QCOMPARE(fixture.Menu(fixture.Item(RowRoot, 0), false), u"删除室形系数RI"_s);
    }

    void LabelsAreTakenOrEditedOn() {
        Fixture fixture;
        fixture.Rename(fixture.Item(HeadingRoot, 1), u"1,1,1"_s, Qt::Key_Escape);
        QVERIFY(!fixture.dialog->IsModified());
        fixture.Rename(fixture.Item(HeadingRoot, 1), u"80,50"_s);
        QCOMPARE(fixture.Seen(), kBadHeading);
        QCOMPARE(fixture.Editor()->text(), u"80,30,20"_s);
        fixture.Label(u" 1,2,3 "_s, Qt::Key_Tab);  // which edits no other label
        QVERIFY(fixture.Editor() == nullptr);
        fixture.Add(RowRoot, u"-1"_s);
        QCOMPARE(fixture.Seen(), kBadRow);
        QCOMPARE(fixture.Editor()->text(), u"0"_s);
        fixture.Label(u"3"_s);
        QCOMPARE(fixture.tree->currentItem(), fixture.Item(RowRoot, 2));
        QCOMPARE(fixture.Grid()[6], u"3.00|0.00|0.00|0.00"_s);
        // A duplicate leaves no item behind.
        fixture.Add(HeadingRoot, u"70,50,20"_s);
        QCOMPARE(fixture.Seen(), kExists);
        // A click elsewhere ends an edit like Enter.
        fixture.tree->expandAll();
        fixture.Rename(fixture.Item(RowRoot, 1), u"0.5"_s, Qt::Key_unknown);
        QTest::mouseClick(fixture.tree->viewport(), Qt::LeftButton, {},
                          fixture.tree->visualItemRect(fixture.Item(HeadingRoot, 1)).center());
        Settle();
        QCOMPARE(fixture.tree->currentItem(), fixture.Item(HeadingRoot, 1));
        // A cancelled new entry is added as it stands.
        fixture.Add(HeadingRoot, u"5,5,5"_s, Qt::Key_Escape);
        QCOMPARE(fixture.Children(HeadingRoot), u"80,50,20 70,50,20 1,2,3 0,0,0"_s);
        QCOMPARE(fixture.Children(RowRoot), u"0.50 0.60 3.00"_s);
        QVERIFY(fixture.Seen().isEmpty());
    }

    void DeletesAndClearsOnYesAlone() {
        Fixture fixture;
        fixture.Click(4, 1);
        fixture.Click(5, 2, Qt::ShiftModifier);
        QTest::keyClick(fixture.grid, Qt::Key_Delete);
        QCOMPARE(fixture.Grid()[4] + u'/' + fixture.Grid()[5], u"0.60|0|0|0.63/1.25|0|0|0.54"_s);
        QTest::keyClick(fixture.grid, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!fixture.dialog->IsModified());
        fixture.Delete(HeadingRoot, 1, u"否"_s);
        fixture.Delete(RowRoot, 1, u"否"_s);
        fixture.answers.Plan(u"否"_s);
        fixture.Press(Clear);
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({u"甲灯 利用系数表|确定是否删除该列数据?|是/否"_s,
                                                          u"甲灯 利用系数表|确定是否删除该行数据?|是/否"_s,
                                                          u"甲灯 利用系数表|确定是否清空全部数据?|是/否"_s}));
        QVERIFY(!fixture.dialog->IsModified());
        fixture.Delete(HeadingRoot, 1);
        fixture.Delete(RowRoot, 0);
        fixture.answers.Plan(u"是"_s);
        fixture.Press(Clear);
        QCOMPARE(fixture.Grid()[4], u"1.25|0.00|0.00"_s);
        fixture.Press(Submit);
        QCOMPARE(fixture.File(), QStringList({u"80|50|20|1.25|0.0"_s, u"70|50|20|1.25|0.0"_s}));
    }

    void FactorsAreShownAsTypedUntilSubmitted() {
        Fixture fixture;
        fixture.Type(4, 1, u"-1"_s);
        QCOMPARE(fixture.Seen(), kBadFactor);
        QCOMPARE(fixture.grid->GetItemText(4, 1), u"0"_s);
        fixture.PassThrough(4, 2);  // 0.654
        fixture.Type(4, 3, u"0.12345678"_s);
        fixture.Type(5, 3, u"0.544"_s);
        fixture.Type(5, 3, u"0.54"_s);  // not the rounding of the former text but a new number
        QCOMPARE(fixture.Grid()[4], u"0.60|0|0.65|0.123457"_s);
        fixture.Press(Submit);
        QCOMPARE(fixture.Grid()[4], u"0.60|0.61|0.65|0.12"_s);
        fixture.Type(4, 3, u"0.12"_s);  // its display, but typed
        fixture.Press(Submit);
        QVERIFY(!fixture.dialog->IsModified());
        QCOMPARE(fixture.Value(3) + fixture.Value(5) + fixture.Value(4), u"0.120.6540.54"_s);
    }

    // Without an answer nothing has been modified.
    void Leaving() {
        const QString ways = u"ok, ok,是 ok,否 close,是 close,否 esc, esc,取消"_s;
        for (const QString& way : ways.split(u' ')) {
            const QString answer = way.section(u',', 1);
            const bool ok = way.startsWith(u"ok"_s);
            Fixture fixture;
            if (!answer.isEmpty()) {
                QWidget* editor = fixture.TypeOpen(4, 1, u"0.99"_s);  // still being typed at the leave
                if (way.startsWith(u"esc"_s)) {
                    QTest::keyClick(editor, Qt::Key_Up);  // there Esc would cancel the edit
                }
                fixture.answers.Plan(answer);
            }
            if (ok) {
                fixture.Press(Ok);
            } else if (way.startsWith(u"close"_s)) {
                fixture.dialog->close();
            } else {
                QTest::keyClick(fixture.dialog.get(), Qt::Key_Return);
                QVERIFY(fixture.dialog->isVisible());
                QTest::keyClick(fixture.grid, Qt::Key_Escape);
            }
            const QString asked = ok ? kLeave : kLeave + u"/取消"_s;
            QCOMPARE(fixture.Seen(), answer.isEmpty() ? QString() : asked);
            QCOMPARE(fixture.dialog->isVisible(), answer == u"取消"_s);
            QCOMPARE(fixture.dialog->result(), int(ok ? QDialog::Accepted : QDialog::Rejected));
            QCOMPARE(fixture.Value(1), answer == u"是"_s ? u"0.99"_s : u"0.61"_s);
        }
    }

    void AWrongTextKeepsTheDialog() {
        Fixture fixture;
        fixture.TypeOpen(4, 1, u"x"_s);
        fixture.dialog->close();
        QCOMPARE(fixture.Seen(), kBadFactor);
        fixture.Rename(fixture.Item(HeadingRoot, 0), u"8"_s);
        fixture.answers.TakeSeen();
        for (const int way : {Ok, Clear, Submit}) {
            fixture.Label(u"80"_s, Qt::Key_unknown);
            fixture.Press(way);
            Settle();
            QCOMPARE(fixture.Seen(), kBadHeading);
            QVERIFY(fixture.dialog->isVisible() && fixture.Editor() != nullptr);
        }
        // A good text is taken in before the table is written.
        fixture.Label(u"1,2,3"_s, Qt::Key_unknown);
        fixture.Press(Submit);
        QCOMPARE(fixture.File().last(), u"1|2|3|1.25|0.52"_s);
    }

    void TellsWhatWasNotWritten() {
        Fixture fixture;
        fixture.log.failing = {u"where ID=2"_s, u"where ID=3"_s};
        const QString told =
            u"甲灯 利用系数表|有1条数据未能写入数据库。\n原因:数据库文件被其他程序占用。请排除后再次提交。|确定|unplanned"_s;
        fixture.Type(5, 1, u"0.7"_s);
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{4, 2}));  // from the foot of a column to the next
        fixture.Press(Submit);
        QVERIFY(fixture.dialog->IsModified());  // what is not in the file is not forgotten
        fixture.answers.Plan(u"是"_s);
        fixture.Press(Ok);
        QCOMPARE(fixture.answers.TakeSeen(), QStringList({told, kLeave, told}));
        QVERIFY(fixture.dialog->isVisible() && fixture.dialog->IsModified());
        QCOMPARE(fixture.grid->Cell(5, 0)->GetBackColour(), QColor(255, 150, 120));
        // A statement that met no row has written nothing either.
        fixture.log.failing.clear();
        fixture.file.Raw().Execute(u"delete from 利用系数 where ID=2"_s);
        fixture.Press(Submit);
        QVERIFY(fixture.Seen().contains(u"有1条数据提交后"_s));
        fixture.Press(Submit);  // inserts it
        fixture.dialog->close();
        QVERIFY(!fixture.dialog->isVisible() && fixture.answers.TakeSeen().isEmpty());
    }

    void AnIncompleteTableIsNotEdited() {
        Fixture fixture(kFile + u"update 利用系数 set UtilizationFactor=null where ID=4;"_s);
        QCOMPARE(fixture.Seen(), u"甲灯 利用系数表|利用系数未能全部读取,不能编辑。|确定|unplanned"_s);
        QVERIFY(!fixture.tree->isEnabled() && !fixture.grid->isEnabled());
        QVERIFY(!DialogItem(fixture.dialog.get(), Submit)->isEnabled());
        QVERIFY(!DialogItem(fixture.dialog.get(), Clear)->isEnabled());
        fixture.Press(Ok);
        QVERIFY(!fixture.dialog->isVisible());
    }
};

QTEST_MAIN(TestFactorTableDialog)
#include "test_factor_table_dialog.moc"
