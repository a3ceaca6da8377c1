// One direction of the grid (its rows or its columns): sizes in, pixel positions and hit tests out.
#pragma once

#include <QtGlobal>
#include <vector>

namespace quorvane {

// Lines (rows or columns) are numbered from 0, the fixed ones first. Two kinds of positions are used: content
// positions count from the start of line 0 as if nothing were scrolled, screen positions from the edge of
// the window. All are pixels. Only sizes that differ from the default are stored, so memory and look-up
// time depend on how many of them there are, not on the number of lines.
class GridAxis {
public:
    // A run of lines, both ends inside it; empty when last < first.
    struct Lines {
        int first = 0;
        int last = -1;
        bool IsEmpty() const { return last < first; }
    };
    struct Span {
        int start = 0;
        int length = 0;
    };

    explicit GridAxis(int defaultSize);

    int Count() const { return m_count; }
    int FixedCount() const { return m_fixedCount; }
    void SetFixedCount(int count) { m_fixedCount = count; }
    // The first `count` lines, the fixed ones among them, stay in place while the rest scrolls. They scroll
    // along while they would leave less than a quarter of the window to the rest.
    void SetFrozenCount(int count) { m_frozenCount = count; }
    int FrozenCount() const { return m_frozenCount; }
    int StayingCount() const;
    void Insert(int at, int count);
    void Remove(int at, int count);

    int DefaultSize() const { return m_defaultSize; }
    // Lines with a size of their own keep it.
    void SetDefaultSize(int size);
    int Size(int line) const;
    // Negative sizes count as 0, which hides the line.
    void SetSize(int line, int size);
    // Every line takes the default size again.
    void ResetSizes();

    // Content position of a line's start; Start(Count()) is the length of all.
    qint64 Start(int line) const;
    // The line that covers a content position, or -1. A line of size 0 covers nothing.
    int LineAt(qint64 position) const;

    void SetViewLength(int length) { m_viewLength = length; }
    int ViewLength() const { return m_viewLength; }
    void SetScroll(int offset) { m_scroll = offset; }
    int Scroll() const { return m_scroll; }
    // The greatest sensible scroll offset: the end of the last line at the end of the window.
    int MaxScroll() const;
    // The scroll offset nearest to the present one that shows all of lines first..last, or their start when
    // they are longer than the window; the present one for lines that stay.
    int ScrollToShow(int first, int last) const;

    // Length of the fixed lines.
    int FixedLength() const;
    // Length of the lines that stay, which is also the screen position where the scrolling part starts.
    int StayingLength() const;
    // Screen position and length of lines first..last taken together.
    Span ScreenSpan(int first, int last) const;
    // The line shown at a screen position, or -1.
    int LineAtScreen(int position) const;
    // The lines that stay, or those that scroll, of which a part lies in the screen positions from..to.
    Lines VisibleStaying(int from, int to) const;
    Lines VisibleScrolling(int from, int to) const;

private:
    struct OwnSize {
        int line;
        int size;
        qint64 extraBefore;  // how much the own sizes before this one add to the default
    };

    std::vector<OwnSize>::const_iterator FirstOwnSizeFrom(int line) const;
    void SumUpFrom(std::size_t position);
    qint64 ScreenStart(int line) const;
    Lines LinesBetween(qint64 from, qint64 to, int first, int last) const;

    int m_defaultSize;
    int m_count = 0;
    int m_fixedCount = 0;
    int m_frozenCount = 0;
    int m_scroll = 0;
    int m_viewLength = 0;
    std::vector<OwnSize> m_ownSizes;  // by ascending line
};

}  // namespace quorvane
