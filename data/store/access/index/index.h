// Reading an index: its entries in order, and by key (docs/access-files.md, "Indexes").
#pragma once

#include <optional>

#include "data/store/access/index/index_page.h"
#include "data/store/access/table_definition.h"

namespace quorvane::access {

class Index;

// Stands on an entry of an index, or at its end. Valid as long as the index is not changed.
class IndexCursor {
public:
    bool AtEnd() const { return !m_leaf; }
    void MoveNext();
    void MovePrevious();
    QByteArray Entry() const { return m_leaf->Entry(m_entry); }
    RowAddress Row() const { return RowOfEntry(Entry()); }

private:
    friend class Index;
    IndexCursor(const Index& index, IndexPageView leaf, std::size_t entry);
    void LeaveFinishedLeaves();
    void EnterLeaf(PageNumber number);

    const Index* m_index;
    std::optional<IndexPageView> m_leaf;  // nothing: at the end
    std::size_t m_entry = 0;
    PageNumber m_visited = 1;  // leaves, so that a ring of them ends
};

class Index {
public:
    // The table and the description must outlive the index.
    Index(const Pages& pages, const TableDefinition& table, const IndexDescription& description)
        : m_pages(pages), m_table(table), m_description(description) {}

    const IndexDescription& Description() const { return m_description; }

    IndexCursor First() const { return Seek({}); }
    IndexCursor Last() const;
    // The first entry that is not below the given bytes.
    IndexCursor Seek(QByteArrayView bytes) const;

    bool Contains(QByteArrayView key) const;
    // The rows that have the key, in the order of their addresses.
    std::vector<RowAddress> Rows(QByteArrayView key) const;
    // The whole entry of a row whose key cannot be formed; reads the index from its beginning.
    std::optional<QByteArray> EntryOf(RowAddress row) const;

    // Every page of the tree. Throws AccessError for whatever a sound tree does not have: levels of unequal
    // depth, a page reached twice, entries or leaf links out of order, a node that misnames a child's last
    // entry.
    std::vector<PageNumber> CheckedPages() const;

private:
    friend class IndexCursor;
    friend class IndexWriter;
    template <typename ChooseChild>
    IndexPageView DescendToLeaf(const ChooseChild& choose) const;
    IndexPageView Page(PageNumber number) const { return {m_pages, number, m_table.page}; }

    const Pages& m_pages;
    const TableDefinition& m_table;
    const IndexDescription& m_description;
};

inline constexpr int kMostIndexLevels = 12;

}  // namespace quorvane::access
