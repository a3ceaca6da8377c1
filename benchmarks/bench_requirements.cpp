// Choosing a building type with 10,000 rows on the requirement page, from the click to the painted grid,
// against the bare query through the data layer.
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "benchmarks/report.h"
#include "data/store/store_factory.h"
#include "editors/requirement_page.h"
#include "tools/sample_database.h"

namespace {

using namespace quorvane;

constexpr int kRows = 10'000;
constexpr int kRounds = 9;

const CString kTrade = QStringLiteral("工业建筑");
const CString kLarge = QStringLiteral("大");
const CString kEmpty = QStringLiteral("空");

SampleData LargeBuildingType() {
    SampleData data;
    data.Requirements.resize(kRows);
    for (int index = 0; index < kRows; ++index) {
        tagILLUMINANCESTANDARD& row = data.Requirements[static_cast<size_t>(index)];
        row.ID = index + 1;
        row.Vocation = kTrade;
        row.BuildingType = kLarge;
        row.Location = QStringLiteral("场所%1").arg(index);
        row.ReferencePlane = QStringLiteral("0.75m水平面");
        row.ActualLPD = 11;
        row.ObjectiveLPD = 9;
        row.IlluminanceStandard = 300;
        row.UGR = 19;
        row.Ra = 80;
    }
    data.Requirements.push_back(data.Requirements.back());
    data.Requirements.back().ID = kRows + 1;
    data.Requirements.back().BuildingType = kEmpty;
    return data;
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    WriteSampleDatabase(LargeBuildingType(), folder.filePath(QStringLiteral("Vexal/灯具数据库.mdb")));
    CLightingDatabase database(CreateStoreConnection, folder.filePath(QStringLiteral("bin/quorvane")));
    if (!database.Connect()) {
        std::fprintf(stderr, "the database did not open\n");
        return 1;
    }
    CQuorvaneDemandDlg page(database, nullptr);
    page.resize(780, 480);
    page.show();
    auto* tree = page.findChild<QTreeWidget*>();
    tree->expandAll();
    QTreeWidgetItem* trade = tree->topLevelItem(0);

    std::vector<double> shown;
    std::vector<double> queried;
    for (int round = 0; round < kRounds; ++round) {
        for (int type = 0; type < trade->childCount(); ++type) {
            QTreeWidgetItem* item = trade->child(type);
            const double time = Milliseconds([&] {
                tree->setCurrentItem(item);
                QCoreApplication::sendPostedEvents();
                page.repaint();
            });
            if (item->text(0) == kLarge) {
                shown.push_back(time);
            }
        }
        std::vector<tagILLUMINANCESTANDARD> records;
        queried.push_back(Milliseconds([&] { database.LoadIlluminanceStandards(kTrade, kLarge, records); }));
    }
    return Report("building type of 10,000 rows shown (bare query)", Median(shown), Median(queried), "ms",
                  2.0)
               ? 0
               : 1;
}
