#include "grid/output/grid_clipboard.h"

#include <algorithm>

#include "grid/grid_core.h"
#include "grid/output/separated_text.h"

namespace quorvane {
namespace {

// The numbers in first..last that lie between both edges of some range.
std::vector<int> SelectedLines(const std::vector<CCellRange>& ranges, int first, int last,
                               int CCellRange::*minimum, int CCellRange::*maximum) {
    std::vector<int> lines;
    for (int line = first; line <= last; ++line) {
        if (std::ranges::any_of(ranges, [&](const CCellRange& range) {
                return line >= range.*minimum && line <= range.*maximum;
            })) {
            lines.push_back(line);
        }
    }
    return lines;
}

}  // namespace

std::optional<CString> CopiedText(const GridCore& core) {
    const std::vector<CCellRange>& ranges = core.Selection().Ranges();
    if (ranges.empty()) {
        return core.Focus().IsValid() ? std::optional(WriteTabText({{core.Text(core.Focus())}}))
                                      : std::nullopt;
    }
    const CCellRange bounds = core.SelectedRange();
    const std::vector<int> columns =
        SelectedLines(ranges, bounds.minCol, bounds.maxCol, &CCellRange::minCol, &CCellRange::maxCol);
    TextTable table;
    for (const int row :
         SelectedLines(ranges, bounds.minRow, bounds.maxRow, &CCellRange::minRow, &CCellRange::maxRow)) {
        std::vector<CString>& texts = table.emplace_back();
        for (const int column : columns) {
            const CCellID cell{row, column};
            const bool copied = core.Selection().IsSelected(cell) && core.Origin(cell) == cell;
            texts.push_back(copied ? core.Text(cell) : CString());
        }
    }
    return WriteTabText(table);
}

}  // namespace quorvane
