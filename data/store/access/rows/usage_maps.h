// Which pages belong to what: one bit a page (docs/access-files.md, "Usage maps").
//
// A map is a row on a data page. Its bits stand in the row itself, or on pages of their own to which the row
// refers. The global map says which pages are free; every other map lists the pages that something owns.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "data/store/access/disk/pages.h"

namespace quorvane::access {

class PageAllocator;

// All pages of a map in ascending order. Throws when the map names a page beyond the end of the file.
std::vector<PageNumber> MappedPages(const Pages& pages, RowAddress map);
// The pages of the file that nothing uses, as the global map says.
std::vector<PageNumber> FreePages(const Pages& pages);
// The pages on which the map itself is kept.
std::vector<PageNumber> MapCarriers(const Pages& pages, RowAddress map);

// One map of the file, known by the address of its row. It holds no state of its own beyond that address.
class UsageMap {
public:
    UsageMap(Pages& pages, RowAddress address) : m_pages(&pages), m_address(address) {}

    bool Contains(PageNumber page) const;
    std::vector<PageNumber> All() const { return MappedPages(*m_pages, m_address); }
    // The greatest page of the map below LIMIT.
    std::optional<PageNumber> LastBelow(PageNumber limit) const;
    void Add(PageNumber page, PageAllocator& allocator);
    void Remove(PageNumber page);

private:
    friend class PageAllocator;

    ByteSpan WriteRow();
    std::vector<PageNumber> Below(PageNumber limit) const;
    bool SetBit(PageNumber page, bool on);
    bool Shift(const std::vector<PageNumber>& members);
    // Turns the row into references; every bits page has to be added then.
    void BecomeReferences();
    bool IsInline() const;
    bool HasBitsPage(quint64 index) const;
    void AddBitsPage(quint64 index, PageNumber carrier, char fill);

    Pages* m_pages;
    RowAddress m_address;
};

// Hands out pages that nothing uses, and takes back those no longer used.
class PageAllocator {
public:
    // CLAIMED gives for every page whether some structure of the file says it owns it. It is asked once,
    // before the first allocation: a page that is free in the global map and claimed nevertheless is never
    // handed out.
    PageAllocator(Pages& pages, std::function<std::vector<bool>()> claimed);

    // Throws when the global map does not cover all pages of the file; it can be read then, but not written.
    void RequireWholeMap() const;

    // A page of zeros that belongs to nothing yet.
    PageNumber Allocate();
    // The same, entered into the owner's map.
    PageNumber Allocate(UsageMap& owner);
    // Gives a page back, and takes it out of the owner's map.
    void Release(PageNumber page, UsageMap& owner);

private:
    PageNumber TakeFree();
    PageNumber Grow();

    Pages* m_pages;
    UsageMap m_free;
    std::function<std::vector<bool>()> m_claimed;
    std::optional<std::set<PageNumber>> m_conflicts;  // free in the map, yet claimed
};

}  // namespace quorvane::access
