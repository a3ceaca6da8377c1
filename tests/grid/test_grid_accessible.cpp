// What assistive technology finds in a grid, is told of it, and may do with it.
#include <QAccessible>
#include <QAccessibleWidget>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <memory>

#include "grid/grid_announcer.h"
#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

using Action = QAccessibleActionInterface;

struct Told {
    QAccessible::Event event;
    CString name;  // of what it is about
};
QList<Told> g_told;

void Keep(const QAccessibleEvent& event) {
    const QAccessibleInterface* about = event.accessibleInterface();
    g_told.append({event.type(), about != nullptr ? about->text(QAccessible::Name) : CString()});
}

bool WasTold(QAccessible::Event event, const CString& name) {
    return std::any_of(g_told.begin(), g_told.end(),
                       [&](const Told& told) { return told.event == event && told.name == name; });
}

void PutChoices(CGridCtrl& grid, int row, int column, std::vector<CString> choices) {
    grid.SetCellType<CGridBtnCellCombo>(row, column);
    dynamic_cast<CGridBtnCellCombo*>(grid.Cell(row, column))
        ->SetChoices(std::make_shared<const std::vector<CString>>(std::move(choices)));
}

void PutButton(CGridCtrl& grid, int row, int column, unsigned state, const CString& caption) {
    grid.SetCellType<CGridBtnCell>(row, column);
    auto* cell = dynamic_cast<CGridBtnCell*>(grid.Cell(row, column));
    cell->SetText({});
    cell->SetupBtns(0, BtnType::Button, state, 0, 0, 0, caption);
}

}  // namespace

class TestGridAccessible : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TableAndHeadings() {
        Show(5, 4, 2, 1);
        QCOMPARE(At(2, 0)->role(), QAccessible::RowHeader);
        QCOMPARE(At(2, 1)->text(QAccessible::Name), u"2.1"_s);
        QCOMPARE(m_root->child(9), At(2, 1));
        QVERIFY(At(5, 0) == nullptr && At(-1, 0) == nullptr && At(0, 4) == nullptr);
        QCOMPARE(CellAt(3, 2)->columnHeaderCells(), (QList{At(0, 2), At(1, 2)}));
        QCOMPARE(CellAt(3, 2)->rowHeaderCells(), QList{At(3, 0)});

