// CCoefficientTableDlg: the dialog "利用系数编辑", in which the utilization factor table of one luminaire is
// edited.
//
// The user adds, changes and deletes headings and row values in the tree, and types factors into the grid.
// Nothing reaches the database before a submit.
#pragma once

#include <QDialog>

#include "editors/factor_table/factor_table_tree.h"
#include "editors/factor_table/factor_view.h"
#include "editors/undo_actions.h"
#include "model/factor_table/factor_table_editing.h"

class QLayout;

namespace quorvane {

class FactorTableGrid;
class GridFinder;

class CCoefficientTableDlg : public QDialog {
    Q_OBJECT

public:
    // Loads the table of the luminaire, and tells the user of missing factors before the dialog is shown.
    // title names the luminaire in the window's title. kindText names the row values: "RI" is the room index,
    // any other text the room cavity ratio. The database must outlive the dialog.
    CCoefficientTableDlg(CLightingDatabase& database, int luminaireId, const CString& title,
                         const CString& kindText, QWidget* parent);
    ~CCoefficientTableDlg() override;

    // Whether the table has changed since the last submit, or the submit could not write all of it.
    bool IsModified() const { return m_editing.IsModified(); }

    // The edits as they are now, to be made again in a later run: false when the file holds another table.
    FactorTableEditing::Kept KeepEdits() const { return m_editing.Edits(); }
    bool MakeEditsAgain(const FactorTableEditing::Kept& kept);

    // "确定": asks whether to submit changes, and closes.
    void accept() override;
    // Esc asks the same question as the close box.
    void reject() override;

Q_SIGNALS:
    // What differs from the file may have changed.
    void EditsChanged();

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Branch = FactorTableBranch;

    void CreateContents();
    void LayOut();
    QLayout* LayOutButtons();
    void DecorateButtons();
    void ForbidEditing();
    // In tree and grid.
    void ShowTable();

    void OnCommand(FactorTableTree::Command command);
    void OnLabelEdited(QTreeWidgetItem* item, const CString& text, bool isTyped);
    void OnFactorEdited(int row, int column);
    void OnSubmit();
    void OnClear();
    void AddFinding();
    void AddUndo();
    void AddView();
    // Shows the table after an undo or redo, which gave the place of the first changed factor.
    void ShowUndone(FactorTableEditing::Place place);
    CString StepName(const CString& action, Branch branch) const;

    void DeleteEntry(Branch branch, const CString& question);
    // Shows the table after an operation on that branch, also after one that changed nothing.
    void ShowAfterOperation(Branch branch);
    void RefuseFactor();
    bool EndEditing();
    bool Submit();
    QWidget* MessageParent();
    bool Ask(const CString& question);
    void TellError(const CString& text);

    CString m_rowLabel;
    FactorTableEditing m_editing;
    FactorTableTree* m_tree = nullptr;
    FactorTableGrid* m_grid = nullptr;
    GridFinder* m_finder = nullptr;
    UndoActions m_undo;
    FactorView m_view;
    bool m_isFactorRefused = false;
    bool m_isManyEntered = false;  // by one gesture that is going on: a paste, a fill, a clearing
};

}  // namespace quorvane
