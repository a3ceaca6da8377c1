#include "data/store/access/index/index_writer.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kPreviousOffset = 12;
constexpr qsizetype kNextOffset = 16;

IndexPage Slice(const IndexPage& page, std::size_t from, std::size_t to) {
    IndexPage slice{
        .leaf = page.leaf, .level = page.level, .owner = page.owner, .entries = {}, .children = {}};
    const auto part = [&](const auto& all) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(std::min(from, all.size()));
        const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(to, all.size()));
        return std::remove_cvref_t<decltype(all)>(begin, end);
    };
    slice.entries = part(page.entries);
    slice.children = part(page.children);
    return slice;
}

// How many go to the left page: near the middle, and such that both pages hold what they get.
std::size_t SplitPosition(const IndexPage& page, bool atEnd, qsizetype capacity) {
    const std::size_t count = page.leaf ? page.entries.size() : page.children.size();
    const auto fits = [&](std::size_t position) {
        return SizeOfEntries(Slice(page, 0, position)) <= capacity &&
               SizeOfEntries(Slice(page, position, count)) <= capacity;
    };
    // Rows with rising keys fill their pages when the old page stays as it is. A node keeps two children.
    const std::size_t last = count - (page.leaf ? 1 : std::min<std::size_t>(2, count));
    if (atEnd && fits(last)) {
        return last;
    }
    const std::size_t middle = count / 2;
    for (std::size_t distance = 0; distance <= middle; ++distance) {
        for (const std::size_t position : {middle - distance, middle + distance}) {
            if (position > 0 && position <= last && fits(position)) {
                return position;
            }
        }
    }
    throw AccessError(u"an index page cannot be split"_s);
}

}  // namespace

IndexWriter::IndexWriter(Pages& pages, PageAllocator& allocator, const TableDefinition& table,
                         const IndexDescription& description, qsizetype capacity)
    : m_pages(pages),
      m_allocator(allocator),
      m_table(table),
      m_description(description),
      m_map(pages, description.map),
      m_capacity(capacity) {}

void IndexWriter::Insert(QByteArrayView key, RowAddress row) {
    const QByteArray entry = IndexEntry(key, row);
    if (entry.size() > kLongestIndexEntry) {
        throw AccessError(u"内容过长,不能编入索引 %1"_s.arg(m_description.name));
    }
    const bool known = Index(m_pages, m_table, m_description).Contains(key);
    if (!InsertOnLeaf(entry)) {
        InsertAlongWay(entry);
    }
    if (!known) {
        SetUniqueEntryCount(m_pages, m_table, m_description,
                            UniqueEntryCount(m_pages, m_table, m_description) + 1);
    }
}

// Most entries find room on their leaf and change nothing above it. Returns false, with nothing done, for
// others.
bool IndexWriter::InsertOnLeaf(const QByteArray& entry) {
    PageNumber number = m_description.root;
    for (int level = 0; level <= kMostIndexLevels; ++level) {
        const IndexPageView page(m_pages, number, m_table.page);
        const std::size_t position = page.LowerBound(entry);
        if (page.IsLeaf()) {
            const bool isThere = position < page.EntryCount() && page.Entry(position) == entry;
            return !isThere && page.Insert(m_pages.Write(number), position, entry, m_capacity);
        }
        if (position >= page.ChildCount()) {
            return false;
        }
        number = page.Child(position);
    }
    return false;
}

void IndexWriter::InsertAlongWay(const QByteArray& entry) {
    Way way = Descend(entry);
    std::vector<QByteArray>& entries = way.back().page.entries;
    const auto position = std::lower_bound(entries.begin(), entries.end(), entry);
    if (position != entries.end() && *position == entry) {
        ThrowDamaged(u"the index %1 holds a row that is not there"_s.arg(m_description.name));
    }
    way.back().atEnd = position == entries.end() && way.back().page.next == 0;
    entries.insert(position, entry);
    Settle(way, false);
}

void IndexWriter::Remove(QByteArrayView key, RowAddress row) {
    const QByteArray entry = IndexEntry(key, row);
    Way way = Descend(entry);
    std::vector<QByteArray>& entries = way.back().page.entries;
    const auto position = std::lower_bound(entries.begin(), entries.end(), entry);
    if (position == entries.end() || *position != entry) {
        ThrowDamaged(u"the index %1 lacks a row"_s.arg(m_description.name));
    }
    entries.erase(position);
    Settle(way, true);
}

IndexWriter::Step IndexWriter::Load(PageNumber number) const {
    return {number, TakeApart(IndexPageView(m_pages, number, m_table.page), m_table.page)};
}

