#include "grid/output/grid_text_file.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>
#include <optional>

#include "grid/grid_ctrl.h"
#include "grid/output/tab_text.h"

namespace quorvane {
namespace {

TextTable TextsOf(const CGridCtrl& grid) {
    TextTable table(static_cast<std::size_t>(grid.GetRowCount()));
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        std::vector<CString>& texts = table[static_cast<std::size_t>(row)];
        texts.resize(static_cast<std::size_t>(grid.GetColumnCount()));
        for (int column = 0; column < grid.GetColumnCount(); ++column) {
            if (grid.MergeOrigin(row, column) == CCellID{row, column}) {
                texts[static_cast<std::size_t>(column)] = grid.GetItemText(row, column);
            }
        }
    }
    return table;
}

bool Write(const CGridCtrl& grid, const CString& path) {
    // The last row has its line end, too: an empty one would not be seen without it.
    const CString text =
        WriteTabText(TextsOf(grid)) + (grid.GetRowCount() > 0 ? QStringLiteral("\n") : CString());
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
    // Otherwise half a character at the end would wait for its other half and not be an error.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const CString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(ReadTabText(text));
}

}  // namespace

bool SaveGridText(const CGridCtrl& grid, const CString& path, CString& failure) {
    if (!Write(grid, path)) {
        failure = QStringLiteral("Unable to save grid list");
        return false;
    }
    return true;
}

bool LoadGridText(CGridCtrl& grid, const CString& path, CString& failure) {
    const std::optional<TextTable> table = Read(path);
    std::size_t columns = 0;
    for (const std::vector<CString>& row : table.value_or(TextTable())) {
        columns = std::max(columns, row.size());
    }
    // One long line would make every row as long as itself.
    constexpr std::size_t MostCells = 20'000'000;
    if (!table || (columns > 0 && table->size() > MostCells / columns)) {
        failure = QStringLiteral("Unable to load grid data");
        return false;
    }
    grid.SetRowCount(static_cast<int>(table->size()));
    grid.SetColumnCount(static_cast<int>(columns));
    for (int row = 0; row < grid.GetRowCount(); ++row) {
        const std::vector<CString>& texts = (*table)[static_cast<std::size_t>(row)];
        for (int column = 0; column < grid.GetColumnCount(); ++column) {
            const auto place = static_cast<std::size_t>(column);
            grid.SetItemText(row, column, place < texts.size() ? texts[place] : CString());
        }
    }
    return true;
}

}  // namespace quorvane
