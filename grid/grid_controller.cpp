#include "grid/grid_controller.h"

#include <QApplication>
#include <QFontMetrics>
#include <QScrollBar>
#include <algorithm>
#include <chrono>
#include <utility>

#include "grid/cells/cell_text.h"
#include "grid/cells/grid_btn_cell.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

int DefaultRowHeight(const QFont& font) {
    constexpr int kAroundText = 6;
    return QFontMetrics(font).height() + kAroundText;
}

int DefaultColumnWidth(const QFont& font) {
    constexpr int kDigits = 10;
    return QFontMetrics(font).horizontalAdvance(u'0') * kDigits;
}

}  // namespace

GridController::GridController(CGridCtrl& grid)
    : m_grid(grid),
      m_core(DefaultRowHeight(grid.font()), DefaultColumnWidth(grid.font())),
      m_mouse(m_core),
      m_edit(*this),
      m_announcer(grid, m_core),
      m_menu(*this) {
    m_core.SetFont(grid.font());
    m_core.SetListener(this);
    m_scrollTimer.setInterval(std::chrono::milliseconds(40));
    QObject::connect(&m_scrollTimer, &QTimer::timeout, &m_scrollTimer, [this] { ScrollOn(); });
}

GridController::~GridController() {
    m_core.SetListener(nullptr);
    m_edit.Cancel();
}

// ---- Signals

bool GridController::EndStep(const QPointer<CGridCtrl>& alive) {
    if (alive.isNull()) {
        return false;
    }
    m_isInStep = false;
    const std::vector<Notice> notices = std::exchange(m_notices, {});
    for (const Notice& notice : notices) {
        notice();
        if (alive.isNull()) {
            return false;
        }
    }
    return true;
}

// ---- Changes of the core

void GridController::LinesInserted(Qt::Orientation lines, int at, int count) {
    m_announcer.LinesInserted(lines, at, count);
    ForgetPointer();
    m_edit.FollowInsert(lines, at, count);
    SizesChanged();
}

void GridController::LinesRemoved(Qt::Orientation lines, int at, int count) {
    m_announcer.LinesRemoved(lines, at, count);
    ForgetPointer();
    m_edit.FollowRemove(lines, at, count);
    SizesChanged();
}

void GridController::FixedLinesChanged() {
    ForgetPointer();
    m_edit.FollowFixed();
    SizesChanged();
}

void GridController::RowsRemade(int first, int last) {
    CloseList();
    m_edit.RowsRemade(first, last);
    SizesChanged();
    m_announcer.RowsChanged(first, last);
}

void GridController::BlocksChanged() {
    m_announcer.BlocksChanged();
    SizesChanged();
}

void GridController::CellChanged(CCellID cell) {
    if (!m_isRedrawDue) {
        const QRect rect = m_core.CellRect(cell) & m_grid.viewport()->rect();
        if (!rect.isEmpty()) {
            m_grid.viewport()->update(rect);
        }
    }
}

void GridController::SelectionChanged(bool focus, bool ranges) {
    Redraw();
    if (focus && m_grid.hasFocus()) {
        // Whether a text can be typed here, and where.
        QGuiApplication::inputMethod()->update(Qt::ImQueryInput | Qt::ImEnabled);
    }
    Perform([&] {
        if (focus) {
            m_notices.emplace_back(
                [this, cell = m_core.Focus()] { Q_EMIT m_grid.FocusCellChanged(cell.row, cell.col); });
        }
        if (ranges) {
            m_notices.emplace_back([this] { Q_EMIT m_grid.SelectionChanged(); });
        }
    });
}

void GridController::SizesChanged() {
    // The scroll bars follow at the end of the present event. So emptying and refilling the grid keeps the
    // place that the user has scrolled to, and many changes cost no more than one.
    if (!std::exchange(m_isSyncDue, true)) {
        QCoreApplication::postEvent(&m_grid, new QEvent(QEvent::LayoutRequest));
    }
    m_edit.Place();
    Redraw();
}

void GridController::ForgetPointer() {
    m_mouse.Reset();
    m_scrollTimer.stop();
    CloseList();
}

void GridController::CloseList() {
    if (m_choices != nullptr) {
        m_choices->close();
    }
}

// ---- Window

void GridController::Redraw() {
    if (!std::exchange(m_isRedrawDue, true)) {
        m_grid.viewport()->update();
    }
}

void GridController::FollowFont() {
    m_core.SetFont(m_grid.font());
    m_core.Layout().rows.SetDefaultSize(DefaultRowHeight(m_grid.font()));
    SizesChanged();
}

void GridController::ResetSizes() {
    m_core.Layout().rows.ResetSizes();
    m_core.Layout().columns.ResetSizes();
    FollowFont();
}

