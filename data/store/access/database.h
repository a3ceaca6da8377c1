// An Access file that is open: its tables, and the statements and submits that change them. What is refused
// stands in docs/access-files.md, "What to expect".
#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "data/store/access/disk/lock_file.h"
#include "data/store/access/disk/paged_file.h"
#include "data/store/access/header.h"
#include "data/store/access/table.h"

namespace quorvane::access {

class Database {
public:
    enum class Use { Write, Read };

    // Opens a file, for writing where it can be written; ReadOnlyReason says why it cannot. Throws
    // AccessError for a file that cannot be read. Changes nothing, but that opening for writing finishes a
    // log beside the file.
    Database(FileSystem& files, const QString& path, Use use = Use::Write);

    // Empty when the file may be written.
    QString ReadOnlyReason() const { return m_refusal ? m_refusal->Message() : QString(); }
    // Where changes of a former run were put that belong to another state of the file; empty as a rule.
    const QString& LogAside() const { return m_file->LogAside(); }

    const Pages& AllPages() const { return *m_file; }
    // Of system tables too.
    const std::vector<CatalogEntry>& Catalog() const { return m_catalog; }
    // A table by its name, in whatever case. Throws when there is none, or when it is a link into another
    // file.
    Table& Find(const QString& name);

    void BeforeEachRead(std::function<void()> action) { m_file->BeforeEachRead(std::move(action)); }
    // The state of the file that was read.
    const FileStamp& Stamp() const { return m_file->Stamp(); }
    // Throws when another program has changed the file since it was read, or has removed it.
    void RequireUnchanged() const { m_file->RequireUnchanged(); }
    // Whether the path is to be opened anew: another file bears it now, or, before a statement that writes,
    // this one may be written meanwhile.
    bool IsOutdated(bool beforeWriting) const;

    // A statement is committed or rolled back; a submit makes all committed statements safe from a power cut.
    void BeginStatement();
    void Commit() { m_file->Commit(); }
    void Rollback();
    void EndSubmit() { m_file->EndSubmit(); }

    // The last failure within a statement, kept for the one who runs it through something that cannot throw.
    void KeepFailure(const AccessError& failure) { m_failure = failure; }
    std::optional<AccessError> TakeFailure() { return std::exchange(m_failure, std::nullopt); }

private:
    void OpenForWriting(FileSystem& files, const QString& path);
    std::vector<bool> ClaimedPages() const;

    std::optional<AccessError> m_failure;
    std::optional<AccessError> m_refusal;  // why the file may not be written
    std::unique_ptr<LockFile> m_lock;      // outlives the file, which may still have to be written
    Header m_header;
    std::unique_ptr<PagedFile> m_file;
    std::unique_ptr<PageAllocator> m_allocator;
    std::vector<CatalogEntry> m_catalog;
    std::vector<std::unique_ptr<Table>> m_tables;  // those that were asked for
};

}  // namespace quorvane::access
