// Who owns which page of a file, for finding pages with two owners (docs/access-files.md, "What is checked").
#pragma once

#include <set>
#include <vector>

#include "data/store/access/rows/usage_maps.h"

namespace quorvane::access {

class PageClaims {
public:
    explicit PageClaims(const Pages& pages) : m_pages(pages), m_used(pages.Count()) {}

    // Enters pages that something uses. Throws AccessError when one is beyond the file or has another owner.
    void Use(const std::vector<PageNumber>& pages);
    // The pages that hold a map's bits; several maps share them.
    void UseCarriers(RowAddress map);
    // Enters the pieces of a long value, which have to stand on one of the pages of its column. Throws when
    // another value has one of them.
    void UsePieces(const std::vector<RowAddress>& pieces, const std::vector<PageNumber>& pages);
    // Throws AccessError when a page in use is free in the global map.
    void RequireNotFree() const;

private:
    const Pages& m_pages;
    std::vector<bool> m_used;
    std::set<PageNumber> m_carriers;
    std::set<quint64> m_pieces;
};

}  // namespace quorvane::access
