#include "editors/photo/photo_dialog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>

#include "editors/photo/directory_tree.h"
#include "editors/photo/drives.h"
#include "editors/photo/folder_reader.h"
#include "editors/photo/picture_preview.h"
#include "model/async_reader.h"
#include "widgets/dialog_template.h"
#include "widgets/ease_combo_box.h"
#include "widgets/image_button.h"
#include "widgets/message_box.h"
#include "widgets/screen_place.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kOk = 1;
constexpr int kCancel = 2;
constexpr int kTree = 1001;
constexpr int kPreview = 1002;
constexpr int kDriveList = 1003;
constexpr int kPrevious = 1004;
constexpr int kNext = 1005;
constexpr int kPath = 1025;
constexpr int kClear = 1026;
constexpr int kDriveLabel = -1;

const DialogControl kTemplate[] = {
    {kPath, ControlKind::Edit, u"", {7, 7, 366, 14}},
    {kTree, ControlKind::Custom, u"", {7, 27, 150, 158}},
    {kPreview, ControlKind::Custom, u"", {163, 27, 210, 158}},
    {kDriveLabel, ControlKind::Label, u"选择盘符", {7, 193, 36, 12}},
    {kDriveList, ControlKind::DropDownList, u"", {45, 192, 112, 14}},
    {kPrevious, ControlKind::PushButton, u"上一个", {163, 191, 48, 16}},
    {kNext, ControlKind::PushButton, u"下一个", {215, 191, 48, 16}},
    {kClear, ControlKind::PushButton, u"清除", {325, 191, 48, 16}},
    {kOk, ControlKind::PushButton, u"确定", {273, 215, 48, 16}},
    {kCancel, ControlKind::PushButton, u"取消", {325, 215, 48, 16}},
};
constexpr QSize kTemplateSize(380, 238);

const CString kAllDrives = u"全部"_s;

// The names of the four formats that a photo may have.
const QStringList& PictureExtensions() {
    static const QStringList extensions{u".bmp"_s, u".jpg"_s, u".GIF"_s,  u".jpeg"_s,
                                        u".png"_s, u".jpe"_s, u".jfif"_s, u".dib"_s};
    return extensions;
}

QWidget* MakeCustomControl(int id, QWidget* dialog) {
    if (id == kTree) {
        return new CDirTreeCtrl(dialog);
    }
    return new PicturePreview(dialog);
}

// After this pause in typing the tree goes to the path.
constexpr int kTypingPauseMs = 300;

// The longest wait for the check of the initial path.
constexpr std::chrono::milliseconds kPatience(200);

bool IsReadableFile(const CString& path) {
    return QFileInfo(path).isFile() && QFile(path).open(QIODevice::ReadOnly);
}

// A path on a drive that does not answer is kept. With an empty path instead, OK would delete the luminaire's
// photo unnoticed.
CString KeptPath(const CString& path) {
    const bool kept = !path.isEmpty() &&
                      AsyncReader::Within(kPatience, [path] { return IsReadableFile(path); }).value_or(true);
    return kept ? QDir::toNativeSeparators(path) : CString();
}

// None for a picture on a drive that does not answer.
PictureProblem ProblemOf(const CString& path) {
    constexpr std::chrono::seconds patience(2);
    constexpr QSize smallest(1, 1);
    return AsyncReader::Within(patience, [=] { return LoadPicture(path, smallest).problem; })
        .value_or(PictureProblem::None);
}

bool AskForIncomplete(QWidget* parent, const CString& caption) {
    return ShowMessage(parent, u"所选图片不完整或已损坏,是否仍然使用?"_s, caption, MessageButtons::YesNo,
                       MessageIcon::Question) == MessageAnswer::Yes;
}

}  // namespace

CLuminairePhotoSettingDlg::CLuminairePhotoSettingDlg(const CString& initialPath, const CString& title,
                                                     QWidget* parent)
    : QDialog(parent), m_keptPath(KeptPath(initialPath)), m_path(m_keptPath) {
    setObjectName(u"photoDialog"_s);
    setWindowTitle(title + u" 图片设置"_s);
    CreateControls(this, kTemplate, MakeCustomControl);
    setFixedSize(DialogUnits(font()).ToPixels(kTemplateSize));
    PlaceOnScreen(this);
    m_pathEdit = DialogItem<QLineEdit>(this, kPath);
    m_tree = DialogItem<CDirTreeCtrl>(this, kTree);
    m_preview = static_cast<PicturePreview*>(DialogItem(this, kPreview));
    m_drives = DialogItem<CEaseComboBox>(this, kDriveList);

    m_tree->SetExtensions(PictureExtensions());
    FillDriveList();
    ShowDrive();
    m_tree->SelectPath(m_path.isEmpty() && !initialPath.isEmpty() ? QFileInfo(initialPath).path() : m_path);
    DecorateButtons();
    ShowPicture(m_path);
    m_tree->setFocus();

    connect(m_tree, &CDirTreeCtrl::FileChosen, this, &CLuminairePhotoSettingDlg::OnFileChosen);
    connect(m_drives, &CEaseComboBox::SelectionChanged, this, &CLuminairePhotoSettingDlg::ShowDrive);
    connect(m_tree, &QTreeView::doubleClicked, this, [this] {
        if (!m_path.isEmpty() && m_tree->SelectedPath() == m_path) {
            accept();
        }
    });
    connect(m_pathEdit, &QLineEdit::editingFinished, this, &CLuminairePhotoSettingDlg::OnPathTyped);
    connect(m_pathEdit, &QLineEdit::textEdited, &m_typing, qOverload<>(&QTimer::start));
    m_typing.setSingleShot(true);
    m_typing.setInterval(kTypingPauseMs);
    connect(&m_typing, &QTimer::timeout, this, [this] {
        ShowInTree(m_pathEdit->text());
        ShowPreview(m_pathEdit->text());
    });
}

