#include "data/store/access/sql/row_cursor.h"

namespace quorvane::access {

void RowCursor::Start(RowPath path, const QByteArray& key) {
    StartEmpty();
    const bool isSameIndex = m_path.kind == path.kind && m_path.index == path.index;
    m_path = path;
    if (path.kind == RowPath::Kind::Scan) {
        m_scan.emplace(m_table.Scan());
        if (!m_scan->AtEnd()) {
            m_row = m_scan->Row();
        }
        return;
    }
    if (path.kind == RowPath::Kind::Key) {
        // A join asks for the same key many times.
        if (!isSameIndex || key != m_key || m_changesAtPlace != m_changes) {
            m_key.clear();
            m_rows = m_table.Entries(*path.index).Rows(key);
            m_key = key;
            m_changesAtPlace = m_changes;
        }
        m_next = 0;
    } else {
        m_index.emplace(m_table.Entries(*path.index));
    }
    MoveNext();
}

void RowCursor::StartEmpty() {
    m_view.reset();
    m_row.reset();
    m_scan.reset();
    m_next = m_rows.size();
    m_index.reset();
    m_place.reset();
    m_entry.clear();
}

void RowCursor::MoveNext() {
    m_view.reset();
    m_row.reset();
    if (m_scan) {
        m_scan->MoveNext();
        if (!m_scan->AtEnd()) {
            m_row = m_scan->Row();
        }
        return;
    }
    // A row may have been deleted since its address was read.
    while (!m_row) {
        const std::optional<RowAddress> address = NextAddress();
        if (!address) {
            return;
        }
        m_row = m_table.Find(*address);
    }
}

Value RowCursor::Read(const Column& column) {
    if (!m_view) {
        m_view.emplace(m_table.Definition(), m_row->bytes);
    }
    return m_table.Read(*m_view, column);
}

std::optional<RowAddress> RowCursor::NextAddress() {
    if (m_path.kind != RowPath::Kind::Key) {
        return NextInIndex();
    }
    return m_next < m_rows.size() ? std::optional(m_rows[m_next++]) : std::nullopt;
}

std::optional<RowAddress> RowCursor::NextInIndex() {
    const bool forward = m_path.kind == RowPath::Kind::Forward;
    if (m_entry.isNull()) {
        m_place.emplace(forward ? m_index->First() : m_index->Last());
    } else if (m_changesAtPlace != m_changes) {
        m_place.emplace(PlaceAfterChange());
    } else {
        forward ? m_place->MoveNext() : m_place->MovePrevious();
    }
    m_changesAtPlace = m_changes;
    if (m_place->AtEnd()) {
        return std::nullopt;
    }
    m_entry = m_place->Entry();
    return RowOfEntry(m_entry);
}

// The place next to the entry that was read last. That entry may be gone.
IndexCursor RowCursor::PlaceAfterChange() const {
    IndexCursor place = m_index->Seek(m_entry);
    if (m_path.kind == RowPath::Kind::Forward) {
        if (!place.AtEnd() && place.Entry() == m_entry) {
            place.MoveNext();
        }
        return place;
    }
    if (place.AtEnd()) {
        return m_index->Last();
    }
    place.MovePrevious();
    return place;
}

}  // namespace quorvane::access
