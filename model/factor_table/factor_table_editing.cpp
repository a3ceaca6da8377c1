#include "model/factor_table/factor_table_editing.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "data/number_text.h"
#include "data/text_format.h"
#include "model/text_checks.h"

namespace quorvane {
namespace {

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

// Rounded to what the file keeps: two rows must not become one there.
double KeptRowValue(double value) {
    return FormatReal(value).toDouble();
}

template <typename Value>
bool Contains(const std::vector<Value>& values, const Value& value) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

// The number of a value among those that are there.
template <typename Value>
int IndexOf(const std::vector<Value>& values, const Value& value) {
    return static_cast<int>(std::distance(values.begin(), std::find(values.begin(), values.end(), value)));
}

}  // namespace

FactorTableEditing::FactorTableEditing(CLightingDatabase& database,
                                       UtilizationFactorTable::MessageCallback showMessage)
    : m_database(database), m_table(database, std::move(showMessage)), m_stored(m_table) {}

bool FactorTableEditing::Load(int luminaireId) {
    m_modified = false;
    m_history.Clear();
    m_table.Load(luminaireId);
    m_stored = m_table;
    Tell();
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
        Change([&] {
            const auto& [Pcc, Pw, Pf] = *heading;
            return index < 0 ? m_table.AddHeading(Pcc, Pw, Pf) : m_table.ModifyHeading(index, Pcc, Pw, Pf);
        });
    }
    return heading.has_value();
}

bool FactorTableEditing::TakeRowValue(int index, const CString& text) {
    const std::optional<double> value = CheckReal(text);
    if (value) {
        const double kept = KeptRowValue(*value);
        Change([&] { return index < 0 ? m_table.AddRow(kept) : m_table.ModifyRow(index, kept); });
    }
    return value.has_value();
}

void FactorTableEditing::Delete(FactorTableBranch branch, int index) {
    Change([&] {
        return branch == FactorTableBranch::Rows ? m_table.DeleteRow(index) : m_table.DeleteHeading(index);
    });
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
    Change([&] {
        m_table.SetFactor(gridRow, gridColumn, *value);
        return true;
    });
    const CString kept = FormatReal(*value);
    return kept.toDouble() == *value ? text : kept;
}

void FactorTableEditing::Clear() {
    Change([&] {
        m_table.ClearFactors();
        return true;
    });
}

// ---- Blocks with headings

double FactorTableEditing::RowValueFor(double ratio) const {
    const std::vector<double>& present = m_table.RowValues();
    if (Contains(present, KeptRowValue(ratio))) {
        return KeptRowValue(ratio);
    }
    const auto labelled = std::find_if(present.begin(), present.end(), [ratio](double value) {
        return FormatFixed2(value).toDouble() == ratio;
    });
    return labelled == present.end() ? KeptRowValue(ratio) : *labelled;
}

FactorTableEditing::Missing FactorTableEditing::MissingFor(const FactorBlock& block) const {
    std::set<std::tuple<int, int, int>> headings;
    for (const tagColHeading& heading : block.headings) {
        if (!Contains(m_table.Headings(), heading)) {
            headings.insert({heading.Pcc, heading.Pw, heading.Pf});
        }
    }
    std::set<double> rows;
    for (const FactorBlock::Row& row : block.rows) {
        if (!Contains(m_table.RowValues(), RowValueFor(row.ratio))) {
            rows.insert(RowValueFor(row.ratio));
        }
    }
    return {static_cast<int>(headings.size()), static_cast<int>(rows.size())};
}

int FactorTableEditing::TakeBlock(const FactorBlock& block) {
    int taken = 0;
    Change([&] {
        std::vector<double> rowValues;
        for (const FactorBlock::Row& row : block.rows) {
            rowValues.push_back(RowValueFor(row.ratio));
        }
        bool isChanged = false;
        for (const tagColHeading& heading : block.headings) {
            isChanged |= !Contains(m_table.Headings(), heading) &&
                         m_table.AddHeading(heading.Pcc, heading.Pw, heading.Pf);
        }
        for (const double rowValue : rowValues) {
            isChanged |= !Contains(m_table.RowValues(), rowValue) && m_table.AddRow(rowValue);
        }
        for (std::size_t row = 0; row < rowValues.size(); ++row) {
            const int gridRow =
                UtilizationFactorTable::kHeadingRows + IndexOf(m_table.RowValues(), rowValues[row]);
            for (std::size_t column = 0; column < block.headings.size(); ++column) {
                if (const std::optional<double> factor = block.rows[row].factors[column]) {
                    m_table.SetFactor(gridRow,
                                      UtilizationFactorTable::kHeadingColumns +
                                          IndexOf(m_table.Headings(), block.headings[column]),
                                      *factor);
                    ++taken;
                }
            }
        }
        return isChanged || taken > 0;
    });
    return taken;
}

