// CLuminairePhotoSettingDlg: the modal dialog in which the user picks the picture file of a luminaire.
#pragma once

#include <QDialog>
#include <QStringList>
#include <QTimer>

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
    // initialPath, a native path, is kept when the file can be opened for reading, or when its drive does not
    // answer at once. title is the luminaire's title for the caption.
    CLuminairePhotoSettingDlg(const CString& initialPath, const CString& title, QWidget* parent);
    ~CLuminairePhotoSettingDlg() override;

    // Moves the tree to a folder.
    void ShowFolder(const CString& path);

    // The chosen native path after OK; empty when the luminaire gets no picture.
    const CString& Path() const { return m_path; }
    // Whether the user has chosen a picture, or none, since the dialog was opened.
    bool IsChosen() const { return m_isCleared || m_path != m_keptPath; }

    // Asks first when the picture of the path is incomplete.
    void accept() override;

private:
    void FillDriveList();
    void DecorateButtons();
    void ShowDrive();
    void OnFileChosen(const CString& path);
    void ShowPicture(const CString& path);
    void ShowPreview(const CString& path);
    void OnPathTyped();
    // Moves the tree to a path, as far as it exists, and shows its drive.
    void ShowInTree(const CString& path);
    void StepThroughHistory(int step);
    void EnableSteps();
    void OnClear();

    CString m_keptPath;  // at the opening
    CString m_path;
    bool m_isCleared = false;
    QStringList m_history;  // pictures chosen in this dialog, the latest last
    qsizetype m_shown = 0;  // index of the one shown

    QTimer m_typing;  // runs while a path is being typed
    QLineEdit* m_pathEdit = nullptr;
    CDirTreeCtrl* m_tree = nullptr;
    PicturePreview* m_preview = nullptr;
    CEaseComboBox* m_drives = nullptr;
    QPushButton* m_previous = nullptr;
    QPushButton* m_next = nullptr;
};

// Whether a file that was dropped is taken as a photo: tells why it is none, and asks about an incomplete
// one.
bool MayBePhoto(QWidget* parent, const CString& path, const CString& caption);

}  // namespace quorvane
