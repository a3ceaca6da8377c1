// What every table of records does for its user, on the page of light sources.
#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QToolButton>

#include "editors/grid_setup.h"
#include "editors/light_source_page.h"
#include "tests/support/shown_page.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

enum { Number, Category, Name, Model, Flux };

// Names a1, a2, ...
QStringList Named(int count) {
    QStringList records;
    for (int number = 1; number <= count; ++number) {
        records += u"a%1"_s.arg(number);
    }
    return records;
}

// Shows a category of records, each given by its name and, after a blank, its luminous flux.
struct Fixture : ShownPage {
    explicit Fixture(const QStringList& records)
        : ShownPage(Insert(records), MakePage<CQuorvaneLamphouseDlg>) {
        Choose(1004, 0);
    }
    static QString Insert(const QStringList& records) {
        QString text = u"insert into 光源类别 values (1,'灯');"_s;
        for (const QString& record : records) {
            text +=
                u"insert into "
                u"光源(LamphouseType,LamphouseName,LamphouseModel,LuminousFlux,LamphousePower,Factory) "
                "values (1,'%1','M',%2,0,'');"_s.arg(record.section(u' ', 0, 0))
                    .arg(record.section(u' ', 1).toInt());
        }
        return text;
    }

    bool DeleteSelected(const std::vector<int>& rows, const QStringList& replies) {
        for (const int row : rows) {
            Click(row, Name, row == rows.front() ? Qt::NoModifier : Qt::ControlModifier);
        }
        for (const QString& reply : replies) {
            answers.Plan(reply);
        }
        return page->DeleteSelected();
    }
    void Undo() {
        Activate();
        QTest::keyClick(grid, Qt::Key_Z, Qt::ControlModifier);
    }
    // Numbers, names and luminous fluxes.
    QString Shown() const { return Texts(Number) + u'|' + Texts(Name) + u'|' + Texts(Flux); }
    QColor HeadColour(int row) const { return grid->Cell(row, Number)->GetBackColour(); }
};

QString Question(int row, const QString& name, const QString& buttons = u"是/否/全部是"_s) {
    return u"光源库|确定是否删除选中数据:第%1行,%2的全部信息?|%3"_s.arg(row).arg(name, buttons);
}

}  // namespace

