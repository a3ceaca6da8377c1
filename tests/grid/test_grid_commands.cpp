// Commands that change many cells, the context menu with the actions of editors, marks, and the foot bar.
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "shown_grid.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

class TestGridCommands : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_shown = std::make_unique<ShownGrid>(6, 4);
        m_grid = m_shown->grid;
        m_steps.clear();
        connect(m_grid, &CGridCtrl::StepBegan, this, [this] { m_steps += u"("_s; });
        connect(m_grid, &CGridCtrl::EndLabelEdit, this, [this] { m_steps += u"."_s; });
        connect(m_grid, &CGridCtrl::StepEnded, this,
                [this](const QString& name, int cells) { m_steps += u"%1 %2)"_s.arg(name).arg(cells); });
    }

    void eachGestureIsOneStep() {
        m_grid->SetItemState(2, 1, CellState::ReadOnly);
        Select({2, 0, 3, 1});
        m_shown->Key(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), u"2,0\t2,1\n3,0\t3,1"_s);
        QCOMPARE(m_steps, u"(...剪切 3)"_s);
        QCOMPARE(Texts({2, 0, 3, 1}), u" 2,1  "_s);
        Select({2, 0, 2, 0});
        m_steps.clear();
        m_shown->Key(Qt::Key_Delete);  // nothing is left there
        QCOMPARE(m_steps, QString());

        m_grid->SetHasAppendRow(true);
        Select({1, 0, 5, 0});
        m_shown->Key(Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(m_steps, u"(...向下填充 3)"_s);
        QCOMPARE(Texts({1, 0, 5, 0}), u"1,0 1,0 1,0 1,0 5,0"_s);
        Select({4, 2, 4, 3});
        m_shown->Key(Qt::Key_D, Qt::ControlModifier);  // from the row above
        QCOMPARE(Texts({4, 2, 4, 3}), u"3,2 3,3"_s);

        Select({1, 2, 2, 3});
        m_steps.clear();
        QTest::keyClicks(m_grid, u"7"_s);
        QTest::keyClick(m_shown->Editor(), Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(m_steps, u"(....填充 4)"_s);
        QCOMPARE(Texts({1, 2, 2, 3}), u"7 7 7 7"_s);
    }

    void menuShowsKeysAndReasons() {
        QAction undo(u"撤销"_s);
        undo.setShortcut(QKeySequence::Undo);
        QAction find(u"查找…"_s);
        find.setShortcut(QKeySequence::Find);
        m_grid->AddMenuAction(GridMenuGroup::Find, &find);
        m_grid->AddMenuAction(GridMenuGroup::Undo, &undo);
        connect(m_grid, &CGridCtrl::MenuAboutToShow, &undo, [&] { undo.setEnabled(false); });
        m_grid->SetItemState(2, 1, CellState::ReadOnly);
        m_grid->SetFocusCell({2, 1});
        m_shown->Key(Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = m_grid->findChild<QMenu*>(u"gridMenu"_s);
        QVERIFY(menu != nullptr && menu->isVisible());
        QStringList entries;
        for (const QAction* action : menu->actions()) {
            const QString key = action->shortcut().toString();
            entries << (action->isSeparator()
                            ? u"-"_s
                            : action->text() + key + (action->isEnabled() ? QString() : action->toolTip()));
        }
        QVERIFY(entries.join(u'|').startsWith(
            u"撤销Ctrl+Z撤销|-|剪切Ctrl+X选中的单元格不能直接修改。|复制Ctrl+C|粘贴Ctrl+V"_s));
        QCOMPARE(menu->actions().back(), &find);
        menu->close();
    }

    void keysOfActions() {
        QAction undo(u"撤销"_s);
        undo.setShortcut(QKeySequence::Undo);
        QAction again(u"重新读取"_s);
        again.setShortcut(Qt::Key_F5);
        const QSignalSpy undone(&undo, &QAction::triggered);
        m_grid->AddMenuAction(GridMenuGroup::Undo, &undo);
        m_grid->AddMenuAction(GridMenuGroup::Data, &again);
        m_shown->Click(2, 1);
        m_shown->Key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(undone.count(), 1);
        QTest::keyClicks(m_grid, u"7"_s);
        QTest::keyClick(m_shown->Editor(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_shown->Editor()->text(), QString());  // the typing is undone
        QTest::keyClick(m_shown->Editor(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(undone.count(), 1);
        connect(&again, &QAction::triggered, this, [this] { m_steps += m_grid->GetItemText(2, 1); });
        QTest::keyClick(m_shown->Editor(), Qt::Key_F5);
        QCOMPARE(m_steps, u".7"_s);  // the edit had ended before
        m_shown->other->setFocus();
        QTest::keyClick(m_shown->other, Qt::Key_F5);
        QCOMPARE(m_steps, u".7"_s);
    }

private:
    std::unique_ptr<ShownGrid> m_shown;
    CGridCtrl* m_grid = nullptr;
    QString m_steps;  // what was notified, in its order

    void Select(const CCellRange& range) {
        m_grid->SetFocusCell({range.minRow, range.minCol});
        m_grid->SetSelectedRange(range);
    }
    QString Texts(const CCellRange& range) const {
        QStringList texts;
        for (int row = range.minRow; row <= range.maxRow; ++row) {
            for (int column = range.minCol; column <= range.maxCol; ++column) {
                texts << m_grid->GetItemText(row, column);
            }
        }
        return texts.join(u' ');
    }
};

QTEST_MAIN(TestGridCommands)
#include "test_grid_commands.moc"
