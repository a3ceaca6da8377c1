// What assistive technology finds in a grid, is told of it, and may do with it.
#include <QAccessible>
#include <QAccessibleWidget>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <memory>

#include "grid/grid_announcer.h"
#include "grid/grid_ctrl.h"

namespace quorvane {
namespace {

using Action = QAccessibleActionInterface;

struct Told {
    QAccessible::Event event;
    CString name;  // of what it is about
    int firstRow = -1;
};
QList<Told> g_told;

void Keep(const QAccessibleEvent& event) {
    const QAccessibleInterface* about = event.accessibleInterface();
    Told told{event.type(), about != nullptr ? about->text(QAccessible::Name) : CString(), -1};
    if (event.type() == QAccessible::TableModelChanged) {
        told.firstRow = static_cast<const QAccessibleTableModelChangeEvent&>(event).firstRow();
    }
    g_told.append(told);
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
    void TableAndHeadings();
    void MergedCellsAreOne();
    void PlacesOnTheScreen();
    void StatesOfCells();
    void SelectionOfRowsAndColumns();
    void ActionsAndValues();
    void EditorIsReachable();
    void TellsWhatChanges();
    void CellsFollowRowsAndColumns();
    void SurvivesChangesDuringAnAction();
    void SurvivesTheGrid();
    void CostsNothingUntilAsked();

private:
    std::unique_ptr<CGridCtrl> m_grid;
    QAccessibleInterface* m_root = nullptr;
    QAccessibleTableInterface* m_table = nullptr;

    void Show(int rows, int columns, int fixedRows, int fixedColumns);
    QAccessibleInterface* At(int row, int column) { return m_table->cellAt(row, column); }
    QAccessibleTableCellInterface* CellAt(int row, int column) {
        return At(row, column)->tableCellInterface();
    }
};

void TestGridAccessible::Show(int rows, int columns, int fixedRows, int fixedColumns) {
    m_grid = std::make_unique<CGridCtrl>(rows, columns, fixedRows, fixedColumns);
    for (int cell = 0; cell < columns * std::min(rows, 100); ++cell) {
        m_grid->SetItemText(cell / columns, cell % columns,
                            QStringLiteral("%1.%2").arg(cell / columns).arg(cell % columns));
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

void TestGridAccessible::TableAndHeadings() {
    Show(5, 4, 2, 1);
    QCOMPARE(m_root->role(), QAccessible::Table);
    QCOMPARE(m_table->rowCount(), 5);
    QCOMPARE(m_table->columnCount(), 4);
    QCOMPARE(At(1, 3)->role(), QAccessible::ColumnHeader);
    QCOMPARE(At(2, 0)->role(), QAccessible::RowHeader);
    QCOMPARE(At(2, 1)->role(), QAccessible::Cell);
    QCOMPARE(At(2, 1)->text(QAccessible::Name), QStringLiteral("2.1"));
    QCOMPARE(m_table->columnDescription(3), QStringLiteral("0.3 1.3"));
    QCOMPARE(m_table->rowDescription(4), QStringLiteral("4.0"));
    QCOMPARE(m_root->child(9), At(2, 1));
    QCOMPARE(m_root->indexOfChild(At(2, 1)), 9);
    QVERIFY(At(5, 0) == nullptr && At(-1, 0) == nullptr && At(0, 4) == nullptr);

    const QList<QAccessibleInterface*> columnHeads{At(0, 2), At(1, 2)};
    QCOMPARE(CellAt(3, 2)->columnHeaderCells(), columnHeads);
    QCOMPARE(CellAt(3, 2)->rowHeaderCells(), QList<QAccessibleInterface*>{At(3, 0)});
    QCOMPARE(m_table->cellAt(0, 2)->tableCellInterface()->columnHeaderCells(), columnHeads);
}

void TestGridAccessible::MergedCellsAreOne() {
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
    QCOMPARE(At(2, 1)->rect().size(), m_grid->CellRect(3, 2).size());
    QCOMPARE(CellAt(2, 1)->columnHeaderCells(), QList<QAccessibleInterface*>{At(0, 1)});
    QCOMPARE(m_table->columnDescription(2), QStringLiteral("0.1"));

    m_grid->SetFocusCell({3, 2});
    QCOMPARE(m_table->selectedCellCount(), 1);
    QCOMPARE(m_table->selectedCells(), QList<QAccessibleInterface*>{At(2, 1)});
}

void TestGridAccessible::PlacesOnTheScreen() {
    Show(100, 3, 1, 0);
    const auto onScreen = [&](int row, int column) {
        const QRect rect = m_grid->CellRect(row, column);
        return QRect(m_grid->viewport()->mapToGlobal(rect.topLeft()), rect.size());
    };
    QCOMPARE(At(2, 1)->rect(), onScreen(2, 1));
    const QPoint inside = onScreen(2, 1).center();
    QCOMPARE(m_root->childAt(inside.x(), inside.y()), At(2, 1));
    QVERIFY(At(90, 1)->state().offscreen);

    m_grid->EnsureVisible(90, 1);
    QVERIFY(!At(90, 1)->state().offscreen);
    QVERIFY(At(2, 1)->state().offscreen);
    QVERIFY(At(2, 1)->rect().bottom() < At(0, 1)->rect().bottom());
    QCOMPARE(m_root->childAt(inside.x(), m_grid->mapToGlobal(QPoint(0, -5)).y()), nullptr);

    m_grid->SetRowHeight(90, 0);
    QVERIFY(At(90, 1)->state().invisible);
}

void TestGridAccessible::StatesOfCells() {
    Show(6, 3, 1, 0);
    m_grid->SetItemState(2, 1, CellState::ReadOnly);
    PutChoices(*m_grid, 3, 1, {QStringLiteral("a"), QStringLiteral("b")});
    PutButton(*m_grid, 4, 1, BtnState::CheckBox, QStringLiteral("on"));
    m_grid->SetFocusCell({1, 1});

    const QAccessible::State plain = At(1, 1)->state();
    QVERIFY(plain.focusable && plain.focused && plain.selectable && plain.selected && plain.editable);
    QVERIFY(!plain.readOnly && !plain.hasPopup && !plain.checkable && !plain.disabled);
    QCOMPARE(m_root->focusChild(), At(1, 1));
    QVERIFY(!At(1, 2)->state().focused && !At(1, 2)->state().selected);
    QVERIFY(At(2, 1)->state().readOnly && !At(2, 1)->state().editable);
    const QAccessible::State heading = At(0, 1)->state();
    QVERIFY(heading.readOnly && !heading.focusable && !heading.selectable);
    const QAccessible::State combo = At(3, 1)->state();
    QVERIFY(combo.hasPopup && combo.expandable && combo.collapsed && !combo.readOnly && !combo.editable);
    QVERIFY(At(4, 1)->state().checkable && !At(4, 1)->state().checked);

    m_grid->setEnabled(false);
    QVERIFY(At(1, 1)->state().disabled);
    QVERIFY(At(4, 1)->actionInterface()->actionNames().isEmpty());
}

void TestGridAccessible::SelectionOfRowsAndColumns() {
    Show(6, 3, 1, 1);
    QVERIFY(m_table->selectRow(2));
    QVERIFY(m_table->selectRow(4));
    QVERIFY(!m_table->selectRow(0));
    QCOMPARE(m_table->selectedRows(), (QList<int>{2, 4}));
    QVERIFY(CellAt(4, 2)->isSelected());
    QVERIFY(!CellAt(3, 2)->isSelected() && !CellAt(4, 0)->isSelected());
    QCOMPARE(m_table->selectedCellCount(), 4);
}

void TestGridAccessible::ActionsAndValues() {
    Show(6, 3, 1, 0);
    PutChoices(*m_grid, 3, 1, {QStringLiteral("a"), QStringLiteral("b")});
    PutButton(*m_grid, 4, 1, BtnState::PushButton, QStringLiteral("..."));
    PutButton(*m_grid, 5, 1, BtnState::CheckBox, {});
    QSignalSpy pressed(m_grid.get(), &CGridCtrl::ButtonClicked);
    QSignalSpy edited(m_grid.get(), &CGridCtrl::EndLabelEdit);

    QCOMPARE(At(4, 1)->text(QAccessible::Name), QStringLiteral("..."));
    At(4, 1)->actionInterface()->doAction(Action::pressAction());
    QCOMPARE(pressed.takeFirst(), (QVariantList{4, 1, 0}));
    At(5, 1)->actionInterface()->doAction(Action::toggleAction());
    QCOMPARE(pressed.takeFirst(), (QVariantList{5, 1, 0}));
    QVERIFY(At(5, 1)->state().checked);
    At(1, 2)->actionInterface()->doAction(Action::setFocusAction());
    QCOMPARE(m_grid->GetFocusCell(), (CCellID{1, 2}));

    At(3, 1)->actionInterface()->doAction(Action::showMenuAction());
    QVERIFY(At(3, 1)->state().expanded);
    QCOMPARE(m_root->childCount(), 19);
    QAccessibleInterface* list = m_root->child(18);
    QCOMPARE(list->text(QAccessible::Name), QStringLiteral("0.1"));
    QCOMPARE(list->parent(), m_root);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    QVERIFY(At(3, 1)->state().collapsed);

    At(3, 1)->setText(QAccessible::Value, QStringLiteral("no choice"));
    QVERIFY(edited.isEmpty());
    At(3, 1)->setText(QAccessible::Value, QStringLiteral("b"));
    At(1, 1)->setText(QAccessible::Value, QStringLiteral("2650"));
    QCOMPARE(edited.count(), 2);
    QCOMPARE(m_grid->GetItemText(3, 1), QStringLiteral("b"));
}

void TestGridAccessible::EditorIsReachable() {
    Show(4, 3, 1, 0);
    QVERIFY(m_grid->BeginEdit(2, 1));
    QAccessibleInterface* editor = m_root->focusChild();
    QCOMPARE(editor->text(QAccessible::Name), QStringLiteral("0.1"));
    QCOMPARE(editor->text(QAccessible::Value), QStringLiteral("2.1"));
    QVERIFY(!At(2, 1)->state().focused);
    QCOMPARE(m_root->childCount(), 13);
    QCOMPARE(m_root->child(12), editor->parent());
    QCOMPARE(editor->parent()->parent(), m_root);
    const QPoint inside = At(2, 1)->rect().center();
    QCOMPARE(m_root->childAt(inside.x(), inside.y()), editor);

    m_grid->EndEdit();
    QCOMPARE(m_root->focusChild(), At(2, 1));
}

void TestGridAccessible::TellsWhatChanges() {
    Show(5, 3, 1, 0);
    m_grid->Announcer().SendTo(Keep);
    m_grid->SetFocusCell({1, 0});
    g_told.clear();
    QTest::keyClick(m_grid.get(), Qt::Key_Down);
    QVERIFY(WasTold(QAccessible::Focus, QStringLiteral("2.0")));
    QVERIFY(WasTold(QAccessible::SelectionWithin, {}));

    QTest::keyClick(m_grid.get(), Qt::Key_7);
    QTest::keyClick(m_grid->focusWidget(), Qt::Key_Return);
    QVERIFY(WasTold(QAccessible::NameChanged, QStringLiteral("7")));

    g_told.clear();
    m_grid->SetItemText(4, 2, QStringLiteral("unseen"));
    QVERIFY(!WasTold(QAccessible::NameChanged, QStringLiteral("unseen")));
    At(4, 2);
    m_grid->SetItemText(4, 2, QStringLiteral("held"));
    QVERIFY(WasTold(QAccessible::NameChanged, QStringLiteral("held")));

    g_told.clear();
    m_grid->InsertRow({}, 3);
    QVERIFY(WasTold(QAccessible::TableModelChanged, {}));
    QCOMPARE(g_told.first().firstRow, 3);

    m_grid->CancelEdit();
    m_grid->clearFocus();
    m_grid->SetFocusCell({1, 1});
    g_told.clear();
    m_grid->setFocus();
    QVERIFY(g_told.isEmpty());
    QTRY_VERIFY(WasTold(QAccessible::Focus, QStringLiteral("1.1")));
}

void TestGridAccessible::CellsFollowRowsAndColumns() {
    Show(6, 4, 1, 1);
    QAccessibleInterface* above = At(2, 2);
    QAccessibleInterface* below = At(4, 3);
    QAccessibleInterface* removed = At(3, 1);
    const QAccessible::Id removedId = QAccessible::uniqueId(removed);

    m_grid->DeleteRow(3);
    QVERIFY(!removed->isValid());
    QVERIFY(removed->state().invalid && removed->text(QAccessible::Name).isEmpty() &&
            removed->rect().isEmpty());
    QTRY_VERIFY(QAccessible::accessibleInterface(removedId) == nullptr);
    QCOMPARE(below->tableCellInterface()->rowIndex(), 3);
    QCOMPARE(below->text(QAccessible::Name), QStringLiteral("4.3"));
    QCOMPARE(At(3, 3), below);

    m_grid->InsertColumn(QStringLiteral("new"), CellFormat::Centre, 2);
    QCOMPARE(above->tableCellInterface()->columnIndex(), 3);
    QCOMPARE(At(2, 3), above);
    QVERIFY(At(2, 2) != above);
    m_grid->DeleteNonFixedRows();
    QVERIFY(!above->isValid() && !below->isValid());
}

void TestGridAccessible::SurvivesChangesDuringAnAction() {
    Show(5, 3, 1, 0);
    PutButton(*m_grid, 3, 1, BtnState::PushButton, QStringLiteral("..."));
    // Ending the edit takes away a row above the button and then, at the press, every row.
    QObject::connect(m_grid.get(), &CGridCtrl::EndLabelEdit, m_grid.get(), [this] { m_grid->DeleteRow(1); });
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

void TestGridAccessible::SurvivesTheGrid() {
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

void TestGridAccessible::CostsNothingUntilAsked() {
    Show(100'000, 7, 1, 0);
    QCOMPARE(m_root->childCount(), 700'000);
    // Ids are given out one after the other, so they tell how many cells were made in between.
    const QAccessible::Id first = QAccessible::uniqueId(At(50'000, 3));
    m_grid->SelectAllCells();
    QVERIFY(m_table->isColumnSelected(2));
    QCOMPARE(m_table->selectedCellCount(), 699'993);
    const QAccessible::Id second = QAccessible::uniqueId(At(99'999, 6));
    QVERIFY(second - first < 10);
}

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridAccessible)
#include "test_grid_accessible.moc"
