#include "data/store/access/check/page_claims.h"

namespace quorvane::access {

void PageClaims::Use(const std::vector<PageNumber>& pages) {
    for (const PageNumber page : pages) {
        if (page == 0 || page >= m_used.size()) {
            ThrowDamaged(QStringLiteral("page %1 is not in the file").arg(page));
        }
        if (m_used[page]) {
            ThrowDamaged(QStringLiteral("page %1 is used twice").arg(page));
        }
        m_used[page] = true;
        m_claimed[page] = true;
    }
}

void PageClaims::UseCarriers(RowAddress map) {
    for (const PageNumber page : MapCarriers(m_pages, map)) {
        if (m_carriers.insert(page).second) {
            Use({page});
        }
    }
}

void PageClaims::Claim(const std::vector<PageNumber>& pages) {
    for (const PageNumber page : pages) {
        if (page < m_claimed.size()) {
            m_claimed[page] = true;
        }
    }
}

void PageClaims::RequireNotFree() const {
    for (const PageNumber page : FreePages(m_pages)) {
        if (page < m_used.size() && m_used[page]) {
            ThrowDamaged(QStringLiteral("page %1 is in use and marked as free").arg(page));
        }
    }
}

}  // namespace quorvane::access
