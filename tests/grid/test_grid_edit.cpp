// Editing in place: every way in, every way out, and notification handlers that change the grid meanwhile.
#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <memory>

#include "grid/grid_ctrl.h"
#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void waysIn() {
        const ShownGrid shown(5, 3);
        CGridCtrl& grid = *shown.grid;
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        shown.DoubleClick(2, 1);
        QCOMPARE(shown.Editor()->selectedText(), u"2,1"_s);
        grid.EndEdit();
        QCOMPARE(ended.count(), 1);  // also when nothing was changed
        QCOMPARE(ended.at(0), (QVariantList{2, 1}));
        shown.Key(Qt::Key_F2);
        QVERIFY(shown.Editor()->selectedText().isEmpty());
        QTest::keyClicks(shown.Editor(), u"x"_s);
        QCOMPARE(grid.Cell(2, 1)->GetText(), u"2,1"_s);  // not before the end
        grid.EndEdit();
        QCOMPARE(grid.GetItemText(2, 1), u"2,1x"_s);
        QTest::keyClicks(&grid, u"9"_s);
        QCOMPARE(shown.Editor()->text(), u"9"_s);
        grid.EndEdit();
        QCOMPARE(grid.GetItemText(2, 1), u"9"_s);
        shown.Key(Qt::Key_Delete);
        QCOMPARE(grid.GetItemText(2, 1), QString());
        QCOMPARE(ended.count(), 4);
        shown.Click(3, 1, Qt::ShiftModifier);
        shown.Key(Qt::Key_Delete);
        QCOMPARE(grid.GetItemText(3, 1), u"3,1"_s);  // never several at once

        shown.Click(1, 0);
        // A text that no line edit can hold passes through one unharmed.
        const QString odd = u"  a\nb\tc\x01"_s + QString(40'000, u'光') + u" <b>%s'😀 "_s;
        grid.SetItemText(1, 0, odd);
        shown.Key(Qt::Key_F2);
        grid.EndEdit();
        QVERIFY(grid.GetItemText(1, 0) == odd);
        shown.Key(Qt::Key_F2);
        grid.SetItemText(1, 0, u"set meanwhile"_s);
        grid.EndEdit();
        QCOMPARE(grid.GetItemText(1, 0), u"set meanwhile"_s);
    }

    // An input method drops its composition when the keyboard focus changes, as the real ones do.
    void inputMethodTypesOntoACell() {
        const ShownGrid shown(5, 3);
        CGridCtrl& grid = *shown.grid;
        grid.SetFocusCell({2, 1});
        const auto send = [](const QString& preedit, const QString& commit) {
            QInputMethodEvent event(preedit, {});
            event.setCommitString(commit);
            QCoreApplication::sendEvent(QApplication::focusObject(), &event);
            QCoreApplication::processEvents();
        };
        for (const QString& preedit : {u"n"_s, u"ni"_s, u"ni hao"_s}) {
            send(preedit, {});
            QVERIFY(shown.Editor() != nullptr && QApplication::focusObject() == &grid);
        }
        const QRect caret = grid.inputMethodQuery(Qt::ImCursorRectangle).toRect();
        QVERIFY(grid.CellRect(2, 1).contains(caret.translated(-grid.viewport()->pos()).center()));
        send({}, u"你好"_s);
        QVERIFY(shown.Editor()->hasFocus());
        send(u"m"_s, {});
        send({}, u"吗"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);
        QCOMPARE(grid.GetItemText(2, 1), u"你好吗"_s);
        grid.CancelEdit();

        send(u"n"_s, {});
        QTest::keyClick(&grid, Qt::Key_Escape);
        QVERIFY(!grid.IsEditing() && grid.hasFocus());
        send({}, u"光"_s);  // a whole word at once
        shown.other->setFocus();
        QCOMPARE(grid.GetItemText(3, 1), u"光"_s);
        grid.setFocus();
        send(u"g"_s, u"灯"_s);
        shown.other->setFocus();
        QVERIFY(!grid.IsEditing());
        QCOMPARE(grid.GetItemText(3, 1), u"灯g"_s);  // also what was still being composed
    }

    void pastedLineEndsAreDropped() {
        const ShownGrid shown(3, 2);
        CGridCtrl& grid = *shown.grid;
        QApplication::clipboard()->setText(u"450\r\n"_s);
        const std::function<void()> ways[]{
            [&] { QTest::keySequence(shown.Editor(), QKeySequence(QKeySequence::Paste)); },
            [&] {
                QContextMenuEvent ask(QContextMenuEvent::Mouse, {}, shown.Editor()->mapToGlobal(QPoint()));
                QCoreApplication::sendEvent(shown.Editor(), &ask);
                QWidget* menu = QApplication::activePopupWidget();
                for (QAction* action : menu->actions()) {
                    if (action->text().contains(u"Paste")) {
                        action->trigger();
                    }
                }
                menu->close();
            },
            [&] {
                QMimeData text;
                text.setText(u"450\r\n"_s);
                QDragEnterEvent enter({}, Qt::CopyAction, &text, Qt::LeftButton, {});
                QCoreApplication::sendEvent(shown.Editor(), &enter);
                QDropEvent drop({}, Qt::CopyAction, &text, Qt::LeftButton, {});
                QCoreApplication::sendEvent(shown.Editor(), &drop);
            }};
        for (const auto& paste : ways) {
            grid.SetItemText(1, 1, {});
            grid.BeginEdit(1, 1);
            paste();
            grid.EndEdit();
            QCOMPARE(grid.GetItemText(1, 1), u"450"_s);
        }
    }

    void notEditableCells() {
        const ShownGrid shown(4, 3, 1, 1);
        CGridCtrl& grid = *shown.grid;
        grid.SetItemState(2, 1, CellState::ReadOnly);
        shown.DoubleClick(2, 1);
        QVERIFY(!grid.IsEditing());
        QVERIFY(!grid.inputMethodQuery(Qt::ImEnabled).toBool());
        for (const Qt::Key key : {Qt::Key_F2, Qt::Key_A, Qt::Key_Delete, Qt::Key_Space, Qt::Key_Escape}) {
            QKeyEvent press(QEvent::KeyPress, key, {}, key == Qt::Key_A ? u"a"_s : QString());
            QCoreApplication::sendEvent(&grid, &press);
            QVERIFY(!grid.IsEditing());
            QVERIFY(!press.isAccepted());  // passed on
        }
        shown.DoubleClick(2, 0);
        QVERIFY(!grid.IsEditing());
        QVERIFY(!grid.BeginEdit(0, 1) && !grid.BeginEdit(9, 9));
    }

    void enterGoesDown() {
        const ShownGrid shown(6, 2);
        CGridCtrl& grid = *shown.grid;
        grid.SetItemState(4, 0, CellState::ReadOnly);
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        grid.BeginEdit(1, 0);
        QTest::keyClicks(shown.Editor(), u"a"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);
        QCOMPARE(grid.GetItemText(1, 0), u"a"_s);
        QCOMPARE(shown.Editor()->selectedText(), u"2,0"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Enter, Qt::KeypadModifier);
        QTest::keyClick(shown.Editor(), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(shown.Editor()->text(), u"2,0"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);  // onto the read-only cell
        QVERIFY(!grid.IsEditing() && grid.hasFocus());
        QCOMPARE(grid.GetFocusCell(), (CCellID{4, 0}));
        QCOMPARE(ended.count(), 5);

        connect(&grid, &CGridCtrl::EndLabelEdit, &grid, [&grid] { grid.InsertRow({}); });
        grid.BeginEdit(5, 0);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);
        QVERIFY(grid.IsEditing());
        QCOMPARE(grid.GetFocusCell(), (CCellID{6, 0}));
    }

    // At the foot of a column the next number must not fall upon the one just typed.
    void enterGoesOnInTheNextColumn() {
        const ShownGrid shown(4, 3);
        CGridCtrl& grid = *shown.grid;
        grid.SetTypesByColumns(true);
        shown.Click(3, 0);
        for (const QString& text : {u"1"_s, u"2"_s}) {
            QTest::keyClicks(QApplication::focusWidget(), text);
            QTest::keyClick(shown.Editor(), Qt::Key_Return);
        }
        QCOMPARE(grid.GetItemText(3, 0), u"1"_s);
        QCOMPARE(grid.GetItemText(1, 1), u"2"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClick(shown.Editor(), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(grid.GetFocusCell(), (CCellID{3, 0}));
    }

    void tabGoesToTheNextEditableCell() {
        const ShownGrid shown(3, 4);
        CGridCtrl& grid = *shown.grid;
        shown.other->setFocus();
        QTest::keyClick(shown.other, Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(grid.GetFocusCell(), (CCellID{1, 0}));
        grid.SetItemState(2, 0, CellState::ReadOnly);
        grid.SetColumnWidth(2, 0);  // hidden
        grid.BeginEdit(1, 1);
        QTest::keyClick(shown.Editor(), Qt::Key_Tab);
        QCOMPARE(shown.Editor()->selectedText(), u"1,3"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Tab);
        QCOMPARE(shown.Editor()->selectedText(), u"2,1"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(shown.Editor()->selectedText(), u"1,3"_s);
        grid.BeginEdit(2, 3);
        QTest::keyClick(shown.Editor(), Qt::Key_Tab);
        QVERIFY(!grid.IsEditing() && grid.hasFocus());
        QCOMPARE(grid.GetFocusCell(), (CCellID{2, 3}));
        shown.Key(Qt::Key_Tab);  // without an edit the last cell's Tab leaves the grid
        QVERIFY(shown.other->hasFocus());
    }

    void waysOut() {
        ShownGrid shown(4, 2);
        CGridCtrl& grid = *shown.grid;
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        const auto type = [&](const QString& text) {
            grid.BeginEdit(2, 0);
            QTest::keyClicks(shown.Editor(), text);
        };
        type(u"a"_s);
        shown.Click(3, 1);
        QCOMPARE(grid.GetItemText(2, 0), u"a"_s);
        QCOMPARE(grid.GetFocusCell(), (CCellID{3, 1}));
        type(u"b"_s);
        QTest::mouseClick(shown.other, Qt::LeftButton);
        QCOMPARE(grid.GetItemText(2, 0), u"b"_s);
        type(u"c"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Up);
        QCOMPARE(grid.GetItemText(2, 0), u"c"_s);
        QCOMPARE(grid.GetFocusCell(), (CCellID{1, 0}));
        type(u"x"_s);
        QTest::keyClick(shown.Editor(), Qt::Key_Escape);
        QCOMPARE(grid.GetItemText(2, 0), u"c"_s);
        QVERIFY(grid.hasFocus());

        type(u"d"_s);
        QContextMenuEvent ask(QContextMenuEvent::Mouse, {}, shown.Editor()->mapToGlobal(QPoint()));
        QCoreApplication::sendEvent(shown.Editor(), &ask);
        QVERIFY(QApplication::activePopupWidget() != nullptr);
        QApplication::activePopupWidget()->close();
        QVERIFY(grid.IsEditing());  // the editor's own menu is no other place
        QWidget second;
        second.show();
        second.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&second));
        QCOMPARE(ended.count(), 3);
        QCOMPARE(shown.Editor()->text(), u"d"_s);  // another window is no other place either
        shown.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&shown.window));
        QVERIFY(grid.BeginEdit(1, 0));  // another cell's edit ends this one
        QCOMPARE(grid.GetItemText(2, 0), u"d"_s);
        QCOMPARE(shown.Editor()->text(), u"1,0"_s);
    }

    void editorFollowsItsCell() {
        const ShownGrid shown(100, 2);
        CGridCtrl& grid = *shown.grid;
        const QSignalSpy ended(&grid, &CGridCtrl::EndLabelEdit);
        grid.BeginEdit(5, 0);
        QTest::keyClicks(shown.Editor(), u"x"_s);
        grid.verticalScrollBar()->setValue(20);
        QCOMPARE(shown.Editor()->geometry().topLeft(), grid.CellRect(5, 0).topLeft());
        grid.verticalScrollBar()->setValue(grid.GetRowHeight(1) * 4 + 5);  // half below the heading
        QCOMPARE(shown.Editor()->mask().boundingRect().top(), 5);
        grid.InsertRow({}, 2);
        grid.DeleteRow(80);
        grid.EndEdit();
        QCOMPARE(grid.GetItemText(6, 0), u"x"_s);
        grid.BeginEdit(6, 0);
        grid.DeleteRow(6);
        QVERIFY(!grid.IsEditing());
        grid.BeginEdit(2, 1);
        grid.SetFixedRowCount(3);
        QVERIFY(!grid.IsEditing());
        QCOMPARE(ended.count(), 1);
        QVERIFY(grid.BeginEdit(90, 1));
        QVERIFY(grid.viewport()->rect().contains(shown.Editor()->geometry()));
        grid.SetFixedColumnCount(2);
        QVERIFY(!grid.IsEditing());
    }

    void handlerRefillsTheGrid() {
        const ShownGrid shown(60, 2);
        CGridCtrl& grid = *shown.grid;
        const auto refill = connect(&grid, &CGridCtrl::EndLabelEdit, &grid, [&grid] {
            grid.SetRowCount(1);
            grid.SetRowCount(60);
            grid.SetItemText(42, 0, u"new"_s);
        });
        grid.BeginEdit(41, 0);
        QTest::keyClick(shown.Editor(), Qt::Key_Return);
        QCOMPARE(grid.GetFocusCell(), (CCellID{42, 0}));
        QCOMPARE(shown.Editor()->text(), u"new"_s);
        disconnect(refill);
        connect(&grid, &CGridCtrl::EndLabelEdit, &grid, &CGridCtrl::DeleteAllItems);
        shown.Click(grid.GetFocusCell().row - 1, 1);  // ends the edit, and then there is nothing left to hit
        QVERIFY(!grid.IsEditing());
        QCOMPARE(grid.GetFocusCell(), CCellID());
    }

    void handlerDestroysTheGrid() {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down}) {
            const ShownGrid shown(4, 2);
            const QPointer<CGridCtrl> grid(shown.grid);
            connect(grid, &CGridCtrl::EndLabelEdit, this, [grid] { delete grid.data(); });
            grid->BeginEdit(1, 0);
            QTest::keyClick(shown.Editor(), key);
            QVERIFY(grid.isNull());
        }
    }
};

QTEST_MAIN(TestGridEdit)
#include "test_grid_edit.moc"
