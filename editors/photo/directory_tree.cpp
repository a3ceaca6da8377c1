#include "editors/photo/directory_tree.h"

#include <QDir>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "editors/photo/dir_tree_model.h"
#include "editors/photo/drives.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr int kChecksAtOnce = 4;
constexpr int kLooksAtOnce = 4;

// Empty when path does not exist.
QString CleanPath(const QString& path) {
    const QFileInfo file(path);
    return file.exists() ? QDir::cleanPath(file.absoluteFilePath()) : QString();
}

}  // namespace

CDirTreeCtrl::CDirTreeCtrl(QWidget* parent)
    : QTreeView(parent), m_model(new DirTreeModel(this)), m_checks(kChecksAtOnce), m_looks(kLooksAtOnce) {
    setModel(m_model);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setEditTriggers(NoEditTriggers);
    header()->setStretchLastSection(false);
    header()->setResizeContentsPrecision(0);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &CDirTreeCtrl::MakeRoomForNames);
    connect(this, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        if (!m_reported) {
            Report(index);
        }
    });
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex& folder) {
        m_model->ReadFolder(folder);
        MakeRoomForNames();
    });
    connect(m_model, &DirTreeModel::FolderRead, this, [this](const QModelIndex& folder, bool isFolder) {
        if (!isFolder && folder == m_root) {
            RootIsGone();
            return;
        }
        MakeRoomForNames();
        if (m_walking && folder == m_walkedTo) {
            WalkOn();
        }
    });
}

CDirTreeCtrl::~CDirTreeCtrl() = default;

void CDirTreeCtrl::SetExtensions(const QStringList& extensions) {
    m_extensions = extensions;
}

QStringList CDirTreeCtrl::Drives() const {
    return LogicalDrives();
}

FolderReader CDirTreeCtrl::Reader() const {
    return ReadFolder;
}

QIcon CDirTreeCtrl::SystemIcon(QFileIconProvider::IconType type) const {
    return QFileIconProvider().icon(type);
}

// Three icons serve all items. Asking the system for the icon of each file would take longer than reading the
// folder.
bool CDirTreeCtrl::AttachIcons() {
    const std::array<QIcon, 3> icons{SystemIcon(QFileIconProvider::Drive),
                                     SystemIcon(QFileIconProvider::Folder),
                                     SystemIcon(QFileIconProvider::File)};
    m_model->SetIcons(icons);
    return std::none_of(icons.begin(), icons.end(), [](const QIcon& icon) { return icon.isNull(); });
}

void CDirTreeCtrl::Show(const CString& rootFolder, bool withFiles) {
    StopWalk();
    m_model->Clear({withFiles, m_extensions}, Reader());
    setColumnWidth(0, 0);
    if (!AttachIcons()) {
        ShowMessage(this, u"Cannot retrieve the Handle of SystemImageList!"_s);
        return;
    }
    if (!rootFolder.isEmpty()) {
        AddRoot(rootFolder);
        return;
    }
    const QStringList drives = Drives();
    if (drives.isEmpty()) {
        ShowMessage(this, u"Error Getting Logical DriveStrings!"_s);
    }
    for (const QString& drive : drives) {
        AddDrive(drive);
    }
    MakeRoomForNames();
}

// The system's name and icon of a drive come later, when the drive has answered.
void CDirTreeCtrl::AddDrive(const QString& rootFolder) {
    m_model->AddDrive(rootFolder);
    const QPersistentModelIndex drive = m_model->index(m_model->rowCount() - 1, 0);
    m_looks.Run([rootFolder] { return ReadDriveLook(rootFolder); },
                [this, drive](const DriveLook& look) {
                    if (drive.isValid()) {
                        m_model->SetDriveLook(drive, look.name, QPixmap::fromImage(look.icon));
                        MakeRoomForNames();
                    }
                });
}

void CDirTreeCtrl::AddRoot(const CString& rootFolder) {
    const CString native = QDir::toNativeSeparators(rootFolder);
    AddDrive(native.endsWith(QDir::separator()) ? native : native + QDir::separator());
    m_root = m_model->index(0, 0);
    expand(m_root);
}

