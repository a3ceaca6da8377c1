// The arithmetic of rows and columns, against a plain list of sizes.
#include <QRandomGenerator>
#include <QTest>
#include <algorithm>
#include <numeric>
#include <vector>

#include "grid/grid_layout.h"
#include "grid/grid_merges.h"

using namespace quorvane;

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
                const int choices[] = {0, Default, random.bounded(60), random.bounded(60)};
                const int size = choices[random.bounded(4)];
                axis.SetSize(line, size);
                sizes[static_cast<std::size_t>(line)] = size;
            }
            break;
    }
}

}  // namespace

class TestGridLayout : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void axisAgreesWithAListOfSizes() {
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

    void screenPositionsKeepFixedLines() {
        GridAxis axis(Default);
        axis.Insert(0, 100);
        axis.SetFixedCount(2);
        axis.SetSize(1, 30);
        axis.SetViewLength(150);
        axis.SetScroll(35);  // line 2 and 15 pixels of line 3 lie under the fixed ones
        QCOMPARE(axis.ScreenSpan(1, 1).start, 20);
        QCOMPARE(axis.ScreenSpan(4, 4).start, 55);
        QCOMPARE(axis.ScreenSpan(2, 4).length, 60);
        for (const auto& [position, line] : {std::pair(-1, -1), {49, 1}, {50, 3}, {54, 3}, {55, 4}}) {
            QCOMPARE(axis.LineAtScreen(position), line);
        }
        QCOMPARE(axis.MaxScroll(), 50 + 98 * Default - 150);
        const GridAxis::Lines scrolling = axis.VisibleScrolling(0, 149);
        QVERIFY(scrolling.first == 3 && scrolling.last == 8);
        QCOMPARE(axis.ScrollToShow(0, 0), 35);
        QCOMPARE(axis.ScrollToShow(2, 2), 0);
        // Longer than the window: its start, unless the window lies inside it.
        QCOMPARE(axis.ScrollToShow(50, 80), 48 * Default);
        axis.SetScroll(60 * Default);
        QCOMPARE(axis.ScrollToShow(50, 80), 60 * Default);

        axis.Insert(100, 200'000'000);
        QVERIFY(axis.MaxScroll() > 500'000'000);
        QCOMPARE(axis.LineAt(axis.Start(199'999'999)), 199'999'999);
    }

    void mergedBlocksFollowRows() {
        GridMerges merges;
        merges.Merge({2, 1, 4, 2});
        merges.RemoveRows(2, 1);  // the row of its first cell
        QCOMPARE(merges.Extent({3, 2}), (CCellRange{2, 1, 3, 2}));
        merges.InsertRows(3, 1);
        QCOMPARE(merges.Extent({3, 2}), (CCellRange{2, 1, 4, 2}));
        merges.InsertRows(0, 2);
        QCOMPARE(merges.Extent({4, 1}), (CCellRange{4, 1, 6, 2}));
        merges.Merge({6, 0, 7, 1});  // a block takes the place of one it touches
        QCOMPARE(merges.Extent({4, 1}), (CCellRange{4, 1, 4, 1}));
        QCOMPARE(merges.Extent({6, 1}), (CCellRange{6, 0, 7, 1}));
    }
};

QTEST_APPLESS_MAIN(TestGridLayout)
#include "test_grid_layout.moc"
