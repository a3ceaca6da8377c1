// Commands that change many cells, the context menu with the actions of editors, marks, and the foot bar.
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
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
        AddAction(GridMenuGroup::Find, u"查找…"_s, QKeySequence::Find);
        QAction* undo = AddAction(GridMenuGroup::Undo, u"撤销"_s, QKeySequence::Undo);
        connect(m_grid, &CGridCtrl::MenuAboutToShow, undo, [=] { undo->setEnabled(false); });
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
        QVERIFY(entries.join(u'|').endsWith(u"|-|查找…Ctrl+F|-|冻结到此列"_s));
        menu->close();
    }

    void keysOfActionsAndCtrlTab() {
        const QSignalSpy undone(AddAction(GridMenuGroup::Undo, u"撤销"_s, QKeySequence::Undo),
                                &QAction::triggered);
        const QAction* again = AddAction(GridMenuGroup::Data, u"重新读取"_s, Qt::Key_F5);
        m_shown->Click(2, 1);
        m_shown->Key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(undone.count(), 1);
        QTest::keyClicks(m_grid, u"7"_s);
        QTest::keyClick(m_shown->Editor(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_shown->Editor()->text(), QString());  // the typing is undone
        QTest::keyClick(m_shown->Editor(), Qt::Key_Y, Qt::ControlModifier);
        QCOMPARE(undone.count(), 1);
        connect(again, &QAction::triggered, this, [this] { m_steps += m_grid->GetItemText(2, 1); });
        QTest::keyClick(m_shown->Editor(), Qt::Key_F5);
        QCOMPARE(m_steps, u".7"_s);  // the edit had ended before
        m_shown->Click(2, 0);
        QTest::keyClicks(m_grid, u"8"_s);
        QTest::keyClick(m_shown->Editor(), Qt::Key_Tab, Qt::ControlModifier);  // leaves the grid
        QVERIFY(m_shown->other->hasFocus());
        QCOMPARE(m_grid->GetItemText(2, 0), u"8"_s);
        QTest::keyClick(m_shown->other, Qt::Key_F5);
        QCOMPARE(m_steps, u".7."_s);
        QTest::keyClick(m_shown->other, Qt::Key_Tab, Qt::ShiftModifier);
        QTest::keyClick(m_grid, Qt::Key_Tab, Qt::ControlModifier);
        QVERIFY(m_shown->other->hasFocus());
    }

    void dragsABlockByItsFrame() {
        const auto drag = [this](CCellID to, Qt::KeyboardModifiers modifiers) {
            Select({2, 0, 3, 1});
            m_steps.clear();
            const QPoint frame(m_grid->CellRect(3, 0).left() + 1, m_shown->Middle(3, 0).y());
            m_shown->Drag(frame, m_shown->Middle(to.row, to.col), modifiers);
        };
        drag({3, 1}, Qt::ControlModifier);
        QCOMPARE(m_steps, u"(....复制 4)"_s);
        QCOMPARE(Texts({2, 0, 3, 2}), u"2,0 2,0 2,1 3,0 3,0 3,1"_s);
        QCOMPARE(m_grid->GetSelectedCellRange(), (CCellRange{2, 1, 3, 2}));
        drag({5, 2}, {});
        QCOMPARE(m_steps, u"(........移动 8)"_s);
        QCOMPARE(Texts({2, 0, 2, 1}) + Texts({4, 2, 5, 3}), u" 2,0 2,0 3,0 3,0"_s);
        drag({3, 0}, {});  // back to its place
        QCOMPARE(m_steps, QString());
        Select({4, 2, 5, 2});
        QTest::mousePress(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->CellRect(4, 2).topLeft() + QPoint(9, 1));
        QTest::mouseMove(m_grid->viewport(), m_shown->Middle(2, 3));
        m_shown->Key(Qt::Key_Escape);
        QTest::mouseRelease(m_grid->viewport(), Qt::LeftButton, {}, m_shown->Middle(2, 3));
        QCOMPARE(m_steps, QString());
    }

    void marksTipsAndHeadingButtons() {
        const auto picture = [this](CCellID cell) {
            return m_grid->viewport()->grab(m_grid->CellRect(cell.row, cell.col)).toImage();
        };
        const QImage plain = picture({2, 1});
        m_grid->SetMarkSource([](CCellID cell) { return cell.row == 2 ? CellMark::Changed : 0; });
        m_grid->SetTipSource(
            [](CCellID cell) { return GridTip{.text = cell.row == 2 ? u"<b> 2,7"_s : QString()}; });
        const QImage marked = picture({2, 1});
        QVERIFY(marked.pixel(marked.width() - 3, 1) != plain.pixel(plain.width() - 3, 1));
        QCOMPARE(marked.copy(0, 8, 90, 8), plain.copy(0, 8, 90, 8));
        QAccessibleInterface* table = QAccessible::queryAccessibleInterface(m_grid);
        QCOMPARE(table->tableInterface()->cellAt(2, 1)->text(QAccessible::Description), u"已修改\n<b> 2,7"_s);
        m_grid->SetItemText(3, 1, u"<i>"_s + CString(200, u'm'));
        // What is told of a cell, a text that is cut, or nothing; texts come from strangers.
        for (const auto& [row, shown] :
             {std::pair(4, QString()), {2, u"&lt;b&gt; 2,7"_s}, {3, u"&lt;i&gt;mmm"_s}}) {
            QHelpEvent point(QEvent::ToolTip, m_shown->Middle(row, 1), m_grid->mapToGlobal(QPoint()));
            QCoreApplication::sendEvent(m_grid->viewport(), &point);
            QVERIFY(QToolTip::text().contains(shown) && QToolTip::text().isEmpty() == shown.isEmpty());
        }

        m_grid->SetHighlightSource([](CCellID cell) { return cell.row == 2; });
        QVERIFY(picture({2, 1}).pixel(3, 10) != plain.pixel(3, 10));

        const QSignalSpy pressed(m_grid, &CGridCtrl::HeadingButtonClicked);
        QVERIFY(m_grid->SetHeadingButton(1, HeadingOrder::Descending));
        QTest::mouseClick(m_grid->viewport(), Qt::LeftButton, {},
                          m_grid->CellRect(0, 1).topRight() + QPoint(-7, 9));
        QCOMPARE(pressed, QList<QVariantList>{{1}});
        QCOMPARE(table->tableInterface()->cellAt(0, 1)->text(QAccessible::Description), u"降序"_s);
        m_shown->Click(0, 1);
        QCOMPARE(pressed.count(), 1);
        QCOMPARE(m_grid->GetSelectedCellRange(), (CCellRange{1, 1, 5, 1}));
    }

private:
    std::unique_ptr<ShownGrid> m_shown;
    CGridCtrl* m_grid = nullptr;
    QString m_steps;  // what was notified, in its order

    QAction* AddAction(GridMenuGroup group, const QString& text, const QKeySequence& key) {
        auto* action = new QAction(text, m_grid);
        action->setShortcut(key);
        m_grid->AddMenuAction(group, action);
        return action;
    }
    void Select(const CCellRange& range) {
        m_grid->SetFocusCell({range.minRow, range.minCol});
        m_grid->SetSelectedRange(range);
    }
    QString Texts(const CCellRange& range) const { return m_shown->Texts(range); }
};

QTEST_MAIN(TestGridCommands)
#include "test_grid_commands.moc"
