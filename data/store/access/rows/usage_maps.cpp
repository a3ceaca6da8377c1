#include "data/store/access/rows/usage_maps.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "data/store/access/rows/data_page.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr char kInline = 0;
constexpr char kReferences = 1;
constexpr qsizetype kInlineBits = 5;  // kind, u32 first page
constexpr qsizetype kBitsHeader = 4;  // of a page of bits
constexpr quint64 kPagesABitsPage = 8 * (kPageSize - kBitsHeader);
constexpr PageNumber kGlobalMapPage = 1;
constexpr quint64 kMostPages = 524'288;

// Bits that stand together: those of the pages from FIRST on.
struct Bits {
    PagePointer content;
    PageNumber carrier = 0;
    qsizetype offset = 0;
    qsizetype length = 0;
    quint64 first = 0;

    quint64 End() const { return first + 8 * static_cast<quint64>(length); }
    quint8 ByteOf(quint64 page) const {
        return static_cast<quint8>(
            (*content)[static_cast<std::size_t>(offset) + static_cast<std::size_t>((page - first) / 8)]);
    }
    bool Has(quint64 page) const { return (ByteOf(page) >> (page - first) % 8 & 1) != 0; }
    // The first page of these bits from PAGE on; LIMIT when there is none before it.
    quint64 Next(quint64 page, quint64 limit) const {
        while (page < limit && !Has(page)) {
            page += ByteOf(page) == 0 ? 8 - (page - first) % 8 : 1;
        }
        return std::min(page, limit);
    }
};

QByteArrayView MapRow(const Page& page, RowAddress map) {
    const QByteArrayView row = SlotBytes(page, ReadSlot(page, map.row));
    if (row.size() < kInlineBits || (row[0] != kInline && row[0] != kReferences)) {
        ThrowDamaged(u"there is no usage map at page %1"_s.arg(map.page));
    }
    return row;
}

std::vector<Bits> AllBits(const Pages& pages, RowAddress map) {
    const PagePointer page = pages.Read(map.page);
    const QByteArrayView row = MapRow(*page, map);
    if (row[0] == kInline) {
        return {{page, map.page, row.data() + kInlineBits - page->data(), row.size() - kInlineBits,
                 ReadU32(row, 1)}};
    }
    std::vector<Bits> all;
    for (qsizetype index = 0; index < (row.size() - 1) / 4; ++index) {
        const PageNumber carrier = ReadU32(row, 1 + 4 * index);
        if (carrier == 0) {
            continue;
        }
        const PagePointer content = pages.Read(carrier);
        const quint64 first = static_cast<quint64>(index) * kPagesABitsPage;
        if (content->front() != static_cast<char>(PageKind::MapBits) || first >= kMostPages) {
            ThrowDamaged(u"page %1 holds no bits of a usage map"_s.arg(carrier));
        }
        all.push_back({content, carrier, kBitsHeader, kPageSize - kBitsHeader, first});
    }
    return all;
}

std::vector<PageNumber> MembersBelow(const Pages& pages, RowAddress map, PageNumber limit) {
    std::vector<PageNumber> members;
    for (const Bits& bits : AllBits(pages, map)) {
        const quint64 end = std::min<quint64>(bits.End(), limit);
        for (quint64 page = bits.Next(bits.first, end); page < end; page = bits.Next(page + 1, end)) {
            members.push_back(static_cast<PageNumber>(page));
        }
    }
    return members;
}

}  // namespace

std::vector<PageNumber> MappedPages(const Pages& pages, RowAddress map) {
    const PageNumber count = pages.Count();
    for (const Bits& bits : AllBits(pages, map)) {
        const quint64 beyond = bits.Next(std::max<quint64>(bits.first, count), bits.End());
        if (beyond < bits.End()) {
            ThrowDamaged(u"a usage map names page %1, which the file has not"_s.arg(beyond));
        }
    }
    return MembersBelow(pages, map, count);
}

std::vector<PageNumber> FreePages(const Pages& pages) {
    return MembersBelow(pages, {kGlobalMapPage, 0}, pages.Count());
}

std::vector<PageNumber> MapCarriers(const Pages& pages, RowAddress map) {
    std::vector<PageNumber> carriers{map.page};
    for (const Bits& bits : AllBits(pages, map)) {
        carriers.push_back(bits.carrier);
    }
    return carriers;
}

ByteSpan UsageMap::WriteRow() {
    Page& page = m_pages->Write(m_address.page);
    const Slot slot = ReadSlot(page, m_address.row);
    return Part(ByteSpan(page), slot.start, slot.end - slot.start);
}

bool UsageMap::IsInline() const {
    return MapRow(*m_pages->Read(m_address.page), m_address)[0] == kInline;
}

bool UsageMap::Contains(PageNumber page) const {
    const std::vector<Bits> all = AllBits(*m_pages, m_address);
    return std::any_of(all.begin(), all.end(), [page](const Bits& bits) {
        return page >= bits.first && page < bits.End() && bits.Has(page);
    });
}

std::vector<PageNumber> UsageMap::Below(PageNumber limit) const {
    return MembersBelow(*m_pages, m_address, limit);
}

std::optional<PageNumber> UsageMap::LastBelow(PageNumber limit) const {
    const std::vector<Bits> all = AllBits(*m_pages, m_address);
    for (auto bits = all.rbegin(); bits != all.rend(); ++bits) {
        for (quint64 page = std::min<quint64>(bits->End(), limit); page > bits->first;) {
            --page;
            if (bits->Has(page)) {
                return static_cast<PageNumber>(page);
            }
            page -= bits->ByteOf(page) == 0 ? (page - bits->first) % 8 : 0;
        }
    }
    return std::nullopt;
}