IndexWriter::Way IndexWriter::Descend(const QByteArray& entry) const {
    Way way{Load(m_description.root)};
    while (!way.back().page.leaf) {
        Step& step = way.back();
        if (step.page.children.empty() || way.size() > kMostIndexLevels) {
            ThrowDamaged(u"the index %1 has no leaf for a row"_s.arg(m_description.name));
        }
        const auto named = std::lower_bound(step.page.entries.begin(), step.page.entries.end(), entry);
        step.child = std::min(static_cast<std::size_t>(named - step.page.entries.begin()),
                              step.page.children.size() - 1);
        step.atEnd = step.child + 1 == step.page.children.size();
        way.push_back(Load(step.page.children[step.child]));
    }
    return way;
}

void IndexWriter::Store(const Step& step) {
    m_pages.Write(step.number) = PutTogether(step.page, SharedPrefix(step.page));
}

// What a node's entry says of this page. The pages below must have been stored.
QByteArray IndexWriter::LastEntry(const IndexPage& page) const {
    if (!page.HasTail()) {
        return page.entries.back();
    }
    IndexPageView below(m_pages, page.children.back(), m_table.page);
    for (int level = 0; !below.IsLeaf() && below.ChildCount() > 0 && level < kMostIndexLevels; ++level) {
        below = IndexPageView(m_pages, below.Child(below.ChildCount() - 1), m_table.page);
    }
    if (!below.IsLeaf() || below.EntryCount() == 0) {
        ThrowDamaged(u"the index %1 has no last row"_s.arg(m_description.name));
    }
    return below.Entry(below.EntryCount() - 1);
}

// A child at the tail has no name.
void IndexWriter::Name(IndexPage& parent, std::size_t child, const IndexPage& page) const {
    if (child < parent.entries.size()) {
        parent.entries[child] = LastEntry(page);
    }
}

// Stores the pages of a way from the leaf upwards, as far as they have changed. Pages that are too full are
// split; with `join`, pages that have become nearly empty are joined with a neighbour.
void IndexWriter::Settle(Way& way, bool join) {
    for (std::size_t level = way.size() - 1; level > 0; --level) {
        if (!SettleChild(way[level - 1], way[level], join)) {
            return;
        }
    }
    SettleRoot(way.front());
}

// Returns whether the parent has changed.
bool IndexWriter::SettleChild(Step& parent, Step& step, bool join) {
    if (SizeOfEntries(step.page) > m_capacity) {
        Split(parent, step);
        return true;
    }
    const bool empty = step.page.entries.empty() && step.page.children.empty();
    if (empty) {
        Drop(parent, step);
        return true;
    }
    Store(step);
    const std::vector<QByteArray> names = parent.page.entries;
    Name(parent.page, parent.child, step.page);
    return (join && Join(parent, step)) || parent.page.entries != names;
}

void IndexWriter::Split(Step& parent, const Step& step) {
    const PageNumber next = step.page.next;
    auto [left, right] = Halve(step);
    left.number = step.number;
    left.page.previous = step.page.previous;
    left.page.next = right.number;
    right.page.previous = left.number;
    right.page.next = next;
    Store(left);
    Store(right);
    if (next != 0) {
        Link(right.number, next);
    }
    IndexPage& page = parent.page;
    const auto child = static_cast<std::ptrdiff_t>(parent.child);
    page.children.insert(page.children.begin() + child + 1, right.number);
    page.entries.insert(page.entries.begin() + child, LastEntry(left.page));
    Name(page, parent.child + 1, right.page);
}

// Both halves of a page, without links. The right one has a page of its own; the left one has no number yet.
std::pair<IndexWriter::Step, IndexWriter::Step> IndexWriter::Halve(const Step& step) {
    const std::size_t position = SplitPosition(step.page, step.atEnd, m_capacity);
    Step left{0, Slice(step.page, 0, position)};
    Step right{m_allocator.Allocate(m_map),
               Slice(step.page, position, std::max(step.page.entries.size(), step.page.children.size()))};
    LinkChildren(left.page, right.page, false);
    return {std::move(left), std::move(right)};
}

