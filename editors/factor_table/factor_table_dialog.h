// CCoefficientTableDlg: the dialog "利用系数编辑", in which the utilization factor table of one luminaire is
// edited.
//
// Headings and row values are added, changed and deleted in the tree, factors are typed into the grid.
// Nothing reaches the database before the user submits.
#pragma once

#include <QDialog>

#include "data/utilization_factor_table.h"
#include "editors/factor_table/factor_table_tree.h"

class QLayout;

namespace quorvane {

class FactorTableGrid;

class CCoefficientTableDlg : public QDialog {
    Q_OBJECT

public:
    // Loads the table of that luminaire. title names it in the window's title; kindText says by what the rows
    // are told apart, "RI" for the room index and anything else for the room cavity ratio. What is missing or
    // wrong in the file is told at once, before the dialog is shown. The database must outlive the dialog.
    CCoefficientTableDlg(CLightingDatabase& database, int luminaireId, const CString& title,
                         const CString& kindText, QWidget* parent);
    ~CCoefficientTableDlg() override;

    // Whether anything has changed since the last submit, or could not be written by it.
    bool IsModified() const { return m_modified; }

    // "确定": asks whether to submit what has changed, and closes.
    void accept() override;
    // Esc asks what the close box asks.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Branch = FactorTableTree::Branch;

    void CreateContents();
    void LayOut();
    QLayout* LayOutButtons();
    void DecorateButtons();
    void ShowTable();
    void ForbidEditing();

    void RunCommand(FactorTableTree::Command command);
    void TakeLabel(QTreeWidgetItem* item, const CString& text);
    // False when the text is no heading or no row value; whether the table takes it is another matter.
    bool TakeHeading(int index, const CString& text);
    bool TakeRowValue(int index, const CString& text);
    // What follows every operation on the table, whether it changed anything or not.
    void Accept(bool changed, Branch branch);
    void DeleteEntry(Branch branch);
    void TakeFactor(int row, int column);
    void RefuseFactor();

    void SubmitPressed();
    void ClearPressed();
    bool EndEditing();
    void Submit();
    QWidget* MessageParent();
    bool Ask(const CString& question);
    void TellError(const CString& text);

    CString m_rowLabel;
    UtilizationFactorTable m_table;
    FactorTableTree* m_tree = nullptr;
    FactorTableGrid* m_grid = nullptr;
    bool m_modified = false;
    bool m_isFactorRefused = false;
};

}  // namespace quorvane
