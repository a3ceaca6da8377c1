#include "model/factor_table_editing.h"

#include <utility>

#include "data/number_text.h"
#include "data/text_format.h"
#include "model/text_checks.h"

namespace quorvane {
namespace {

constexpr int kLargestReflectance = 100;  // %

std::optional<tagColHeading> ParseHeading(const CString& text) {
    const std::vector<CString> pieces = Split(text, u',');
    std::vector<int> values;
    for (const CString& piece : pieces) {
        const int value = CheckInteger(piece).value_or(-1);
        if (value >= 0 && value <= kLargestReflectance) {
            values.push_back(value);
        }
    }
    if (pieces.size() != 3 || values.size() != pieces.size()) {
        return std::nullopt;
    }
    return tagColHeading{values[0], values[1], values[2]};
}

}  // namespace

FactorTableEditing::FactorTableEditing(CLightingDatabase& database,
                                       UtilizationFactorTable::MessageCallback showMessage)
    : m_database(database), m_table(database, std::move(showMessage)) {}

bool FactorTableEditing::Load(int luminaireId) {
    m_modified = false;
    m_table.Load(luminaireId);
    return m_table.IsWhole();
}

CString FactorTableEditing::Label(FactorTableBranch branch, int index) const {
    const auto place = static_cast<std::size_t>(index);
    if (branch == FactorTableBranch::Rows) {
        return FormatFixed2(m_table.RowValues()[place]);
    }
    const auto& [Pcc, Pw, Pf] = m_table.Headings()[place];
    return FormatText(u"%d,%d,%d", {Pcc, Pw, Pf});
}

int FactorTableEditing::Count(FactorTableBranch branch) const {
    return static_cast<int>(branch == FactorTableBranch::Rows ? m_table.RowValues().size()
                                                              : m_table.Headings().size());
}

bool FactorTableEditing::TakeLabel(FactorTableBranch branch, int index, const CString& text, bool isTyped) {
    const bool mayBeKept = !isTyped || branch == FactorTableBranch::Headings;
    if (index >= 0 && mayBeKept && text == Label(branch, index)) {
        return true;
    }
    return branch == FactorTableBranch::Rows ? TakeRowValue(index, text) : TakeHeading(index, text);
}

bool FactorTableEditing::TakeHeading(int index, const CString& text) {
    const std::optional<tagColHeading> heading = ParseHeading(text);
    if (heading) {
        const auto [Pcc, Pw, Pf] = *heading;
        NoteChange(index < 0 ? m_table.AddHeading(Pcc, Pw, Pf) : m_table.ModifyHeading(index, Pcc, Pw, Pf));
    }
    return heading.has_value();
}

bool FactorTableEditing::TakeRowValue(int index, const CString& text) {
    const std::optional<double> value = CheckReal(text);
    if (value) {
        // Rounded to what the file keeps: two rows must not become one there.
        const double kept = FormatReal(*value).toDouble();
        NoteChange(index < 0 ? m_table.AddRow(kept) : m_table.ModifyRow(index, kept));
    }
    return value.has_value();
}

void FactorTableEditing::Delete(FactorTableBranch branch, int index) {
    NoteChange(branch == FactorTableBranch::Rows ? m_table.DeleteRow(index) : m_table.DeleteHeading(index));
}

std::optional<CString> FactorTableEditing::TakeFactor(int gridRow, int gridColumn, const CString& text,
                                                      bool isUntouched) {
    if (isUntouched) {
        m_modified = true;
        return text;
    }
    const std::optional<double> value = CheckReal(text);
    if (!value) {
        return std::nullopt;
    }
    m_table.SetFactor(gridRow, gridColumn, *value);
    m_modified = true;
    const CString kept = FormatReal(*value);
    return kept.toDouble() == *value ? text : kept;
}

void FactorTableEditing::Clear() {
    m_table.ClearFactors();
    m_modified = true;
}

SubmitFailures FactorTableEditing::Submit(const UtilizationFactorTable::ProgressCallback& progress) {
    m_table.Submit(progress);
    const SubmitFailures failures{.writes = m_table.UnwrittenCount(),
                                  .cause = m_database.LastFailure(),
                                  .different = m_table.DifferentCount(),
                                  .unread = m_table.UnreadCount()};
    m_modified = !failures.None();
    return failures;
}

}  // namespace quorvane
