// The arithmetic of rows and columns, against a plain list of sizes.
#include <QRandomGenerator>
#include <QTest>
#include <algorithm>
#include <numeric>
#include <vector>

#include "grid/grid_layout.h"
#include "grid/grid_merges.h"

using namespace quorvane;

class TestGridLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void axisAgreesWithAListOfSizes();
    void screenPositionsKeepFixedLines();
    void scrollToShow();
    void hugeTablesDoNotOverflow();
    void mergesAgreeWithAMapOfCells();
};

namespace {

constexpr int Default = 20;

qint64 SumBefore(const std::vector<int>& sizes, int line) {
    return std::accumulate(sizes.begin(), sizes.begin() + line, qint64{0});
}

int LineAt(const std::vector<int>& sizes, qint64 position) {
    for (int line = 0; line < static_cast<int>(sizes.size()); ++line) {
        const qint64 start = SumBefore(sizes, line);
        if (position >= start && position < start + sizes[static_cast<std::size_t>(line)]) {
            return line;
        }
    }
    return -1;
}

void ChangeAtRandom(QRandomGenerator& random, GridAxis& axis, std::vector<int>& sizes) {
    const int count = static_cast<int>(sizes.size());
    const int line = random.bounded(count + 1);
    const int many = random.bounded(4);
    switch (random.bounded(3)) {
        case 0:
            axis.Insert(line, many);
            sizes.insert(sizes.begin() + line, static_cast<std::size_t>(many), Default);
            break;
        case 1: {
            const int removed = std::min(many, count - line);
            axis.Remove(line, removed);
            sizes.erase(sizes.begin() + line, sizes.begin() + line + removed);
            break;
        }
        default:
            if (line < count) {
                // Often the default and often nothing: both are special inside.
                const int size =
                    std::vector<int>{0, Default, random.bounded(60),
                                     random.bounded(60)}[static_cast<std::size_t>(random.bounded(4))];
                axis.SetSize(line, size);
                sizes[static_cast<std::size_t>(line)] = size;
            }
            break;
    }
}

}  // namespace

void TestGridLayout::axisAgreesWithAListOfSizes() {
    QRandomGenerator random(4711);
    for (int round = 0; round < 40; ++round) {
        GridAxis axis(Default);
        std::vector<int> sizes;
        for (int step = 0; step < 60; ++step) {
            ChangeAtRandom(random, axis, sizes);
        }
        const int count = static_cast<int>(sizes.size());
        QCOMPARE(axis.Count(), count);
        for (int line = 0; line < count; ++line) {
            QCOMPARE(axis.Size(line), sizes[static_cast<std::size_t>(line)]);
            QCOMPARE(axis.Start(line), SumBefore(sizes, line));
        }
        const qint64 total = SumBefore(sizes, count);
        QCOMPARE(axis.Start(count), total);
        for (qint64 position = -1; position <= total; ++position) {
            QCOMPARE(axis.LineAt(position), LineAt(sizes, position));
        }
    }
}

void TestGridLayout::screenPositionsKeepFixedLines() {
    GridAxis axis(Default);
    axis.Insert(0, 100);
    axis.SetFixedCount(2);
    axis.SetSize(1, 30);
    axis.SetViewLength(150);
    axis.SetScroll(35);  // line 2 and 15 pixels of line 3 lie under the fixed ones
    QCOMPARE(axis.FixedLength(), 50);
    QCOMPARE(axis.ScreenSpan(1, 1).start, 20);
    QCOMPARE(axis.ScreenSpan(4, 4).start, 55);
    QCOMPARE(axis.ScreenSpan(2, 4).length, 60);
    QCOMPARE(axis.LineAtScreen(49), 1);
    QCOMPARE(axis.LineAtScreen(50), 3);
    QCOMPARE(axis.LineAtScreen(54), 3);
    QCOMPARE(axis.LineAtScreen(55), 4);
    QCOMPARE(axis.LineAtScreen(-1), -1);
    QCOMPARE(axis.MaxScroll(), 50 + 98 * Default - 150);

    const GridAxis::Lines scrolling = axis.VisibleScrolling(0, 149);
    QCOMPARE(scrolling.first, 3);
    QCOMPARE(scrolling.last, 8);  // from pixel 135
    const GridAxis::Lines fixed = axis.VisibleFixed(25, 149);
    QCOMPARE(fixed.first, 1);
    QCOMPARE(fixed.last, 1);
    QVERIFY(axis.VisibleFixed(60, 149).IsEmpty());
}

