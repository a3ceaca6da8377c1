#include "data/store/access/rows/data_page.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kFreeBytes = 2;
constexpr qsizetype kOwner = 4;
constexpr qsizetype kSlotCount = 12;
constexpr qsizetype kSlots = 14;
constexpr quint16 kStartMask = 0x1FFF;
constexpr quint16 kStateMask = 0xC000;

QByteArrayView View(const Page& page) {
    return {page.data(), kPageSize};
}

qsizetype SlotWord(int row) {
    return kSlots + qsizetype{2} * row;
}

qsizetype RowStart(const Page& page, int row) {
    return row < 0 ? kPageSize : ReadU16(View(page), SlotWord(row)) & kStartMask;
}

void SetSlot(Page& page, int row, qsizetype start, SlotState state) {
    WriteU16(page, SlotWord(row), static_cast<quint16>(start | static_cast<quint16>(state)));
}

void SetFreeBytes(Page& page) {
    WriteU16(page, kFreeBytes, static_cast<quint16>(FreeBytes(page)));
}

}  // namespace

int CountSlots(const Page& page) {
    const int count = ReadU16(View(page), kSlotCount);
    if (page[0] != static_cast<char>(PageKind::Data) || SlotWord(count) > kPageSize) {
        ThrowDamaged(u"a page that should hold rows does not"_s);
    }
    return count;
}

Slot ReadSlot(const Page& page, int row) {
    const int count = CountSlots(page);
    if (row >= count) {
        ThrowDamaged(u"a page has no row %1"_s.arg(row));
    }
    const quint16 word = ReadU16(View(page), SlotWord(row));
    const Slot slot{word & kStartMask, RowStart(page, row - 1), static_cast<SlotState>(word & kStateMask)};
    if (slot.start > slot.end || slot.end > kPageSize || slot.start < SlotWord(count)) {
        ThrowDamaged(u"row %1 of a page overlaps another"_s.arg(row));
    }
    return slot;
}

void CheckDataPage(const Page& page) {
    for (int row = 0; row < CountSlots(page); ++row) {
        ReadSlot(page, row);
    }
    if (ReadU16(View(page), kFreeBytes) != FreeBytes(page)) {
        ThrowDamaged(u"a page counts its free bytes wrongly"_s);
    }
}

quint32 PageOwner(const Page& page) {
    return ReadU32(View(page), kOwner);
}

qsizetype FreeBytes(const Page& page) {
    const int count = CountSlots(page);
    const qsizetype lowest = count == 0 ? kPageSize : ReadSlot(page, count - 1).start;
    return lowest - SlotWord(count);
}

bool HasRoomFor(const Page& page, qsizetype length) {
    return CountSlots(page) < kMostRows && FreeBytes(page) >= length + 2;
}

void MakeDataPage(Page& page, quint32 owner) {
    page.fill(0);
    WriteU8(page, 0, static_cast<quint8>(PageKind::Data));
    WriteU8(page, 1, 1);
    WriteU32(page, kOwner, owner);
    SetFreeBytes(page);
}

int AddRow(Page& page, QByteArrayView bytes, SlotState state) {
    const int row = CountSlots(page);
    const qsizetype start = RowStart(page, row - 1) - bytes.size();
    if (!HasRoomFor(page, bytes.size())) {
        ThrowDamaged(u"a page has less room than it says"_s);
    }
    std::copy(bytes.begin(), bytes.end(), page.begin() + start);
    WriteU16(page, kSlotCount, static_cast<quint16>(row + 1));
    SetSlot(page, row, start, state);
    SetFreeBytes(page);
    return row;
}

void ReplaceRow(Page& page, int row, QByteArrayView bytes, SlotState state) {
    const Slot slot = ReadSlot(page, row);
    const int count = CountSlots(page);
    const qsizetype growth = bytes.size() - (slot.end - slot.start);
    const qsizetype lowest = ReadSlot(page, count - 1).start;
    if (lowest - growth < SlotWord(count)) {
        ThrowDamaged(u"a page has less room than it says"_s);
    }
    for (int later = row + 1; later < count; ++later) {
        ReadSlot(page, later);  // refuses a damaged page before anything is moved
    }
    std::memmove(page.data() + lowest - growth, page.data() + lowest,
                 static_cast<std::size_t>(slot.start - lowest));
    std::copy(bytes.begin(), bytes.end(), page.begin() + (slot.end - bytes.size()));
    SetSlot(page, row, slot.start - growth, state);
    for (int later = row + 1; later < count; ++later) {
        const quint16 word = ReadU16(View(page), SlotWord(later));
        WriteU16(page, SlotWord(later), static_cast<quint16>(word - growth));
    }
    SetFreeBytes(page);
}

}  // namespace quorvane::access
