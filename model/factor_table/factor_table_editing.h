// FactorTableEditing: a utilization factor table while it is being edited, without a screen.
//
// It understands the typed texts, knows what the table holds that is not in the file, and undoes it step by
// step until the next submit.
#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "data/utilization_factor_table.h"
#include "model/factor_table/factor_block.h"
#include "model/factor_table/kept_factor_edits.h"
#include "model/records/edit_history.h"
#include "model/records/working_records.h"

namespace quorvane {

// The two kinds of entries that a table's labels stand for: its columns and its rows.
enum class FactorTableBranch { Headings, Rows };

class FactorTableEditing {
public:
    // showMessage tells the user of duplicates and gaps. The database must outlive the object.
    FactorTableEditing(CLightingDatabase& database, UtilizationFactorTable::MessageCallback showMessage);

    // Loads the table of a luminaire. False when not all of its rows could be read; it must not be edited
    // then.
    bool Load(int luminaireId);
    UtilizationFactorTable& Table() { return m_table; }
    const UtilizationFactorTable& Table() const { return m_table; }
    // Whether the table has changed since the last submit, or a submit could not write all of it.
    bool IsModified() const { return m_modified; }

    // "Pcc,Pw,Pf" of a heading (%), or a row value with two decimals.
    CString Label(FactorTableBranch branch, int index) const;
    int Count(FactorTableBranch branch) const;

    // Takes the text of an edited label; index -1 adds an entry. A row value that was
    // only looked at (not isTyped) changes nothing, because its label may be rounded; nor does a heading left
    // as it was, which may be one of the file that may not be typed. False when the text is
    // no heading (three integers from 0 to 100) or no row value (an unsigned decimal). The table may still
    // refuse a valid text as a duplicate.
    bool TakeLabel(FactorTableBranch branch, int index, const CString& text, bool isTyped = true);
    void Delete(FactorTableBranch branch, int index);

    // Takes the text of a factor's cell, addressed as in UtilizationFactorTable::GetFactor. isUntouched:
    // nothing was typed; the factor then stays as it is, because it may have more decimals than are shown.
    // Returns the text to show, which has as many digits as the file can keep; nothing, with the factor
    // unchanged, when the text is no unsigned decimal.
    std::optional<CString> TakeFactor(int gridRow, int gridColumn, const CString& text, bool isUntouched);
    // Sets all factors to 0.
    void Clear();

    // How many headings and row values of a block the table does not have. A row value whose text with two
    // decimals is the label of a row of the table means that row.
    struct Missing {
        int headings = 0;
        int rows = 0;
    };
    Missing MissingFor(const FactorBlock& block) const;
    // Adds those, and takes the factors of the block. Returns how many these are.
    int TakeBlock(const FactorBlock& block);

    // The factor at that place, addressed as in GetFactor, as it is in the file; nothing when it is not
    // there.
    std::optional<double> StoredFactor(int gridRow, int gridColumn) const;
    bool IsStored(int gridRow, int gridColumn) const;

    // All changes between BeginStep and EndStep are undone at once; a change outside is a step of its own.
    void BeginStep(const CString& name) { m_history.Begin(name, m_modified); }
    void EndStep() {
        if (m_history.End(m_modified)) {
            Tell();
        }
    }
    void RenameStep(const CString& name) { m_history.Rename(name); }
    // Is called after each step, undo, load and submit.
    void SetListener(std::function<void()> listener) { m_listener = std::move(listener); }
    // The names of the steps that Undo and Redo would take; null when there is none.
    const CString* UndoName() const { return m_history.UndoName(); }
    const CString* RedoName() const { return m_history.RedoName(); }
    // Undo the last step, or do the step again that was undone last; there must be one. Return the place of
    // the first factor that is another one now, in grid coordinates (row, column), if there is one.
    using Place = std::optional<std::pair<int, int>>;
    Place Undo();
    Place Redo();

    // ---- To be kept beside the program, and made again in a later run

    using Contents = UtilizationFactorTable::Contents;
    using Kept = KeptFactorEdits;
    Kept Edits() const { return {m_table.LuminaireID(), m_stored.GetContents(), m_table.GetContents()}; }
    // Makes the edits again, as one step, in a table that has just been loaded; what the file holds already
    // is left alone. False, and nothing changes, when the file holds another table than it did then and than
    // a submit of the edits could have left.
    bool MakeAgain(const Kept& kept, const CString& stepName);

    // Writes the table. It stays modified when something could not be written.
    SubmitFailures Submit(const UtilizationFactorTable::ProgressCallback& progress = {});

private:
    bool TakeHeading(int index, const CString& text);
    bool TakeRowValue(int index, const CString& text);
    double RowValueFor(double ratio) const;
    std::optional<double> FactorIn(const UtilizationFactorTable& table, int gridRow, int gridColumn) const;
    // Runs an operation on the table, which returns whether it changed something.
    template <typename Operation>
    void Change(const Operation& operation);
    void Tell() const {
        if (m_listener) {
            m_listener();
        }
    }
    Place Exchange(EditHistory<UtilizationFactorTable>::Step& step);

    CLightingDatabase& m_database;
    UtilizationFactorTable m_table;
    UtilizationFactorTable m_stored;  // as the file holds it
    bool m_modified = false;
    EditHistory<UtilizationFactorTable> m_history{1000};  // by whole tables, which are small
    std::function<void()> m_listener;
};

}  // namespace quorvane