        const QRect rect = m_grid->CellRect(2, 1);
        const QPoint inside = m_grid->viewport()->mapToGlobal(rect.center());
        QCOMPARE(At(2, 1)->rect(), QRect(m_grid->viewport()->mapToGlobal(rect.topLeft()), rect.size()));
        QCOMPARE(m_root->childAt(inside.x(), inside.y()), At(2, 1));
        QVERIFY(m_table->selectRow(2) && m_table->selectRow(4) && !m_table->selectRow(0));
        QCOMPARE(m_table->selectedRows(), (QList<int>{2, 4}));
    }

    void MergedCellsAreOne() {
        Show(6, 4, 1, 0);
        QAccessibleInterface* covered = At(3, 2);
        const QAccessible::Id coveredId = QAccessible::uniqueId(covered);
        QVERIFY(m_grid->MergeCells(0, 1, 0, 1));
        QVERIFY(m_grid->MergeCells(2, 1, 2, 1));
        QVERIFY(!covered->isValid());
        QTRY_VERIFY(QAccessible::accessibleInterface(coveredId) == nullptr);

        QCOMPARE(At(4, 2), At(2, 1));
        QCOMPARE(CellAt(4, 2)->rowIndex(), 2);
        QCOMPARE(CellAt(4, 2)->rowExtent(), 3);
        QCOMPARE(CellAt(4, 2)->columnExtent(), 2);
        QCOMPARE(CellAt(2, 1)->columnHeaderCells(), QList{At(0, 1)});
        m_grid->SetFocusCell({3, 2});
        QCOMPARE(m_table->selectedCells(), QList{At(2, 1)});
    }

    void ActionsAndValues() {
        Show(6, 3, 1, 0);
        PutChoices(*m_grid, 3, 1, {u"a"_s, u"b"_s});
        PutButton(*m_grid, 4, 1, BtnState::PushButton, u"..."_s);
        PutButton(*m_grid, 5, 1, BtnState::CheckBox, {});
        QSignalSpy pressed(m_grid.get(), &CGridCtrl::ButtonClicked);
        QSignalSpy edited(m_grid.get(), &CGridCtrl::EndLabelEdit);
        m_grid->SetItemState(2, 2, CellState::ReadOnly);
        m_grid->SetFocusCell({1, 1});
        QVERIFY(At(1, 1)->state().focused && At(1, 1)->state().selected && At(1, 1)->state().editable);
        QVERIFY(At(2, 2)->state().readOnly && At(0, 1)->state().readOnly && !At(0, 1)->state().focusable);
        QVERIFY(At(3, 1)->state().hasPopup && !At(3, 1)->state().editable);
        QCOMPARE(At(4, 1)->text(QAccessible::Name), u"..."_s);
        At(4, 1)->actionInterface()->doAction(Action::pressAction());
        QCOMPARE(pressed.takeFirst(), (QVariantList{4, 1, 0}));
        At(5, 1)->actionInterface()->doAction(Action::toggleAction());
        QVERIFY(At(5, 1)->state().checked);

        At(3, 1)->actionInterface()->doAction(Action::showMenuAction());
        QVERIFY(At(3, 1)->state().expanded);
        QCOMPARE(m_root->child(18)->text(QAccessible::Name), u"0.1"_s);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QVERIFY(At(3, 1)->state().collapsed);
        At(3, 1)->setText(QAccessible::Value, u"no choice"_s);
        QVERIFY(edited.isEmpty());
        At(3, 1)->setText(QAccessible::Value, u"b"_s);
        At(1, 1)->setText(QAccessible::Value, u"2650"_s);
        QCOMPARE(edited.count(), 2);

        QVERIFY(m_grid->BeginEdit(2, 1));
        QAccessibleInterface* editor = m_root->focusChild();
        QCOMPARE(editor->text(QAccessible::Name), u"0.1"_s);
        QCOMPARE(m_root->child(18), editor->parent());
        m_grid->EndEdit();
        QCOMPARE(m_root->focusChild(), At(2, 1));
    }

    void TellsWhatChanges() {
        Show(5, 3, 1, 0);
        m_grid->Announcer().SendTo(Keep);
        m_grid->SetFocusCell({1, 0});
        g_told.clear();
        QTest::keyClick(m_grid.get(), Qt::Key_Down);
        QVERIFY(WasTold(QAccessible::Focus, u"2.0"_s));
        QVERIFY(WasTold(QAccessible::SelectionWithin, {}));
        QTest::keyClick(m_grid.get(), Qt::Key_7);
        QTest::keyClick(m_grid->focusWidget(), Qt::Key_Return);
        QVERIFY(WasTold(QAccessible::NameChanged, u"7"_s));
        m_grid->CancelEdit();
        g_told.clear();
        m_grid->InsertRow({}, 3);
        QVERIFY(WasTold(QAccessible::TableModelChanged, {}));
    }

    void CellsFollowRowsAndColumns() {
        Show(6, 4, 1, 1);
        QAccessibleInterface* above = At(2, 2);
        QAccessibleInterface* below = At(4, 3);
        QAccessibleInterface* removed = At(3, 1);
        const QAccessible::Id removedId = QAccessible::uniqueId(removed);
        m_grid->DeleteRow(3);
        QVERIFY(!removed->isValid() && removed->state().invalid &&
                removed->text(QAccessible::Name).isEmpty());
        QTRY_VERIFY(QAccessible::accessibleInterface(removedId) == nullptr);
        QCOMPARE(below->text(QAccessible::Name), u"4.3"_s);
        QCOMPARE(At(3, 3), below);
        m_grid->InsertColumn(u"new"_s, CellFormat::Centre, 2);
        QCOMPARE(above->tableCellInterface()->columnIndex(), 3);
        QVERIFY(At(2, 3) == above && At(2, 2) != above);
        m_grid->DeleteNonFixedRows();
        QVERIFY(!above->isValid() && !below->isValid());
    }

    void SurvivesChangesDuringAnAction() {
        Show(5, 3, 1, 0);
        PutButton(*m_grid, 3, 1, BtnState::PushButton, u"..."_s);
        // Ending the edit takes away a row above the button and then, at the press, every row.
        QObject::connect(m_grid.get(), &CGridCtrl::EndLabelEdit, m_grid.get(),
                         [this] { m_grid->DeleteRow(1); });
        QSignalSpy pressed(m_grid.get(), &CGridCtrl::ButtonClicked);
        QObject::connect(m_grid.get(), &CGridCtrl::ButtonClicked, m_grid.get(), [this] {
            m_grid->DeleteAllItems();
            QCoreApplication::processEvents();
        });
        QVERIFY(m_grid->BeginEdit(1, 0));
        At(3, 1)->actionInterface()->doAction(Action::pressAction());
        QCOMPARE(pressed.takeFirst(), (QVariantList{2, 1, 0}));
        QCOMPARE(m_table->rowCount(), 0);
    }

    void SurvivesTheGrid() {
        Show(5, 3, 1, 0);
        QAccessibleInterface* cell = At(2, 1);
        const QAccessible::Id cellId = QAccessible::uniqueId(cell);
        const QAccessible::Id rootId = QAccessible::uniqueId(m_root);
        QVERIFY(m_grid->BeginEdit(1, 0));
        m_grid.reset();
        QVERIFY(!cell->isValid());
        QVERIFY(cell->tableCellInterface()->table() == nullptr);
        QVERIFY(QAccessible::accessibleInterface(rootId) == nullptr);
        QTRY_VERIFY(QAccessible::accessibleInterface(cellId) == nullptr);
    }

private:
    std::unique_ptr<CGridCtrl> m_grid;
    QAccessibleInterface* m_root = nullptr;
    QAccessibleTableInterface* m_table = nullptr;

    void Show(int rows, int columns, int fixedRows, int fixedColumns) {
        m_grid = std::make_unique<CGridCtrl>(rows, columns, fixedRows, fixedColumns);
        for (int cell = 0; cell < columns * std::min(rows, 100); ++cell) {
            m_grid->SetItemText(cell / columns, cell % columns,
                                u"%1.%2"_s.arg(cell / columns).arg(cell % columns));
        }
        m_grid->resize(500, 200);
        m_grid->show();
        m_grid->activateWindow();
        m_grid->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(m_grid.get()));
        m_root = QAccessible::queryAccessibleInterface(m_grid.get());
        m_table = m_root->tableInterface();
        QVERIFY(m_table != nullptr);
    }

    QAccessibleInterface* At(int row, int column) { return m_table->cellAt(row, column); }
    QAccessibleTableCellInterface* CellAt(int row, int column) {
        return At(row, column)->tableCellInterface();
    }
};

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridAccessible)
#include "test_grid_accessible.moc"
