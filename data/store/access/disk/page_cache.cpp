#include "data/store/access/disk/page_cache.h"

#include <utility>

namespace quorvane::access {

namespace {

constexpr std::size_t kMostPages = 1024;  // 4 MB: the tables of an ordinary database

}  // namespace

PagePointer PageCache::Find(PageNumber page) {
    const auto place = m_places.find(page);
    if (place == m_places.end()) {
        return nullptr;
    }
    m_entries.splice(m_entries.begin(), m_entries, place->second);
    return place->second->content;
}

void PageCache::Put(PageNumber page, PagePointer content) {
    const auto place = m_places.find(page);
    if (place != m_places.end()) {
        place->second->content = std::move(content);
        return;
    }
    if (m_entries.size() == kMostPages) {
        m_places.erase(m_entries.back().page);
        m_entries.pop_back();
    }
    m_entries.push_front({page, std::move(content)});
    m_places.emplace(page, m_entries.begin());
}

void PageCache::Clear() {
    m_places.clear();
    m_entries.clear();
}

}  // namespace quorvane::access
