#include "data/store/access/rows/table_scan.h"

#include "data/store/access/rows/usage_maps.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

PagePointer ReadOwned(const Pages& pages, const TableDefinition& table, PageNumber number) {
    PagePointer page = pages.Read(number);
    if (PageOwner(*page) != table.page) {
        ThrowDamaged(u"page %1 belongs to another table"_s.arg(number));
    }
    return page;
}

std::optional<FoundRow> RowOnPage(const Pages& pages, const TableDefinition& table, const PagePointer& page,
                                  RowAddress home) {
    const Slot slot = ReadSlot(*page, home.row);
    switch (slot.state) {
        case SlotState::Row:
            return FoundRow{home, home, page, SlotBytes(*page, slot)};
        case SlotState::Pointer:
            break;
        default:
            return std::nullopt;
    }
    const RowAddress data = ReadRowAddress(SlotBytes(*page, slot), 0);
    PagePointer target = ReadOwned(pages, table, data.page);
    const Slot moved = ReadSlot(*target, data.row);
    if (moved.state != SlotState::Target) {
        ThrowDamaged(u"a moved row is not where it should be"_s);
    }
    const QByteArrayView bytes = SlotBytes(*target, moved);
    return FoundRow{home, data, std::move(target), bytes};
}

}  // namespace

std::optional<FoundRow> FindRow(const Pages& pages, const TableDefinition& table, RowAddress home) {
    return RowOnPage(pages, table, ReadOwned(pages, table, home.page), home);
}

TableScan::TableScan(const Pages& pages, const TableDefinition& table)
    : m_pages(&pages), m_table(&table), m_numbers(MappedPages(pages, table.owned)) {
    MoveNext();
}

void TableScan::MoveNext() {
    for (m_row.reset(); m_position < m_numbers.size() && !m_row;) {
        const PageNumber number = m_numbers[m_position];
        if (m_page == nullptr) {
            m_page = ReadOwned(*m_pages, *m_table, number);
            m_next = 0;
        }
        if (m_next >= CountSlots(*m_page) || m_next > kGreatestRow) {
            m_page.reset();
            ++m_position;
            continue;
        }
        m_row = RowOnPage(*m_pages, *m_table, m_page, {number, static_cast<quint8>(m_next)});
        ++m_next;
    }
}

}  // namespace quorvane::access
