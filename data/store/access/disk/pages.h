// The pages of an Access file: reading them, and changing them in statements (docs/access-files.md, "Pages").
#pragma once

#include <array>
#include <compare>
#include <memory>

#include "data/store/access/bytes.h"

namespace quorvane::access {

inline constexpr qsizetype kPageSize = 4096;

using PageNumber = quint32;
using Page = std::array<char, kPageSize>;
using PagePointer = std::shared_ptr<const Page>;

// Byte 0 of a page. It says nothing of a page that no structure of the file owns.
enum class PageKind : quint8 { Data = 1, Definition = 2, IndexNode = 3, IndexLeaf = 4, MapBits = 5 };

// Where a row stands, a usage map, or a piece of a long value. In the file it is the row's byte followed by
// the page (u24); in index entries it is the page with its most significant byte first, then the row.
struct RowAddress {
    PageNumber page = 0;
    quint8 row = 0;
    auto operator<=>(const RowAddress&) const = default;
};

// A row address as it stands outside of index entries.
inline RowAddress ReadRowAddress(QByteArrayView bytes, qsizetype offset) {
    return {ReadU24(bytes, offset + 1), ReadU8(bytes, offset)};
}
inline void WriteRowAddress(ByteSpan bytes, qsizetype offset, RowAddress address) {
    WriteU32(bytes, offset, address.row | address.page << 8);
}

class Pages {
public:
    virtual ~Pages() = default;

    // How many pages there are, those that the present statement has appended included.
    virtual PageNumber Count() const = 0;
    // A page as it is now. After a Write of the same page, read again.
    // Throws when there is no such page.
    virtual PagePointer Read(PageNumber page) const = 0;
    // The page for changing; only inside a statement, and never page 0. Valid until the statement ends.
    virtual Page& Write(PageNumber page) = 0;
    // Adds a page of zeros at the end and gives its number. Throws at the limit of 2 GB.
    virtual PageNumber Append() = 0;
};

}  // namespace quorvane::access
