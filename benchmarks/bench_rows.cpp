// Pasting, deleting and submitting many rows on the light source page: the time must grow with the rows
// alone. Prints the exponent of the growth from 1,000 to 16,000 rows (1 is linear), and the time of 50,000
// pasted rows. Exits with 1 when a target is missed.
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <cmath>

#include "benchmarks/report.h"
#include "data/store/store_factory.h"
#include "editors/light_source_page.h"
#include "tools/sample_database.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace quorvane;

constexpr int kFew = 1000;
constexpr int kMany = 16'000;
constexpr int kPasted = 50'000;
constexpr int kNameColumn = 2;
constexpr double kMostExponent = 1.1;
constexpr double kMostPasteMs = 1500;

struct Times {
    double paste = 0;  // ms
    double submit = 0;
    double remove = 0;
};

void PutRowsOnClipboard(int rows) {
    QString text;
    for (int row = 0; row < rows; ++row) {
        text += u"光源%1\tTL5-%1\t%1\t28\t甲厂\n"_s.arg(row + 1);
    }
    QApplication::clipboard()->setText(text);
}

// Removes every record and its row, always the first, without the questions that the page asks.
void DeleteRows(CGridCtrl& grid) {
    std::vector<tagLAMPHOUSEINFO> loaded(static_cast<size_t>(grid.GetRowCount() - 2));
    for (size_t index = 0; index < loaded.size(); ++index) {
        loaded[index].ID = static_cast<int>(index) + 1;
    }
    WorkingRecords<tagLAMPHOUSEINFO> records;
    records.TakeLoaded(std::move(loaded));
    while (records.Count() > 0) {
        records.Remove(records.At(0).ID);
        grid.DeleteRow(1);
    }
}

Times Measure(int rows, bool withSubmit) {
    const QTemporaryDir folder;
    SampleData data;
    data.Categories.push_back({1, u"荧光灯"_s});
    WriteSampleDatabase(data, folder.filePath(u"Vexal/灯具数据库.mdb"_s));
    CLightingDatabase database(CreateStoreConnection, folder.filePath(u"bin/quorvane"_s));
    if (!database.Connect()) {
        std::fprintf(stderr, "the database did not open\n");
        std::exit(2);
    }
    ReferenceLists lists(database);
    CQuorvaneLamphouseDlg page(database, lists, nullptr);
    page.resize(780, 480);
    page.show();
    QApplication::processEvents();
    PutRowsOnClipboard(rows);
    auto* grid = page.findChild<CGridCtrl*>();
    grid->SetFocusCell({1, kNameColumn});
    Times times;
    times.paste = Milliseconds([&] {
        QKeyEvent paste(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
        QApplication::sendEvent(grid, &paste);
        QApplication::processEvents();
    });
    if (grid->GetRowCount() != rows + 2) {
        std::fprintf(stderr, "%d rows stand there instead of %d\n", grid->GetRowCount(), rows + 2);
        std::exit(2);
    }
    if (withSubmit) {
        times.submit = Milliseconds([&] {
            page.Submit();
            page.Refresh();
        });
    }
    times.remove = Milliseconds([&] { DeleteRows(*grid); });
    return times;
}

// What other programs on the machine take does not count.
Times Fastest(int rows, int rounds) {
    Times fastest = Measure(rows, true);
    for (int round = 1; round < rounds; ++round) {
        const Times times = Measure(rows, true);
        fastest.paste = std::min(fastest.paste, times.paste);
        fastest.submit = std::min(fastest.submit, times.submit);
        fastest.remove = std::min(fastest.remove, times.remove);
    }
    return fastest;
}

double Exponent(double few, double many) {
    return std::log(many / few) / std::log(static_cast<double>(kMany) / kFew);
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const Times few = Fastest(kFew, 5);
    const Times many = Fastest(kMany, 3);
    bool met = Report("pasting, growth (linear)", Exponent(few.paste, many.paste), 1, "", kMostExponent);
    met = Report("deleting, growth (linear)", Exponent(few.remove, many.remove), 1, "", kMostExponent) && met;
    met =
        Report("submitting, growth (linear)", Exponent(few.submit, many.submit), 1, "", kMostExponent) && met;
    const Times most = Measure(kPasted, false);
    met = Report("pasting 50,000 rows (allowed)", most.paste, kMostPasteMs, "ms", 1) && met;
    std::printf("deleting 1,000, 16,000, 50,000 rows: %.1f, %.1f, %.1f ms; submitting 16,000: %.0f ms\n",
                few.remove, many.remove, most.remove, many.submit);
    return met ? 0 : 1;
}
