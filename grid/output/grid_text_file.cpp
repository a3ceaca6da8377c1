#include "grid/output/grid_text_file.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>
#include <optional>

#include "grid/grid_core.h"
#include "grid/output/tab_text.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

namespace {

TextTable TextsOf(const GridCore& core) {
    TextTable table(static_cast<std::size_t>(core.RowCount()));
    for (int row = 0; row < core.RowCount(); ++row) {
        std::vector<CString>& texts = table[static_cast<std::size_t>(row)];
        texts.resize(static_cast<std::size_t>(core.ColumnCount()));
        for (int column = 0; column < core.ColumnCount(); ++column) {
            if (core.Origin({row, column}) == CCellID{row, column}) {
                texts[static_cast<std::size_t>(column)] = core.Text({row, column});
            }
        }
    }
    return table;
}

bool Write(const GridCore& core, const CString& path) {
    // The last row has a line end too; an empty last row would be lost without it.
    const CString text = WriteTabText(TextsOf(core)) + (core.RowCount() > 0 ? u"\n"_s : CString());
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray bytes = encoder.encode(text);
    QSaveFile file(path);
    return !encoder.hasError() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           file.commit();
}

std::optional<TextTable> Read(const CString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    // Stateless: half a character at the end is an error and does not wait for its other half.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const CString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(ReadTabText(text));
}

}  // namespace

bool SaveGridText(const GridCore& core, const CString& path, CString& failure) {
    if (!Write(core, path)) {
        failure = u"Unable to save grid list"_s;
        return false;
    }
    return true;
}

bool LoadGridText(GridCore& core, const CString& path, CString& failure) {
    const std::optional<TextTable> table = Read(path);
    std::size_t columns = 0;
    for (const std::vector<CString>& row : table.value_or(TextTable())) {
        columns = std::max(columns, row.size());
    }
    // One long line would make every row as long as itself.
    constexpr std::size_t kMostCells = 20'000'000;
    if (!table || (columns > 0 && table->size() > kMostCells / columns)) {
        failure = u"Unable to load grid data"_s;
        return false;
    }
    core.SetCount(Qt::Vertical, static_cast<int>(table->size()));
    core.SetCount(Qt::Horizontal, static_cast<int>(columns));
    for (int row = 0; row < core.RowCount(); ++row) {
        const std::vector<CString>& texts = (*table)[static_cast<std::size_t>(row)];
        for (int column = 0; column < core.ColumnCount(); ++column) {
            const auto place = static_cast<std::size_t>(column);
            core.SetText({row, column}, place < texts.size() ? texts[place] : CString());
        }
    }
    return true;
}

}  // namespace quorvane
