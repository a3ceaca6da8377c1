#include "data/store/access/index/index_page.h"

#include <algorithm>
#include <bit>
#include <cstring>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kFreeBytes = 2;
constexpr qsizetype kMask = 27;  // a bit for each byte of the entries, set where an entry ends
constexpr qsizetype kMaskSize = 453;
constexpr qsizetype kEntries = kMask + kMaskSize;
constexpr qsizetype kRowSize = 4;    // of a row's address in an entry
constexpr qsizetype kChildSize = 4;  // of a child's page number in a node's entry
static_assert(kEntries + kIndexCapacity == kPageSize);

quint32 ReadBigEndian(QByteArrayView bytes) {
    quint32 number = 0;
    for (const char byte : bytes) {
        number = number << 8 | static_cast<quint8>(byte);
    }
    return number;
}

void AppendBigEndian(QByteArray& bytes, quint32 number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(number >> shift);
    }
}

void MarkEnd(Page& page, qsizetype end) {
    char& mask = page[static_cast<std::size_t>(kMask + end / 8)];
    mask = static_cast<char>(mask | 1 << end % 8);
}

[[noreturn]] void ThrowDamagedPage(PageNumber number, const char* what) {
    ThrowDamaged(u"index page %1 %2"_s.arg(number).arg(QLatin1String(what)));
}

// As it stands on the page, before the prefix is left out.
QByteArray StoredEntry(const IndexPage& page, std::size_t index) {
    QByteArray stored = page.entries[index];
    if (!page.leaf) {
        AppendBigEndian(stored, page.children[index]);
    }
    return stored;
}

}  // namespace

QByteArray IndexEntry(QByteArrayView key, RowAddress row) {
    QByteArray entry = key.toByteArray();
    AppendBigEndian(entry, row.page << 8 | row.row);
    return entry;
}

QByteArrayView KeyOfEntry(QByteArrayView entry) {
    return Part(entry, 0, entry.size() - kRowSize);
}

RowAddress RowOfEntry(QByteArrayView entry) {
    const quint32 address = ReadBigEndian(Part(entry, entry.size() - kRowSize, kRowSize));
    return {address >> 8, static_cast<quint8>(address & 0xff)};
}

IndexPageView::IndexPageView(const Pages& pages, PageNumber number, PageNumber owner)
    : m_page(pages.Read(number)), m_number(number) {
    const quint8 kind = ReadU8(Bytes(), 0);
    m_leaf = kind == static_cast<quint8>(PageKind::IndexLeaf);
    if (!m_leaf && kind != static_cast<quint8>(PageKind::IndexNode)) {
        ThrowDamagedPage(number, "is of another kind");
    }
    if (ReadU32(Bytes(), 4) != owner) {
        ThrowDamagedPage(number, "belongs to another table");
    }
    m_prefix = ReadU16(Bytes(), 24);
    ReadEnds();
}

void IndexPageView::ReadEnds() {
    m_ends.reserve(kIndexCapacity / 5);
    const qsizetype shortest = kRowSize + 1 + (m_leaf ? 0 : kChildSize);
    for (qsizetype byte = 0; byte < kMaskSize; ++byte) {
        for (unsigned bits = ReadU8(Bytes(), kMask + byte); bits != 0; bits &= bits - 1) {
            const qsizetype end = byte * 8 + std::countr_zero(bits);
            const qsizetype length = m_ends.empty() ? end : end - m_ends.back() + m_prefix;
            if (end > kIndexCapacity || length < shortest || (m_ends.empty() && m_prefix > length)) {
                ThrowDamagedPage(m_number, "holds an entry of a wrong length");
            }
            m_ends.push_back(static_cast<quint16>(end));
        }
    }
}

QByteArray IndexPageView::Stored(std::size_t index) const {
    const qsizetype start = index == 0 ? 0 : m_ends.at(index - 1);
    const QByteArrayView own = Part(Bytes(), kEntries + start, m_ends.at(index) - start);
    if (index == 0) {
        return own.toByteArray();
    }
    QByteArray stored(m_prefix + own.size(), Qt::Uninitialized);
    std::memcpy(stored.data(), Bytes().data() + kEntries, static_cast<std::size_t>(m_prefix));
    std::memcpy(stored.data() + m_prefix, own.data(), static_cast<std::size_t>(own.size()));
    return stored;
}

QByteArray IndexPageView::Entry(std::size_t index) const {
    QByteArray entry = Stored(index);
    if (!m_leaf) {
        entry.chop(kChildSize);
    }
    return entry;
}

