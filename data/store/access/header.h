// Page 0: what kind of file this is, and whether this driver may touch it (docs/access-files.md, "The
// header"). The page is never written.
#pragma once

#include "data/store/access/disk/pages.h"
#include "data/store/access/index/text_key.h"

namespace quorvane::access {

// Whether a file that begins with these bytes is an Access file of any version.
bool IsAccessFile(const QByteArray& head);

struct Header {
    quint16 codePage = 0;
    SortOrder sortOrder;       // of new columns
    bool hasPassword = false;  // the pages are readable all the same; such a file is opened for reading only
};

// Throws AccessError with the reason for a file that is not of Access 2000 to 2003, or is encrypted.
Header ReadHeader(const Page& page);

}  // namespace quorvane::access
