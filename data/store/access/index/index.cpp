#include "data/store/access/index/index.h"

#include <algorithm>
#include <set>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

[[noreturn]] void ThrowDamagedIndex(const char* what) {
    ThrowDamaged(u"an index %1"_s.arg(QLatin1String(what)));
}

// Moves on to the next entry with just that key. Returns whether there is one.
bool FindKey(IndexCursor& cursor, QByteArrayView key) {
    for (; !cursor.AtEnd(); cursor.MoveNext()) {
        const QByteArray entry = cursor.Entry();
        if (!entry.startsWith(key)) {
            return false;
        }
        if (KeyOfEntry(entry) == key) {
            return true;
        }
    }
    return false;
}

// Walks a whole tree once, children in order.
class TreeCheck {
public:
    TreeCheck(const Pages& pages, PageNumber owner) : m_pages(pages), m_owner(owner) {}

    // Checks what hangs on a page, and gives the last entry below it.
    QByteArray Visit(PageNumber number, int depth, bool endsLevel) {
        if (depth > kMostIndexLevels) {
            ThrowDamagedIndex("has too many levels");
        }
        if (!m_seen.insert(number).second) {
            ThrowDamagedIndex("reaches a page twice");
        }
        const IndexPageView page(m_pages, number, m_owner);
        if (page.FreeBytes() != kIndexCapacity - page.UsedBytes()) {
            ThrowDamagedIndex("has a page with a wrong count of free bytes");
        }
        return page.IsLeaf() ? VisitLeaf(number, page, depth) : VisitNode(page, depth, endsLevel);
    }

    std::vector<PageNumber> Pages() const { return {m_seen.begin(), m_seen.end()}; }
    PageNumber NextAfterLast() const { return m_next; }

private:
    QByteArray VisitLeaf(PageNumber number, const IndexPageView& page, int depth) {
        if (page.EntryCount() == 0 && depth > 0) {
            ThrowDamagedIndex("has an empty leaf");
        }
        if (m_leafDepth >= 0 && m_leafDepth != depth) {
            ThrowDamagedIndex("has leaves at different depths");
        }
        const bool linked = page.Previous() == m_previousLeaf && (m_leafDepth < 0 || m_next == number);
        if (!linked) {
            ThrowDamagedIndex("has leaves that are not linked in order");
        }
        m_leafDepth = depth;
        m_previousLeaf = number;
        m_next = page.Next();
        for (std::size_t index = 0; index < page.EntryCount(); ++index) {
            QByteArray entry = page.Entry(index);
            if (!m_last.isNull() && entry <= m_last) {
                ThrowDamagedIndex("has entries that do not ascend");
            }
            m_last = std::move(entry);
        }
        return m_last;
    }

    QByteArray VisitNode(const IndexPageView& page, int depth, bool endsLevel) {
        if (page.ChildCount() == 0) {
            ThrowDamagedIndex("has a node without children");
        }
        if (endsLevel && page.ChildCount() == page.EntryCount()) {
            ThrowDamagedIndex("has a last node without a tail");
        }
        QByteArray last;
        for (std::size_t index = 0; index < page.ChildCount(); ++index) {
            last = Visit(page.Child(index), depth + 1, endsLevel && index + 1 == page.ChildCount());
            if (index < page.EntryCount() && page.Entry(index) != last) {
                ThrowDamagedIndex("has a node that misnames the last entry of a child");
            }
        }
        return last;
    }

    const access::Pages& m_pages;
    PageNumber m_owner;
    std::set<PageNumber> m_seen;
    int m_leafDepth = -1;  // -1: no leaf yet
    PageNumber m_previousLeaf = 0;
    PageNumber m_next = 0;  // as the previous leaf names it
    QByteArray m_last;
};

}  // namespace

IndexCursor::IndexCursor(const Index& index, IndexPageView leaf, std::size_t entry)
    : m_index(&index), m_leaf(std::move(leaf)), m_entry(entry) {
    LeaveFinishedLeaves();
}

void IndexCursor::MoveNext() {
    ++m_entry;
    LeaveFinishedLeaves();
}

void IndexCursor::MovePrevious() {
    while (m_leaf && m_entry == 0) {
        EnterLeaf(m_leaf->Previous());
        m_entry = m_leaf ? m_leaf->EntryCount() : 0;
    }
    if (m_leaf) {
        --m_entry;
    }
}

void IndexCursor::LeaveFinishedLeaves() {
    while (m_leaf && m_entry >= m_leaf->EntryCount()) {
        EnterLeaf(m_leaf->Next());
        m_entry = 0;
    }
}

// Page 0 is what the outermost leaves name as their neighbour.
void IndexCursor::EnterLeaf(PageNumber number) {
    m_leaf.reset();
    if (number == 0) {
        return;
    }
    if (++m_visited > m_index->m_pages.Count()) {
        ThrowDamagedIndex("has leaves that form a ring");
    }
    m_leaf.emplace(m_index->Page(number));
    if (!m_leaf->IsLeaf()) {
        ThrowDamagedIndex("links a leaf to a node");
    }
}

template <typename ChooseChild>
IndexPageView Index::DescendToLeaf(const ChooseChild& choose) const {
    IndexPageView page = Page(m_description.root);
    for (int level = 0; !page.IsLeaf(); ++level) {
        if (level > kMostIndexLevels || page.ChildCount() == 0) {
            ThrowDamagedIndex("has no leaf where one must be");
        }
        page = Page(page.Child(std::min(choose(page), page.ChildCount() - 1)));
    }
    return page;
}

IndexCursor Index::Seek(QByteArrayView bytes) const {
    IndexPageView leaf = DescendToLeaf([&](const IndexPageView& node) { return node.LowerBound(bytes); });
    const std::size_t entry = leaf.LowerBound(bytes);
    return {*this, std::move(leaf), entry};
}

IndexCursor Index::Last() const {
    IndexPageView leaf = DescendToLeaf([](const IndexPageView& node) { return node.ChildCount(); });
    const std::size_t count = leaf.EntryCount();
    return {*this, std::move(leaf), count == 0 ? 0 : count - 1};
}

bool Index::Contains(QByteArrayView key) const {
    IndexCursor cursor = Seek(key);
    return FindKey(cursor, key);
}

std::vector<RowAddress> Index::Rows(QByteArrayView key) const {
    std::vector<RowAddress> rows;
    for (IndexCursor cursor = Seek(key); FindKey(cursor, key); cursor.MoveNext()) {
        rows.push_back(cursor.Row());
    }
    return rows;
}

std::optional<QByteArray> Index::EntryOf(RowAddress row) const {
    for (IndexCursor cursor = First(); !cursor.AtEnd(); cursor.MoveNext()) {
        if (cursor.Row() == row) {
            return cursor.Entry();
        }
    }
    return std::nullopt;
}

std::vector<PageNumber> Index::CheckedPages() const {
    TreeCheck check(m_pages, m_table.page);
    check.Visit(m_description.root, 0, true);
    if (check.NextAfterLast() != 0) {
        ThrowDamagedIndex("goes on behind its last leaf");
    }
    return check.Pages();
}

}  // namespace quorvane::access
