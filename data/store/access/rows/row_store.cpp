#include "data/store/access/rows/row_store.h"

namespace quorvane::access {

namespace {

constexpr qsizetype kLeastRoom = 32;  // a page with less is no longer listed among those with room
constexpr qsizetype kPointerLength = 4;

// Whether the row would fit when it took the place of what stands in the slot.
bool FitsInPlace(const Page& page, RowAddress slot, qsizetype length) {
    const Slot present = ReadSlot(page, slot.row);
    return length <= present.end - present.start + FreeBytes(page);
}

}  // namespace

RowStore::RowStore(Pages& pages, PageAllocator& allocator, const TableDefinition& table)
    : m_pages(pages),
      m_allocator(allocator),
      m_table(table),
      m_owned(pages, table.owned),
      m_withRoom(pages, table.withRoom) {}

void RowStore::Forget() {
    m_lastPage = 0;
    m_noRoomFor = 0;
}

RowAddress RowStore::Add(const QByteArray& row) {
    return Place(row, SlotState::Row);
}

void RowStore::Replace(const FoundRow& found, const QByteArray& row) {
    const bool moved = found.data != found.home;
    if (FitsInPlace(*m_pages.Read(found.data.page), found.data, row.size())) {
        Put(found.data, row, moved ? SlotState::Target : SlotState::Row);
        return;
    }
    if (moved) {
        Put(found.data, {}, SlotState::Deleted);
        if (FitsInPlace(*m_pages.Read(found.home.page), found.home, row.size())) {
            Put(found.home, row, SlotState::Row);
            return;
        }
    }
    const RowAddress target = Place(row, SlotState::Target);
    QByteArray pointer(kPointerLength, '\0');
    WriteRowAddress(ByteSpan(pointer.data(), kPointerLength), 0, target);
    Put(found.home, pointer, SlotState::Pointer);
}

void RowStore::Remove(const FoundRow& found) {
    Put(found.home, {}, SlotState::Deleted);
    if (found.data != found.home) {
        Put(found.data, {}, SlotState::Deleted);
    }
}

void RowStore::Put(RowAddress slot, QByteArrayView bytes, SlotState state) {
    Page& page = m_pages.Write(slot.page);
    const qsizetype before = FreeBytes(page);
    ReplaceRow(page, slot.row, bytes, state);
    const qsizetype after = FreeBytes(page);
    if (after < kLeastRoom) {
        m_withRoom.Remove(slot.page);
    } else if (after > before && CountSlots(page) < kMostRows) {
        m_withRoom.Add(slot.page, m_allocator);
        m_noRoomFor = 0;
    }
}

RowAddress RowStore::Place(const QByteArray& row, SlotState state) {
    const PageNumber number = PageWithRoom(row.size());
    Page& page = m_pages.Write(number);
    const int slot = AddRow(page, row, state);
    if (FreeBytes(page) < kLeastRoom || CountSlots(page) >= kMostRows) {
        m_withRoom.Remove(number);
    }
    m_lastPage = number;
    return {number, static_cast<quint8>(slot)};
}

// A search that finds nothing has looked at every page with room. Rows of that length and longer ones then go
// to new pages, until a page gains room. A row that moves never finds room on the page that it leaves.
PageNumber RowStore::PageWithRoom(qsizetype length) {
    const auto fits = [&](PageNumber number) {
        const PagePointer page = m_pages.Read(number);
        return PageOwner(*page) == m_table.page && HasRoomFor(*page, length);
    };
    if (m_lastPage != 0 && fits(m_lastPage)) {
        return m_lastPage;
    }
    if (m_noRoomFor == 0 || length < m_noRoomFor) {
        for (auto number = m_withRoom.LastBelow(m_pages.Count()); number;
             number = m_withRoom.LastBelow(*number)) {
            if (fits(*number)) {
                return *number;
            }
        }
        m_noRoomFor = length;
    }
    const PageNumber added = m_allocator.Allocate(m_owned);
    MakeDataPage(m_pages.Write(added), m_table.page);
    m_withRoom.Add(added, m_allocator);
    return added;
}

}  // namespace quorvane::access
