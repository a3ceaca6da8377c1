// The merged blocks of the grid. They are stored apart from the cells, so an unmerged cell costs nothing
// extra.
#pragma once

#include <map>
#include <utility>

#include "grid/grid_types.h"

namespace quorvane {

// Blocks never overlap; a block has at least two cells.
class GridMerges {
public:
    // Makes a block of range. Blocks that it touches are dissolved; a range of one cell only dissolves.
    void Merge(const CCellRange& range);
    // The block that a cell belongs to; the cell alone when it is not merged.
    CCellRange Extent(CCellID cell) const;
    // The range, grown until it cuts no block.
    CCellRange GrownToBlocks(CCellRange range) const;
    void Clear();

    // A block grows when rows or columns are inserted inside it and shrinks when some of its own are removed.
    // A block of which a single cell is left is dissolved.
    void InsertLines(Qt::Orientation lines, int at, int count);
    void RemoveLines(Qt::Orientation lines, int at, int count);

private:
    using Corner = std::pair<int, int>;  // row, column

    // Adds a block that overlaps no other; nothing for a range of fewer than two cells.
    void Put(const CCellRange& range);
    // Whether rows or columns from that one on hold a part of a block.
    bool Reaches(Qt::Orientation lines, int at) const;
    template <typename Change>
    void ChangeAll(Change change);

    std::map<Corner, CCellRange> m_blocks;  // by their top-left cell
    int m_lastRow = -1;                     // no block reaches below
    int m_mostExtraRows = 0;                // no block spans more
};

}  // namespace quorvane
