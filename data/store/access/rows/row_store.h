// Where the rows of a table stand: adding them, letting them grow and shrink, removing them
// (docs/access-files.md, "Writing rows"). A row keeps its address, whatever happens to its bytes.
#pragma once

#include "data/store/access/rows/table_scan.h"
#include "data/store/access/rows/usage_maps.h"

namespace quorvane::access {

class RowStore {
public:
    // The definition must outlive the store.
    RowStore(Pages& pages, PageAllocator& allocator, const TableDefinition& table);

    RowAddress Add(const QByteArray& row);
    void Replace(const FoundRow& found, const QByteArray& row);
    void Remove(const FoundRow& found);

    // To be called when a statement was rolled back.
    void Forget();

private:
    PageNumber PageWithRoom(qsizetype length);
    RowAddress Place(const QByteArray& row, SlotState state);
    void Put(RowAddress slot, QByteArrayView bytes, SlotState state);

    Pages& m_pages;
    PageAllocator& m_allocator;
    const TableDefinition& m_table;
    UsageMap m_owned;
    UsageMap m_withRoom;
    PageNumber m_lastPage = 0;  // where a row was put last; 0: not known
    qsizetype m_noRoomFor = 0;  // no page but the last has room for so many bytes; 0: not known
};

}  // namespace quorvane::access
