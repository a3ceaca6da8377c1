// Which pages belong to what: one bit a page. Format: docs/access-files.md, "Usage maps".
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "data/store/access/pages.h"

namespace quorvane::access {

class PageAllocator;

// One map of the file, known by the address of its row. It holds no state of its own beyond that address.
class UsageMap {
public:
    UsageMap(Pages& pages, RowAddress address) : m_pages(&pages), m_address(address) {}

    bool Contains(PageNumber page) const;
    // All pages of the map in ascending order, whether the file has them or not.
    std::vector<PageNumber> All() const;
    // The greatest page of the map that lies below LIMIT.
    std::optional<PageNumber> LastBelow(PageNumber limit) const;
    // The pages on which the map itself is kept.
    std::vector<PageNumber> Carriers() const;

    void Add(PageNumber page, PageAllocator& allocator);
    void Remove(PageNumber page);

private:
    friend class PageAllocator;
    struct Shape;

    Shape ReadShape() const;
    ByteSpan WriteRow() const;
    bool SetBit(PageNumber page, bool on);
    void Grow(PageNumber page, PageAllocator& allocator);
    void TurnIntoReferences(PageAllocator& allocator);
    void AddBitsPage(std::size_t index, PageAllocator& allocator);

    Pages* m_pages;
    RowAddress m_address;
};

// Hands out pages that nothing uses and takes back those no longer used (the global map).
class PageAllocator {
public:
    // CLAIMED gives every page that some structure of the file says it owns. It is asked once, before the first
    // allocation: a page that is free in the global map and claimed nevertheless is never handed out.
    PageAllocator(Pages& pages, std::function<std::vector<bool>()> claimed);

    // A page of zeros that belongs to nothing yet.
    PageNumber Allocate();
    // The same, entered into the owner's map.
    PageNumber Allocate(UsageMap& owner);
    // Gives a page back; Release with an owner takes it out of the owner's map first.
    void Release(PageNumber page);
    void Release(PageNumber page, UsageMap& owner);

private:
    friend class UsageMap;
    void LoadConflicts();

    Pages* m_pages;
    UsageMap m_free;
    std::function<std::vector<bool>()> m_claimed;
    std::optional<std::set<PageNumber>> m_conflicts;  // free in the map, yet claimed
};

}  // namespace quorvane::access
