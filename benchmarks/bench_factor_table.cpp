// The factor table dialog with 40 rows and 60 columns: loading, showing and submitting against the same
// statements alone; and building its grid for four times the cells against building it once. Exits with 1
// when a target is missed.
//
// usage: bench_factor_table [FOLDER]. Without a folder the file lies in the system's folder for temporary
// files; in one that is held in memory the cost of the program itself shows, which a disk hides.

#include <sqlite3.h>

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>
#include <chrono>
#include <cstdlib>
#include <functional>

#include "benchmarks/report.h"
#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "editors/factor_table/factor_table_dialog.h"
#include "editors/factor_table/factor_table_grid.h"
#include "tools/database_schema.h"
#include "widgets/dialog_template.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kRows = 40;
constexpr int kColumns = 60;
constexpr int kDialogRounds = 7;
constexpr int kBuildRounds = 31;
constexpr int kSmallLuminaire = 1;
constexpr int kLargeLuminaire = 2;
constexpr int kSubmit = 3;

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "bench_factor_table: %s failed\n", what);
        std::exit(2);
    }
}

QString FactorsOf(int luminaire, int rows, int columns) {
    return u"with recursive r(i) as (select 0 union all select i + 1 from r where i < %2 - 1),"
           "c(i) as (select 0 union all select i + 1 from c where i < %3 - 1) "
           "insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) "
           "select %1, c.i / 4, c.i % 4, 20, r.i * 0.25, 0.5 + r.i * 0.001 from c, r;"_s.arg(luminaire)
               .arg(rows)
               .arg(columns);
}

void MakeDatabase(const QString& folder) {
    Require(QDir().mkpath(folder + u"/Vexal"_s), "making a folder");
    sqlite3* handle = nullptr;
    Require(sqlite3_open((folder + u"/Vexal/灯具数据库.mdb"_s).toUtf8().constData(), &handle) == SQLITE_OK,
            "making a database");
    const QString statements = QString::fromUtf8(kDatabaseSchema) +
                               FactorsOf(kSmallLuminaire, kRows, kColumns) +
                               FactorsOf(kLargeLuminaire, kRows * 2, kColumns * 2);
    Require(sqlite3_exec(handle, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK,
            "filling the database");
    sqlite3_close(handle);
}

double Milliseconds(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void RunStatements(CLightingDatabase& database) {
    std::vector<tagLUMINAIREUTILIZATIONFACTOR> factors;
    Require(database.LoadUtilizationFactors(kSmallLuminaire, factors), "loading");
    Require(factors.size() == std::size_t{kRows} * kColumns, "finding all factors");
    SubmitScope submit(database);
    for (const auto& factor : factors) {
        Require(database.UpdateUtilizationFactor(factor), "an update");
    }
    Require(submit.Finish(), "finishing");
}

void RunDialog(CLightingDatabase& database) {
    CCoefficientTableDlg dialog(database, kSmallLuminaire, u"T5"_s, u"RCR"_s, nullptr);
    dialog.show();
    QCoreApplication::processEvents();
    DialogItem<QPushButton>(&dialog, kSubmit)->click();
    QCoreApplication::processEvents();
    Require(!dialog.IsModified(), "submitting");
}

bool CompareDialog(CLightingDatabase& database) {
    std::vector<double> measured;
    std::vector<double> yardstick;
    for (int round = 0; round < kDialogRounds; ++round) {
        yardstick.push_back(Milliseconds([&] { RunStatements(database); }));
        measured.push_back(Milliseconds([&] { RunDialog(database); }));
    }
    return Report("factor table 40 x 60: load, show, submit against its statements", Median(measured),
                  Median(yardstick), "ms", 1.5);
}

bool CompareBuilding(CLightingDatabase& database) {
    QWidget window;
    const auto prepare = [&](UtilizationFactorTable& table, int luminaire) {
        table.Load(luminaire);
        auto grid = std::make_unique<FactorTableGrid>(u"室空间比RCR"_s);
        Require(grid->Create(QRect(0, 0, 600, 400), &window, 1), "creating a grid");
        return grid;
    };
    UtilizationFactorTable smallTable(database, [](const CString&) {});
    UtilizationFactorTable largeTable(database, [](const CString&) {});
    const auto smallGrid = prepare(smallTable, kSmallLuminaire);
    const auto largeGrid = prepare(largeTable, kLargeLuminaire);
    std::vector<double> small;
    std::vector<double> large;
    for (int round = 0; round < kBuildRounds; ++round) {
        small.push_back(Milliseconds([&] { smallGrid->Show(smallTable); }));
        large.push_back(Milliseconds([&] { largeGrid->Show(largeTable); }));
        QCoreApplication::processEvents();
    }
    return Report("building the grid: 4 times the cells against once", Median(large), Median(small), "ms",
                  4.5);
}

}  // namespace

int main(int argc, char* argv[]) {
    const QApplication application(argc, argv);
    const QString parent = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    const QTemporaryDir folder(parent + u"/bench_factor_table-XXXXXX"_s);
    Require(folder.isValid(), "making a temporary folder");
    MakeDatabase(folder.path());
    CLightingDatabase database(CreateStoreConnection, folder.filePath(u"bin/quorvane"_s));
    Require(database.Connect() && database.IsSound(), "connecting");
    const bool dialogIsFast = CompareDialog(database);
    const bool buildingIsLinear = CompareBuilding(database);
    return dialogIsFast && buildingIsLinear ? 0 : 1;
}