CLuminairePhotoSettingDlg::~CLuminairePhotoSettingDlg() = default;

void CLuminairePhotoSettingDlg::ShowFolder(const CString& path) {
    m_tree->SelectPath(path);
}

void CLuminairePhotoSettingDlg::FillDriveList() {
    QStringList drives = LogicalDrives();
    const QString share = NetworkShare(m_path);
    if (!share.isEmpty()) {
        drives += share;
    }
    for (const QString& drive : drives) {
        m_drives->AddString(drive);
    }
    m_drives->AddString(kAllDrives);
    const CString drive = DriveOfPath(m_path, drives);
    m_drives->SelectString(m_path.isEmpty() || drive.isEmpty() ? kAllDrives : drive);
}

void CLuminairePhotoSettingDlg::DecorateButtons() {
    const auto decorate = [this](int id, IconId icon, const CString& toolTip) {
        auto* button = static_cast<CImageButton*>(DialogItem(this, id));
        button->SetImage(icon, toolTip);
        button->setAutoDefault(true);
        return button;
    };
    QPushButton* ok = decorate(kOk, IconId::Ok, u"确定"_s);
    QPushButton* cancel = decorate(kCancel, IconId::Exit, u"退出"_s);
    m_previous = decorate(kPrevious, IconId::Previous, u"上一个所选图片"_s);
    m_next = decorate(kNext, IconId::Next, u"下一个所选图片"_s);
    QPushButton* clear = decorate(kClear, IconId::Clear, u"清除图片"_s);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &CLuminairePhotoSettingDlg::accept);
    connect(cancel, &QPushButton::clicked, this, &CLuminairePhotoSettingDlg::reject);
    connect(m_previous, &QPushButton::clicked, this, [this] { StepThroughHistory(-1); });
    connect(m_next, &QPushButton::clicked, this, [this] { StepThroughHistory(1); });
    connect(clear, &QPushButton::clicked, this, &CLuminairePhotoSettingDlg::OnClear);
    EnableSteps();
}

void CLuminairePhotoSettingDlg::ShowDrive() {
    const CString drive = m_drives->currentText();
    m_tree->Show(drive == kAllDrives ? CString() : drive, true);
}

void CLuminairePhotoSettingDlg::OnFileChosen(const CString& path) {
    if (!HasExtension(path, PictureExtensions())) {
        return;
    }
    m_history.removeAll(path);
    m_history.push_back(path);
    m_shown = m_history.size() - 1;
    ShowPicture(path);
    EnableSteps();
}

// Makes path the current path.
void CLuminairePhotoSettingDlg::ShowPicture(const CString& path) {
    m_path = path;
    m_pathEdit->setText(path);
    ShowPreview(path);
}

void CLuminairePhotoSettingDlg::ShowPreview(const CString& path) {
    m_preview->ShowFile(HasExtension(path, PictureExtensions()) ? path : CString());
}

// A typed or pasted path is shown, but does not enter the history.
void CLuminairePhotoSettingDlg::OnPathTyped() {
    if (m_pathEdit->text() != m_path) {
        ShowPicture(m_pathEdit->text());
    }
}

void CLuminairePhotoSettingDlg::ShowInTree(const CString& path) {
    QStringList drives;
    for (const QString& drive : m_drives->Strings()) {
        drives += drive == kAllDrives ? QStringList() : QStringList(drive);
    }
    const CString shown = m_drives->currentText();
    const CString drive = DriveOfPath(path, drives);
    if (shown != kAllDrives && !drive.isEmpty() && drive != shown) {
        m_drives->SelectString(drive);
        ShowDrive();
    }
    m_tree->SelectPath(path);
}

void CLuminairePhotoSettingDlg::StepThroughHistory(int step) {
    const qsizetype next = m_shown + step;
    if (next >= 0 && next < m_history.size()) {
        m_shown = next;
        ShowPicture(m_history[m_shown]);
    }
    EnableSteps();
}

void CLuminairePhotoSettingDlg::EnableSteps() {
    m_previous->setEnabled(m_shown > 0);
    m_next->setEnabled(m_shown < m_history.size() - 1);
}

void CLuminairePhotoSettingDlg::OnClear() {
    m_isCleared = true;
    ShowPicture({});
}

void CLuminairePhotoSettingDlg::accept() {
    m_path = m_pathEdit->text();
    if (m_path == m_keptPath || ProblemOf(m_path) != PictureProblem::Incomplete ||
        AskForIncomplete(this, windowTitle())) {
        QDialog::accept();
    }
}

bool MayBePhoto(QWidget* parent, const CString& path, const CString& caption) {
    const PictureProblem problem = ProblemOf(path);
    if (problem == PictureProblem::Incomplete) {
        return AskForIncomplete(parent, caption);
    }
    if (problem != PictureProblem::None) {
        ShowMessage(parent, ProblemText(problem), caption);
    }
    return problem == PictureProblem::None;
}

}  // namespace quorvane
