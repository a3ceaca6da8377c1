// Loading a category of 100,000 light sources against stepping through the same rows with the C library; the
// list of makers against the same; and the memory of the records. Exits with 1 when a target is missed.
//
// usage: bench_loading [FOLDER]

#include <malloc.h>
#include <sqlite3.h>

#include <QDir>
#include <QTemporaryDir>
#include <cstdlib>

#include "benchmarks/report.h"
#include "data/lighting_database.h"
#include "data/store/sqlite_connection.h"
#include "data/store/store_factory.h"
#include "tools/database_schema.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kRounds = 9;
constexpr int kLightSources = 100'000;

using Database = std::unique_ptr<sqlite3, SqliteCloser>;

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "bench_loading: %s failed\n", what);
        std::exit(2);
    }
}

Database OpenRaw(const QString& path) {
    sqlite3* handle = nullptr;
    Require(sqlite3_open(path.toUtf8().constData(), &handle) == SQLITE_OK, "opening");
    return Database(handle);
}

void MakeDatabase(const QString& folder) {
    Require(QDir(folder).mkdir(u"Vexal"_s), "making a folder");
    const Database database = OpenRaw(folder + u"/Vexal/灯具数据库.mdb"_s);
    const QByteArray rows =
        QByteArray(kDatabaseSchema) +
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 100000) "
        "insert into 光源 select i, 7, 'TL5 28W/' || i, 2600 + i % 100, 28.5, '晨光照明' || (i % 10),"
        "'直管荧光灯' || (i % 3) from n";
    Require(sqlite3_exec(database.get(), rows.constData(), nullptr, nullptr, nullptr) == SQLITE_OK,
            "filling the file");
}

void StepThrough(sqlite3* database, const char* query, int expected) {
    sqlite3_stmt* statement = nullptr;
    Require(sqlite3_prepare_v2(database, query, -1, &statement, nullptr) == SQLITE_OK, query);
    const int columns = sqlite3_column_count(statement);
    int rows = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int column = 0; column < columns; ++column) {
            if (sqlite3_column_type(statement, column) == SQLITE_TEXT) {
                Require(sqlite3_column_text(statement, column) != nullptr, "reading a text");
            } else {
                static_cast<void>(sqlite3_column_double(statement, column));
            }
        }
        ++rows;
    }
    sqlite3_finalize(statement);
    Require(rows == expected, "finding all rows");
}

template <typename Measured, typename Yardstick>
bool Compare(const char* name, double target, Measured measure, Yardstick yardstick) {
    std::vector<double> measured;
    std::vector<double> against;
    for (int round = 0; round < kRounds; ++round) {
        measured.push_back(Milliseconds(measure));
        against.push_back(Milliseconds(yardstick));
    }
    return Report(name, Median(measured), Median(against), "ms", target);
}

double MegabytesInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QString parent = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    const QTemporaryDir folder(parent + u"/bench_loading-XXXXXX"_s);
    Require(folder.isValid(), "making a temporary folder");
    MakeDatabase(folder.path());
    CLightingDatabase database(CreateStoreConnection, folder.filePath(u"bin/quorvane"_s));
    Require(database.Connect(), "connecting");
    const Database raw = OpenRaw(folder.filePath(u"Vexal/灯具数据库.mdb"_s));

    std::vector<tagLAMPHOUSEINFO> records;
    const bool loadingMet = Compare(
        "loading 100,000 light sources against stepping through them", 2.0,
        [&] { Require(database.LoadLightSourcesByType(7, records), "loading"); },
        [&] {
            StepThrough(raw.get(),
                        "select ID, LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName "
                        "from 光源 where LamphouseType = 7",
                        kLightSources);
        });
    std::vector<CString> makers;
    const bool makersMet = Compare(
        "listing the makers of 100,000 light sources against reading them all", 2.0,
        [&] { Require(database.LoadLightSourceFactories(makers) && makers.size() == 10, "listing"); },
        [&] { StepThrough(raw.get(), "select Factory from 光源", kLightSources); });
    records.clear();
    records.shrink_to_fit();
    const double before = MegabytesInUse();
    Require(database.LoadLightSourcesByType(7, records), "loading");
    const bool memoryMet =
        Report("memory of 100,000 light sources against the bare records", MegabytesInUse() - before,
               kLightSources * sizeof(tagLAMPHOUSEINFO) / 1e6, "MB", 1.8);
    return loadingMet && makersMet && memoryMet ? 0 : 1;
}
