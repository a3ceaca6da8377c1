#include "grid/commands/grid_obstacle.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>

#include "grid/grid_core.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

using Kind = GridCommand::Kind;

constexpr int kMostRows = 50;

bool HasClipboardText() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && data->hasText();
}

// Whether a cell that can be changed is among the first rows of a range, or may be among the rest.
bool MayHoldEditable(const GridCore& core, const CCellRange& range) {
    const int last = std::min(range.maxRow, range.minRow + kMostRows - 1);
    for (int row = range.minRow; row <= last; ++row) {
        for (int column = range.minCol; column <= range.maxCol; ++column) {
            if (core.EditingOf({row, column}) != CellEditing::None) {
                return true;
            }
        }
    }
    return last < range.maxRow;
}

bool HasRowAbove(const GridCore& core, const CCellRange& range) {
    return range.RowCount() > 1 || range.minRow > core.Layout().rows.FixedCount();
}

CString FreezeObstacle(const GridCore& core) {
    const GridAxis& columns = core.Layout().columns;
    if (columns.FrozenCount() > 0) {
        return {};
    }
    if (!core.Focus().IsValid()) {
        return u"没有选中单元格。"_s;
    }
    GridAxis frozen = columns;
    frozen.SetFrozenCount(core.Focus().col + 1);
    return frozen.StayingCount() > core.Focus().col ? CString() : u"这些列太宽,冻结后其余的列显示不下。"_s;
}

}  // namespace

CString ObstacleOf(const GridCore& core, GridCommand::Kind command) {
    const std::vector<CCellRange>& ranges = core.Selection().Ranges();
    const bool hasPlace = core.Focus().IsValid() || !ranges.empty();
    switch (command) {
        case Kind::SelectAll:
            return core.Layout().Holds(core.Layout().ScrollingCells()) ? CString() : u"表格中没有数据。"_s;
        case Kind::SelectRows:
        case Kind::SelectColumns:
        case Kind::Copy:
            return hasPlace ? CString() : u"没有选中单元格。"_s;
        case Kind::Paste:
            if (!hasPlace && !core.tableTaker) {
                return u"没有选中单元格。"_s;
            }
            return HasClipboardText() ? CString() : u"剪贴板中没有文字。"_s;
        case Kind::FillDown:
            if (std::ranges::none_of(ranges, [&](const auto& range) { return HasRowAbove(core, range); })) {
                return u"选中的单元格上面没有可填充的内容。"_s;
            }
            [[fallthrough]];
        case Kind::Cut:
        case Kind::ClearContents:
            return std::ranges::any_of(ranges,
                                       [&](const auto& range) { return MayHoldEditable(core, range); })
                       ? CString()
                       : u"选中的单元格不能直接修改。"_s;
        case Kind::Freeze:
            return FreezeObstacle(core);
        default:
            return {};
    }
}

}  // namespace quorvane
