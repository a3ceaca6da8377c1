// CDirTreeCtrl: a tree of drives, folders and, on request, files, in which one path is selected.
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

    // The extensions, each with its ".", of the files that Show is to show; none: all files.
    void SetExtensions(const QStringList& extensions);

    // Shows the tree under rootFolder (empty: all drives) anew, folders first, and with it files on request.
    // A folder is read when it is opened, and fills while the event loop runs: a drive that does not answer
    // holds up neither the program nor other folders. Shows a message and an empty tree when there is nothing
    // to show; that rootFolder is none is found out while the event loop runs.
    void Show(const CString& rootFolder, bool withFiles);

    // Opens the tree down to path, or as far as it leads, and selects what it finds; done while the event
    // loop runs. A path that does not exist, or whose drive is not shown, selects nothing. What the user does
    // in the tree meanwhile goes before it.
    void SelectPath(const CString& path);

    // The full native path of the selected item, or empty.
    CString SelectedPath() const;

    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

Q_SIGNALS:
    // The user selected a file, or clicked on the one that was selected before.
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
    AsyncReader m_checks;               // of whether the path to select exists
    CString m_pathToSelect;            // while it is being checked
    bool m_walking = false;            // on the way to the path to select
    QPersistentModelIndex m_walkedTo;  // how far it is
    QStringList m_namesToWalk;         // what is left of it
    bool m_selecting = false;          // the tree selects by itself
    bool m_reported = false;           // this click has already been reported
};

}  // namespace quorvane