class TestRecordGrid : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void UnwrittenRecordsArePointedOut() {
        Fixture fixture(Named(60));
        fixture.PassThrough(2, Flux);
        QVERIFY(!fixture.page->IsModified());
        fixture.Type(61, Name, u"b"_s);
        fixture.Type(62, Name, u"c"_s);
        fixture.Type(61, Flux, u"x"_s);
        fixture.grid->RemakeRows();
        QVERIFY(fixture.Texts(Number).endsWith(u"60 追加 追加 追加"_s));
        fixture.DeleteSelected({9}, {u"是"_s});
        fixture.Click(5, Flux);
        fixture.Submit({u"'b'"_s, u"delete "_s});
        QVERIFY(fixture.Seen().contains(
            u"有1条数据未能写入数据库。\n有1条数据未能从数据库删除。\n原因:数据库文件被其他程序占用。"_s));
        QVERIFY(fixture.Texts(Number).endsWith(u"60 61 62 追加"_s) &&
                fixture.Texts(Name).endsWith(u" a60 b c a9 "_s));
        QVERIFY(fixture.page->IsModified());
        QCOMPARE(fixture.HeadColour(60), kUnwrittenColour);
        QCOMPARE(fixture.HeadColour(61), kReadOnlyColour);
        QCOMPARE(fixture.grid->GetItemData(61, Number), 61);  // its ID in the file
        QVERIFY(fixture.grid->viewport()->rect().contains(fixture.grid->CellRect(60, Number)));
        QCOMPARE(fixture.grid->GetFocusCell(), (CCellID{5, Flux}));
    }

    // Rows that Ctrl left out stay, "no" ends it, and "all" asks no more. The append row cannot be deleted.
    void DeletingAsksForEachRow() {
        Fixture fixture(Named(8));
        QVERIFY(fixture.DeleteSelected({9}, {}));
        QVERIFY(!fixture.DeleteSelected({2, 3, 4}, {u"是"_s, u"否"_s}));
        QCOMPARE(fixture.answers.TakeSeen(),
                 QStringList({Question(2, u"a2"_s, u"是/否"_s), Question(2, u"a3"_s)}));
        QVERIFY(!fixture.page->IsModified());
        QCOMPARE(fixture.Shown(), u"1 2 3 4 5 6 7 追加|a1 a3 a4 a5 a6 a7 a8 |0 0 0 0 0 0 0 0"_s);
        QVERIFY(fixture.DeleteSelected({2, 3, 5, 7, 8}, {u"是"_s, u"是"_s, u"全部是"_s}));
        QCOMPARE(fixture.answers.TakeSeen(),
                 QStringList({Question(2, u"a3"_s, u"是/否"_s), Question(2, u"a4"_s), Question(3, u"a6"_s)}));
        QVERIFY(fixture.page->IsModified());
        QCOMPARE(fixture.Shown(), u"1 2 3 追加|a1 a5 a7 |0 0 0 0"_s);
    }

    void ColumnsStayAsTheUserLeftThem() {
        const QTemporaryDir folder;
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
        Fixture before({});
        const int width = before.grid->GetColumnWidth(Name);
        const QPoint edge(before.grid->CellRect(0, Name).right() + 1, 5);
        QTest::mousePress(before.grid->viewport(), Qt::LeftButton, {}, edge);
        QTest::mouseMove(before.grid->viewport(), edge + QPoint(20, 0));
        QTest::mouseRelease(before.grid->viewport(), Qt::LeftButton, {}, edge + QPoint(20, 0));
        const Fixture after({});
        QCOMPARE(after.grid->GetColumnWidth(Name), width + 20);
    }

    // The arrow of a heading sorts, turns round and restores; the records keep their numbers.
    void AHeadingSortsTheRows() {
        Fixture fixture({u"直管 10"_s, u"准直 9"_s, u"钠灯 9"_s});
        const auto press = [&](int column) {
            const QRect heading = fixture.grid->CellRect(0, column);
            QTest::mouseClick(fixture.grid->viewport(), Qt::LeftButton, {},
                              {heading.right() - 5, heading.center().y()});
            return fixture.Shown();
        };
        QCOMPARE(press(Name), u"3 1 2 追加|钠灯 直管 准直 |9 10 9 0"_s);
        QCOMPARE(press(Flux), u"2 3 1 追加|准直 钠灯 直管 |9 9 10 0"_s);
        // An edited and an appended row stay where they are until the rows are sorted again.
        fixture.Type(1, Flux, u"99"_s);
        fixture.Type(4, Name, u"new"_s);
        fixture.Type(4, Flux, u"7"_s);
        QCOMPARE(fixture.Shown(), u"2 3 1 追加 追加|准直 钠灯 直管 new |99 9 10 7 0"_s);
        QVERIFY(fixture.DeleteSelected({2}, {u"是"_s}));
        QCOMPARE(fixture.Seen(), Question(3, u"钠灯"_s, u"是/否"_s));
        QCOMPARE(fixture.Shown(), u"2 1 追加 追加|准直 直管 new |99 10 7 0"_s);
        QCOMPARE(press(Flux), u"2 1 3 追加|准直 直管 new |99 10 7 0"_s);
        fixture.Undo();
        QCOMPARE(press(Flux), u"1 2 3 4 追加|直管 准直 钠灯 new |10 99 9 7 0"_s);
    }

    void AFilterHidesRowsButNoUnwrittenOnes() {
        Fixture fixture(Named(12));
        fixture.Type(3, Flux, u"5"_s);
        fixture.Submit({u"where ID=3"_s});
        const auto filter = [&](int column, const QString& text) {
            fixture.Click(1, column);
            QTest::keyClick(fixture.grid, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
            QTest::keyClicks(QApplication::focusWidget(), text);
            return fixture.Texts(Number);
        };
        QCOMPARE(filter(Name, u"A1"_s), u"1 3 10 11 12 追加"_s);
        QCOMPARE(fixture.window.findChild<QLabel*>(u"filterCount"_s)->text(), u"显示 5 行,共 12 行"_s);
        fixture.Type(6, Name, u"b"_s);
        QCOMPARE(fixture.Texts(Number), u"1 3 10 11 12 追加 追加"_s);
        fixture.Submit();
        QCOMPARE(fixture.Texts(Number), u"1 10 11 12 追加"_s);
        QCOMPARE(filter(Flux, u"1"_s), u"追加"_s);
        fixture.page->Reload();
        QCOMPARE(fixture.grid->GetRowCount(), 15);
    }

    // Ctrl+F, the next and the previous one, Esc; then Ctrl+H, which takes as typing does.
    void FindsAndReplaces() {
        Fixture fixture({u"荧光灯 16"_s, u"T8 8"_s, u"YG型 18"_s});
        const auto focus = [&] { return fixture.grid->GetFocusCell(); };
        const auto count = [&] { return fixture.window.findChild<QLabel*>(u"findCount"_s)->text(); };
        const int height = fixture.grid->viewport()->height();
        fixture.Click(1, Name);
        QTest::keyClick(fixture.grid, Qt::Key_F, Qt::ControlModifier);
        QWidget* field = QApplication::focusWidget();
        const QWidget* bar = field->parentWidget()->parentWidget();  // takes its room from the cells
        QCOMPARE(fixture.grid->viewport()->height(), height - bar->height());
        QCOMPARE(bar->geometry().top(), fixture.grid->viewport()->geometry().bottom() + 1);
        QAccessibleInterface* table = QAccessible::queryAccessibleInterface(fixture.grid);
        QCOMPARE(table->child(table->childCount() - 1)->object(), bar);
        QTest::keyClick(field, Qt::Key_Down);
        QCOMPARE(focus(), (CCellID{1, Name}));
        QTest::keyClicks(field, u"yg"_s);
        QCOMPARE(focus(), (CCellID{1, Name}));
        QCOMPARE(count(), u"第 1 个,共 2 个"_s);
        QTest::keyClick(field, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(focus(), (CCellID{3, Name}));
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(focus(), (CCellID{1, Name}));
        QTest::keyClick(field, Qt::Key_F3);
        QCOMPARE(count(), u"第 2 个,共 2 个"_s);
        QTest::keyClick(field, Qt::Key_Escape);
        QVERIFY(!field->isVisible() && fixture.grid->hasFocus());
        QCOMPARE(fixture.grid->viewport()->height(), height);
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
                 u"光源库|已替换1格。有2格不能替换:第2行“光通量”一列不能填入“x”。|确定|unplanned"_s);
        QCOMPARE(fixture.Shown(), u"1 2 3 追加|荧光灯 Tx YG型 |16 8 18 0"_s);
        fixture.Undo();
        QCOMPARE(fixture.grid->GetItemText(2, Name), u"T8"_s);
    }
};

QTEST_MAIN(TestRecordGrid)
#include "test_record_grid.moc"
