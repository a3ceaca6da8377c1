// Changing an index in place: one entry in, one entry out (docs/access-files.md, "Changing an index").
#pragma once

#include "data/store/access/index/index.h"
#include "data/store/access/rows/usage_maps.h"

namespace quorvane::access {

inline constexpr qsizetype kLongestIndexEntry =
    kIndexCapacity / 3;  // so that every split leaves pages that fit

class IndexWriter {
public:
    // The table and the description must outlive the writer. A smaller capacity makes high trees of few rows.
    IndexWriter(Pages& pages, PageAllocator& allocator, const TableDefinition& table,
                const IndexDescription& description, qsizetype capacity = kIndexCapacity);

    // Adds a row's entry, and counts its key when no other entry has it. The caller has checked what a unique
    // index asks for. Throws AccessError when the key is too long or the entry is there already.
    void Insert(QByteArrayView key, RowAddress row);
    // Throws AccessError when the entry is not there.
    void Remove(QByteArrayView key, RowAddress row);

private:
    // A page on the way from the root to a leaf.
    struct Step {
        PageNumber number = 0;
        IndexPage page;
        std::size_t child = 0;  // the way goes on here
        bool atEnd = false;     // what changes is the last on this page
    };
    using Way = std::vector<Step>;

    bool InsertOnLeaf(const QByteArray& entry);
    void InsertAlongWay(const QByteArray& entry);
    Way Descend(const QByteArray& entry) const;
    Step Load(PageNumber number) const;
    void Store(const Step& step);
    QByteArray LastEntry(const IndexPage& page) const;
    void Name(IndexPage& parent, std::size_t child, const IndexPage& page) const;

    void Settle(Way& way, bool join);
    void SettleRoot(Step& root);
    bool SettleChild(Step& parent, Step& step, bool join);
    void Split(Step& parent, const Step& step);
    std::pair<Step, Step> Halve(const Step& step);
    void Drop(Step& parent, const Step& step);
    bool Join(Step& parent, const Step& step);
    bool JoinPair(Step& parent, std::size_t left, qsizetype most);
    void SplitRoot(Step& root);
    void TakeOnlyChild(Step& root);

    void Link(PageNumber left, PageNumber right);
    void LinkChildren(const IndexPage& left, const IndexPage& right, bool together);

    Pages& m_pages;
    PageAllocator& m_allocator;
    const TableDefinition& m_table;
    const IndexDescription& m_description;
    UsageMap m_map;
    qsizetype m_capacity;
};

}  // namespace quorvane::access
