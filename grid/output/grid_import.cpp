#include "grid/output/grid_import.h"

#include <QHash>
#include <QSet>
#include <algorithm>

#include "grid/grid_core.h"

namespace quorvane {
namespace {

// A spreadsheet may have written "0.50" as "0.5".
bool IsSame(const CString& left, const CString& right) {
    bool leftIsNumber = false;
    bool rightIsNumber = false;
    const double leftValue = left.toDouble(&leftIsNumber);
    const double rightValue = right.toDouble(&rightIsNumber);
    return left == right || (leftIsNumber && rightIsNumber && leftValue == rightValue);
}

CString Key(const CString& text) {
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber ? CString::number(value, 'g', 15) : CString(text).remove(u' ').trimmed();
}

class Import {
public:
    Import(const GridCore& core, const TextTable& table)
        : m_core(core), m_table(table), m_headings(core.Layout().rows.FixedCount()) {}

    GridImport Run() {
        FindColumns();
        FindRows();
        for (int row = m_headings; row < static_cast<int>(m_table.size()); ++row) {
            TakeRow(row);
        }
        for (const PasteLoss::Refused& refused : LossOf(m_core, m_import.entries).refused) {
            ++m_import.lostTexts;
            m_import.changedCells -= refused.cell.row < m_core.FilledRowCount() ? 1 : 0;
        }
        return std::move(m_import);
    }

private:
    CString TextAt(int row, int column) const {
        const bool isInside = row < static_cast<int>(m_table.size()) &&
                              column < static_cast<int>(m_table[static_cast<std::size_t>(row)].size());
        return isInside ? m_table[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]
                        : CString();
    }
    int Width() const {
        std::size_t width = 0;
        for (const std::vector<CString>& row : m_table) {
            width = std::max(width, row.size());
        }
        return static_cast<int>(width);
    }

    void FindColumns() {
        QHash<CString, int> columns;
        for (int column = m_core.ColumnCount() - 1; column >= 0; --column) {
            columns.insert(HeadingKey([&](int row) {
                               return m_core.Text(m_core.Origin({row, column}));
                           }),
                           column);
        }
        QSet<int> found;
        for (int column = 0; column < Width(); ++column) {
            int target = columns.value(HeadingKey([&](int row) { return TextAt(row, column); }), -1);
            target = found.contains(target) ? -1 : target;
            found.insert(target);
            m_columns.push_back(target);
            m_import.columns += target > 0 ? 1 : 0;
        }
    }
    template <typename TextOf>
    CString HeadingKey(const TextOf& textOf) const {
        CString key;
        for (int row = 0; row < m_headings; ++row) {
            key += Key(textOf(row)) + u'\n';
        }
        return key;
    }

    void FindRows() {
        for (int row = m_core.FilledRowCount() - 1; row >= m_headings; --row) {
            m_rows.insert(Key(m_core.Text({row, 0})), row);
        }
    }

    void TakeRow(int row) {
        const auto head = std::find(m_columns.begin(), m_columns.end(), 0);
        const CString key = head == m_columns.end()
                                ? CString()
                                : Key(TextAt(row, static_cast<int>(head - m_columns.begin())));
        const int known = m_rows.value(key, -1);
        const int target = known >= 0 ? known : m_core.FilledRowCount() + m_import.newRows;
        const bool hasPlace = known >= 0 || m_core.hasAppendRow;
        bool isUsed = false;
        for (int column = 0; column < static_cast<int>(m_columns.size()); ++column) {
            const CString text = TextAt(row, column);
            const int place = m_columns[static_cast<std::size_t>(column)];
            if (place == 0 || (known < 0 && text.isEmpty())) {
                continue;
            }
            if (place < 0 || !hasPlace) {
                m_import.lostTexts += text.isEmpty() ? 0 : 1;
            } else if (known < 0 || !IsSame(text, m_core.Text({known, place}))) {
                m_import.entries.push_back({{target, place}, text});
                m_import.changedCells += known >= 0 ? 1 : 0;
                isUsed = true;
            }
        }
        m_import.newRows += known < 0 && isUsed ? 1 : 0;
    }

    const GridCore& m_core;
    const TextTable& m_table;
    const int m_headings;
    std::vector<int> m_columns;  // by column of the table: the grid's, or -1
    QHash<CString, int> m_rows;  // by row head
    GridImport m_import;
};

}  // namespace

GridImport ImportOf(const GridCore& core, const TextTable& table) {
    return Import(core, table).Run();
}

}  // namespace quorvane
