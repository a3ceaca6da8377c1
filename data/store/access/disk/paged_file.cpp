#include "data/store/access/disk/paged_file.h"

#include <QDateTime>
#include <exception>
#include <new>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr PageNumber kMostPages = 524'288;  // 2 GB
// A submit without an end, an import say, puts its statements into the file from time to time.
constexpr std::size_t kMostPending = 4096;

QString LogPath(const QString& path) {
    return path + u"-redo"_s;
}

QByteArrayView View(const Page& page) {
    return {page.data(), kPageSize};
}

qint64 Offset(PageNumber page) {
    return page * qint64{kPageSize};
}

}  // namespace

PagedFile::PagedFile(FileSystem& files, const QString& path, bool writable)
    : m_files(&files), m_path(path), m_writable(writable) {
    m_file = files.Open(path, writable ? FileSystem::Mode::ReadWrite : FileSystem::Mode::Read);
    m_stamp = m_file->Stamp();
    m_identity = m_stamp.identity;
    m_fileCount = static_cast<PageNumber>(m_stamp.size / kPageSize);
    m_count = m_fileCount;
    if (files.Exists(LogPath(path))) {
        Recover();
    }
    if ((m_log == nullptr && m_pending.empty() && m_stamp.size % kPageSize != 0) || m_count < 3 ||
        m_count > kMostPages) {
        ThrowDamaged(u"its size of %1 bytes is impossible"_s.arg(m_stamp.size));
    }
}

PagedFile::~PagedFile() {
    try {
        Rollback();
        EndSubmit();
    } catch (const std::exception&) {
        // The log stays, and the next opening goes on with it.
    }
}

PagePointer PagedFile::Read(PageNumber page) const {
    if (const auto changed = m_changed.find(page); changed != m_changed.end()) {
        return changed->second;
    }
    if (const auto pending = m_pending.find(page); pending != m_pending.end()) {
        return pending->second.content;
    }
    if (PagePointer cached = m_cache.Find(page)) {
        return cached;
    }
    if (page >= m_fileCount) {
        ThrowDamaged(u"there is no page %1"_s.arg(page));
    }
    PagePointer content = ReadFromFile(page);
    m_cache.Put(page, content);
    return content;
}

Page& PagedFile::Write(PageNumber page) {
    if (!m_inStatement || page == 0) {
        throw AccessError(u"page %1 cannot be changed here"_s.arg(page));
    }
    std::shared_ptr<Page>& changed = m_changed[page];
    if (changed == nullptr) {
        m_changed.erase(page);
        auto copy = std::make_shared<Page>(*Read(page));
        return *(m_changed[page] = std::move(copy));
    }
    return *changed;
}

PageNumber PagedFile::Append() {
    if (m_count >= kMostPages) {
        throw AccessError(u"文件将超过 2 GB 的上限"_s);
    }
    if (!m_inStatement) {
        throw AccessError(u"a page cannot be added here"_s);
    }
    m_changed[m_count] = std::make_shared<Page>();
    m_changed[m_count]->fill(0);
    return m_count++;
}

// A failure in the middle of PutInPlace leaves changes of our own, which the next attempt completes.
void PagedFile::RequireUnchanged() const {
    const FileStamp now = m_file->Stamp();
    if (now.identity == 0) {
        throw AccessError(u"文件已被移走或改名"_s, Fault::Gone);
    }
    if (now.identity != m_identity || (!m_writing && now != m_stamp)) {
        throw AccessError(u"文件读取后已被其他程序改动"_s, Fault::Changed);
    }
}

bool PagedFile::IsReplaced() const {
    const quint64 identity = m_file->Stamp().identity;
    return identity != 0 && identity != m_identity;
}

void PagedFile::BeginStatement() {
    if (!m_writable) {
        throw AccessError(u"文件以只读方式打开"_s);
    }
    if (m_writing || m_pending.size() > kMostPending) {
        EndSubmit();
    }
    RequireUnchanged();
    m_countBefore = m_count;
    m_inStatement = true;
}

void PagedFile::Rollback() {
    if (m_inStatement) {
        m_inStatement = false;
        m_changed.clear();
        m_count = m_countBefore;
    }
}

void PagedFile::Commit() {
    std::vector<PageChange> changes;
    for (const auto& [page, content] : m_changed) {
        const auto pending = m_pending.find(page);
        PageChange change{page, nullptr, content, pending == m_pending.end()};
        if (!change.first) {
            change.before = pending->second.content;
        } else if (page < m_fileCount) {
            change.before = ReadFromFile(page);
        }
        if (change.before == nullptr || *change.before != *content) {
            changes.push_back(std::move(change));
        }
    }
    // Nothing may fail once the statement is in the log.
    std::map<PageNumber, Pending> added;
    for (const PageChange& change : changes) {
        if (change.first) {
            const auto base =
                change.before != nullptr ? FingerprintSectors(*change.before) : SectorFingerprints{};
            added[change.page] = {.content = nullptr, .base = base};
        }
    }
    if (!changes.empty()) {
        if (m_log == nullptr) {
            m_log = std::make_unique<RedoLog>(*m_files, LogPath(m_path), PresentState());
        }
        m_log->AppendStatement(changes, m_count);
    }
    m_pending.merge(added);
    for (const PageChange& change : changes) {
        m_pending.find(change.page)->second.content = change.after;
    }
    m_inStatement = false;
    m_changed.clear();
}