// A drive may be unplugged after it was listed.
void CDirTreeCtrl::RootIsGone() {
    StopWalk();
    m_model->Clear({}, Reader());
    ShowMessage(this, u"Error Gettting SystemFileInfo!"_s);
}

void CDirTreeCtrl::SelectPath(const CString& path) {
    StopWalk();
    if (path.isEmpty()) {
        return;
    }
    m_pathToSelect = path;
    m_checks.DropWaiting();
    m_checks.Run([path] { return CleanPath(path); },
                 [this, path](const QString& cleanPath) {
                     if (m_pathToSelect == path && !cleanPath.isEmpty()) {
                         BeginWalk(cleanPath);
                     }
                 });
}

void CDirTreeCtrl::BeginWalk(const QString& path) {
    StopWalk();
    const QModelIndex drive = FindDrive(path);
    if (drive.isValid()) {
        m_walking = true;
        m_walkedTo = drive;
        m_namesToWalk = path.mid(m_model->FilePath(drive).size()).split(u'/', Qt::SkipEmptyParts);
        WalkOn();
    }
}

QModelIndex CDirTreeCtrl::FindDrive(const QString& path) const {
    QStringList drives;
    for (int row = 0; row < m_model->rowCount(); ++row) {
        drives += QDir::toNativeSeparators(m_model->FilePath(m_model->index(row, 0)));
    }
    return m_model->index(static_cast<int>(drives.indexOf(DriveOfPath(path, drives))), 0);
}

// Walks down through folders that have been read. At any other it waits for FolderRead.
void CDirTreeCtrl::WalkOn() {
    while (!m_namesToWalk.isEmpty()) {
        const QModelIndex child = m_model->FindChild(m_walkedTo, m_namesToWalk.constFirst());
        if (!child.isValid()) {
            if (m_model->IsRead(m_walkedTo)) {
                break;
            }
            m_model->ReadFolder(m_walkedTo);
            return;
        }
        expand(m_walkedTo);
        m_walkedTo = child;
        m_namesToWalk.removeFirst();
    }
    const QModelIndex found = m_walkedTo;
    StopWalk();
    const QScopedValueRollback selecting(m_selecting, true);
    setCurrentIndex(found);
    expand(found);
    scrollTo(found, PositionAtCenter);
}

void CDirTreeCtrl::StopWalk() {
    m_pathToSelect.clear();
    m_walking = false;
    m_walkedTo = QModelIndex();
    m_namesToWalk.clear();
}

// The column grows to the visible names, so that the user can scroll to the end of long ones.
void CDirTreeCtrl::MakeRoomForNames() {
    setColumnWidth(0, std::max(columnWidth(0), sizeHintForColumn(0)));
}

// The view scrolls sideways only when the start of the name would be hidden.
void CDirTreeCtrl::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const int before = horizontalScrollBar()->value();
    QTreeView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(before);
    const int nameStart = visualRect(index).left();
    if (nameStart < 0 || nameStart > viewport()->width() / 2) {
        horizontalScrollBar()->setValue(before + nameStart - 2 * indentation());
    }
}

CString CDirTreeCtrl::SelectedPath() const {
    const QModelIndexList selected = selectionModel()->selectedIndexes();
    return selected.isEmpty() ? CString()
                              : QDir::toNativeSeparators(m_model->FilePath(selected.constFirst()));
}

void CDirTreeCtrl::Report(const QModelIndex& index) {
    if (index.isValid() && m_model->KindOf(index) == DirTreeModel::Kind::File) {
        m_reported = true;
        Q_EMIT FileChosen(QDir::toNativeSeparators(m_model->FilePath(index)));
    }
}

void CDirTreeCtrl::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTreeView::currentChanged(current, previous);
    if (!m_selecting) {
        Report(current);
    }
}

void CDirTreeCtrl::mousePressEvent(QMouseEvent* event) {
    StopWalk();
    m_reported = false;
    QTreeView::mousePressEvent(event);
}

void CDirTreeCtrl::keyPressEvent(QKeyEvent* event) {
    StopWalk();
    QTreeView::keyPressEvent(event);
}

}  // namespace quorvane
