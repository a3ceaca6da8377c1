// What assistive technology finds in a grid, is told of it, and may do with it.
#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <utility>

#include "grid/grid_controller.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Action = QAccessibleActionInterface;

QList<std::pair<QAccessible::Event, CString>> g_told;  // the name is that of what it is about

void Keep(const QAccessibleEvent& event) {
    const QAccessibleInterface* about = event.accessibleInterface();
    g_told.append({event.type(), about != nullptr ? about->text(QAccessible::Name) : CString()});
}

}  // namespace

class TestGridAccessible : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void HeadingsMergedCellsAndRows() {
        Show(6, 4, 1, 1);
        QVERIFY(m_grid->MergeCells(0, 1, 0, 1));
        QVERIFY(m_grid->MergeCells(2, 1, 2, 1));
        QCOMPARE(At(4, 2), At(2, 1));
        QAccessibleTableCellInterface* block = At(4, 2)->tableCellInterface();
        QCOMPARE(block->rowIndex(), 2);
        QCOMPARE(block->rowExtent() * 10 + block->columnExtent(), 32);
        QCOMPARE(block->columnHeaderCells(), QList{At(0, 1)});
        QCOMPARE(At(5, 3)->tableCellInterface()->rowHeaderCells(), QList{At(5, 0)});
        QVERIFY(m_table->selectRow(1) && m_table->selectRow(5) && !m_table->selectRow(0));
        QCOMPARE(m_table->selectedRows(), (QList<int>{1, 5}));
        QVERIFY(!m_table->unselectRow(2) && !m_table->unselectRow(1));  // never one of several
        m_grid->SetSelectedRange({1, 1, 1, 3});
        QVERIFY(m_table->unselectRow(1) && m_table->selectedCellCount() == 0);
    }

    void ActionsAndValues() {
        Show(6, 3, 1, 0);
        m_shown->MakeCombo(3, 1, {u"a"_s, u"b"_s});
        m_shown->MakeButton(4, 1, BtnState::PushButton, u"..."_s);
        m_shown->MakeButton(5, 1, BtnState::CheckBox, {});
        QSignalSpy pressed(m_grid, &CGridCtrl::ButtonClicked);
        QSignalSpy edited(m_grid, &CGridCtrl::EndLabelEdit);
        m_grid->SetItemState(2, 2, CellState::ReadOnly);
        QVERIFY(At(2, 2)->state().readOnly && At(0, 1)->state().readOnly && !At(3, 1)->state().editable);
        At(4, 1)->actionInterface()->doAction(Action::pressAction());
        QCOMPARE(pressed.takeFirst(), (QVariantList{4, 1, 0}));
        At(5, 1)->actionInterface()->doAction(Action::toggleAction());
        QVERIFY(At(5, 1)->state().checked);

        At(3, 1)->actionInterface()->doAction(Action::showMenuAction());
        QVERIFY(At(3, 1)->state().expanded);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QVERIFY(At(3, 1)->state().collapsed);
        for (QAccessibleInterface* refused : {At(3, 1), At(2, 2), At(0, 1)}) {
            refused->setText(QAccessible::Value, u"no choice"_s);
        }
        QVERIFY(edited.isEmpty());
        At(3, 1)->setText(QAccessible::Value, u"b"_s);
        At(1, 1)->setText(QAccessible::Value, u"2650"_s);
        QCOMPARE(edited.count(), 2);
        QCOMPARE(m_grid->GetItemText(3, 1) + m_grid->GetItemText(1, 1), u"b2650"_s);
    }

    void TellsWhatChanges() {
        Show(5, 3, 1, 0);
        m_grid->Controller().Announcer().SendTo(Keep);
        m_grid->SetFocusCell({1, 0});
        g_told.clear();
        QTest::keyClick(m_grid, Qt::Key_Down);
        QVERIFY(g_told.contains(std::pair(QAccessible::Focus, CString(u"2,0"_s))));
        QVERIFY(g_told.contains(std::pair(QAccessible::SelectionWithin, CString())));
        QTest::keyClick(m_grid, Qt::Key_7);
        QCOMPARE(m_root->focusChild()->text(QAccessible::Name), u"0,0"_s);  // the editor's, after its column
        QTest::keyClick(m_grid->focusWidget(), Qt::Key_Return);
        QVERIFY(g_told.contains(std::pair(QAccessible::NameChanged, CString(u"7"_s))));
        m_grid->CancelEdit();
        g_told.clear();
        m_grid->InsertRow({}, 3);
        QVERIFY(g_told.contains(std::pair(QAccessible::TableModelChanged, CString())));
        g_told.clear();
        m_grid->RemakeRow(1);
        QVERIFY(g_told.contains(std::pair(QAccessible::TableModelChanged, CString())));
    }

    void CellsFollowRowsAndColumnsToTheirEnd() {
        Show(6, 4, 1, 1);
        QAccessibleInterface* above = At(2, 2);
        QAccessibleInterface* below = At(4, 3);
        QAccessibleInterface* removed = At(3, 1);
        const QAccessible::Id removedId = QAccessible::uniqueId(removed);
        m_grid->DeleteRow(3);
        QVERIFY(!removed->isValid() && removed->text(QAccessible::Name).isEmpty());
        QTRY_VERIFY(QAccessible::accessibleInterface(removedId) == nullptr);
        QCOMPARE(below->text(QAccessible::Name), u"4,3"_s);
        QCOMPARE(At(3, 3), below);
        m_grid->InsertColumn(u"new"_s, CellFormat::Centre, 2);
        QCOMPARE(above->tableCellInterface()->columnIndex(), 3);
        QVERIFY(At(2, 3) == above && At(2, 2) != above);

        const QAccessible::Id aboveId = QAccessible::uniqueId(above);
        QVERIFY(m_grid->BeginEdit(1, 1));
        m_shown.reset();
        QVERIFY(!above->isValid() && above->tableCellInterface()->table() == nullptr);
        QTRY_VERIFY(QAccessible::accessibleInterface(aboveId) == nullptr);
    }

private:
    std::unique_ptr<ShownGrid> m_shown;
    CGridCtrl* m_grid = nullptr;
    QAccessibleInterface* m_root = nullptr;
    QAccessibleTableInterface* m_table = nullptr;

    void Show(int rows, int columns, int fixedRows, int fixedColumns) {
        m_shown = std::make_unique<ShownGrid>(rows, columns, fixedRows, fixedColumns);
        m_grid = m_shown->grid;
        m_root = QAccessible::queryAccessibleInterface(m_grid);
        m_table = m_root->tableInterface();
        QVERIFY(m_table != nullptr);
    }

    QAccessibleInterface* At(int row, int column) { return m_table->cellAt(row, column); }
};

QTEST_MAIN(TestGridAccessible)
#include "test_grid_accessible.moc"
