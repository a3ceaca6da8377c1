// One page of an index: its bytes taken apart, and put together again (docs/access-files.md, "Index pages").
#pragma once

#include <vector>

#include "data/store/access/disk/pages.h"

namespace quorvane::access {

// An entry is a row's key followed by its address; a node's entry names the last entry below one child.
// Entries compare as byte strings.
QByteArray IndexEntry(QByteArrayView key, RowAddress row);
QByteArrayView KeyOfEntry(QByteArrayView entry);
RowAddress RowOfEntry(QByteArrayView entry);

// For reading: takes an entry out only when it is asked for.
class IndexPageView {
public:
    // Throws AccessError unless the page is an index page of the table with that definition page.
    IndexPageView(const Pages& pages, PageNumber number, PageNumber owner);

    bool IsLeaf() const { return m_leaf; }
    quint8 Level() const { return ReadU8(Bytes(), 26); }
    PageNumber Previous() const { return ReadU32(Bytes(), 12); }
    PageNumber Next() const { return ReadU32(Bytes(), 16); }
    qsizetype FreeBytes() const { return ReadU16(Bytes(), 2); }
    qsizetype UsedBytes() const { return m_ends.empty() ? 0 : m_ends.back(); }

    std::size_t EntryCount() const { return m_ends.size(); }
    QByteArray Entry(std::size_t index) const;
    // The first entry that is not below the given bytes; EntryCount() when there is none.
    std::size_t LowerBound(QByteArrayView bytes) const;

    // Puts an entry of a leaf before the one at the position, which must not be the first. `page` holds the
    // bytes that are shown here. The prefix stays as it is; returns false, with nothing done, when the entry
    // does not share it or the entries would take more than the capacity.
    bool Insert(Page& page, std::size_t position, QByteArrayView entry, qsizetype capacity) const;

    // Of a node: one for each entry, and one more where the page has a tail.
    std::size_t ChildCount() const;
    PageNumber Child(std::size_t index) const;

private:
    QByteArrayView Bytes() const { return {m_page->data(), kPageSize}; }
    PageNumber Tail() const { return ReadU32(Bytes(), 20); }
    QByteArray Stored(std::size_t index) const;
    void ReadEnds();

    PagePointer m_page;
    PageNumber m_number;
    bool m_leaf = false;
    qsizetype m_prefix = 0;
    std::vector<quint16> m_ends;  // of the entries, counted from where the first begins
};

// For changing.
struct IndexPage {
    bool leaf = true;
    quint8 level = 0;
    PageNumber owner = 0;
    PageNumber previous = 0;
    PageNumber next = 0;
    std::vector<QByteArray> entries;
    std::vector<PageNumber> children;  // of a node; one more than entries where the last child has no entry

    bool HasTail() const { return children.size() > entries.size(); }
};

inline constexpr qsizetype kIndexCapacity = 3616;  // bytes of entries on one page

// Throws AccessError where the page's entries do not ascend.
IndexPage TakeApart(const IndexPageView& view, PageNumber owner);

// The bytes that the entries take, with the longest prefix left out that they share.
qsizetype SizeOfEntries(const IndexPage& page);
qsizetype SharedPrefix(const IndexPage& page);

// Leaves out a prefix that all entries share. Throws AccessError when the entries do not fit.
Page PutTogether(const IndexPage& page, qsizetype prefix);

}  // namespace quorvane::access