void TestGridLayout::scrollToShow() {
    GridAxis axis(Default);
    axis.Insert(0, 100);
    axis.SetFixedCount(1);
    axis.SetViewLength(120);  // five lines scroll
    QCOMPARE(axis.ScrollToShow(3, 3), 0);
    QCOMPARE(axis.ScrollToShow(6, 6), Default);
    axis.SetScroll(400);
    QCOMPARE(axis.ScrollToShow(0, 0), 400);
    QCOMPARE(axis.ScrollToShow(2, 2), Default);
    // Longer than the window: its start, unless the window lies inside it.
    QCOMPARE(axis.ScrollToShow(50, 80), 49 * Default);
    axis.SetScroll(60 * Default);
    QCOMPARE(axis.ScrollToShow(50, 80), 60 * Default);
}

void TestGridLayout::hugeTablesDoNotOverflow() {
    GridAxis axis(Default);
    axis.Insert(0, 200'000'000);
    axis.SetViewLength(600);
    QVERIFY(axis.MaxScroll() > 500'000'000);
    QCOMPARE(axis.LineAt(axis.Start(199'999'999)), 199'999'999);
    axis.SetScroll(1000);
    QVERIFY(axis.ScreenSpan(0, 199'999'999).length > 0);
}

void TestGridLayout::mergesAgreeWithAMapOfCells() {
    // The oracle keeps for every cell the number of its block; rows and columns of it are inserted and
    // removed like a block's would be.
    QRandomGenerator random(99);
    for (int round = 0; round < 60; ++round) {
        GridMerges merges;
        std::vector<std::vector<int>> cells(12, std::vector<int>(12, 0));
        int next = 1;
        for (int step = 0; step < 25; ++step) {
            const int row = random.bounded(static_cast<int>(cells.size()));
            const int column = random.bounded(12);
            if (random.bounded(3) > 0) {
                const int lastRow = std::min(row + random.bounded(4), static_cast<int>(cells.size()) - 1);
                const int lastColumn = std::min(column + random.bounded(4), 11);
                std::vector<int> touched;
                for (int r = row; r <= lastRow; ++r) {
                    for (int c = column; c <= lastColumn; ++c) {
                        touched.push_back(cells[size_t(r)][size_t(c)]);
                        cells[size_t(r)][size_t(c)] = 0;
                    }
                }
                for (auto& line : cells) {
                    for (int& number : line) {
                        number = std::count(touched.begin(), touched.end(), number) > 0 ? 0 : number;
                    }
                }
                for (int r = row; r <= lastRow; ++r) {
                    std::fill(cells[size_t(r)].begin() + column, cells[size_t(r)].begin() + lastColumn + 1,
                              next);
                }
                ++next;
                merges.Merge({row, column, lastRow, lastColumn});
            } else if (random.bounded(2) == 0 && cells.size() > 4) {
                merges.RemoveRows(row, 1);
                cells.erase(cells.begin() + row);
            } else {
                merges.InsertRows(row, 1);
                std::vector<int> added(12, 0);
                for (std::size_t c = 0; c < 12 && row > 0; ++c) {
                    const int above = cells[size_t(row) - 1][c];
                    added[c] = above == cells[size_t(row)][c] ? above : 0;
                }
                cells.insert(cells.begin() + row, added);
            }
        }
        for (int r = 0; r < static_cast<int>(cells.size()); ++r) {
            for (int c = 0; c < 12; ++c) {
                const int number = cells[size_t(r)][size_t(c)];
                CCellRange expected{r, c, r, c};
                for (int y = 0; number != 0 && y < static_cast<int>(cells.size()); ++y) {
                    for (int x = 0; x < 12; ++x) {
                        if (cells[size_t(y)][size_t(x)] == number) {
                            expected = {std::min(expected.minRow, y), std::min(expected.minCol, x),
                                        std::max(expected.maxRow, y), std::max(expected.maxCol, x)};
                        }
                    }
                }
                QCOMPARE(merges.Extent({r, c}), expected);
            }
        }
    }
}

QTEST_APPLESS_MAIN(TestGridLayout)
#include "test_grid_layout.moc"
