#include "data/store/access/check/page_claims.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

void PageClaims::Use(const std::vector<PageNumber>& pages) {
    for (const PageNumber page : pages) {
        if (page == 0 || page >= m_used.size()) {
            ThrowDamaged(u"page %1 is not in the file"_s.arg(page));
        }
        if (m_used[page]) {
            ThrowDamaged(u"page %1 is used twice"_s.arg(page));
        }
        m_used[page] = true;
    }
}

void PageClaims::UseCarriers(RowAddress map) {
    for (const PageNumber page : MapCarriers(m_pages, map)) {
        if (m_carriers.insert(page).second) {
            Use({page});
        }
    }
}

void PageClaims::UsePieces(const std::vector<RowAddress>& pieces, const std::vector<PageNumber>& pages) {
    for (const RowAddress piece : pieces) {
        if (!std::binary_search(pages.begin(), pages.end(), piece.page)) {
            ThrowDamaged(u"a piece of a long value stands on a page of another column"_s);
        }
        if (!m_pieces.insert(quint64{piece.page} << 8 | piece.row).second) {
            ThrowDamaged(u"two long values share a piece"_s);
        }
    }
}

void PageClaims::RequireNotFree() const {
    for (const PageNumber page : FreePages(m_pages)) {
        if (page < m_used.size() && m_used[page]) {
            ThrowDamaged(u"page %1 is in use and marked as free"_s.arg(page));
        }
    }
}

}  // namespace quorvane::access
