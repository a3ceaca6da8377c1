// CDirTreeCtrl: a tree of drives, folders and optionally files, in which one path is selected.
#pragma once

#include <QFileIconProvider>
#include <QStringList>
#include <QTreeView>

#include "data/records.h"
#include "editors/photo/folder_reader.h"
#include "model/async_reader.h"

namespace quorvane {

class DirTreeModel;

class CDirTreeCtrl : public QTreeView {
    Q_OBJECT

public:
    explicit CDirTreeCtrl(QWidget* parent);
    ~CDirTreeCtrl() override;

    // The extensions of the files to show, each with its "."; an empty list shows all files.
    void SetExtensions(const QStringList& extensions);

    // Refills the tree with rootFolder (empty: all drives), folders before files. A folder is read when it is
    // opened, and filled by the event loop, so a drive that does not answer delays neither the program nor
    // other folders. Shows a message and an empty tree when there is nothing to show. A missing rootFolder is
    // noticed later, by the event loop.
    void Show(const CString& rootFolder, bool withFiles);

    // Expands the tree down to path, as far as the tree holds it, and selects the last item found. The event
    // loop does this later; a click or key of the user in the tree cancels it. A path that does not exist, or
    // whose drive is not shown, selects nothing.
    void SelectPath(const CString& path);

    // The full native path of the selected item, or empty.
    CString SelectedPath() const;

    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    // The user selected a file, or clicked the selected file again.
    void FileChosen(const quorvane::CString& path);

protected:
    virtual QStringList Drives() const;
    virtual FolderReader Reader() const;
    virtual QIcon SystemIcon(QFileIconProvider::IconType type) const;

    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool AttachIcons();
    void MakeRoomForNames();
    void AddDrive(const QString& rootFolder);
    void AddRoot(const CString& rootFolder);
    void RootIsGone();
    QModelIndex FindDrive(const QString& path) const;
    void BeginWalk(const QString& path);
    void WalkOn();
    void StopWalk();
    void Report(const QModelIndex& index);

    DirTreeModel* m_model;
    QStringList m_extensions;
    QPersistentModelIndex m_root;      // the one root folder, unless all drives are shown
    AsyncReader m_checks;              // whether the path to select exists
    AsyncReader m_looks;               // the system's names and icons of drives
    CString m_pathToSelect;            // while it is being checked
    bool m_walking = false;            // expanding the tree to the path to select
    QPersistentModelIndex m_walkedTo;  // the last item reached
    QStringList m_namesToWalk;         // the names that remain
    bool m_selecting = false;          // the selection comes from SelectPath
    bool m_reported = false;           // this click has already been reported
};

}  // namespace quorvane
