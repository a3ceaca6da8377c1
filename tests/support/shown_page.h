// A grid in an active window, alone or in a page or dialog on a database of its own, worked by real key and
// mouse events.
#pragma once

#include <QComboBox>
#include <QInputMethodEvent>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

#include "editors/page.h"
#include "grid/grid_ctrl.h"
#include "model/reference_lists.h"
#include "tests/support/failing_connection.h"
#include "tests/support/message_answers.h"
#include "widgets/dialog_template.h"

namespace quorvane {

// Waits for the modal dialog of that name, then works in it.
class DialogAnswer : public QObject {
public:
    DialogAnswer(const QString& name, std::function<void(QWidget*)> work) {
        connect(&m_timer, &QTimer::timeout, this, [this, name, work = std::move(work)] {
            QWidget* dialog = QApplication::activeModalWidget();
            if (dialog != nullptr && dialog->objectName() == name && dialog->isVisible()) {
                m_timer.stop();
                WasShown = true;
                work(dialog);
            }
        });
        m_timer.start(5);
    }
    bool WasShown = false;

private:
    QTimer m_timer;
};

struct WorkedGrid {
    void Show(QWidget* window) {
        m_window = window;
        grid = window->findChild<CGridCtrl*>();
        window->show();
        Activate();
    }
    // Again the window that keys go to. A message box may take them first, so it is asked for more than once.
    void Activate() {
        for (int attempt = 0; attempt < 3; ++attempt) {
            m_window->activateWindow();
            if (QTest::qWaitForWindowActive(m_window, 1000)) {
                return;
            }
        }
        qFatal("the window was not activated");
    }
    void Press(int id) { QTest::mouseClick(DialogItem(m_window, id), Qt::LeftButton); }

    void Click(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
        Activate();
        grid->EnsureVisible(row, column);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, grid->CellRect(row, column).center());
    }
    // Chooses a command of the context menu.
    void Command(const QString& text) {
        Activate();
        QTest::keyClick(grid, Qt::Key_Menu);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        for (QAction* action : menu->actions()) {
            if (action->text() == text) {
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
                return;
            }
        }
        qFatal("no such command");
    }
    // Keys for ASCII; anything else comes from an input method.
    static void Enter(QWidget* editor, const QString& text) {
        if (QtPrivate::isAscii(text)) {
            QTest::keyClicks(editor, text);
        } else {
            QInputMethodEvent typed;
            typed.setCommitString(text);
            QCoreApplication::sendEvent(editor, &typed);
        }
    }
    // Types over the cell, which stays open; returns its editor.
    QWidget* TypeOpen(int row, int column, const QString& text) {
        Click(row, column);
        QTest::keyClick(grid, Qt::Key_F2);
        QWidget* editor = QApplication::focusWidget();
        QTest::keySequence(editor, QKeySequence::SelectAll);
        QTest::keyClick(editor, Qt::Key_Delete);
        Enter(editor, text);
        return editor;
    }
    // Types over the cell and leaves it by Enter.
    void Type(int row, int column, const QString& text) {
        QTest::keyClick(TypeOpen(row, column, text), Qt::Key_Return);
        grid->CancelEdit();
    }
    // Opens the list of a cell.
    QListWidget* DropDown(int row, int column) {
        Activate();
        grid->SetFocusCell({row, column});
        QTest::keyClick(grid, Qt::Key_F4);
        return qobject_cast<QListWidget*>(QApplication::activePopupWidget());
    }
    // Chooses an entry of the list of a cell.
    void Pick(int row, int column, const QString& text) {
        QListWidget* list = DropDown(row, column);
        QListWidgetItem* item = list->findItems(text, Qt::MatchExactly).value(0);
        QVERIFY2(item != nullptr, qPrintable(text));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(item).center());
    }
    // Opens the cell and leaves it as it is, as Tab does in passing.
    void PassThrough(int row, int column) {
        Activate();
        grid->BeginEdit(row, column);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        grid->CancelEdit();
    }
    // The texts of a row, joined by "|".
    QString Row(int row) const {
        QStringList texts;
        for (int column = 0; column < grid->GetColumnCount(); ++column) {
            texts += grid->GetItemText(row, column);
        }
        return texts.join(u'|');
    }
    QStringList Rows() const {
        QStringList rows;
        for (int row = 1; row < grid->GetRowCount(); ++row) {
            rows += Row(row);
        }
        return rows;
    }

    // The texts of a column but for its heading, joined by blanks.
    QString Texts(int column) const {
        QStringList texts;
        for (const QString& row : Rows()) {
            texts += row.section(u'|', column, column);
        }
        return texts.join(u' ');
    }
    // The boxes shown since the last call, one a line.
    QString Seen() { return answers.TakeSeen().join(u'\n'); }

    MessageAnswers answers;
    CGridCtrl* grid = nullptr;

private:
    QWidget* m_window = nullptr;
};

struct ShownGrid : WorkedGrid, FailingDatabase {
    using FailingDatabase::FailingDatabase;

    ReferenceLists lists{database};
};

template <typename Page>
CPage* MakePage(ShownGrid& grid, QWidget* parent) {
    return new Page(grid.database, grid.lists, parent);
}

struct ShownPage : ShownGrid {
    // Shows the page that make(*this, parent) returns.
    template <typename Make>
    ShownPage(const QString& rows, Make make) : ShownGrid(rows) {
        window.resize(820, 520);
        page = make(*this, &window);
        page->setGeometry(window.rect());
        Show(&window);
    }

    // Chooses an entry of a drop-down list by keys.
    void Choose(int controlId, int entry) {
        Activate();
        auto* list = DialogItem<QComboBox>(page, controlId);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_F4);
        QWidget* view = QApplication::focusWidget();
        QTest::keyClick(view, Qt::Key_Home);
        for (int step = 0; step < entry; ++step) {
            QTest::keyClick(view, Qt::Key_Down);
        }
        QTest::keyClick(view, Qt::Key_Return);
    }

    // Presses Submit, as it were, while the statements fail that contain one of the texts.
    void Submit(const QStringList& failing = {}) {
        log.failing = failing;
        page->Submit();
        page->Refresh();
        log.failing.clear();
    }

    QWidget window;
    CPage* page = nullptr;
};

}  // namespace quorvane