std::optional<double> FactorTableEditing::StoredFactor(int gridRow, int gridColumn) const {
    return FactorIn(m_stored, gridRow, gridColumn);
}

bool FactorTableEditing::IsStored(int gridRow, int gridColumn) const {
    return FactorIn(m_table, gridRow, gridColumn) == StoredFactor(gridRow, gridColumn);
}

std::optional<double> FactorTableEditing::FactorIn(const UtilizationFactorTable& table, int gridRow,
                                                   int gridColumn) const {
    const auto row = static_cast<std::size_t>(gridRow - UtilizationFactorTable::kHeadingRows);
    const auto column = static_cast<std::size_t>(gridColumn - UtilizationFactorTable::kHeadingColumns);
    const bool isInside = column < m_table.Headings().size() && row < m_table.RowValues().size();
    return isInside ? table.FactorOf(m_table.Headings()[column], m_table.RowValues()[row]) : std::nullopt;
}

// ---- Undo and redo

// Of all changes of a step, the first one keeps the table as it was.
template <typename Operation>
void FactorTableEditing::Change(const Operation& operation) {
    const StepScope step(*this, {});
    std::optional<UtilizationFactorTable> before;
    if (!m_history.HasAdded()) {
        before = m_table;
    }
    if (operation()) {
        m_modified = true;
        if (before) {
            m_history.Add(std::move(*before));
        }
    }
}

FactorTableEditing::Place FactorTableEditing::Undo() {
    auto& step = m_history.TakeUndo();
    m_modified = step.wasModified;
    return Exchange(step);
}

FactorTableEditing::Place FactorTableEditing::Redo() {
    auto& step = m_history.TakeRedo();
    m_modified = step.isModified;
    return Exchange(step);
}

FactorTableEditing::Place FactorTableEditing::Exchange(EditHistory<UtilizationFactorTable>::Step& step) {
    UtilizationFactorTable& former = step.changes.front();
    std::swap(m_table, former);
    Tell();
    int column = UtilizationFactorTable::kHeadingColumns;
    for (const tagColHeading& heading : m_table.Headings()) {
        int row = UtilizationFactorTable::kHeadingRows;
        for (const double rowValue : m_table.RowValues()) {
            if (m_table.FactorOf(heading, rowValue) != former.FactorOf(heading, rowValue)) {
                return std::pair(row, column);
            }
            ++row;
        }
        ++column;
    }
    return std::nullopt;
}

// ---- Kept edits

bool FactorTableEditing::MakeAgain(const Kept& kept, const CString& stepName) {
    const Contents file = m_stored.GetContents();
    const std::optional<Contents> edited = EditsOnFile(kept, file);
    if (!edited) {
        return false;
    }
    if (IsInFile(*edited, file)) {
        return true;
    }
    const StepScope step(*this, stepName);
    bool isMade = false;
    Change([&] { return isMade = m_table.SetContents(*edited); });
    return isMade;
}

// ---- Submitting

SubmitFailures FactorTableEditing::Submit(const UtilizationFactorTable::ProgressCallback& progress) {
    m_table.Submit(progress);
    SubmitFailures failures{.writes = m_table.UnwrittenCount(),
                            .cause = m_table.FirstFailure(),
                            .different = m_table.DifferentCount(),
                            .unread = m_table.UnreadCount(),
                            .whyUnread = m_database.LastFailure()};
    m_modified = !failures.None();
    m_history.Clear();
    UtilizationFactorTable inFile = m_table;
    if (m_modified) {
        inFile.Load(m_table.LuminaireID());
    }
    if (!m_modified || inFile.IsWhole()) {
        m_stored = std::move(inFile);
    }
    Tell();
    return failures;
}

}  // namespace quorvane
