// CLuminairePhotoSettingDlg: the modal dialog in which the user picks the picture file of a luminaire.
#pragma once

#include <QDialog>
#include <QStringList>

#include "data/records.h"

class QLineEdit;
class QPushButton;

namespace quorvane {

class CDirTreeCtrl;
class CEaseComboBox;
class PicturePreview;

class CLuminairePhotoSettingDlg : public QDialog {
    Q_OBJECT

public:
    // initialPath, a native path, is kept only when the file can be opened for reading; on a drive that does
    // not answer at once it is kept as well. title, which says whose picture it is, stands in the caption.
    CLuminairePhotoSettingDlg(const CString& initialPath, const CString& title, QWidget* parent);
    ~CLuminairePhotoSettingDlg() override;

    // The chosen path, native, once the dialog was left by OK; empty when the luminaire is to have no
    // picture.
    const CString& Path() const { return m_path; }

    void accept() override;

private:
    void FillDriveList();
    void DecorateButtons();
    void ShowDrive();
    void ChooseFile(const CString& path);
    void ShowPicture(const CString& path);
    void ShowTypedPath();
    void StepThroughHistory(int step);
    void EnableSteps();
    void Clear();

    CString m_path;
    QStringList m_history;  // pictures chosen while the dialog is open, the latest last
    qsizetype m_shown = 0;  // the one of them that is shown

    QLineEdit* m_pathEdit = nullptr;
    CDirTreeCtrl* m_tree = nullptr;
    PicturePreview* m_preview = nullptr;
    CEaseComboBox* m_drives = nullptr;
    QPushButton* m_previous = nullptr;
    QPushButton* m_next = nullptr;
};

}  // namespace quorvane
