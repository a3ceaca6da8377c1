// Pages (docs/access-files.md, "Pages") that were read lately, so that not the whole file has to be in
// memory.
#pragma once

#include <list>
#include <unordered_map>

#include "data/store/access/disk/pages.h"

namespace quorvane::access {

class PageCache {
public:
    // Null when the page is not here.
    PagePointer Find(PageNumber page);
    void Put(PageNumber page, PagePointer content);
    void Clear();

private:
    struct Entry {
        PageNumber page = 0;
        PagePointer content;
    };
    std::list<Entry> m_entries;  // used last in front
    std::unordered_map<PageNumber, std::list<Entry>::iterator> m_places;
};

}  // namespace quorvane::access
