#include "grid/output/grid_text_file.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>
#include <algorithm>

#include "grid/grid_core.h"
#include "grid/output/gb18030.h"

namespace quorvane {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 kLargestFile = 64 << 20;
constexpr std::size_t kMostCells = 20'000'000;

TextTable TextsOf(const GridCore& core) {
    TextTable table(static_cast<std::size_t>(core.FilledRowCount()));
    for (int row = 0; row < core.FilledRowCount(); ++row) {
        std::vector<CString>& texts = table[static_cast<std::size_t>(row)];
        for (int column = 0; column < core.ColumnCount(); ++column) {
            const CCellID cell{row, column};
            const CCellID shown = core.Layout().IsFixed(cell) ? core.Origin(cell) : cell;
            texts.push_back(core.Text(shown));
        }
    }
    return table;
}

bool IsFormula(const CString& text) {
    bool isNumber = false;
    text.toDouble(&isNumber);
    return !text.isEmpty() && u"=+-@"_s.contains(text.front()) && !isNumber;
}

// Stateless: half a character at the end is an error and does not wait for its other half.
std::optional<CString> FromUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    CString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

std::optional<CString> Read(const CString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestFile) {
        return std::nullopt;
    }
    const QByteArray bytes = file.read(kLargestFile);
    if (file.error() != QFileDevice::NoError || bytes.contains('\0')) {
        return std::nullopt;
    }
    std::optional<CString> text = FromUtf8(bytes);
    return text ? text : FromGb18030(bytes);
}

}  // namespace

bool SaveGridText(const GridCore& core, const CString& path) {
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const QByteArray bytes = "\xEF\xBB\xBF" + QByteArray(encoder.encode(WriteCsv(TextsOf(core))));
    QSaveFile file(path);
    // Unbuffered, because commit() reports no failure to write the buffer.
    return !encoder.hasError() && file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           file.write(bytes) == bytes.size() && file.commit();
}

int CountFormulas(const GridCore& core) {
    int formulas = 0;
    for (const std::vector<CString>& row : TextsOf(core)) {
        formulas += static_cast<int>(std::count_if(row.begin(), row.end(), IsFormula));
    }
    return formulas;
}

std::optional<TextTable> LoadTextTable(const CString& path) {
    const std::optional<CString> text = Read(path);
    std::optional<TextTable> table = text ? std::optional(ReadCsv(*text)) : std::nullopt;
    std::size_t cells = 0;
    for (const std::vector<CString>& row : table.value_or(TextTable())) {
        cells += row.size();
    }
    return cells > kMostCells ? std::nullopt : table;
}

CString SaveFailure() {
    return u"Unable to save grid list"_s;
}

CString LoadFailure() {
    return u"Unable to load grid data"_s;
}

}  // namespace quorvane
