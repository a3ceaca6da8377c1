// Editing in place: every way in, every way out, and notification handlers that change the grid meanwhile.
#include <QContextMenuEvent>
#include <QInputMethodEvent>
#include <QMenu>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace quorvane;

class TestGridEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void waysIn();
    void inputMethodStartsAnEdit();
    void notEditableCells();
    void enterGoesDown();
    void enterInTheLastRow();
    void tabGoesToTheNextEditableCell();
    void arrowsEndTheEdit();
    void escapeCancels();
    void focusLossTakesTheText();
    void contextMenuOfTheEditorDoesNotEndIt();
    void textIsTakenAsTyped();
    void deleteKeyClears();
    void editorFollowsItsCell();
    void handlerRefillsTheGrid();
    void handlerOpensAWindow();
    void handlerDestroysTheGrid();
    void gridDestroyedWhileEditing();
};

void TestGridEdit::waysIn() {
    const ShownGrid shown(5, 3);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);

    shown.DoubleClick(2, 1);
    QVERIFY(grid.IsEditing());
    QCOMPARE(shown.Editor()->selectedText(), QStringLiteral("2,1"));
    grid.EndEdit();
    QCOMPARE(ended.count(), 1);  // also when nothing was changed
    QCOMPARE(ended.at(0), (QVariantList{2, 1}));

    shown.Key(Qt::Key_F2);
    QVERIFY(shown.Editor()->selectedText().isEmpty());
    QTest::keyClicks(shown.Editor(), QStringLiteral("x"));
    grid.EndEdit();
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("2,1x"));

    QTest::keyClicks(&grid, QStringLiteral("9"));
    QCOMPARE(shown.Editor()->text(), QStringLiteral("9"));
    QTest::keyClicks(shown.Editor(), QStringLiteral("8"));
    QVERIFY(!grid.Cell(2, 1)->GetText().contains(u'8'));  // not before the end
    grid.EndEdit();
    QCOMPARE(grid.GetItemText(2, 1), QStringLiteral("98"));

    shown.Key(Qt::Key_A, Qt::AltModifier);
    QVERIFY(!grid.IsEditing());
    QVERIFY(grid.BeginEdit(4, 2));
    QCOMPARE(grid.GetFocusCell(), (CCellID{4, 2}));
    QCOMPARE(ended.count(), 3);
}

void TestGridEdit::inputMethodStartsAnEdit() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    shown.Click(1, 0);
    QVERIFY(grid.testAttribute(Qt::WA_InputMethodEnabled));
    QVERIFY(grid.inputMethodQuery(Qt::ImEnabled).toBool());
    QInputMethodEvent preedit(QStringLiteral("zhao"), {});
    QCoreApplication::sendEvent(&grid, &preedit);
    QVERIFY(grid.IsEditing());
    QInputMethodEvent commit;
    commit.setCommitString(QStringLiteral("照明"));
    QCoreApplication::sendEvent(shown.Editor(), &commit);
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("照明"));
}

void TestGridEdit::notEditableCells() {
    const ShownGrid shown(4, 3, 1, 1);
    CGridCtrl& grid = *shown.grid;
    grid.SetItemState(2, 1, CellState::ReadOnly);
    shown.DoubleClick(2, 1);
    QVERIFY(!grid.IsEditing());
    QVERIFY(!grid.inputMethodQuery(Qt::ImEnabled).toBool());
    for (const Qt::Key key : {Qt::Key_F2, Qt::Key_A, Qt::Key_Delete, Qt::Key_Space}) {
        QKeyEvent press(QEvent::KeyPress, key, {}, QStringLiteral("a"));
        QCoreApplication::sendEvent(&grid, &press);
        QVERIFY(!grid.IsEditing());
        QVERIFY(!press.isAccepted());  // passed on
    }
    shown.DoubleClick(2, 0);
    QVERIFY(!grid.IsEditing());
    QVERIFY(!grid.BeginEdit(0, 1));
    QVERIFY(!grid.BeginEdit(9, 9));

    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    QCoreApplication::sendEvent(&grid, &escape);
    QVERIFY(!escape.isAccepted());
}

void TestGridEdit::enterGoesDown() {
    const ShownGrid shown(6, 2);
    CGridCtrl& grid = *shown.grid;
    grid.SetItemState(4, 0, CellState::ReadOnly);
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    grid.BeginEdit(1, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("a"));
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("a"));
    QVERIFY(grid.IsEditing());
    QCOMPARE(shown.Editor()->selectedText(), QStringLiteral("2,0"));
    QTest::keyClick(shown.Editor(), Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(grid.GetFocusCell(), (CCellID{3, 0}));
    QTest::keyClick(shown.Editor(), Qt::Key_Return, Qt::ShiftModifier);
    QCOMPARE(shown.Editor()->text(), QStringLiteral("2,0"));
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QTest::keyClick(shown.Editor(), Qt::Key_Return);  // onto the read-only cell
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{4, 0}));
    QVERIFY(grid.hasFocus());
    QCOMPARE(ended.count(), 5);
    shown.Key(Qt::Key_Return);
    QCOMPARE(grid.GetFocusCell(), (CCellID{5, 0}));
    QVERIFY(!grid.IsEditing());
}

