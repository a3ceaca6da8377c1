#include "data/store/access/database.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

// Marks the pages that a structure names.
class Claims {
public:
    explicit Claims(const Pages& pages) : m_pages(pages), m_claimed(pages.Count(), false) { MarkMap({1, 0}); }

    void MarkTable(const TableDefinition& table) {
        std::for_each(table.pages.begin(), table.pages.end(), [this](PageNumber page) { Mark(page); });
        MarkMap(table.owned);
        MarkMembers(table.owned);
        MarkMap(table.withRoom);
        for (const auto& [column, maps] : table.longValues) {
            MarkMap(maps.owned);
            MarkMembers(maps.owned);
            MarkMap(maps.withRoom);
        }
        for (const IndexDescription& index : table.indexes) {
            Mark(index.root);
            MarkMap(index.map);
            MarkMembers(index.map);
        }
    }

    std::vector<bool> Take() { return std::move(m_claimed); }

private:
    void Mark(PageNumber page) {
        if (page < m_claimed.size()) {
            m_claimed[page] = true;
        }
    }
    // System tables may have no map at all where they need none.
    void MarkMap(RowAddress map) {
        if (map.page != 0) {
            for (const PageNumber page : MapCarriers(m_pages, map)) {
                Mark(page);
            }
        }
    }
    void MarkMembers(RowAddress map) {
        if (map.page != 0) {
            for (const PageNumber page : MappedPages(m_pages, map)) {
                Mark(page);
            }
        }
    }

    const Pages& m_pages;
    std::vector<bool> m_claimed;
};

Header CheckedHeader(FileSystem& files, const QString& path) {
    const auto file = files.Open(path, FileSystem::Mode::Read);
    Page page{};
    if (file->Stamp().size < kPageSize) {
        throw AccessError(u"the file is no Access file"_s);
    }
    file->Read(0, page);
    return ReadHeader(page);
}

}  // namespace

Database::Database(FileSystem& files, const QString& path, Use use) : m_header(CheckedHeader(files, path)) {
    if (use == Use::Write) {
        OpenForWriting(files, path);
    }
    if (m_file == nullptr) {
        m_file = std::make_unique<PagedFile>(files, path, false);
    }
    m_allocator = std::make_unique<PageAllocator>(*m_file, [this] { return ClaimedPages(); });
    m_catalog = ReadCatalog(*m_file);
    try {
        m_allocator->RequireWholeMap();
    } catch (const AccessError& error) {
        m_refusal = error;
    }
}

void Database::OpenForWriting(FileSystem& files, const QString& path) {
    try {
        if (m_header.hasPassword) {
            throw AccessError(u"文件设有数据库密码"_s);
        }
        m_lock = std::make_unique<LockFile>(files, path);
        m_file = std::make_unique<PagedFile>(files, path, true);
    } catch (const AccessError& error) {
        if (error.Kind() == Fault::Damaged) {
            throw;
        }
        m_refusal = error;
        m_lock.reset();
    }
}

Table& Database::Find(const QString& name) {
    const auto isNamed = [&](const QString& other) { return other.compare(name, Qt::CaseInsensitive) == 0; };
    const auto loaded = std::find_if(m_tables.begin(), m_tables.end(),
                                     [&](const auto& table) { return isNamed(table->Name()); });
    if (loaded != m_tables.end()) {
        return **loaded;
    }
    const auto entry = std::find_if(m_catalog.begin(), m_catalog.end(),
                                    [&](const CatalogEntry& candidate) { return isNamed(candidate.name); });
    if (entry == m_catalog.end()) {
        throw AccessError(u"数据库中没有表 %1"_s.arg(name));
    }
    if (entry->linked) {
        throw AccessError(u"表 %1 链接到另一个文件"_s.arg(name));
    }
    m_tables.push_back(std::make_unique<Table>(*m_file, *m_allocator, *entry));
    return *m_tables.back();
}

bool Database::IsOutdated(bool beforeWriting) const {
    const bool mayChange =
        m_refusal && (m_refusal->Kind() == Fault::ReadOnly || m_refusal->Kind() == Fault::InUse);
    return m_file->IsReplaced() || (beforeWriting && mayChange);
}

void Database::BeginStatement() {
    if (m_refusal) {
        throw AccessError(u"文件以只读方式打开:%1"_s.arg(m_refusal->Message()), m_refusal->Kind());
    }
    m_file->BeginStatement();
}

void Database::Rollback() {
    m_file->Rollback();
    for (const auto& table : m_tables) {
        table->Forget();
    }
}

// Index trees are not walked: what an index owns is in its map.
std::vector<bool> Database::ClaimedPages() const {
    Claims claims(*m_file);
    for (const CatalogEntry& entry : m_catalog) {
        if (!entry.linked) {
            claims.MarkTable(ReadTableDefinition(*m_file, entry.definition));
        }
    }
    return claims.Take();
}

}  // namespace quorvane::access
