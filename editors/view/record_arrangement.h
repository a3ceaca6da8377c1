// RecordArrangement: how a grid shows working records: sorted, filtered, and with what the user seeks
// highlighted. The records keep their order, and hidden ones are submitted like the others.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "editors/column.h"
#include "editors/messages.h"
#include "editors/view/foot_bar.h"
#include "editors/view/grid_arranger.h"
#include "editors/view/grid_finder.h"
#include "model/view/row_view.h"

namespace quorvane {

template <typename Record>
class RecordArrangement {
public:
    // Both outlive the object.
    RecordArrangement(WorkingRecords<Record>& records, const std::vector<Column<Record>>& columns)
        : m_records(records), m_columns(columns), m_rows(records) {}

    // Adds the commands to the grid, which lies in parent. show() shows the rows anew, beginning with
    // Arrange(). caption is the caption of its messages.
    void Create(CGridCtrl& grid, QWidget& parent, const CString& caption, const std::function<void()>& show) {
        m_grid = &grid;
        auto* foot = new GridFoot(grid);
        m_finder = new GridFinder(
            grid, *foot,
            {.find = [this](const TextMatcher& matcher) { return Find(matcher); },
             .matches =
                 [this](CCellID cell, const TextMatcher& matcher) {
                     return cell.row <= m_rows.Count() && cell.col > 0 &&
                            matcher.Matches(m_grid->GetItemText(cell.row, cell.col));
                 },
             .replace =
                 [this, &parent, caption](const std::vector<CCellID>& cells, const TextMatcher& matcher,
                                          const CString& replacement) {
                     TellReplaced(&parent, caption, Replace(cells, matcher, replacement));
                 }});
        std::vector<ArrangedColumn> columns;
        for (const Column<Record>& column : m_columns) {
            columns.push_back({.heading = CString::fromUtf16(column.heading).remove(u' '),
                               .isOffered = column.show && column.holdsText,
                               .isNumber = static_cast<bool>(column.number)});
        }
        m_arranger = new GridArranger(grid, *foot, std::move(columns));
        QObject::connect(m_arranger, &GridArranger::Changed, &grid, [this, show] {
            m_grid->EndEdit();
            show();
        });
    }

    RowView<Record>& Rows() { return m_rows; }
    const RowView<Record>& Rows() const { return m_rows; }

    // No filter hides records from the next Arrange on.
    void ShowAll() {
        if (m_arranger != nullptr) {
            m_arranger->ShowAll();
        }
    }
    // Sorts and filters the records as they are now. To be called before the grid gets its rows.
    void Arrange() {
        if (m_arranger == nullptr) {
            return;
        }
        std::optional<RowOrder<Record>> order;
        if (m_arranger->SortColumn() > 0) {
            const Column<Record>& column = At(m_arranger->SortColumn());
            order = {.text = column.show, .number = column.number, .direction = m_arranger->Direction()};
        }
        m_rows.Arrange(order, FilterCondition());
        NoteChange();
    }
    // To be called when records were added, removed or changed.
    void NoteChange() {
        if (m_arranger != nullptr) {
            m_arranger->ShowCount(m_rows.Count(), m_records.Count());
            m_finder->NoteChange();
        }
    }

private:
    using Condition = typename RowView<Record>::Condition;

    // What could not be written must be seen.
    Condition FilterCondition() const {
        if (!m_arranger->IsFiltered()) {
            return {};
        }
        std::vector<Condition> conditions;
        for (int number = 1; number < static_cast<int>(m_columns.size()); ++number) {
            const ColumnFilter& filter = m_arranger->FilterOf(number);
            const Column<Record>& column = At(number);
            if (filter.IsEmpty()) {
                continue;
            }
            if (column.number) {
                conditions.push_back([&column, filter](const Record& record) {
                    return filter.LetsPass(column.number(record));
                });
            } else {
                conditions.push_back([&column, matcher = TextMatcher(filter.text)](const Record& record) {
                    return matcher.Matches(column.show(record));
                });
            }
        }
        return [this, conditions = std::move(conditions)](const Record& record) {
            return m_records.IsUnwritten(record.ID) ||
                   std::all_of(conditions.begin(), conditions.end(),
                               [&record](const Condition& isMet) { return isMet(record); });
        };
    }

    std::vector<CCellID> Find(const TextMatcher& matcher) const {
        std::vector<CCellID> found;
        const bool inNumbers = matcher.CanBeInNumber();
        for (int row = 0; row < m_rows.Count(); ++row) {
            const Record& record = m_rows.At(row);
            for (int number = 1; number < static_cast<int>(m_columns.size()); ++number) {
                const Column<Record>& column = At(number);
                if ((inNumbers || !column.number) && matcher.Matches(column.show(record))) {
                    found.push_back({row + 1, number});
                }
            }
        }
        return found;
    }

    // Replaces in one step what is found in those cells, as if the new texts had been typed.
    Replacement Replace(const std::vector<CCellID>& cells, const TextMatcher& matcher,
                        const CString& replacement) {
        Replacement result;
        const StepScope step(m_records, {});
        for (const CCellID cell : cells) {
            Record record = m_rows.At(cell.row - 1);
            const Column<Record>& column = At(cell.col);
            const CString before = column.show(record);
            const CString text = matcher.Replaced(before, replacement);
            if (text == before) {
                continue;
            }
            if (TakesText(column, record, text)) {
                column.take(text, record);
                m_records.Replace(record);
                ++result.done;
            } else if (++result.refused == 1) {
                result.row = m_records.PositionOf(m_rows.SlotAt(cell.row - 1)) + 1;
                result.heading = CString::fromUtf16(column.heading).remove(u' ');
                result.text = text;
            }
        }
        m_records.RenameStep(QStringLiteral("替换 %1 格").arg(result.done));
        m_grid->RemakeRows();
        return result;
    }

    const Column<Record>& At(int column) const { return m_columns[static_cast<std::size_t>(column)]; }

    WorkingRecords<Record>& m_records;
    const std::vector<Column<Record>>& m_columns;
    RowView<Record> m_rows;
    CGridCtrl* m_grid = nullptr;  // these are null for a grid whose rows cannot be arranged
    GridFinder* m_finder = nullptr;
    GridArranger* m_arranger = nullptr;
};

}  // namespace quorvane
