#include "model/factor_table/kept_factor_edits.h"

#include <algorithm>
#include <map>

namespace quorvane {
namespace {

using Contents = UtilizationFactorTable::Contents;
using RowsById = std::map<int, tagLUMINAIREUTILIZATIONFACTOR>;

RowsById StoredRows(const Contents& contents) {
    RowsById rows;
    for (const auto* factors : {&contents.factors, &contents.surplus}) {
        for (const tagLUMINAIREUTILIZATIONFACTOR& factor : *factors) {
            if (factor.ID != 0) {  // else a gap in the file
                rows[factor.ID] = factor;
            }
        }
    }
    return rows;
}

// Takes the row out of those of the file. False when it is none of them.
bool TakeEdited(const tagLUMINAIREUTILIZATIONFACTOR& edited, const RowsById& before, RowsById& now) {
    const auto present = now.find(edited.ID);
    const auto stored = before.find(edited.ID);
    const bool isKnown =
        present != now.end() && stored != before.end() &&
        (IsSameInFile(present->second, stored->second) || IsSameInFile(present->second, edited));
    if (isKnown) {
        now.erase(present);
    }
    return isKnown;
}

// The same for a row that was to be deleted; it may be gone.
bool TakeDeleted(int id, const RowsById& before, RowsById& now) {
    const auto present = now.find(id);
    const auto stored = before.find(id);
    const bool isKnown =
        stored != before.end() && (present == now.end() || IsSameInFile(present->second, stored->second));
    if (isKnown) {
        now.erase(id);
    }
    return isKnown;
}

// A new row gets the ID under which it is in the file, if it is there.
void TakeNew(tagLUMINAIREUTILIZATIONFACTOR& factor, RowsById& now) {
    const auto written = std::ranges::find_if(now, [&factor](const auto& row) {
        tagLUMINAIREUTILIZATIONFACTOR sought = factor;
        sought.ID = row.first;
        return IsSameInFile(row.second, sought);
    });
    if (written != now.end()) {
        factor.ID = written->first;
        now.erase(written);
    }
}

}  // namespace

std::optional<Contents> EditsOnFile(const KeptFactorEdits& kept, const Contents& file) {
    const RowsById before = StoredRows(kept.stored);
    RowsById now = StoredRows(file);
    const RowsById all = now;
    Contents edited = kept.edited;
    std::erase(edited.deletedIds, 0);
    for (const int id : edited.deletedIds) {
        if (!TakeDeleted(id, before, now)) {
            return std::nullopt;
        }
    }
    for (const auto& [id, row] : StoredRows(edited)) {
        if (!TakeEdited(row, before, now)) {
            return std::nullopt;
        }
    }
    for (tagLUMINAIREUTILIZATIONFACTOR& factor : edited.factors) {
        if (factor.ID == 0) {
            TakeNew(factor, now);
        }
    }
    std::erase_if(edited.deletedIds, [&all](int id) { return !all.contains(id); });
    return now.empty() ? std::optional(edited) : std::nullopt;
}

bool IsInFile(const Contents& edited, const Contents& file) {
    const auto isSame = [](const auto& left, const auto& right) { return IsSameInFile(left, right); };
    // A submit writes into surplus rows what their cells hold.
    return edited.deletedIds.empty() && edited.surplus.empty() && edited.headings == file.headings &&
           edited.rowValues == file.rowValues && std::ranges::equal(edited.factors, file.factors, isSame);
}

}  // namespace quorvane