void GridController::FollowScrollBars() {
    m_core.Layout().rows.SetScroll(m_grid.verticalScrollBar()->value());
    m_core.Layout().columns.SetScroll(m_grid.horizontalScrollBar()->value());
    m_edit.Place();
    Redraw();
}

void GridController::SyncScrollBars() {
    m_isSyncDue = false;
    GridLayout& layout = m_core.Layout();
    layout.SetViewSize(m_grid.viewport()->size());
    const QSize room = m_grid.maximumViewportSize();
    // Without this each scroll bar might stand there only because the other one takes its room.
    const bool fits = layout.rows.Start(layout.rows.Count()) <= room.height() &&
                      layout.columns.Start(layout.columns.Count()) <= room.width();
    const auto sync = [fits](QScrollBar& bar, const GridAxis& axis, int step) {
        bar.setRange(0, fits ? 0 : axis.MaxScroll());
        bar.setPageStep(std::max(1, axis.ViewLength() - axis.StayingLength()));
        bar.setSingleStep(step);
    };
    sync(*m_grid.verticalScrollBar(), layout.rows, layout.rows.DefaultSize());
    sync(*m_grid.horizontalScrollBar(), layout.columns,
         QFontMetrics(m_grid.font()).horizontalAdvance(u'0') * 3);
}

void GridController::FollowLayout() {
    SyncScrollBars();
    m_edit.Refresh();
}

void GridController::EnsureVisible(CCellID cell) {
    if (m_core.Layout().Holds(cell)) {
        SyncScrollBars();
        const CCellRange block = m_core.Extent(cell);
        const GridLayout& layout = m_core.Layout();
        m_grid.verticalScrollBar()->setValue(layout.rows.ScrollToShow(block.minRow, block.maxRow));
        m_grid.horizontalScrollBar()->setValue(layout.columns.ScrollToShow(block.minCol, block.maxCol));
    }
}

// ---- Operations

bool GridController::Execute(const GridCommand& command, const QEvent* event) {
    using Kind = GridCommand::Kind;
    const CCellID cell = command.cell;
    switch (command.kind) {
        case Kind::PassOn:
            return false;
        case Kind::Focus:
            SetFocusCell(cell);
            return true;
        case Kind::Extend:
            EnsureVisible(m_core.IsSelectable(cell) ? cell : CCellID{});
            m_core.ExtendSelection(cell, true);
            return true;
        case Kind::Drag:
            m_core.ExtendSelection(cell, false);
            return true;
        case Kind::Add:
            m_core.AddToSelection(cell);
            return true;
        case Kind::SelectLines:
            m_core.SelectLines(command.lines, command.modifiers);
            return true;
        case Kind::SelectRows:
            m_core.SelectWhole(Qt::Vertical);
            return true;
        case Kind::SelectColumns:
            m_core.SelectWhole(Qt::Horizontal);
            return true;
        case Kind::SelectAll:
            m_core.SelectRange(m_core.Layout().ScrollingCells());
            return true;
        case Kind::ClearSelection:
            m_core.ClearSelection();
            return true;
        case Kind::Edit:
            return BeginEdit(cell, InPlaceEdit::Start::AllSelected, event);
        case Kind::EditAtEnd:
            return BeginEdit(cell, InPlaceEdit::Start::CaretAtEnd);
        case Kind::Type:
            return BeginEdit(cell, InPlaceEdit::Start::Empty, event);
        case Kind::PressButton:
            return PressButton(cell, command.number);
        case Kind::Click:
            Click(cell);
            return true;
        case Kind::ClearContents:
            return EnterAll(u"清除内容"_s, FillEntries(m_core, {}));
        case Kind::Cut:
            return Copy() && EnterAll(u"剪切"_s, FillEntries(m_core, {}));
        case Kind::FillDown:
            return FillDown();
        case Kind::Menu:
            OpenMenu();
            return true;
        case Kind::Copy:
            return Copy();
        case Kind::Paste:
            return Paste();
        case Kind::ColumnWidth:
            m_core.SetSize(Qt::Horizontal, cell.col, command.number);
            return true;
        case Kind::ColumnsArranged:
            Perform([this] { m_notices.emplace_back([this] { Q_EMIT m_grid.ColumnsArranged(); }); });
            return true;
        case Kind::Freeze:
            Freeze(cell.col);
            return true;
        case Kind::DragBlock:
            Redraw();
            return true;
        case Kind::MoveBlock:
            MoveBlock(command.lines, cell, (command.modifiers & Qt::ControlModifier) != 0);
            return true;
        case Kind::Redraw:
            CellChanged(cell);
            return true;
        default:
            return true;
    }
}

void GridController::SetFocusCell(CCellID cell) {
    EnsureVisible(m_core.IsSelectable(cell) ? m_core.Origin(cell) : CCellID{});
    m_core.SetFocus(cell);
}