void TestGridEdit::enterInTheLastRow() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    grid.BeginEdit(2, 0);
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 0}));

    connect(&grid, &CGridCtrl::EndLabelEdit, &grid, [&grid](int row, int) {
        if (row == grid.GetRowCount() - 1) {
            grid.InsertRow({});
        }
    });
    grid.BeginEdit(2, 0);
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QVERIFY(grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{3, 0}));
}

void TestGridEdit::tabGoesToTheNextEditableCell() {
    const ShownGrid shown(4, 4);
    CGridCtrl& grid = *shown.grid;
    for (int row = 1; row < 4; ++row) {
        grid.SetItemState(row, 0, CellState::ReadOnly);
    }
    grid.SetColumnWidth(2, 0);  // hidden
    grid.BeginEdit(1, 1);
    QTest::keyClick(shown.Editor(), Qt::Key_Tab);
    QCOMPARE(shown.Editor()->selectedText(), QStringLiteral("1,3"));
    QTest::keyClick(shown.Editor(), Qt::Key_Tab);
    QCOMPARE(shown.Editor()->selectedText(), QStringLiteral("2,1"));
    QTest::keyClick(shown.Editor(), Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(shown.Editor()->selectedText(), QStringLiteral("1,3"));
    grid.EndEdit();

    grid.BeginEdit(3, 3);
    QTest::keyClick(shown.Editor(), Qt::Key_Tab);
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{3, 3}));
    QVERIFY(grid.hasFocus());
    shown.Key(Qt::Key_Tab);  // without an edit the last cell's Tab leaves the grid
    QVERIFY(shown.other->hasFocus());
}

void TestGridEdit::arrowsEndTheEdit() {
    const ShownGrid shown(4, 2);
    CGridCtrl& grid = *shown.grid;
    grid.BeginEdit(2, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("ab"));
    QTest::keyClick(shown.Editor(), Qt::Key_Left);
    QVERIFY(grid.IsEditing());
    QTest::keyClick(shown.Editor(), Qt::Key_Up);
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetItemText(2, 0), QStringLiteral("ab"));
    QCOMPARE(grid.GetFocusCell(), (CCellID{1, 0}));
}

void TestGridEdit::escapeCancels() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    grid.BeginEdit(1, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("x"));
    QTest::keyClick(shown.Editor(), Qt::Key_Escape);
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("1,0"));
    QCOMPARE(ended.count(), 0);
    QVERIFY(grid.hasFocus());
}

void TestGridEdit::focusLossTakesTheText() {
    const ShownGrid shown(4, 2);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    const auto type = [&](const QString& text) {
        grid.BeginEdit(1, 0);
        QTest::keyClicks(shown.Editor(), text);
    };
    type(QStringLiteral("a"));
    shown.Click(3, 1);
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("a"));
    QCOMPARE(grid.GetFocusCell(), (CCellID{3, 1}));

    type(QStringLiteral("b"));
    QTest::mouseClick(shown.other, Qt::LeftButton);
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("b"));
    QVERIFY(shown.other->hasFocus());

    type(QStringLiteral("c"));
    QWidget second;
    second.show();
    second.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&second));
    QCOMPARE(grid.GetItemText(1, 0), QStringLiteral("c"));
    QVERIFY(!grid.IsEditing());
    QCOMPARE(ended.count(), 3);
}

void TestGridEdit::contextMenuOfTheEditorDoesNotEndIt() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    grid.BeginEdit(1, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("x"));
    QContextMenuEvent ask(QContextMenuEvent::Mouse, QPoint(3, 3), shown.Editor()->mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(shown.Editor(), &ask);
    QWidget* menu = QApplication::activePopupWidget();
    QVERIFY(menu != nullptr);
    QVERIFY(grid.IsEditing());
    menu->close();
    QVERIFY(grid.IsEditing());
    QCOMPARE(shown.Editor()->text(), QStringLiteral("x"));
}