// Takes an empty page out of the tree.
void IndexWriter::Drop(Step& parent, const Step& step) {
    IndexPage& page = parent.page;
    const bool last = parent.child + 1 == page.children.size();
    if (!step.page.leaf && last) {
        // Nodes that end a level keep two children, as far as they were seen.
        throw AccessError(u"索引 %1 的结构未知"_s.arg(m_description.name));
    }
    if (step.page.previous != 0) {
        WriteU32(m_pages.Write(step.page.previous), kNextOffset, step.page.next);
    }
    if (step.page.next != 0) {
        WriteU32(m_pages.Write(step.page.next), kPreviousOffset, step.page.previous);
    }
    m_allocator.Release(step.number, m_map);
    const auto child = static_cast<std::ptrdiff_t>(parent.child);
    const bool hadTail = page.HasTail();
    page.children.erase(page.children.begin() + child);
    if (child < static_cast<std::ptrdiff_t>(page.entries.size())) {
        page.entries.erase(page.entries.begin() + child);
    }
    if (hadTail && !page.HasTail() && !page.entries.empty()) {
        page.entries.pop_back();  // the last child left becomes the tail
    }
}

// Returns whether the page and a neighbour have become one.
bool IndexWriter::Join(Step& parent, const Step& step) {
    const bool tailAlone = !step.page.leaf && step.page.entries.empty();
    if (!tailAlone && SizeOfEntries(step.page) >= m_capacity / 4) {
        return false;
    }
    // Room is left for what comes next.
    const qsizetype most = tailAlone ? m_capacity : m_capacity * 3 / 4;
    return (parent.child > 0 && JoinPair(parent, parent.child - 1, most)) ||
           (parent.child + 1 < parent.page.children.size() && JoinPair(parent, parent.child, most));
}

// Moves what the left one of two neighbours holds into the right one, if that takes `most` bytes at most.
bool IndexWriter::JoinPair(Step& parent, std::size_t left, qsizetype most) {
    IndexPage& page = parent.page;
    const Step from = Load(page.children[left]);
    Step to = Load(page.children[left + 1]);
    if (from.page.leaf != to.page.leaf) {
        ThrowDamaged(u"the index %1 has leaves at different depths"_s.arg(m_description.name));
    }
    IndexPage joined = from.page;
    if (from.page.HasTail()) {
        joined.entries.push_back(page.entries[left]);
    }
    joined.entries.insert(joined.entries.end(), to.page.entries.begin(), to.page.entries.end());
    joined.children.insert(joined.children.end(), to.page.children.begin(), to.page.children.end());
    joined.next = to.page.next;
    if (SizeOfEntries(joined) > most) {
        return false;
    }
    LinkChildren(from.page, to.page, true);
    to.page = std::move(joined);
    Store(to);
    if (to.page.previous != 0) {
        Link(to.page.previous, to.number);
    }
    m_allocator.Release(from.number, m_map);
    const auto gone = static_cast<std::ptrdiff_t>(left);
    page.entries.erase(page.entries.begin() + gone);
    page.children.erase(page.children.begin() + gone);
    Name(page, left, to.page);
    return true;
}

void IndexWriter::SettleRoot(Step& root) {
    if (SizeOfEntries(root.page) > m_capacity) {
        SplitRoot(root);
    } else if (!root.page.leaf && root.page.children.size() == 1) {
        TakeOnlyChild(root);
    } else if (!root.page.leaf && root.page.children.empty()) {
        root.page = IndexPage{.owner = m_table.page, .entries = {}, .children = {}};
    }
    Store(root);
}

// The root stays on its page: what it held goes to two new pages below it.
void IndexWriter::SplitRoot(Step& root) {
    auto [left, right] = Halve(root);
    left.number = m_allocator.Allocate(m_map);
    left.page.next = right.number;
    right.page.previous = left.number;
    Store(left);
    Store(right);
    root.page = IndexPage{.leaf = false,
                          .level = static_cast<quint8>(root.page.level + 1),
                          .owner = m_table.page,
                          .entries = {LastEntry(left.page)},
                          .children = {left.number, right.number}};
}

void IndexWriter::TakeOnlyChild(Step& root) {
    while (root.page.children.size() == 1) {
        const Step child = Load(root.page.children.front());
        root.page = child.page;
        root.page.previous = 0;
        root.page.next = 0;
        m_allocator.Release(child.number, m_map);
    }
}

void IndexWriter::Link(PageNumber left, PageNumber right) {
    WriteU32(m_pages.Write(left), kNextOffset, right);
    WriteU32(m_pages.Write(right), kPreviousOffset, left);
}

// Leaves are linked all along, but nodes only where they have the same parent.
void IndexWriter::LinkChildren(const IndexPage& left, const IndexPage& right, bool together) {
    if (left.leaf || IndexPageView(m_pages, left.children.back(), m_table.page).IsLeaf()) {
        return;
    }
    WriteU32(m_pages.Write(left.children.back()), kNextOffset, together ? right.children.front() : 0);
    WriteU32(m_pages.Write(right.children.front()), kPreviousOffset, together ? left.children.back() : 0);
}

}  // namespace quorvane::access