bool GridController::PressButton(CCellID cell, int button) {
    const CGridCellBase* source = m_core.IsSelectable(cell) ? m_core.Cell(cell) : nullptr;
    if (source != nullptr && source->Editing() == CellEditing::Choice) {
        return BeginEdit(cell, InPlaceEdit::Start::AllSelected);
    }
    return Do([&] {
        const bool isHeading = m_core.Layout().IsFixed(cell);
        const bool pressed = isHeading || m_core.PressBtn(cell, button);
        if (isHeading) {
            m_notices.emplace_back([this, cell] { Q_EMIT m_grid.HeadingButtonClicked(cell.col); });
        } else if (pressed) {
            m_notices.emplace_back([=, this] { Q_EMIT m_grid.ButtonClicked(cell.row, cell.col, button); });
        }
        return pressed;
    });
}

void GridController::FocusAndPress(const std::function<CCellID()>& place, bool press) {
    CCellID target;
    Perform([this] { m_grid.setFocus(Qt::OtherFocusReason); },
            [&, this] {
                target = place();
                if (m_core.IsSelectable(target)) {
                    SetFocusCell(target);
                }
            },
            [&, this] {
                if (!press || !target.IsValid() || m_core.Focus() != target) {
                    return;
                }
                if (m_core.EditingOf(target) == CellEditing::Text) {
                    BeginEdit(target, InPlaceEdit::Start::AllSelected);
                } else {
                    PressButton(target, 0);
                }
            });
}

void GridController::Click(CCellID cell) {
    const bool opensChoices = m_mouse.OpensChoices();
    Perform(
        [=, this] { m_notices.emplace_back([=, this] { Q_EMIT m_grid.CellClicked(cell.row, cell.col); }); },
        [=, this] {
            const bool opens = opensChoices && !m_edit.IsOn() && m_core.Focus() == cell;
            if (opens && m_core.EditingOf(cell) == CellEditing::Choice) {
                OpenAt(cell, InPlaceEdit::Start::AllSelected, nullptr);
            }
        });
}

void GridController::Freeze(int column) {
    GridAxis& columns = m_core.Layout().columns;
    SetFrozenColumns(columns.FrozenCount() > 0 ? 0 : column + 1);
    Execute({GridCommand::Kind::ColumnsArranged});
}

void GridController::SetFrozenColumns(int count) {
    m_core.Layout().columns.SetFrozenCount(count);
    ForgetPointer();
    SizesChanged();
}

// ---- Mouse

void GridController::MousePress(const QMouseEvent& event) {
    Perform([this] { EndEdit(); }, [&, this] { Execute(m_mouse.Press(event)); });
}

void GridController::MouseMove(const QMouseEvent& event) {
    const QPoint position = event.position().toPoint();
    if ((event.buttons() & Qt::LeftButton) == 0) {
        const Qt::CursorShape overCell = m_mouse.IsOnFrame(position) ? Qt::SizeAllCursor : Qt::ArrowCursor;
        m_grid.viewport()->setCursor(m_mouse.EdgeAt(position) ? Qt::SplitHCursor : overCell);
        return;
    }
    if (position == m_mouse.LastPosition()) {
        return;
    }
    const GridCommand command = m_mouse.Drag(position);
    if (m_mouse.Overshoot().isNull()) {
        m_scrollTimer.stop();
    } else if (!m_scrollTimer.isActive()) {
        m_scrollTimer.start();
    }
    Execute(command);
}

void GridController::ScrollOn() {
    const QPoint overshoot = m_mouse.Overshoot();
    QScrollBar& across = *m_grid.horizontalScrollBar();
    QScrollBar& down = *m_grid.verticalScrollBar();
    across.setValue(across.value() + overshoot.x());
    down.setValue(down.value() + overshoot.y());
    Execute(m_mouse.Drag(m_mouse.LastPosition()));
}

void GridController::MouseRelease(const QMouseEvent& event) {
    m_scrollTimer.stop();
    const GridCommand command = m_mouse.Release(event);
    CellChanged(command.cell);
    Execute(command);
}

void GridController::MouseDoubleClick(const QMouseEvent& event) {
    const std::optional<int> edge = m_mouse.EdgeAt(event.position().toPoint());
    if (event.button() == Qt::LeftButton && edge) {
        const int widest = std::max(m_grid.viewport()->width(), GridMouse::kSmallestColumn);
        m_core.SetSize(Qt::Horizontal, *edge, m_core.NeededWidth(*edge, GridMouse::kSmallestColumn, widest));
        Execute({GridCommand::Kind::ColumnsArranged});
        return;
    }
    Perform([this] { EndEdit(); }, [&, this] { Execute(m_mouse.Press(event)); },
            [&, this] { Execute(m_mouse.DoubleClick(event)); });
}

}  // namespace quorvane
