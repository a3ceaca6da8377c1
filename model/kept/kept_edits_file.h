// KeptEditsFile: the file in which unsubmitted edits outlive a run of the program that does not end as it
// should. It lies in the user's own folder, one for each database.
#pragma once

#include <QCborMap>
#include <QMutex>
#include <QThreadPool>
#include <functional>
#include <optional>

#include "data/records.h"

namespace quorvane {

class KeptEditsFile {
public:
    // folder: where the user's settings lie. database: the path of the database file.
    KeptEditsFile(const CString& folder, CString database);
    // Waits until everything is written.
    ~KeptEditsFile();
    KeptEditsFile(const KeptEditsFile&) = delete;
    KeptEditsFile& operator=(const KeptEditsFile&) = delete;

    // The edits that were kept for this database; nothing when there are none, or the file is none of this
    // kind.
    std::optional<QCborMap> Read() const;
    // Writes the edits beside the program, in the order of the calls. make() is called in another thread and
    // owns what it uses. What stood in the file is replaced as a whole, or stays.
    void Write(std::function<QCborMap()> make);
    // Deletes the file in the same way.
    void Remove();
    // Whether something is still to be written.
    bool IsBusy() const { return m_pool.activeThreadCount() > 0; }
    // Why the last write or removal that has ended failed, in the words of the system; empty when it did not.
    CString LastFailure() const;

private:
    void SetLastFailure(const CString& reason);

    CString m_path;
    CString m_database;
    mutable QMutex m_mutex;
    CString m_lastFailure;  // guarded by m_mutex
    QThreadPool m_pool;     // of one thread
};

}  // namespace quorvane
