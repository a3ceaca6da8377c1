// GridController: what happens in a grid's window. It carries out what keys, mouse, assistive technology and
// the public operations ask for, shows the changes of the core, and emits the grid's signals.
#pragma once

#include <QIcon>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "grid/accessibility/grid_announcer.h"
#include "grid/commands/grid_menu.h"
#include "grid/grid_core.h"
#include "grid/grid_ctrl.h"
#include "grid/input/combo_list.h"
#include "grid/input/grid_entries.h"
#include "grid/input/grid_keys.h"
#include "grid/input/grid_mouse.h"
#include "grid/input/in_place_edit.h"

namespace quorvane {

// Signals are emitted in one place, at the end of a step. Whoever receives one may change or destroy the
// grid, so an operation that goes on afterwards is written as several steps, and no step runs when the grid
// is gone.
class GridController final : private GridListener {
public:
    explicit GridController(CGridCtrl& grid);
    ~GridController();
    GridController(const GridController&) = delete;
    GridController& operator=(const GridController&) = delete;

    CGridCtrl& Grid() const { return m_grid; }
    GridCore& Core() { return m_core; }
    const GridCore& Core() const { return m_core; }
    GridAnnouncer& Announcer() { return m_announcer; }
    const InPlaceEdit& Edit() const { return m_edit; }
    bool IsEditTyped() const { return m_isEditTyped; }
    const GridMouse& Mouse() const { return m_mouse; }
    // The list that is dropped down from a cell; null when none is.
    ComboList* OpenList() const {
        return m_choices != nullptr && m_choices->isVisible() ? m_choices.data() : nullptr;
    }

    // Runs the steps one after another; what a step changed is told before the next one begins. Steps that
    // are run within a step are part of it.
    template <typename... Steps>
    void Perform(Steps... steps) {
        const QPointer<CGridCtrl> alive(&m_grid);
        static_cast<void>((RunStep(steps, alive) && ...));
    }
    // One step, and what it returns.
    template <typename Work>
    auto Do(Work work) {
        decltype(work()) result{};
        Perform([&] { result = work(); });
        return result;
    }

    // ---- Operations
    // Carries out a command. False when the event is to be passed on.
    bool Execute(const GridCommand& command, const QEvent* event = nullptr);
    void SetFocusCell(CCellID cell);
    bool BeginEdit(CCellID cell, InPlaceEdit::Start start, const QEvent* typed = nullptr);
    // What an input method has typed into the grid: opens the editor in the focus cell and goes on there.
    // False when it has no place.
    bool Compose(const QInputMethodEvent& event);
    // Gives a key that came to the grid during a composition to the editor. False when there is none.
    bool PassToEditor(const QKeyEvent& event);
    void EndEdit();
    void CancelEdit() { m_edit.Cancel(); }
    // Ends the edit and gives the focus to the cell that next finds; nothing is open there, so that the next
    // key may be any command of the grid.
    void EndEditAndMove(GridMove move, NextCell next);
    // What every ended edit does: puts the text into the cell and notifies.
    void TakeText(CCellID cell, const CString& text, bool isTyped = true);
    // Ends the edit and tells that files were dropped on the cell.
    void TakeFiles(CCellID cell, const QStringList& paths);
    void SetPasteQuestion(PasteQuestion ask) { m_askBeforePaste = std::move(ask); }
    bool PressButton(CCellID cell, int button);
    // Ends the edit and puts its text into all selected cells.
    void EndEditAndFill();
    // Enters texts as one step of the given name; false when there is nothing to enter.
    bool EnterAll(const CString& name, const std::vector<GridEntry>& entries);
    void AddMenuAction(GridMenuGroup group, QAction* action) { m_menu.Add(group, action); }
    void SetFrozenColumns(int count);
    // Gives up a block that is being dragged. False when none is.
    bool CancelDrag();
    // Opens the context menu at a point of the screen.
    void PopUpMenu(const QPoint& globalPosition);
    // Gives the focus to the cell that place finds once the grid has the keyboard; then presses its button,
    // drops down its list or opens its text.
    void FocusAndPress(const std::function<CCellID()>& place, bool press);

    void MousePress(const QMouseEvent& event);
    void MouseMove(const QMouseEvent& event);
    void MouseRelease(const QMouseEvent& event);
    void MouseDoubleClick(const QMouseEvent& event);

    // ---- Window
    void FollowFont();
    // All rows and columns take the default sizes.
    void ResetSizes();
    void FollowScrollBars();
    void SyncScrollBars();
    // The end of an event in which shape, sizes or cells have changed.
    void FollowLayout();
    void PlaceEditor() { m_edit.Place(); }
    void EnsureVisible(CCellID cell);
    void SizesChanged() override;
    void Redraw();
    void Painted() { m_isRedrawDue = false; }

private:
    using Notice = std::function<void()>;  // emits one signal

    template <typename Step>
    bool RunStep(Step& step, const QPointer<CGridCtrl>& alive) {
        const bool outermost = !m_isInStep;
        m_isInStep = true;
        step();
        return outermost ? EndStep(alive) : !alive.isNull();
    }
    // Emits what the step has recorded. False when the grid is gone.
    bool EndStep(const QPointer<CGridCtrl>& alive);

    void LinesInserted(Qt::Orientation lines, int at, int count) override;
    void LinesRemoved(Qt::Orientation lines, int at, int count) override;
    void FixedLinesChanged() override;
    void RowsRemade(int first, int last) override;
    void BlocksChanged() override;
    void CellChanged(CCellID cell) override;
    void TextChanged(CCellID cell) override { m_announcer.TextChanged(cell); }
    void SelectionChanged(bool focus, bool ranges) override;

    void ForgetPointer();
    void CloseList();
    void OpenAt(CCellID cell, InPlaceEdit::Start start, const QEvent* typed);
    void DropDown(CCellID cell);
    void Click(CCellID cell);
    bool Copy();
    bool Paste();
    bool FillDown();
    // Asks about the loss, if any, and enters the texts of a block, which is selected then.
    void EnterBlock(const CString& name, const CCellRange& block, const std::vector<GridEntry>& entries,
                    const PasteLoss& loss);
    void MoveBlock(const CCellRange& block, CCellID start, bool isCopy);
    void Freeze(int column);
    bool MayLose(const PasteLoss& loss) const;
    void OpenMenu();
    void ScrollOn();

    CGridCtrl& m_grid;
    GridCore m_core;
    GridMouse m_mouse;
    InPlaceEdit m_edit;
    GridAnnouncer m_announcer;
    GridMenu m_menu;
    QPointer<ComboList> m_choices;
    PasteQuestion m_askBeforePaste;
    QTimer m_scrollTimer;  // while a selecting drag is beyond the window
    std::vector<Notice> m_notices;
    bool m_isInStep = false;
    bool m_isEditTyped = true;
    bool m_isSyncDue = false;    // of the scroll bars, at the end of the present event
    bool m_isRedrawDue = false;  // of the whole window; single cells need not ask then
};

}  // namespace quorvane
