// The pages of a file on the disk: statements, the submit, and what is left after a kill or a power cut
// (docs/access-files.md, "How changes reach the file").
//
// A committed statement is in the log beside the file, from where it survives a kill. At the end of a submit
// the log is put on the disk, then its pages into the file, then the log is deleted. So the file itself is
// never between two statements of a submit, and what another program reads from it is whole, but for the few
// milliseconds in which the pages are put in place.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

#include "data/store/access/disk/file.h"
#include "data/store/access/disk/page_cache.h"
#include "data/store/access/disk/pages.h"
#include "data/store/access/disk/redo_log.h"

namespace quorvane::access {

class PagedFile : public Pages {
public:
    // Opens the file. With WRITABLE it finishes what a log beside the file says; without it a log is left
    // alone.
    PagedFile(FileSystem& files, const QString& path, bool writable);
    // Ends the submit; a failure leaves the log for the next opening.
    ~PagedFile() override;

    // Where a log was put that belongs to another state of the file; empty when none was.
    const QString& LogAside() const { return m_logAside; }

    PageNumber Count() const override { return m_count; }
    PagePointer Read(PageNumber page) const override;
    Page& Write(PageNumber page) override;
    PageNumber Append() override;

    // Calls an action before each read from the file; what the action throws ends the reading.
    void BeforeEachRead(std::function<void()> action) { m_beforeRead = std::move(action); }

    // The state of the file that was read.
    const FileStamp& Stamp() const { return m_stamp; }
    // Throws when another program has changed the file since it was read, or has removed it.
    void RequireUnchanged() const;
    // Whether another file bears the name now.
    bool IsReplaced() const;

    void BeginStatement();
    void Commit();
    void Rollback();
    // Puts all committed statements into the file and on the disk.
    void EndSubmit();

private:
    struct Pending {
        PagePointer content;
        SectorFingerprints base{};
    };

    void Recover();
    void ApplyFoundLog(const FoundLog& log);
    void PutLogAside();
    std::shared_ptr<Page> ReadFromFile(PageNumber page) const;
    LogBase PresentState() const;
    void RequireBasePages() const;
    void PutInPlace();
    void WritePending();

    FileSystem* m_files;
    QString m_path;
    bool m_writable;
    QString m_logAside;
    std::unique_ptr<File> m_file;
    quint64 m_identity = 0;  // of the file when it was opened
    FileStamp m_stamp;
    std::function<void()> m_beforeRead;  // may be empty
    PageNumber m_fileCount = 0;          // pages in the file itself
    PageNumber m_count = 0;
    mutable PageCache m_cache;
    std::map<PageNumber, Pending> m_pending;  // committed, but only in the log
    std::unique_ptr<RedoLog> m_log;           // null: nothing is pending
    bool m_inStatement = false;
    PageNumber m_countBefore = 0;                           // of the statement
    std::map<PageNumber, std::shared_ptr<Page>> m_changed;  // by the statement
    bool m_writing = false;                                 // the file may be changed in part
};

}  // namespace quorvane::access
