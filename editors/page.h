// CPage: everything that the main dialog knows of a tab page.
#pragma once

#include <QCborMap>
#include <QStringList>
#include <QWidget>
#include <functional>

class QAction;

namespace quorvane {

class CPage : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    // Whether the page holds edits that have not been submitted.
    virtual bool IsModified() const = 0;
    // How many rows differ from the file, and how many of these the next submit deletes. There may be such
    // rows while the page does not count as modified: after a No between the deletions of several rows.
    virtual int EditCount() const = 0;
    virtual int RemovedCount() const = 0;
    // Takes a text that is still being typed, as if its cell had been left.
    virtual void EndEditing() = 0;
    // Writes every pending change to the database and clears the modified flag. The user is told what could
    // not be written; the page stays modified then, and the result is true all the same.
    virtual bool Submit() = 0;
    // Fills the grid again from the page's working records. Records that could not be written are marked and
    // count as modified.
    virtual void Refresh() = 0;
    // Deletes the selected rows, asking for each. False when nothing was selected or an answer was No.
    virtual bool DeleteSelected() = 0;
    // Loads what is shown once more. Asks first when the page holds edits, as for another choice.
    virtual void Reload() = 0;
    // Puts a command of the window into the page's context menu, with its key. It outlives the page.
    virtual void AddCommand(QAction& command) = 0;

    // For a later run: the edits as they are now, with what the page shows. The result may be called in any
    // thread and owns what it uses.
    virtual std::function<QCborMap()> KeepEdits() const = 0;
    // Shows what the page showed then, and makes the edits again; nothing reaches the database. Edits of rows
    // that the file no longer holds as they were are left out; the result has a line for each of them.
    virtual QStringList MakeEditsAgain(const QCborMap& kept) = 0;
    // Opens the dialog whose edits were made again, if there is one.
    virtual void OpenKeptDialog() {}

Q_SIGNALS:
    // What differs from the file may have changed.
    void EditsChanged();
};

}  // namespace quorvane
