// Editing in place: every way in, every way out, notification handlers that change the grid meanwhile, and
// cells with a list or a button.
#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QListWidget>
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

namespace {

QListWidget* List() {
    auto* list = qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    return list != nullptr && list->objectName() == u"gridComboList"_s ? list : nullptr;
}

}  // namespace

class TestGridEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void waysIn() {
        const ShownGrid grid(5, 3);
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        grid.DoubleClick(2, 1);
        QCOMPARE(grid.Editor()->selectedText(), u"2,1"_s);
        QVERIFY(grid->CellRect(2, 1).contains(grid.Editor()->geometry()));
        grid->EndEdit();
        QCOMPARE(ended.count(), 1);  // also when nothing was changed
        QCOMPARE(ended.at(0), (QVariantList{2, 1}));
        grid.Key(Qt::Key_F2);
        QVERIFY(grid.Editor()->selectedText().isEmpty());
        QTest::keyClicks(grid.Editor(), u"x"_s);
        QCOMPARE(grid->Cell(2, 1)->GetText(), u"2,1"_s);  // not before the end
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(2, 1), u"2,1x"_s);
        QTest::keyClicks(grid.get(), u"9"_s);
        QCOMPARE(grid.Editor()->text(), u"9"_s);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(2, 1), u"9"_s);
        grid.Key(Qt::Key_Backspace);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(2, 1), QString());
        QCOMPARE(ended.count(), 4);
        grid.Click(3, 1, Qt::ShiftModifier);
        grid.Key(Qt::Key_Delete);
        QCOMPARE(grid->GetItemText(3, 1), QString());

        grid.Click(1, 0);
        // A text that no line edit can hold passes through one unharmed.
        const QString odd = u"  a\nb\tc\x01"_s + QString(40'000, u'光') + u" <b>%s'😀 "_s;
        grid->SetItemText(1, 0, odd);
        grid.Key(Qt::Key_F2);
        grid->EndEdit();
        QVERIFY(grid->GetItemText(1, 0) == odd);
        grid.Key(Qt::Key_F2);
        grid->SetItemText(1, 0, u"set meanwhile"_s);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(1, 0), u"set meanwhile"_s);
    }

    // An input method drops its composition when the keyboard focus changes, as the real ones do.
    void inputMethodTypesOntoACell() {
        const ShownGrid grid(5, 3);
        grid->SetFocusCell({2, 1});
        const auto send = [](const QString& preedit, const QString& commit) {
            QInputMethodEvent event(preedit, {});
            event.setCommitString(commit);
            QCoreApplication::sendEvent(QApplication::focusObject(), &event);
            QCoreApplication::processEvents();
        };
        for (const QString& preedit : {u"n"_s, u"ni"_s, u"ni hao"_s}) {
            send(preedit, {});
            QVERIFY(grid.Editor() != nullptr && QApplication::focusObject() == grid.get());
        }
        const QRect caret = grid->inputMethodQuery(Qt::ImCursorRectangle).toRect();
        QVERIFY(grid->CellRect(2, 1).contains(caret.translated(-grid->viewport()->pos()).center()));
        send({}, u"你好"_s);
        QVERIFY(grid.Editor()->hasFocus());
        send(u"m"_s, {});
        send({}, u"吗"_s);
        QTest::keyClick(grid.Editor(), Qt::Key_Return);
        QCOMPARE(grid->GetItemText(2, 1), u"你好吗"_s);
        grid->CancelEdit();

        send(u"n"_s, {});
        QTest::keyClick(grid.get(), Qt::Key_Escape);
        QVERIFY(!grid->IsEditing() && grid->hasFocus());
        send({}, u"光"_s);  // a whole word at once
        grid.other->setFocus();
        QCOMPARE(grid->GetItemText(3, 1), u"光"_s);
        grid->setFocus();
        send(u"g"_s, u"灯"_s);
        grid.other->setFocus();
        QVERIFY(!grid->IsEditing());
        QCOMPARE(grid->GetItemText(3, 1), u"灯g"_s);  // also what was still being composed
    }

    void pastedLineEndsAreDropped() {
        const ShownGrid grid(3, 2);
        QApplication::clipboard()->setText(u"450\r\n"_s);
        const std::function<void()> ways[]{
            [&] { QTest::keySequence(grid.Editor(), QKeySequence(QKeySequence::Paste)); },
            [&] {
                QContextMenuEvent ask(QContextMenuEvent::Mouse, {}, grid.Editor()->mapToGlobal(QPoint()));
                QCoreApplication::sendEvent(grid.Editor(), &ask);
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
                QCoreApplication::sendEvent(grid.Editor(), &enter);
                QDropEvent drop({}, Qt::CopyAction, &text, Qt::LeftButton, {});
                QCoreApplication::sendEvent(grid.Editor(), &drop);
            }};
        for (const auto& paste : ways) {
            grid->SetItemText(1, 1, {});
            grid->BeginEdit(1, 1);
            paste();
            grid->EndEdit();
            QCOMPARE(grid->GetItemText(1, 1), u"450"_s);
        }
    }

    void notEditableCells() {
        const ShownGrid grid(4, 3, 1, 1);
        grid->SetItemState(2, 1, CellState::ReadOnly);
        const QSignalSpy clicked(grid.get(), &CGridCtrl::CellClicked);
        grid.DoubleClick(2, 1);
        QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, grid.Middle(2, 1));
        QVERIFY(!grid->IsEditing() && clicked.count() == 1);  // the second press is no second click
        grid.Click(2, 1);
        QCOMPARE(clicked.count(), 2);
        QVERIFY(!grid->inputMethodQuery(Qt::ImEnabled).toBool());
        grid.DoubleClick(2, 0);
        QVERIFY(!grid->IsEditing());
        QVERIFY(!grid->BeginEdit(0, 1) && !grid->BeginEdit(9, 9));
    }

    // At the foot of a column the next number must not fall upon the one just typed.
    void keysGoOnToTheNextCell() {
        const ShownGrid grid(6, 4);
        grid.other->setFocus();
        QTest::keyClick(grid.other, Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(grid->GetFocusCell(), (CCellID{1, 0}));
        grid->SetItemState(4, 0, CellState::ReadOnly);
        grid->SetColumnWidth(2, 0);  // hidden
        constexpr auto kShift = Qt::ShiftModifier;
        const struct {
            CCellID from;
            Qt::Key key;
            Qt::KeyboardModifiers modifiers;
            CCellID to;
            bool byColumns;
        } cases[]{{{1, 0}, Qt::Key_Return, {}, {2, 0}, false},
                  {{1, 0}, Qt::Key_Enter, Qt::KeypadModifier, {2, 0}, false},
                  {{2, 0}, Qt::Key_Return, kShift, {1, 0}, false},
                  {{5, 1}, Qt::Key_Return, {}, {5, 1}, false},
                  {{5, 0}, Qt::Key_Return, {}, {1, 1}, true},
                  {{1, 1}, Qt::Key_Return, kShift, {5, 0}, true},
                  {{5, 3}, Qt::Key_Return, {}, {5, 3}, true},
                  {{2, 1}, Qt::Key_Down, {}, {3, 1}, false},
                  {{1, 1}, Qt::Key_Tab, {}, {1, 3}, false},
                  {{3, 3}, Qt::Key_Tab, {}, {4, 1}, false},
                  {{4, 1}, Qt::Key_Backtab, kShift, {3, 3}, false},
                  {{5, 3}, Qt::Key_Tab, {}, {5, 3}, false}};
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        for (const auto& [from, key, modifiers, to, byColumns] : cases) {
            grid->SetTypesByColumns(byColumns);
            grid->BeginEdit(from.row, from.col);
            QTest::keyClicks(grid.Editor(), u"new"_s);
            QTest::keyClick(grid.Editor(), key, modifiers);
            QCOMPARE(grid->GetItemText(from.row, from.col), u"new"_s);
            QCOMPARE(grid->GetFocusCell(), to);
            QVERIFY(!grid->IsEditing() && grid->hasFocus());  // the next key may undo or paste
        }
        QCOMPARE(ended.count(), qsizetype(std::size(cases)));
        grid.Key(Qt::Key_Tab);  // without an edit the last cell's Tab leaves the grid
        QVERIFY(grid.other->hasFocus());
        connect(grid.get(), &CGridCtrl::EndLabelEdit, grid.get(), [&grid] { grid->InsertRow({}); });
        grid->BeginEdit(5, 1);
        QTest::keyClick(grid.Editor(), Qt::Key_Return);
        QCOMPARE(grid->GetFocusCell(), (CCellID{6, 1}));
    }

    void waysOut() {
        ShownGrid grid(4, 2);
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        const auto type = [&](const QString& text) {
            grid->BeginEdit(2, 0);
            QTest::keyClicks(grid.Editor(), text);
        };
        type(u"a"_s);
        grid.Click(3, 1);
        QCOMPARE(grid->GetItemText(2, 0), u"a"_s);
        QCOMPARE(grid->GetFocusCell(), (CCellID{3, 1}));
        type(u"b"_s);
        QTest::mouseClick(grid.other, Qt::LeftButton);
        QCOMPARE(grid->GetItemText(2, 0), u"b"_s);
        type(u"x"_s);
        QTest::keyClick(grid.Editor(), Qt::Key_Escape);
        QCOMPARE(grid->GetItemText(2, 0), u"b"_s);
        QVERIFY(grid->hasFocus());

        type(u"d"_s);
        for (const QKeyCombination key : {QKeyCombination(Qt::Key_Menu), Qt::SHIFT | Qt::Key_F10}) {
            QTest::keyClick(grid.Editor(), key.key(), key.keyboardModifiers());
            QVERIFY(QApplication::activePopupWidget() != nullptr);
            QApplication::activePopupWidget()->close();
        }
        QVERIFY(grid->IsEditing());  // the editor's own menu is no other place
        QWidget second;
        second.show();
        second.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&second));
        QCOMPARE(ended.count(), 2);
        QCOMPARE(grid.Editor()->text(), u"d"_s);  // another window is no other place either
        grid.window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&grid.window));
        QVERIFY(grid->BeginEdit(1, 0));  // another cell's edit ends this one
        QCOMPARE(grid->GetItemText(2, 0), u"d"_s);
        QCOMPARE(grid.Editor()->text(), u"1,0"_s);
    }

    void editorFollowsItsCell() {
        const ShownGrid grid(100, 2);
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        grid->BeginEdit(5, 0);
        QTest::keyClicks(grid.Editor(), u"x"_s);
        grid->verticalScrollBar()->setValue(20);
        QCOMPARE(grid.Editor()->geometry().topLeft(), grid->CellRect(5, 0).topLeft());
        grid->verticalScrollBar()->setValue(grid->GetRowHeight(1) * 4 + 5);  // half below the heading
        QCOMPARE(grid.Editor()->mask().boundingRect().top(), 5);
        grid->InsertRow({}, 2);
        grid->DeleteRow(80);
        grid->EndEdit();
        QCOMPARE(grid->GetItemText(6, 0), u"x"_s);
        grid->BeginEdit(6, 0);
        grid->DeleteRow(6);
        QVERIFY(!grid->IsEditing());
        grid->BeginEdit(2, 1);
        grid->SetFixedRowCount(3);
        QVERIFY(!grid->IsEditing());
        QCOMPARE(ended.count(), 1);
        grid->SetFocusCell({90, 1});
        grid->verticalScrollBar()->setValue(0);
        QVERIFY(grid->BeginEdit(90, 1));
        QVERIFY(grid->viewport()->rect().contains(grid.Editor()->geometry()));
        grid->SetFixedColumnCount(2);
        QVERIFY(!grid->IsEditing());
    }

    void handlerRefillsOrDestroysTheGrid() {
        const ShownGrid grid(60, 2);
        const auto refill = connect(grid.get(), &CGridCtrl::EndLabelEdit, grid.get(), [&grid] {
            grid->SetRowCount(1);
            grid->SetRowCount(60);
            grid->SetItemText(42, 0, u"new"_s);
        });
        grid->BeginEdit(41, 0);
        QTest::keyClick(grid.Editor(), Qt::Key_Return);
        QCOMPARE(grid->GetFocusCell(), (CCellID{42, 0}));
        grid->BeginEdit(42, 0);
        disconnect(refill);
        connect(grid.get(), &CGridCtrl::EndLabelEdit, grid.get(), &CGridCtrl::DeleteAllItems);
        grid.Click(grid->GetFocusCell().row - 1, 1);  // ends the edit, and then there is nothing left to hit
        QVERIFY(!grid->IsEditing());
        QCOMPARE(grid->GetFocusCell(), CCellID());
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down}) {
            const ShownGrid other(4, 2);
            const QPointer<CGridCtrl> destroyed(other.grid);
            connect(destroyed, &CGridCtrl::EndLabelEdit, this, [destroyed] { delete destroyed.data(); });
            destroyed->BeginEdit(1, 0);
            QTest::keyClick(other.Editor(), key);
            QVERIFY(destroyed.isNull());
        }
    }

    void listByMouse() {
        ShownGrid grid(4, 3);
        grid.MakeCombo(2, 1, {u"RCR"_s, u"2,1"_s, u"荧光灯"_s});
        grid.Click(2, 1);
        QVERIFY(List() == nullptr);  // the first click only gives the focus
        grid.Click(2, 1);
        QCOMPARE(List()->currentItem()->text(), u"2,1"_s);
        const QRect third = List()->visualItemRect(List()->item(2));
        QTest::mouseClick(List()->viewport(), Qt::LeftButton, {}, third.center());
        QVERIFY(List() == nullptr);
        QCOMPARE(grid->GetItemText(2, 1), u"荧光灯"_s);
        // At the bottom of the screen the list goes up.
        const QRect screen = grid.window.screen()->availableGeometry();
        grid.window.move(screen.bottomLeft() - QPoint(0, 100));
        grid.Key(Qt::Key_F4);
        QVERIFY(List() != nullptr && screen.contains(List()->geometry()));
        QTest::keyClick(List(), Qt::Key_Escape);
        const std::function<void()> changes[]{[&] { grid->DeleteRow(3); }, [&] { grid->RemakeRow(2); }};
        for (const auto& change : changes) {
            grid.Click(2, 1);
            QVERIFY(List() != nullptr && List()->hasFocus());
            change();
            QVERIFY(List() == nullptr);
        }
    }

    void listByKeys() {
        const ShownGrid grid(4, 3);
        grid.MakeCombo(2, 1, {u"RCR"_s, u"RI"_s, u"荧光灯"_s});
        grid->SetFocusCell({2, 1});
        const QSignalSpy ended(grid.get(), &CGridCtrl::EndLabelEdit);
        const struct {
            QString before;
            Qt::Key opens;
            Qt::KeyboardModifiers modifiers;
            std::vector<Qt::Key> keys;
            QString after;
            int edits;
        } cases[]{
            {u"RI"_s, Qt::Key_Space, {}, {Qt::Key_Down, Qt::Key_Escape}, u"RI"_s, 0},
            {u"RI"_s, Qt::Key_F2, {}, {Qt::Key_Up, Qt::Key_Return}, u"RCR"_s, 1},
            {u"RCR"_s, Qt::Key_Down, Qt::AltModifier, {Qt::Key_End, Qt::Key_Up, Qt::Key_Return}, u"RI"_s, 1},
            {u"RI"_s, Qt::Key_F4, {}, {Qt::Key_R, Qt::Key_C, Qt::Key_Enter}, u"RCR"_s, 1},
            {u"none of them"_s, Qt::Key_F4, {}, {Qt::Key_Return, Qt::Key_Escape}, u"none of them"_s, 0}};
        for (const auto& [before, opens, modifiers, keys, after, edits] : cases) {
            grid->SetItemText(2, 1, before);
            const qsizetype editsBefore = ended.count();
            grid.Key(opens, modifiers);
            for (const Qt::Key key : keys) {
                QVERIFY(List() != nullptr);
                QTest::keyClick(List(), key);
            }
            QVERIFY(List() == nullptr);
            QCOMPARE(grid->GetItemText(2, 1), after);
            QCOMPARE(ended.count(), editsBefore + edits);
        }
        grid->SetItemState(2, 1, CellState::DropDown | CellState::ReadOnly);
        grid.Key(Qt::Key_F4);
        QVERIFY(List() == nullptr);
    }

    void pushButtonByMouseAndKey() {
        const ShownGrid grid(4, 3);
        grid.MakeButton(2, 2, BtnState::PushButton, u"利用系数表"_s);
        const QSignalSpy pressed(grid.get(), &CGridCtrl::ButtonClicked);
        const QSignalSpy clicked(grid.get(), &CGridCtrl::CellClicked);
        grid.Click(2, 2);
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(pressed.at(0), (QVariantList{2, 2, 0}));
        QCOMPARE(clicked.count(), 0);
        grid.Key(Qt::Key_Space);
        QCOMPARE(pressed.count(), 2);
        grid.Drag(grid.Middle(2, 2), grid.Middle(1, 0));
        QCOMPARE(pressed.count(), 2);
        grid.Key(Qt::Key_F2);
        QTest::keyClicks(grid.get(), u"a"_s);
        QVERIFY(!grid->IsEditing());
    }
};

QTEST_MAIN(TestGridEdit)
#include "test_grid_edit.moc"
