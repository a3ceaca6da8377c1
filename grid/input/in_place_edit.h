// The line editor that opens inside a cell: opening, following the cell, and every way of ending.
#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPointer>

#include "grid/grid_types.h"
#include "grid/input/grid_keys.h"

namespace quorvane {

class CGridCtrl;

class InPlaceEdit : public QObject {
    Q_OBJECT

public:
    enum class Start { AllSelected, CaretAtEnd, Empty };

    explicit InPlaceEdit(CGridCtrl& grid);

    // Opens the editor in a cell of editable text, which has the focus already.
    void Begin(CCellID cell, Start start);
    bool IsOn() const { return !m_editor.isNull(); }
    CCellID Cell() const { return m_cell; }
    QLineEdit* Editor() const { return m_editor; }

    // Closes the editor and hands its text to the grid. The grid and this object may be gone afterwards.
    void End();
    // Closes the editor and leaves the cell as it was.
    void Cancel();
    // Puts the editor over its cell again after scrolling or a change of sizes; what would cover headings is
    // masked off.
    void Place();
    // The rows or columns of the grid have changed; the edit goes with its cell or, if that is gone, ends
    // without taking the text.
    void FollowCell(CCellID cell);
    // The cells of some rows are made anew when they are next touched.
    void RowsRemade(int first, int last);
    // Puts the editor over its cell and, when the cell was made anew, goes by what the cell is and holds now:
    // a text that the user has not changed is replaced, and an edit in a cell without editable text ends.
    void Refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool PressKey(const QKeyEvent& event);
    void EndAndMove(GridKeys::Move move, bool goOn);
    // The text to store: what stands in the cell, byte for byte, when nothing was typed.
    CString Text() const;
    void Close();

    CGridCtrl& m_grid;
    QPointer<QLineEdit> m_editor;
    CCellID m_cell;
    bool m_isRemade = false;
};

}  // namespace quorvane
