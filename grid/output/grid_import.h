// What a table from a file brings into a grid, found by the grid's own headings and row heads.
#pragma once

#include <vector>

#include "grid/input/grid_entries.h"
#include "grid/output/separated_text.h"

namespace quorvane {

class GridCore;

struct GridImport {
    std::vector<GridEntry> entries;  // row by row; new rows lie from the append row on
    int columns = 0;                 // of the file that the grid has, row heads not counted
    int changedCells = 0;            // in rows that the grid has
    int newRows = 0;
    int lostTexts = 0;  // that the grid has no place for, or does not take
};

// The first rows of the table are headings, as many as the grid has. A column belongs where they are the same
// but for blanks. A row belongs to the grid's row with the same text in column 0; any other row is a new one,
// if the grid has an append row. Texts that are equal as numbers are the same.
GridImport ImportOf(const GridCore& core, const TextTable& table);

}  // namespace quorvane
