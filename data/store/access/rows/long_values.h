// Values too long for their row: memos and pictures (docs/access-files.md, "Long values").
//
// The row holds a head of 12 bytes. The value follows it, or stands in one piece or a chain of pieces on
// pages that belong to the column. Each piece belongs to one row.
#pragma once

#include "data/store/access/rows/usage_maps.h"

namespace quorvane::access {

// The value behind a head. Throws when the pieces are not what the head says.
QByteArray ReadLongValue(const Pages& pages, QByteArrayView head);
// Where its pieces stand; none when it follows its head. Throws as ReadLongValue does.
std::vector<RowAddress> LongValuePieces(const Pages& pages, QByteArrayView head);

class LongValueWriter {
public:
    // The maps list the column's pages, and those with room among them.
    LongValueWriter(Pages& pages, PageAllocator& allocator, RowAddress owned, RowAddress withRoom);

    // Stores a value and gives what goes into the row.
    QByteArray Store(const QByteArray& value);
    // Removes the pieces of a value that its row no longer names.
    void Release(QByteArrayView head);

private:
    RowAddress AddPiece(const QByteArray& piece);
    PageNumber PageWithRoom(qsizetype length);
    void RemovePiece(RowAddress piece);

    Pages& m_pages;
    PageAllocator& m_allocator;
    UsageMap m_owned;
    UsageMap m_withRoom;
};

}  // namespace quorvane::access
