#include "data/store/access/index/row_key.h"

#include <algorithm>

#include "data/store/access/index/key.h"
#include "data/store/access/rows/text.h"

namespace quorvane::access {

namespace {

constexpr qsizetype kUsualLength = 32;  // bytes of a key, so that few grow

const StoredValue& At(const StoredValues& contents, const IndexColumn& column) {
    return contents[static_cast<std::size_t>(column.number)];
}

void AppendColumn(QByteArray& key, const Column& column, bool ascending, const StoredValue& content) {
    const KeyColumn part{column.type, ascending, column.sortOrder};
    if (!column.IsText()) {
        AppendKey(key, part, content);
    } else if (content) {
        AppendTextKey(key, part, DecodeText(*content));
    } else {
        AppendTextKey(key, part, std::nullopt);
    }
}

}  // namespace

QByteArray RowKey(const TableDefinition& table, const IndexDescription& index, const StoredValues& contents) {
    return RowKey(table, index, contents, index.columns.size());
}

QByteArray RowKey(const TableDefinition& table, const IndexDescription& index, const StoredValues& contents,
                  std::size_t count) {
    QByteArray key;
    key.reserve(kUsualLength);
    for (std::size_t place = 0; place < count; ++place) {
        const IndexColumn& part = index.columns[place];
        const Column& column = *table.Find(part.number);
        try {
            AppendColumn(key, column, part.ascending, At(contents, part));
        } catch (const AccessError& error) {
            throw error.InColumn(column.name);
        }
    }
    return key;
}

bool HasNull(const IndexDescription& index, const StoredValues& contents) {
    return std::any_of(index.columns.begin(), index.columns.end(),
                       [&](const IndexColumn& column) { return !At(contents, column); });
}

bool IsAllNull(const IndexDescription& index, const StoredValues& contents) {
    return std::none_of(index.columns.begin(), index.columns.end(),
                        [&](const IndexColumn& column) { return At(contents, column).has_value(); });
}

}  // namespace quorvane::access