// False when the map has no place for the page.
bool UsageMap::SetBit(PageNumber page, bool on) {
    for (const Bits& bits : AllBits(*m_pages, m_address)) {
        if (page < bits.first || page >= bits.End()) {
            continue;
        }
        if (bits.Has(page) != on) {
            const quint64 bit = page - bits.first;
            const auto offset = static_cast<std::size_t>(bits.offset) + static_cast<std::size_t>(bit / 8);
            char& byte = m_pages->Write(bits.carrier)[offset];
            byte = static_cast<char>(byte ^ 1 << bit % 8);
        }
        return true;
    }
    return false;
}

// Lets the row's bits begin at another page. False when they cannot reach from the first page to the last.
bool UsageMap::Shift(const std::vector<PageNumber>& members) {
    const ByteSpan row = WriteRow();
    const PageNumber first = members.front() / 8 * 8;
    const auto length = static_cast<qsizetype>(row.size()) - kInlineBits;
    if (members.back() - first >= 8 * static_cast<quint64>(length)) {
        return false;
    }
    std::fill(row.begin() + kInlineBits, row.end(), '\0');
    WriteU32(row, 1, first);
    for (const PageNumber page : members) {
        SetBit(page, true);
    }
    return true;
}

void UsageMap::BecomeReferences() {
    const ByteSpan row = WriteRow();
    std::fill(row.begin(), row.end(), '\0');
    row[0] = kReferences;
}

bool UsageMap::HasBitsPage(quint64 index) const {
    const std::vector<Bits> all = AllBits(*m_pages, m_address);
    return std::any_of(all.begin(), all.end(),
                       [index](const Bits& bits) { return bits.first == index * kPagesABitsPage; });
}

void UsageMap::AddBitsPage(quint64 index, PageNumber carrier, char fill) {
    Page& page = m_pages->Write(carrier);
    page.fill(fill);
    WriteU32(page, 0, static_cast<quint32>(PageKind::MapBits) | 0x100);
    const ByteSpan row = WriteRow();
    if (1 + 4 * (index + 1) > row.size()) {
        throw AccessError(u"页位图已满"_s);
    }
    WriteU32(row, static_cast<qsizetype>(1 + 4 * index), carrier);
}

void UsageMap::Add(PageNumber page, PageAllocator& allocator) {
    if (SetBit(page, true)) {
        return;
    }
    std::vector<PageNumber> members = MappedPages(*m_pages, m_address);
    members.insert(std::lower_bound(members.begin(), members.end(), page), page);
    if (IsInline()) {
        if (Shift(members)) {
            return;
        }
        BecomeReferences();
    }
    for (const PageNumber member : members) {
        if (const quint64 index = member / kPagesABitsPage; !HasBitsPage(index)) {
            AddBitsPage(index, allocator.Allocate(), '\0');
        }
        SetBit(member, true);
    }
}

void UsageMap::Remove(PageNumber page) {
    SetBit(page, false);
}

// --- the global map ----------------------------------------------------------------------------------------

PageAllocator::PageAllocator(Pages& pages, std::function<std::vector<bool>()> claimed)
    : m_pages(&pages), m_free(pages, {kGlobalMapPage, 0}), m_claimed(std::move(claimed)) {}

void PageAllocator::RequireWholeMap() const {
    if (m_free.IsInline()) {
        return;
    }
    for (quint64 first = 0; first < m_pages->Count(); first += kPagesABitsPage) {
        if (!m_free.HasBitsPage(first / kPagesABitsPage)) {
            throw AccessError(u"空闲页位图缺少第%1页以后的部分"_s.arg(first));
        }
    }
}

PageNumber PageAllocator::Allocate() {
    const PageNumber page = TakeFree();
    m_pages->Write(page).fill(0);
    return page;
}

PageNumber PageAllocator::Allocate(UsageMap& owner) {
    const PageNumber page = Allocate();
    owner.Add(page, *this);
    return page;
}

void PageAllocator::Release(PageNumber page, UsageMap& owner) {
    owner.Remove(page);
    m_pages->Write(page)[0] = 0;
    m_free.SetBit(page, true);
}

PageNumber PageAllocator::TakeFree() {
    const std::vector<PageNumber> free = m_free.Below(m_pages->Count());
    if (!m_conflicts) {
        const std::vector<bool> claimed = m_claimed();
        m_conflicts.emplace();
        std::copy_if(free.begin(), free.end(), std::inserter(*m_conflicts, m_conflicts->end()),
                     [&](PageNumber page) { return page < claimed.size() && claimed[page]; });
    }
    const auto page = std::find_if(
        free.begin(), free.end(), [this](PageNumber candidate) { return !m_conflicts->contains(candidate); });
    if (page == free.end()) {
        return Grow();
    }
    m_free.SetBit(*page, false);
    return *page;
}

// The map has to reach as far as the file does. Bits beyond its end are 1.
PageNumber PageAllocator::Grow() {
    const PageNumber page = m_pages->Append();
    if (m_free.SetBit(page, false)) {
        return page;
    }
    std::vector<bool> used(m_pages->Count() + 1, false);
    if (m_free.IsInline()) {
        used.assign(used.size(), true);
        for (const PageNumber free : m_free.Below(page)) {
            used[free] = false;
        }
        m_free.BecomeReferences();
    }
    for (quint64 first = 0; first <= page; first += kPagesABitsPage) {
        if (!m_free.HasBitsPage(first / kPagesABitsPage)) {
            m_free.AddBitsPage(first / kPagesABitsPage, m_pages->Append(), '\xff');
        }
    }
    used.resize(m_pages->Count(), true);
    used[page] = true;
    for (PageNumber number = 0; number < used.size(); ++number) {
        if (used[number] || number >= page) {
            m_free.SetBit(number, false);
        }
    }
    return page;
}

}  // namespace quorvane::access
