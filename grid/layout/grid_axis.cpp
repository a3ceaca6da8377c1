#include "grid/layout/grid_axis.h"

#include <algorithm>
#include <limits>

namespace quorvane {
namespace {

int ToPixels(qint64 position) {
    // kFar beyond any screen, yet with room for adding a length without overflow.
    constexpr qint64 kFar = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(position, -kFar, kFar));
}

}  // namespace

GridAxis::GridAxis(int defaultSize) : m_defaultSize(std::max(1, defaultSize)) {}

std::vector<GridAxis::OwnSize>::const_iterator GridAxis::FirstOwnSizeFrom(int line) const {
    return std::lower_bound(m_ownSizes.begin(), m_ownSizes.end(), line,
                            [](const OwnSize& own, int sought) { return own.line < sought; });
}

void GridAxis::SumUpFrom(std::size_t position) {
    qint64 extra = 0;
    if (position > 0) {
        const OwnSize& previous = m_ownSizes[position - 1];
        extra = previous.extraBefore + previous.size - m_defaultSize;
    }
    for (std::size_t i = position; i < m_ownSizes.size(); ++i) {
        m_ownSizes[i].extraBefore = extra;
        extra += m_ownSizes[i].size - m_defaultSize;
    }
}

int GridAxis::StayingCount() const {
    const bool fits = Start(m_frozenCount) <= qint64{m_viewLength} * 3 / 4;
    return fits ? std::max(m_fixedCount, m_frozenCount) : m_fixedCount;
}

void GridAxis::Insert(int at, int count) {
    m_count += count;
    m_frozenCount += at < m_frozenCount ? count : 0;
    for (auto own = m_ownSizes.begin() + (FirstOwnSizeFrom(at) - m_ownSizes.cbegin());
         own != m_ownSizes.end(); ++own) {
        own->line += count;
    }
}

void GridAxis::Remove(int at, int count) {
    m_count -= count;
    m_frozenCount -= std::clamp(m_frozenCount - at, 0, count);
    const auto position = FirstOwnSizeFrom(at) - m_ownSizes.cbegin();
    m_ownSizes.erase(m_ownSizes.begin() + position, FirstOwnSizeFrom(at + count));
    for (auto own = m_ownSizes.begin() + position; own != m_ownSizes.end(); ++own) {
        own->line -= count;
    }
    SumUpFrom(static_cast<std::size_t>(position));
}

int GridAxis::Size(int line) const {
    const auto own = FirstOwnSizeFrom(line);
    return own != m_ownSizes.end() && own->line == line ? own->size : m_defaultSize;
}

void GridAxis::SetSize(int line, int size) {
    const int kept = std::max(0, size);
    const auto position = FirstOwnSizeFrom(line) - m_ownSizes.cbegin();
    const auto own = m_ownSizes.begin() + position;
    const bool exists = own != m_ownSizes.end() && own->line == line;
    if (exists && kept == m_defaultSize) {
        m_ownSizes.erase(own);
    } else if (exists) {
        own->size = kept;
    } else if (kept != m_defaultSize) {
        m_ownSizes.insert(own, {line, kept, 0});
    }
    SumUpFrom(static_cast<std::size_t>(position));
}

void GridAxis::SetDefaultSize(int size) {
    m_defaultSize = std::max(1, size);
    SumUpFrom(0);
}

void GridAxis::ResetSizes() {
    m_ownSizes.clear();
}

qint64 GridAxis::Start(int line) const {
    qint64 extra = 0;
    const auto own = FirstOwnSizeFrom(line);
    if (own != m_ownSizes.end()) {
        extra = own->extraBefore;
    } else if (!m_ownSizes.empty()) {
        extra = m_ownSizes.back().extraBefore + m_ownSizes.back().size - m_defaultSize;
    }
    return qint64{line} * m_defaultSize + extra;
}

int GridAxis::LineAt(qint64 position) const {
    if (position < 0) {
        return -1;
    }
    const auto startOf = [this](const OwnSize& own) {
        return qint64{own.line} * m_defaultSize + own.extraBefore;
    };
    const auto next =
        std::upper_bound(m_ownSizes.begin(), m_ownSizes.end(), position,
                         [&](qint64 sought, const OwnSize& own) { return sought < startOf(own); });
    qint64 line = position / m_defaultSize;
    if (next != m_ownSizes.begin()) {
        const OwnSize& own = *std::prev(next);
        const qint64 end = startOf(own) + own.size;
        line = position < end ? own.line : own.line + 1 + (position - end) / m_defaultSize;
    }
    return line < m_count ? static_cast<int>(line) : -1;
}

int GridAxis::MaxScroll() const {
    return ToPixels(std::max(qint64{0}, Start(m_count) - m_viewLength));
}

int GridAxis::ScrollToShow(int first, int last) const {
    if (first < StayingCount()) {
        return m_scroll;
    }
    const qint64 room = std::max(0, m_viewLength - StayingLength());
    const qint64 atStart = Start(first) - StayingLength();          // offset that puts the lines at the start
    const qint64 atEnd = Start(last + 1) - StayingLength() - room;  // and at the end
    if (atEnd > atStart) {
        // Longer than the window: stay when they fill it already.
        return m_scroll >= atStart && m_scroll <= atEnd ? m_scroll : ToPixels(atStart);
    }
    return ToPixels(std::clamp(qint64{m_scroll}, atEnd, atStart));
}

int GridAxis::FixedLength() const {
    return ToPixels(Start(m_fixedCount));
}

int GridAxis::StayingLength() const {
    return ToPixels(Start(StayingCount()));
}

qint64 GridAxis::ScreenStart(int line) const {
    return line < StayingCount() ? Start(line) : Start(line) - m_scroll;
}

GridAxis::Span GridAxis::ScreenSpan(int first, int last) const {
    const int start = ToPixels(ScreenStart(first));
    const int end = ToPixels(ScreenStart(last) + Size(last));
    return {start, std::max(0, end - start)};
}

int GridAxis::LineAtScreen(int position) const {
    if (position < 0) {
        return -1;
    }
    return LineAt(position < StayingLength() ? position : qint64{position} + m_scroll);
}

GridAxis::Lines GridAxis::LinesBetween(qint64 from, qint64 to, int first, int last) const {
    if (to < from || last < first) {
        return {};
    }
    const int lineFrom = LineAt(std::max(qint64{0}, from));
    if (lineFrom < 0) {
        return {};
    }
    const int lineTo = LineAt(to);
    return {std::max(first, lineFrom), std::min(last, lineTo < 0 ? m_count - 1 : lineTo)};
}

GridAxis::Lines GridAxis::VisibleStaying(int from, int to) const {
    return LinesBetween(from, std::min(to, StayingLength() - 1), 0, StayingCount() - 1);
}

GridAxis::Lines GridAxis::VisibleScrolling(int from, int to) const {
    return LinesBetween(qint64{std::max(from, StayingLength())} + m_scroll, qint64{to} + m_scroll,
                        StayingCount(), m_count - 1);
}

}  // namespace quorvane
