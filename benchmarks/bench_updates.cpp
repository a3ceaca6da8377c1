// Submits through the data room against the same statements run straight on the C library, on files of the
// same content and with the same promises: 5,000 light sources, and a factor table of 40 x 60. Each is also
// compared with waiting for the disk after each statement. Exits with 1 when a target is missed.
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
#include "data/store/sqlite_submit.h"
#include "data/store/store_factory.h"
#include "data/utilization_factor_table.h"
#include "tools/database_schema.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kRounds = 7;
constexpr int kLightSources = 5000;
constexpr int kFactors = 2400;
// Waiting for the disk after each statement is measured with fewer statements: 5,000 would take minutes.
constexpr int kWaitingStatements = 100;

using Database = std::unique_ptr<sqlite3, SqliteCloser>;
using Statements = std::vector<QByteArray>;

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
        "with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) "
        "insert into 光源 select i, 1 + i % 10, 'TL5 28W/840', 2600, 28, '晨光照明', '直管荧光灯' from n;"
        "with recursive r(i) as (select 0 union all select i + 1 from r where i < 39),"
        "c(i) as (select 0 union all select i + 1 from c where i < 59) "
        "insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) "
        "select 1, 60 - c.i, 50, 20, r.i * 0.25, 0.5 from c, r");
    return path;
}

tagLAMPHOUSEINFO RecordOf(int id, int round) {
    return {id, 1 + id % 10, u"TL5 28W/840"_s, 2000.5 + id + round, 28.5, u"晨光照明"_s, u"直管荧光灯"_s};
}

// The statements are written out here once more, so that the yardstick runs none of the code that is
// measured.
Statements LightSourceUpdates(int round) {
    Statements statements;
    for (int id = 1; id <= kLightSources; ++id) {
        char text[400];
        std::snprintf(text, sizeof text,
                      "update 光源 set LamphouseType=%d,LamphouseModel='TL5 28W/840',LuminousFlux=%G,"
                      "LamphousePower=%G,Factory='晨光照明',LamphouseName='直管荧光灯' where ID=%d",
                      1 + id % 10, 2000.5 + id + round, 28.5, id);
        statements.emplace_back(text);
    }
    return statements;
}

Statements FactorUpdates(int round) {
    Statements statements;
    for (int id = 1; id <= kFactors; ++id) {
        char text[400];
        std::snprintf(text, sizeof text,
                      "update 利用系数 set LuminaireID=%d,Pcc=%d,Pw=%d,Pf=%d,RCR_RI=%G,UtilizationFactor=%G "
                      "where ID=%d",
                      1, 60 - (id - 1) / 40, 50, 20, (id - 1) % 40 * 0.25, 0.001 * round, id);
        statements.emplace_back(text);
    }
    return statements;
}

void SubmitRaw(sqlite3* database, const Statements& statements) {
    BeginSqliteSubmit(database);
    for (const QByteArray& statement : statements) {
        Run(database, statement.constData());
    }
    EndSqliteSubmit(database);
}

// What all statements take when each of them waits for the disk, scaled up from the first ones.
double WaitingMilliseconds(sqlite3* database, const Statements& statements) {
    const double time = Milliseconds([&] {
        for (int index = 0; index < kWaitingStatements; ++index) {
            Run(database, statements[static_cast<std::size_t>(index)].constData());
        }
    });
    return time * static_cast<double>(statements.size()) / kWaitingStatements;
}

// submit(round) runs what is measured.
template <typename Submit>
bool Compare(const QByteArray& name, sqlite3* raw, Statements (*statementsOf)(int round), Submit submit) {
    std::vector<double> measured;
    std::vector<double> yardstick;
    std::vector<double> waiting;
    for (int round = 0; round < kRounds; ++round) {
        const Statements statements = statementsOf(round);
        measured.push_back(Milliseconds([&] { submit(round); }));
        yardstick.push_back(Milliseconds([&] { SubmitRaw(raw, statements); }));
        waiting.push_back(WaitingMilliseconds(raw, statements));
    }
    const bool isClose = Report((name + " against the C library").constData(), Median(measured),
                                Median(yardstick), "ms", 1.25);
    const bool isFaster = Report((name + " against waiting after each statement").constData(),
                                 Median(measured), Median(waiting), "ms", 0.15);
    return isClose && isFaster;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QString parent = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    const QTemporaryDir folder(parent + u"/bench_updates-XXXXXX"_s);
    Require(folder.isValid(), "making a temporary folder");
    MakeDatabase(folder.filePath(u"measured"_s));
    CLightingDatabase database(CreateStoreConnection, folder.filePath(u"measured/bin/quorvane"_s));
    Require(database.Connect() && database.IsSound(), "connecting");
    const Database raw = OpenRaw(MakeDatabase(folder.filePath(u"yardstick"_s)));
    PrepareForWriting(raw.get());

    const bool lightSourcesMet =
        Compare("submit of 5,000 light sources", raw.get(), LightSourceUpdates, [&](int round) {
            SubmitScope submit(database);
            for (int id = 1; id <= kLightSources; ++id) {
                Require(database.UpdateLightSource(RecordOf(id, round)), "an update");
            }
            Require(submit.Finish(), "finishing");
        });
    UtilizationFactorTable table(database, [](const CString&) {});
    table.Load(1);
    Require(table.Factors().size() == kFactors, "loading the factors");
    const bool factorsMet =
        Compare("submit of a factor table of 40 x 60", raw.get(), FactorUpdates, [&](int /*round*/) {
            table.Submit();
            Require(table.UnwrittenCount() == 0, "writing the factors");
        });
    return lightSourcesMet && factorsMet ? 0 : 1;
}
