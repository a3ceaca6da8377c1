// Rows on a data page: slots in front, bytes growing from the end (docs/access-files.md, "Data pages").
// Usage maps and pieces of long values are rows of such pages too.
#pragma once

#include "data/store/access/disk/pages.h"

namespace quorvane::access {

inline constexpr int kGreatestRow = 255;  // a row's number is one byte
inline constexpr int kMostRows = 255;     // a page takes no more from this driver
inline constexpr qsizetype kMostRowBytes = 4060;
inline constexpr quint32 kLongValueOwner = 0x4C41564C;  // "LVAL" in the place of a table's page

enum class SlotState : quint16 {
    Row = 0x0000,
    Pointer = 0x4000,  // the row has moved: here stands the address of its data
    Target = 0x8000,   // data of a moved row
    Deleted = 0xC000,
};

struct Slot {
    qsizetype start = 0;
    qsizetype end = 0;
    SlotState state = SlotState::Row;
};

// Throws when the page is no data page, or is damaged before the row.
int CountSlots(const Page& page);
Slot ReadSlot(const Page& page, int row);
// Throws unless all slots are sound and the free bytes are counted rightly.
void CheckDataPage(const Page& page);
quint32 PageOwner(const Page& page);
qsizetype FreeBytes(const Page& page);

inline QByteArrayView SlotBytes(const Page& page, const Slot& slot) {
    return QByteArrayView(page.data(), kPageSize).sliced(slot.start, slot.end - slot.start);
}

// Whether the page takes one more row of this length.
bool HasRoomFor(const Page& page, qsizetype length);

// All three keep the slots' numbers and the count of free bytes.
void MakeDataPage(Page& page, quint32 owner);
int AddRow(Page& page, QByteArrayView bytes, SlotState state);
// The caller has made sure that the page has room.
void ReplaceRow(Page& page, int row, QByteArrayView bytes, SlotState state);

}  // namespace quorvane::access
