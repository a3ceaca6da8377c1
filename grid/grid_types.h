// The small values that the grid and its users exchange: cell coordinates, ranges, format and state bits.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

using CString = QString;

// A cell's coordinates, numbered from 0, fixed rows and columns included; (-1, -1) means none.
struct CCellID {
    int row = -1;
    int col = -1;

    bool IsValid() const { return row >= 0 && col >= 0; }
    bool operator==(const CCellID&) const = default;
};

// A rectangle of cells, all four edges inside it. Whether it is valid depends on the grid's size
// (CGridCtrl::IsValid).
struct CCellRange {
    int minRow = -1;
    int minCol = -1;
    int maxRow = -1;
    int maxCol = -1;

    int RowCount() const { return maxRow - minRow + 1; }
    int ColumnCount() const { return maxCol - minCol + 1; }
    bool Contains(CCellID cell) const {
        return cell.row >= minRow && cell.row <= maxRow && cell.col >= minCol && cell.col <= maxCol;
    }
    bool operator==(const CCellRange&) const = default;
};

// Rows first..last.
struct GridRowRun {
    int first = 0;
    int last = -1;
    bool operator==(const GridRowRun&) const = default;
};

// Text-drawing flags of a cell; combined with |.
namespace CellFormat {
inline constexpr unsigned Left = 0;
inline constexpr unsigned Centre = 1;
inline constexpr unsigned Right = 2;
inline constexpr unsigned VCentre = 4;
inline constexpr unsigned WordBreak = 16;
inline constexpr unsigned SingleLine = 32;
inline constexpr unsigned NoPrefix = 256;  // "&" is an ordinary character; the grid never treats it otherwise
inline constexpr unsigned EndEllipsis = 32768;
}  // namespace CellFormat

// State bits of a cell; combined with |.
namespace CellState {
inline constexpr unsigned ReadOnly = 1;   // not edited in place
inline constexpr unsigned RowHead = 2;    // pressing it selects its row, as on a fixed column
inline constexpr unsigned DropDown = 32;  // carries a drop-down list, perhaps one that its owner shows
// Its text is not typed, but a paste, a fill or an import enters one that passes the entry check.
inline constexpr unsigned TakesTexts = 64;
}  // namespace CellState

// Which fields of a GridItem are meant.
namespace ItemMask {
inline constexpr unsigned Text = 1;
inline constexpr unsigned Image = 2;
inline constexpr unsigned Data = 4;
inline constexpr unsigned State = 8;
inline constexpr unsigned BackColour = 16;
inline constexpr unsigned TextColour = 32;
inline constexpr unsigned Format = 64;
inline constexpr unsigned Font = 128;
inline constexpr unsigned Margin = 256;
}  // namespace ItemMask

// The attributes of one cell that CGridCtrl::SetItem is to set. An invalid colour means the grid's default.
struct GridItem {
    int row = 0;
    int col = 0;
    unsigned mask = 0;
    CString text = {};
    int image = -1;
    qint32 data = 0;
    unsigned state = 0;
    QColor backColour = {};
    QColor textColour = {};
    unsigned format = 0;
    std::optional<QFont> font = {};
    int margin = 0;  // pixels
};

// What a small mark in a corner of a cell tells; combined with |.
namespace CellMark {
inline constexpr unsigned Changed = 1;   // it differs from what is stored
inline constexpr unsigned New = 2;       // its row is not stored yet
inline constexpr unsigned Unlikely = 8;  // its value is allowed, but hardly meant
inline constexpr unsigned DeletedAbove =
    4;  // stored rows have been removed between its row and the one above
}  // namespace CellMark

// How the rows shown are ordered by a column.
enum class HeadingOrder { None, Ascending, Descending };

// What is shown when the mouse rests on a cell, and told by assistive technology.
struct GridTip {
    CString text = {};    // shown as it is, never as markup
    QImage picture = {};  // below the text; in pixels of the screen
};

// The places of the context menu, in their order. A line separates them.
enum class GridMenuGroup {
    Undo,       // 撤销, 恢复
    Clipboard,  // 剪切, 复制, 粘贴
    Contents,   // 清除内容, 向下填充
    Select,     // 全选
    Find,       // 查找…, 替换…
    Order,      // 升序, 降序, 筛选
    View,       // 冻结
    Output,     // 打印…, 导出…
    Editor,     // what only this editor has
    Data,       // 提交, 重新读取
};

// Which texts a paste, or the drop of a dragged block, would leave out.
struct PasteLoss {
    struct Refused {
        CCellID cell;
        CString text;
        enum Reason { ReadOnly, NoChoice, NoSuchValue } reason;  // its cell offers choices, or is typed into
    };
    int texts = 0;          // in all
    bool isDrop = false;    // of a dragged block, not of the clipboard
    int beyondColumns = 0;  // right of the last column
    int belowRows = 0;      // below the last row; rows may come while the texts are entered
    int lastRow = 0;
    // By cells that do not take them. A text below the last row is judged by the cell above it in that row.
    std::vector<Refused> refused = {};
};

// Texts that are entered into the same row before another one, by column.
using RowTexts = std::vector<std::pair<int, CString>>;
// Whether a text may be entered into a cell together with others, when `before` has been entered.
using EntryCheck = std::function<bool(CCellID cell, const CString& text, const RowTexts& before)>;
// Whether to paste the rest.
using PasteQuestion = std::function<bool(const PasteLoss& loss)>;
// Takes a pasted table, row by row, as a whole; false when its texts are to go into cells one by one.
using TableTaker = std::function<bool(const std::vector<std::vector<CString>>& texts)>;

}  // namespace quorvane
