// 1,000 updates through CLightingDatabase against the same statements run straight on the C library, on files
// of the same content and under the same journal settings. Exits with 1 when the target is missed.
//
// usage: bench_updates [FOLDER]. Without a folder the files lie in the system's folder for temporary files;
// in one that is held in memory the cost of the program itself shows, which a disk hides.

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

constexpr int kUpdates = 1000;
constexpr int kRounds = 11;
constexpr int kBlock = 50;  // the two take turns so often that a change of the disk's mood meets both

using Database = std::unique_ptr<sqlite3, SqliteCloser>;

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "bench_updates: %s failed\n", what);
        std::exit(2);
    }
}

void Run(sqlite3* database, const char* statements) {
    Require(sqlite3_exec(database, statements, nullptr, nullptr, nullptr) == SQLITE_OK, statements);
}

Database OpenRaw(const QString& path) {
    sqlite3* handle = nullptr;
    Require(sqlite3_open(path.toUtf8().constData(), &handle) == SQLITE_OK, "opening");
    return Database(handle);
}

// A database with the rows to update, below a folder of its own. Returns the file's path.
QString MakeDatabase(const QString& folder) {
    Require(QDir().mkpath(folder + u"/Vexal"_s), "making a folder");
    QString path = folder + u"/Vexal/灯具数据库.mdb"_s;
    const Database database = OpenRaw(path);
    Run(database.get(), kDatabaseSchema);
    Run(database.get(),
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 1000) "
        "insert into 光源 select i, 1 + i % 10, 'TL5 28W/840', 2600, 28, '晨光照明', '直管荧光灯' from n");
    return path;
}

tagLAMPHOUSEINFO RecordOf(int id, int round) {
    return {id, 1 + id % 10, u"TL5 28W/840"_s, 2000.5 + id + round, 28.5, u"晨光照明"_s, u"直管荧光灯"_s};
}

// Written out here once more, so that the yardstick runs none of the code that is measured.
QByteArray StatementOf(int id, int round) {
    char text[400];
    std::snprintf(text, sizeof text,
                  "update 光源 set LamphouseType=%d,LamphouseModel='TL5 28W/840',LuminousFlux=%G,"
                  "LamphousePower=%G,Factory='晨光照明',LamphouseName='直管荧光灯' where ID=%d",
                  1 + id % 10, 2000.5 + id + round, 28.5, id);
    return text;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QString parent = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    const QTemporaryDir folder(parent + u"/bench_updates-XXXXXX"_s);
    Require(folder.isValid(), "making a temporary folder");
    MakeDatabase(folder.filePath(u"measured"_s));
    CLightingDatabase database(CreateStoreConnection, folder.filePath(u"measured/bin/quorvane"_s));
    Require(database.Connect(), "connecting");
    const Database raw = OpenRaw(MakeDatabase(folder.filePath(u"yardstick"_s)));
    Run(raw.get(), kSqliteJournalSettings);

    std::vector<double> measured;
    std::vector<double> yardstick;
    for (int round = 0; round < kRounds; ++round) {
        std::vector<tagLAMPHOUSEINFO> records;
        std::vector<QByteArray> statements;
        for (int id = 1; id <= kUpdates; ++id) {
            records.push_back(RecordOf(id, round));
            statements.push_back(StatementOf(id, round));
        }
        double measuredTime = 0;
        double yardstickTime = 0;
        for (int first = 0; first < kUpdates; first += kBlock) {
            measuredTime += Milliseconds([&] {
                for (int index = first; index < first + kBlock; ++index) {
                    Require(database.UpdateLightSource(records[static_cast<std::size_t>(index)]),
                            "an update");
                }
            });
            yardstickTime += Milliseconds([&] {
                for (int index = first; index < first + kBlock; ++index) {
                    Run(raw.get(), statements[static_cast<std::size_t>(index)].constData());
                }
            });
        }
        measured.push_back(measuredTime);
        yardstick.push_back(yardstickTime);
    }
    return Report("1,000 updates", Median(measured), Median(yardstick), "ms", 1.25) ? 0 : 1;
}