bool IndexPageView::Insert(Page& page, std::size_t position, QByteArrayView entry, qsizetype capacity) const {
    if (position == 0 || entry.size() <= m_prefix || !entry.startsWith(Part(Bytes(), kEntries, m_prefix))) {
        return false;
    }
    const QByteArrayView own = entry.sliced(m_prefix);
    const qsizetype used = UsedBytes();
    if (used + own.size() > capacity) {
        return false;
    }
    const qsizetype start = m_ends.at(position - 1);
    char* entries = page.data() + kEntries;
    std::memmove(entries + start + own.size(), entries + start, static_cast<std::size_t>(used - start));
    std::memcpy(entries + start, own.data(), static_cast<std::size_t>(own.size()));
    std::memset(page.data() + kMask, 0, kMaskSize);
    for (std::size_t index = 0; index < m_ends.size(); ++index) {
        MarkEnd(page, m_ends[index] + (index < position ? 0 : own.size()));
    }
    MarkEnd(page, start + own.size());
    WriteU16(page, kFreeBytes, static_cast<quint16>(kIndexCapacity - used - own.size()));
    return true;
}

std::size_t IndexPageView::LowerBound(QByteArrayView bytes) const {
    std::size_t first = 0;
    std::size_t count = EntryCount();
    while (count > 0) {
        const std::size_t half = count / 2;
        if (Entry(first + half) < bytes) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

std::size_t IndexPageView::ChildCount() const {
    return m_leaf ? 0 : EntryCount() + (Tail() != 0 ? 1 : 0);
}

PageNumber IndexPageView::Child(std::size_t index) const {
    return index == EntryCount() ? Tail() : ReadBigEndian(Stored(index).last(kChildSize));
}

IndexPage TakeApart(const IndexPageView& view, PageNumber owner) {
    IndexPage page{.leaf = view.IsLeaf(),
                   .level = view.Level(),
                   .owner = owner,
                   .previous = view.Previous(),
                   .next = view.Next(),
                   .entries = {},
                   .children = {}};
    for (std::size_t index = 0; index < view.EntryCount(); ++index) {
        page.entries.push_back(view.Entry(index));
    }
    for (std::size_t index = 0; index < view.ChildCount(); ++index) {
        page.children.push_back(view.Child(index));
    }
    if (std::adjacent_find(page.entries.begin(), page.entries.end(), std::greater_equal<>()) !=
        page.entries.end()) {
        ThrowDamaged(u"the entries of an index do not ascend"_s);
    }
    return page;
}

qsizetype SharedPrefix(const IndexPage& page) {
    if (page.entries.size() < 2) {
        return 0;
    }
    // The entries ascend, so all of them share the prefix that the first and the last one share.
    const QByteArray& first = page.entries.front();
    const QByteArray& last = page.entries.back();
    const auto end = first.cbegin() + std::min(first.size(), last.size());
    return std::mismatch(first.cbegin(), end, last.cbegin()).first - first.cbegin();
}

qsizetype SizeOfEntries(const IndexPage& page) {
    const qsizetype perEntry = (page.leaf ? 0 : kChildSize) - SharedPrefix(page);
    qsizetype size = page.entries.empty() ? 0 : SharedPrefix(page);
    for (const QByteArray& entry : page.entries) {
        size += entry.size() + perEntry;
    }
    return size;
}

Page PutTogether(const IndexPage& page, qsizetype prefix) {
    Page bytes{};
    const ByteSpan span(bytes);
    qsizetype end = 0;
    for (std::size_t index = 0; index < page.entries.size(); ++index) {
        const QByteArray stored = StoredEntry(page, index).sliced(index == 0 ? 0 : prefix);
        if (stored.size() > kIndexCapacity - end) {
            throw AccessError(u"the entries of an index page take more than the page"_s);
        }
        std::memcpy(bytes.data() + kEntries + end, stored.data(), static_cast<std::size_t>(stored.size()));
        end += stored.size();
        MarkEnd(bytes, end);
    }
    WriteU8(span, 0, static_cast<quint8>(page.leaf ? PageKind::IndexLeaf : PageKind::IndexNode));
    WriteU8(span, 1, 1);
    WriteU16(span, kFreeBytes, static_cast<quint16>(kIndexCapacity - end));
    WriteU32(span, 4, page.owner);
    WriteU32(span, 12, page.previous);
    WriteU32(span, 16, page.next);
    WriteU32(span, 20, page.HasTail() ? page.children.back() : 0);
    WriteU16(span, 24, static_cast<quint16>(prefix));
    WriteU8(span, 26, page.level);
    return bytes;
}

}  // namespace quorvane::access
