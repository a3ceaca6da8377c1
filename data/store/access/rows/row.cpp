#include "data/store/access/rows/row.h"

#include <algorithm>

#include "data/store/access/rows/data_page.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kFixedPart = 2;  // behind the count of columns

qsizetype MaskLength(int columns) {
    return (columns + 7) / 8;
}

qsizetype FixedLength(const TableDefinition& table) {
    qsizetype length = 0;
    for (const Column& column : table.columns) {
        if (column.fixed && column.type != ColumnType::Boolean) {
            length = std::max<qsizetype>(length, column.fixedOffset + column.length);
        }
    }
    return length;
}

// A boolean's bit is its value; of all others it says that there is one.
bool MaskBit(const Column& column, const StoredValue& value) {
    return value && (column.type != ColumnType::Boolean || *value != QByteArray(1, '\0'));
}

}  // namespace

RowView::RowView(const TableDefinition& table, QByteArrayView bytes) : m_table(table), m_bytes(bytes) {
    m_columns = ReadU16(bytes, 0);
    m_mask = bytes.size() - MaskLength(m_columns);
    if (m_columns == 0 || m_columns > table.maxColumns || m_mask < kFixedPart) {
        ThrowDamaged(u"a row says that it has %1 columns"_s.arg(m_columns));
    }
    m_fixedEnd = m_mask;
    if (table.variableColumns > 0) {
        m_variables = ReadU16(bytes, m_mask - 2);
        if (m_variables > table.variableColumns) {
            ThrowDamaged(u"a row says that it has %1 variable columns"_s.arg(m_variables));
        }
        m_fixedEnd = ReadU16(bytes, m_mask - 4);
    }
}

bool RowView::IsNull(const Column& column) const {
    if (column.number >= m_columns) {
        return true;
    }
    return (ReadU8(m_bytes, m_mask + column.number / 8) >> column.number % 8 & 1) == 0;
}

QByteArrayView RowView::Bytes(const Column& column) const {
    if (!column.fixed) {
        return Variable(column.variableIndex);
    }
    return Part(m_bytes.first(std::min(m_fixedEnd, m_bytes.size())), kFixedPart + column.fixedOffset,
                column.length);
}

// The starts stand backwards in front of the null mask, the end of the last value in front of them.
QByteArrayView RowView::Variable(int index) const {
    if (index >= m_variables) {
        ThrowDamaged(u"a row lacks a value that it says it has"_s);
    }
    const qsizetype starts = m_mask - 4;
    const qsizetype start = ReadU16(m_bytes, starts - qsizetype{2} * index);
    const qsizetype end = ReadU16(m_bytes, starts - qsizetype{2} * (index + 1));
    if (start < kFixedPart || end > starts - qsizetype{2} * m_variables) {
        ThrowDamaged(u"a value of a row stands outside it"_s);
    }
    return Part(m_bytes, start, end - start);
}

StoredValues RowView::All() const {
    StoredValues values(static_cast<std::size_t>(m_table.maxColumns));
    for (const Column& column : m_table.columns) {
        StoredValue& value = values[static_cast<std::size_t>(column.number)];
        if (column.type == ColumnType::Boolean) {
            value = QByteArray(1, IsNull(column) ? '\0' : '\1');
        } else if (!IsNull(column)) {
            value = Bytes(column).toByteArray();
        }
    }
    return values;
}

QByteArray EncodeRow(const TableDefinition& table, const StoredValues& values) {
    QByteArray row(kFixedPart + FixedLength(table), '\0');
    QByteArray mask(MaskLength(table.maxColumns), '\0');
    std::vector<const QByteArray*> variables(static_cast<std::size_t>(table.variableColumns), nullptr);
    for (const Column& column : table.columns) {
        const StoredValue& value = values[static_cast<std::size_t>(column.number)];
        if (!MaskBit(column, value)) {
            continue;
        }
        char& bits = mask[column.number / 8];
        bits = static_cast<char>(bits | 1 << column.number % 8);
        if (column.type == ColumnType::Boolean) {
            continue;
        }
        if (column.fixed) {
            row.replace(kFixedPart + column.fixedOffset, column.length, *value);
        } else {
            variables[static_cast<std::size_t>(column.variableIndex)] = &*value;
        }
    }
    WriteU16(ByteSpan(row.data(), 2), 0, static_cast<quint16>(table.maxColumns));
    std::vector<quint64> starts;
    for (const QByteArray* value : variables) {
        starts.push_back(static_cast<quint64>(row.size()));
        row += value != nullptr ? *value : QByteArray();
    }
    if (table.variableColumns > 0) {
        AppendNumber(row, 2, static_cast<quint64>(row.size()));
        for (auto start = starts.rbegin(); start != starts.rend(); ++start) {
            AppendNumber(row, 2, *start);
        }
        AppendNumber(row, 2, starts.size());
    }
    row += mask;
    if (row.size() > kMostRowBytes) {
        throw AccessError(u"记录需要%1字节,而最多为%2字节"_s.arg(row.size()).arg(kMostRowBytes));
    }
    return row;
}

}  // namespace quorvane::access
