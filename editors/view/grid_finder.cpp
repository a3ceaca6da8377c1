#include "editors/view/grid_finder.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "editors/view/foot_bar.h"
#include "grid/grid_ctrl.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

bool IsBefore(CCellID left, CCellID right) {
    return std::pair(left.row, left.col) < std::pair(right.row, right.col);
}

QWidget* MakeLine(GridFoot& foot, const CString& title) {
    auto* line = new QWidget(&foot);
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(new QLabel(title, line));
    foot.AddLine(line);
    return line;
}

}  // namespace

GridFinder::GridFinder(CGridCtrl& grid, GridFoot& foot, FindTarget target)
    : QObject(&grid), m_grid(grid), m_foot(foot), m_target(std::move(target)) {
    MakeLines();
    AddActions();
    connect(&grid, &CGridCtrl::FocusCellChanged, this, &GridFinder::ShowCount);
}

void GridFinder::MakeLines() {
    constexpr int kCharacters = 24;
    m_findLine = MakeLine(m_foot, u"查找"_s);
    m_sought = AddField(m_findLine, u"查找内容"_s, kCharacters);
    m_sought->setObjectName(u"findText"_s);
    m_sought->setPlaceholderText(u"文字或拼音首字母"_s);
    connect(AddButton(m_findLine, u"下一个"_s, u"查找下一个(Enter、F3)"_s), &QToolButton::clicked, this,
            [this] { GoTo(From::Next); });
    connect(AddButton(m_findLine, u"上一个"_s, u"查找上一个(Shift+Enter、Shift+F3)"_s), &QToolButton::clicked,
            this, [this] { GoTo(From::Previous); });
    m_count = new QLabel(m_findLine);
    m_count->setObjectName(u"findCount"_s);
    m_findLine->layout()->addWidget(m_count);
    static_cast<QHBoxLayout*>(m_findLine->layout())->addStretch(1);
    connect(AddButton(m_findLine, u"关闭"_s, u"关闭(Esc)"_s), &QToolButton::clicked, this,
            &GridFinder::Close);
    connect(m_sought, &QLineEdit::textChanged, this, &GridFinder::Seek);
    m_sought->installEventFilter(this);
    if (!m_target.replace) {
        return;
    }
    m_replaceLine = MakeLine(m_foot, u"替换为"_s);
    m_replacement = AddField(m_replaceLine, u"替换为"_s, kCharacters);
    m_replacement->setObjectName(u"replacementText"_s);
    connect(AddButton(m_replaceLine, u"替换"_s, u"替换当前一格,并转到下一个"_s), &QToolButton::clicked, this,
            &GridFinder::ReplaceHere);
    connect(AddButton(m_replaceLine, u"全部替换"_s, {}), &QToolButton::clicked, this,
            &GridFinder::ReplaceAll);
    static_cast<QHBoxLayout*>(m_replaceLine->layout())->addStretch(1);
    m_replacement->installEventFilter(this);
}

void GridFinder::AddActions() {
    AddAction(u"查找…"_s, QKeySequence::Find, [this] { Open(false); });
    if (m_target.replace) {
        AddAction(u"替换…"_s, Qt::CTRL | Qt::Key_H, [this] { Open(true); });
    }
    AddAction(u"查找下一个"_s, Qt::Key_F3, [this] { GoTo(From::Next); });
    AddAction(u"查找上一个"_s, Qt::SHIFT | Qt::Key_F3, [this] { GoTo(From::Previous); });
}

void GridFinder::AddAction(const CString& text, const QKeySequence& key, const std::function<void()>& run) {
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, run);
    m_grid.AddMenuAction(GridMenuGroup::Find, action);
}

// ---- The bar

void GridFinder::Open(bool replaces) {
    m_foot.ShowLine(m_findLine, true);
    if (m_replaceLine != nullptr) {
        m_foot.ShowLine(m_replaceLine, replaces);
    }
    m_sought->setFocus();
    m_sought->selectAll();
    m_grid.SetHighlightSource([this](CCellID cell) { return m_target.matches(cell, m_matcher); });
    Seek(m_sought->text());
}

void GridFinder::Close() {
    if (m_replaceLine != nullptr) {
        m_foot.ShowLine(m_replaceLine, false);
    }
    m_foot.ShowLine(m_findLine, false);
    m_grid.SetHighlightSource({});
    m_grid.Refresh();
    m_found.clear();
    m_grid.setFocus();
}

bool GridFinder::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QObject::eventFilter(watched, event);
    }
    const auto& key = static_cast<const QKeyEvent&>(*event);
    switch (key.key()) {
        case Qt::Key_Escape:
            Close();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (watched == m_replacement) {
                ReplaceHere();
            } else {
                GoTo(key.modifiers().testFlag(Qt::ShiftModifier) ? From::Previous : From::Next);
            }
            return true;
        default:
            return QObject::eventFilter(watched, event);
    }
}

// ---- Finding

void GridFinder::Seek(const CString& sought) {
    m_matcher = TextMatcher(sought);
    m_grid.Refresh();
    Search();
    GoTo(From::Here);
}

void GridFinder::Search() {
    m_isStale = false;
    m_found = m_matcher.IsEmpty() ? std::vector<CCellID>() : m_target.find(m_matcher);
    ShowCount();
}

// Many texts may change in one step; they are searched once.
void GridFinder::NoteChange() {
    if (!m_findLine->isHidden() && !std::exchange(m_isStale, true)) {
        QTimer::singleShot(0, this, [this] {
            if (m_isStale && !m_findLine->isHidden()) {
                Search();
            }
        });
    }
}

void GridFinder::GoTo(From from) {
    if (m_findLine->isHidden()) {
        if (!m_matcher.IsEmpty()) {
            Search();  // F3 goes on with what was sought last
        } else if (from != From::Here) {
            Open(false);
        }
    } else if (m_isStale) {
        Search();
    }
    if (m_found.empty()) {
        return;
    }
    const CCellID focus = m_grid.GetFocusCell();
    auto next = from == From::Next ? std::ranges::upper_bound(m_found, focus, IsBefore)
                                   : std::ranges::lower_bound(m_found, focus, IsBefore);
    if (from == From::Previous) {
        next = next == m_found.begin() ? m_found.end() : next;
        --next;
    }
    m_grid.SetFocusCell(next == m_found.end() ? m_found.front() : *next);
    ShowCount();
}

void GridFinder::ShowCount() {
    if (m_findLine->isHidden()) {
        return;
    }
    const CCellID focus = m_grid.GetFocusCell();
    const auto here = std::ranges::lower_bound(m_found, focus, IsBefore);
    if (m_matcher.IsEmpty()) {
        m_count->clear();
    } else if (m_found.empty()) {
        m_count->setText(u"没有找到"_s);
    } else if (here != m_found.end() && *here == focus) {
        m_count->setText(u"第 %1 个,共 %2 个"_s.arg(here - m_found.begin() + 1).arg(m_found.size()));
    } else {
        m_count->setText(u"共 %1 个"_s.arg(m_found.size()));
    }
}

// ---- Replacing

void GridFinder::ReplaceHere() {
    if (m_isStale) {
        Search();
    }
    const CCellID focus = m_grid.GetFocusCell();
    if (std::ranges::binary_search(m_found, focus, IsBefore)) {
        m_target.replace({focus}, m_matcher, m_replacement->text());
        Search();
    }
    GoTo(From::Next);
}

void GridFinder::ReplaceAll() {
    Search();
    if (!m_found.empty()) {
        m_target.replace(m_found, m_matcher, m_replacement->text());
        Search();
    }
}

}  // namespace quorvane
