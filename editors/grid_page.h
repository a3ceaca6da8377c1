// What the pages that edit records in a grid have in common, whatever the record: the grid, the questions,
// and the way from an ended edit to the page.
#pragma once

#include "editors/grid_setup.h"
#include "editors/page.h"
#include "model/working_records.h"

namespace quorvane {

class GridPage : public CPage {
    Q_OBJECT

public:
    // caption stands over every question that the page asks.
    GridPage(const CString& caption, QWidget* parent);
    ~GridPage() override;

    void EndEditing() override;

protected:
    // Makes the grid on that rectangle, with one heading row and the given columns. False when it cannot be
    // made.
    bool CreateGrid(int gridId, const QRect& rect, std::span<const GridColumn> columns,
                    SharesOf width = SharesOf::WindowWidth);
    CGridCtrl& Grid() { return *m_grid; }
    const CGridCtrl& Grid() const { return *m_grid; }

    void WriteCell(int row, int column, const CString& text, unsigned format) {
        quorvane::WriteCell(*m_grid, row, column, text, format);
    }
    void WriteRowHead(int row, const CString& text, int recordId, bool unwritten = false) {
        quorvane::WriteRowHead(*m_grid, row, text, recordId, unwritten);
    }
    double ReadReal(int row, int column, double present) {
        return quorvane::ReadReal(*m_grid, row, column, present);
    }
    int ReadInteger(int row, int column) { return quorvane::ReadInteger(*m_grid, row, column); }

    // The answer to "数据已经修改是否提交?".
    bool AskToSubmit();
    bool AskToDelete(int row, const CString& title) {
        return quorvane::AskToDelete(this, m_caption, row, title);
    }
    // Tells the user what a submit could not write.
    void TellFailures(const SubmitFailures& failures);
    // Once the window stands: a list that the page has been made with is not complete.
    void TellIncompleteLoadSoon();
    void TellIncompleteLoad() { quorvane::TellIncompleteLoad(this, m_caption); }

    // An in-place edit of that cell has ended.
    virtual void CellEdited(int row, int column) = 0;

private:
    CString m_caption;
    CGridCtrl* m_grid = nullptr;  // child of this page
};

}  // namespace quorvane
