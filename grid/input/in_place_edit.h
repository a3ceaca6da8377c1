// The line editor that opens inside a cell: opening, following its cell, and closing.
#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <optional>

#include "grid/grid_types.h"

namespace quorvane {

class GridController;

class InPlaceEdit : public QObject {
    Q_OBJECT

public:
    enum class Start { AllSelected, CaretAtEnd, Empty };

    explicit InPlaceEdit(GridController& controller) : m_controller(controller) {}

    // Opens the editor in a cell of editable text, which has the focus already.
    void Begin(CCellID cell, Start start);
    bool IsOn() const { return !m_editor.isNull(); }
    CCellID Cell() const { return m_cell; }
    QLineEdit* Editor() const { return m_editor; }

    // Closes the editor. Gives the text for the cell; none when no edit was on or its cell is no longer one
    // of editable text.
    std::optional<CString> Close();
    // Closes the editor; its text is lost.
    void Cancel();

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
    QPointer<QLineEdit> m_editor;
    CCellID m_cell;
    bool m_isRemade = false;
};

}  // namespace quorvane