void PagedFile::EndSubmit() {
    if (m_log != nullptr && m_pending.empty()) {  // its first statement has failed
        m_log->Remove();
        m_log.reset();
    }
    if (m_log == nullptr) {
        return;
    }
    RequireUnchanged();
    if (!m_writing) {
        RequireBasePages();
    }
    PutInPlace();
}

void PagedFile::PutInPlace() {
    m_log->MarkAndSync();
    m_writing = true;
    WritePending();
    m_log->Remove();
    m_log.reset();
    m_writing = false;
    const auto written = std::exchange(m_pending, {});
    try {
        for (const auto& [page, pending] : written) {
            m_cache.Put(page, pending.content);
        }
    } catch (const std::bad_alloc&) {
        m_cache.Clear();  // no page may stand there as it was before
    }
}

// New pages first: where the disk has no room for them, the file can still be left as it was.
void PagedFile::WritePending() {
    for (auto page = m_pending.lower_bound(m_fileCount); page != m_pending.end(); ++page) {
        m_file->Write(Offset(page->first), View(*page->second.content));
    }
    for (auto page = m_pending.begin(); page != m_pending.end() && page->first < m_fileCount; ++page) {
        m_file->Write(Offset(page->first), View(*page->second.content));
    }
    m_file->Sync();
    m_fileCount = m_count;
    m_stamp = m_file->Stamp();
}

// The pages' content shows a change by a program that has put back the file's time.
void PagedFile::RequireBasePages() const {
    for (const auto& [page, pending] : m_pending) {
        if (page < m_fileCount && FingerprintSectors(*ReadFromFile(page)) != pending.base) {
            throw AccessError(u"文件读取后已被其他程序改动"_s, Fault::Changed);
        }
    }
}

std::shared_ptr<Page> PagedFile::ReadFromFile(PageNumber page) const {
    if (m_beforeRead) {
        m_beforeRead();
    }
    auto content = std::make_shared_for_overwrite<Page>();
    m_file->Read(Offset(page), *content);
    return content;
}

LogBase PagedFile::PresentState() const {
    return {m_stamp, Fingerprint(View(*ReadFromFile(0)))};
}

// --- a log found at opening --------------------------------------------------------------------------------

void PagedFile::Recover() {
    FoundLog log;
    try {
        log = ReadLog(*m_files->Open(LogPath(m_path), FileSystem::Mode::Read));
        if (log.statements > 0) {
            ApplyFoundLog(log);
        }
    } catch (const AccessError& error) {
        m_pending.clear();
        const bool isOfFile = error.Kind() == Fault::Damaged || error.Kind() == Fault::Changed;
        if (!isOfFile || (!m_writable && log.marked)) {
            throw;
        }
        if (m_writable) {
            PutLogAside();
        }
        return;
    }
    if (log.statements > 0) {
        m_count = log.pageCount;
        m_fileCount = static_cast<PageNumber>(log.base.stamp.size / kPageSize);
    }
    if (m_writable && log.statements > 0) {
        m_log = std::make_unique<RedoLog>(*m_files, LogPath(m_path), log);
        PutInPlace();
    } else if (m_writable) {
        m_files->Remove(LogPath(m_path));
    }
}

void PagedFile::ApplyFoundLog(const FoundLog& log) {
    const auto require = [](bool condition) {
        if (!condition) {
            throw AccessError(u"写入日志后,文件已被改动"_s, Fault::Changed);
        }
    };
    const FileStamp& base = log.base.stamp;
    require(base.size % kPageSize == 0 && log.pageCount >= base.size / kPageSize &&
            log.pageCount <= kMostPages);
    require(Fingerprint(View(*ReadFromFile(0))) == log.base.firstPage);
    require(log.marked ? m_stamp.size >= base.size && m_stamp.size <= Offset(log.pageCount)
                       : m_stamp.size == base.size && m_stamp.modified == base.modified);
    for (const auto& [number, logged] : log.pages) {
        require(number < log.pageCount && logged.inFile == (Offset(number) < base.size));
        const auto content = logged.inFile ? ReadFromFile(number) : std::make_shared<Page>(Page{});
        const SectorFingerprints found = FingerprintSectors(*content);
        for (const LoggedPage::Patch& patch : logged.patches) {
            require(patch.offset + patch.bytes.size() <= kPageSize);
            std::memcpy(content->data() + patch.offset, patch.bytes.data(),
                        static_cast<std::size_t>(patch.bytes.size()));
        }
        require(Fingerprint(View(*content)) == logged.result);
        const SectorFingerprints result = FingerprintSectors(*content);
        for (std::size_t sector = 0; logged.inFile && sector < result.size(); ++sector) {
            require(found[sector] == logged.base[sector] || (log.marked && found[sector] == result[sector]));
        }
        m_pending[number].content = content;
    }
}

void PagedFile::PutLogAside() {
    const QString stem = LogPath(m_path) + QDateTime::currentDateTime().toString(u"-yyyyMMdd-HHmmss");
    QString aside = stem;
    for (int number = 2; m_files->Exists(aside); ++number) {
        aside = stem + u"-%1"_s.arg(number);
    }
    m_log.reset();
    m_pending.clear();
    m_writing = false;
    m_files->Rename(LogPath(m_path), aside);
    m_logAside = aside;
}

}  // namespace quorvane::access