void TestGridEdit::textIsTakenAsTyped() {
    const ShownGrid shown(3, 2);
    CGridCtrl& grid = *shown.grid;
    const QString odd =
        QStringLiteral("  a\nb\tc\x01") + QString(40'000, u'光') + QStringLiteral(" <b>%s'😀 ");
    grid.SetItemText(1, 0, odd);
    grid.BeginEdit(1, 0);
    grid.EndEdit();
    QVERIFY(grid.GetItemText(1, 0) == odd);
    grid.BeginEditAtEnd(1, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("!"));
    grid.EndEdit();
    QVERIFY(grid.GetItemText(1, 0) == odd + u'!');
}

void TestGridEdit::deleteKeyClears() {
    const ShownGrid shown(4, 2);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    shown.Click(1, 0);
    shown.Key(Qt::Key_Delete);
    QCOMPARE(grid.GetItemText(1, 0), QString());
    QCOMPARE(ended.count(), 1);
    shown.Click(2, 0);
    shown.Click(3, 1, Qt::ShiftModifier);
    shown.Key(Qt::Key_Delete);
    QCOMPARE(grid.GetItemText(3, 1), QStringLiteral("3,1"));
    QCOMPARE(ended.count(), 1);
}

void TestGridEdit::editorFollowsItsCell() {
    const ShownGrid shown(100, 2);
    CGridCtrl& grid = *shown.grid;
    const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
    grid.BeginEdit(5, 0);
    QTest::keyClicks(shown.Editor(), QStringLiteral("x"));
    grid.verticalScrollBar()->setValue(20);
    QCOMPARE(shown.Editor()->geometry().topLeft(), grid.CellRect(5, 0).topLeft());
    grid.verticalScrollBar()->setValue(1000);
    QVERIFY(!shown.Editor()->geometry().intersects(grid.viewport()->rect()));
    grid.InsertRow({}, 2);
    grid.DeleteRow(80);
    grid.EndEdit();
    QCOMPARE(grid.GetItemText(6, 0), QStringLiteral("x"));
    grid.BeginEdit(6, 0);
    grid.DeleteRow(6);
    QVERIFY(!grid.IsEditing());
    QCOMPARE(ended.count(), 1);
}

void TestGridEdit::handlerRefillsTheGrid() {
    const ShownGrid shown(60, 2);
    CGridCtrl& grid = *shown.grid;
    connect(&grid, &CGridCtrl::EndLabelEdit, &grid, [&grid] {
        grid.DeleteAllItems();
        grid.SetRowCount(60);
        grid.SetColumnCount(2);
        grid.SetFixedRowCount(1);
        grid.SetItemText(42, 0, QStringLiteral("new"));
    });
    grid.BeginEdit(41, 0);
    const int scroll = grid.verticalScrollBar()->value();
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QVERIFY(grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{42, 0}));
    QCOMPARE(shown.Editor()->text(), QStringLiteral("new"));
    QVERIFY(grid.verticalScrollBar()->value() - scroll <= grid.GetRowHeight(42));

    grid.disconnect(SIGNAL(EndLabelEdit(int, int)));
    connect(&grid, &CGridCtrl::EndLabelEdit, &grid, &CGridCtrl::DeleteAllItems);
    QTest::keyClick(shown.Editor(), Qt::Key_Tab);
    QVERIFY(!grid.IsEditing());
    grid.SetColumnCount(2);
    grid.SetRowCount(5);
    grid.BeginEdit(2, 0);
    shown.Click(3, 1);  // the click ends the edit, and then there is nothing left to hit
    QVERIFY(!grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), CCellID());
}

void TestGridEdit::handlerOpensAWindow() {
    const ShownGrid shown(4, 2);
    CGridCtrl& grid = *shown.grid;
    int notified = 0;
    connect(&grid, &CGridCtrl::EndLabelEdit, &grid, [&](int row, int) {
        ++notified;
        if (row == 1) {
            QWidget message(grid.window(), Qt::Dialog);
            message.setWindowModality(Qt::ApplicationModal);
            message.show();
            message.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&message));
        }
    });
    grid.BeginEdit(1, 0);
    QTest::keyClick(shown.Editor(), Qt::Key_Return);
    QCOMPARE(notified, 1);
    QVERIFY(grid.IsEditing());
    QCOMPARE(grid.GetFocusCell(), (CCellID{2, 0}));
}

void TestGridEdit::handlerDestroysTheGrid() {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down}) {
        const ShownGrid shown(4, 2);
        const QPointer<CGridCtrl> grid(shown.grid);
        connect(grid, &CGridCtrl::EndLabelEdit, this, [grid] { delete grid.data(); });
        grid->BeginEdit(1, 0);
        QTest::keyClick(shown.Editor(), key);
        QVERIFY(grid.isNull());
    }
    const ShownGrid shown(4, 2);
    const QPointer<CGridCtrl> grid(shown.grid);
    connect(grid, &CGridCtrl::EndLabelEdit, this, [grid] { delete grid.data(); });
    grid->BeginEdit(1, 0);
    shown.other->setFocus();
    QVERIFY(grid.isNull());
}

void TestGridEdit::gridDestroyedWhileEditing() {
    const ShownGrid shown(4, 2);
    const QSignalSpy ended(shown.grid, &CGridCtrl::EndLabelEdit);
    shown.grid->BeginEdit(1, 0);
    const QPointer<QLineEdit> editor(shown.Editor());
    delete shown.grid;
    QVERIFY(editor.isNull());
    QCOMPARE(ended.count(), 0);
}

QTEST_MAIN(TestGridEdit)
#include "test_grid_edit.moc"
