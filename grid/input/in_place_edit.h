// The line editor that opens inside a cell: opening, following its cell, and closing.
#pragma once

#include <QInputMethodEvent>
#include <QObject>
#include <QPointer>
#include <optional>

#include "grid/grid_types.h"
#include "grid/input/cell_line_edit.h"

namespace quorvane {

class GridController;

class InPlaceEdit : public QObject {
    Q_OBJECT

public:
    // Composing: empty, and the grid keeps the keyboard until the input method has ended its composition.
    enum class Start { AllSelected, CaretAtEnd, Empty, Composing };

    explicit InPlaceEdit(GridController& controller) : m_controller(controller) {}

    // Opens the editor in a cell of editable text, which has the focus already.
    void Begin(CCellID cell, Start start);
    bool IsOn() const { return !m_editor.isNull(); }
    CCellID Cell() const { return m_cell; }
    QLineEdit* Editor() const { return m_editor; }

    // Gives an event of the input method that came to the grid to the editor. A change of the keyboard focus
    // would make the input method drop its composition, so the editor gets the focus after the composition.
    void Compose(const QInputMethodEvent& event);
    // Whether the grid still has the keyboard for the editor.
    bool IsComposing() const { return IsOn() && !m_editor->hasFocus() && m_hasComposed; }
    void TakeKeyboard();
    // True while the input method is told to forget a composition whose edit has ended. What it sends in
    // answer belongs to that edit.
    bool DropsComposition() const { return m_dropsComposition; }
    // Whether the user has typed into the open editor.
    bool IsTyped() const { return IsOn() && (m_editor->isModified() || m_editor->text() != m_shown); }

    // Closes the editor. Gives the text for the cell; none when no edit was on or its cell is no longer one
    // of editable text.
    std::optional<CString> Close();
    // Closes the editor; its text is lost.
    void Cancel();

    // Whether an edit ends when the keyboard goes elsewhere: not for a menu, nor for another window.
    static bool EndsEdit(const QFocusEvent& out);

    // Puts the editor over its cell again after scrolling or a change of sizes; what would cover headings is
    // masked off.
    void Place();
    // The edit goes with its cell. When the cell is removed or becomes fixed the editor closes and its text
    // is lost.
    void FollowInsert(Qt::Orientation lines, int at, int count);
    void FollowRemove(Qt::Orientation lines, int at, int count);
    void FollowFixed();
    // The cells of some rows are made anew when they are next touched.
    void RowsRemade(int first, int last);
    // Puts the editor over its cell. When the cell was made anew, a text that the user has not changed is
    // replaced by the cell's, and an edit in a cell without editable text ends.
    void Refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool PressKey(const QKeyEvent& event);
    void FollowCell(CCellID cell);

    GridController& m_controller;
    QPointer<CellLineEdit> m_editor;
    CCellID m_cell;
    CString m_shown;  // the text that the editor was given; assistive technology replaces it without typing
    bool m_isRemade = false;
    bool m_hasComposed = false;  // begun by an input method; the editor has not had the keyboard yet
    bool m_dropsComposition = false;
    CString m_preedit;  // what the input method is composing in the editor
};

}  // namespace quorvane
