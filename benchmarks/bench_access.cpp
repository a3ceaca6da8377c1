// The Access driver: loading beside mdb-export, growth with the size of the file, submits beside the SQLite
// store, inserts into large tables, and look-ups by index. Exits with 1 when a target is missed.
//
// usage: bench_access FIXTURE    where FIXTURE is an Access file with some thousand light sources
//        bench_access --load FILE     opens, checks and loads a file, and prints milliseconds and kilobytes

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdlib>
#include <functional>

#include "benchmarks/report.h"
#include "tools/database_copy.h"
#include "tools/sample_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

constexpr int kRounds = 7;
const QStringList kTables{u"光源类别"_s, u"光源"_s, u"灯具"_s, u"利用系数"_s, u"照度要求及功率密度"_s};

qint64 CountRows(Connection& connection, const QString& query) {
    qint64 rows = 0;
    for (const auto result = connection.Execute(query); !result->AtEnd(); result->MoveNext(), ++rows) {
        static_cast<void>(result->Value(0));
    }
    return rows;
}

enum class Check { No, Yes };

// Opens a file and reads every value of every table. The program shows a file before it checks it.
void Load(const QString& file, Check check) {
    const auto connection = OpenDatabase(file);
    if (check == Check::Yes) {
        connection->RequireSoundFile();
    }
    for (const QString& table : kTables) {
        for (const auto rows = connection->Execute(u"select * from "_s + table); !rows->AtEnd();
             rows->MoveNext()) {
            static_cast<void>(rows->Value(1));
        }
    }
    connection->Close();
}

// The most memory that this process has held so far.
long PeakKilobytes() {
    QFile status(u"/proc/self/status"_s);
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:")) {
                return line.mid(6).trimmed().split(' ').first().toLong();
            }
        }
    }
    return 0;
}

double MedianOf(const std::function<double()>& measure) {
    std::vector<double> values;
    for (int round = 0; round < kRounds; ++round) {
        values.push_back(measure());
    }
    return Median(values);
}

void Fill(Connection& connection, const QString& table, const QString& columns, int count,
          const std::function<QString(int)>& values) {
    connection.BeginSubmit();
    for (int row = 0; row < count; ++row) {
        connection.Execute(u"insert into %1 (%2) values ("_s.arg(table, columns) + values(row) + u')');
    }
    connection.EndSubmit();
}

QString LightSource(int row) {
    return u"%1,'T5-%2W/840',%3,%4,'澄曜照明','T5直管荧光灯'"_s.arg(row % 20 + 1)
        .arg(row % 90)
        .arg(900 + row % 5000)
        .arg(14 + row % 70);
}
const QString kLightSourceColumns =
    u"LamphouseType,LamphouseModel,LuminousFlux,LamphousePower,Factory,LamphouseName"_s;

// A new Access file with that many light sources.
std::shared_ptr<Connection> MakeAccess(const QString& file, int lightSources) {
    WriteEmptyDatabase(file, DatabaseKind::Access);
    auto connection = OpenDatabase(file);
    Fill(*connection, u"光源"_s, kLightSourceColumns, lightSources, LightSource);
    return connection;
}

bool LoadingBesideExport(const QString& fixture) {
    const double exported = MedianOf([&] {
        return Milliseconds([&] {
            for (const QString& table : kTables) {
                QProcess reader;
                reader.setStandardOutputFile(QProcess::nullDevice());
                reader.start(u"mdb-export"_s, {fixture, table});
                reader.waitForFinished();
            }
        });
    });
    const double loaded = MedianOf([&] { return Milliseconds([&] { Load(fixture, Check::No); }); });
    return Report("open and load five tables, beside mdb-export", loaded, exported, "ms", 0.5);
}

struct LoadCost {
    double milliseconds = 0;
    double kilobytes = 0;
};

// In a process of its own, so that its memory counts alone.
LoadCost LoadApart(const QString& program, const QString& file) {
    std::vector<double> times;
    LoadCost cost;
    for (int round = 0; round < 3; ++round) {
        QProcess process;
        process.start(program, {u"--load"_s, file});
        process.waitForFinished(-1);
        const QStringList words = QString::fromLatin1(process.readAll()).split(u' ');
        times.push_back(words.value(0).toDouble());
        cost.kilobytes = words.value(1).toDouble();
    }
    cost.milliseconds = Median(times);
    return cost;
}

// A new file of light sources that has just reached the size; gives its size in MB.
double MakeFileOf(const QString& file, double megabytes) {
    constexpr int kAtOnce = 2000;
    const auto size = [&] { return static_cast<double>(QFileInfo(file).size()) / 1e6; };
    const auto connection = MakeAccess(file, kAtOnce);
    while (size() < megabytes) {
        Fill(*connection, u"光源"_s, kLightSourceColumns, kAtOnce, LightSource);
    }
    connection->Close();
    return size();
}

bool LoadingLargeFiles(const QString& program, const QString& folder) {
    const QString small = folder + u"/small.mdb"_s;
    const QString large = folder + u"/large.mdb"_s;
    const double fewMegabytes = MakeFileOf(small, 5);
    const double manyMegabytes = MakeFileOf(large, 50);
    const LoadCost few = LoadApart(program, small);
    const LoadCost many = LoadApart(program, large);
    const QByteArray name = QByteArray("open, check and load ") + QByteArray::number(manyMegabytes, 'f', 1) +
                            " MB, beside " + QByteArray::number(fewMegabytes, 'f', 1) + " MB";
    const bool time = Report(name.constData(), many.milliseconds, few.milliseconds, "ms", 12);
    return Report("memory for that", many.kilobytes, few.kilobytes, "kB", 1.5) && time;
}

bool SubmittingBesideSqlite(const QString& folder) {
    const QString accessFile = folder + u"/updates.mdb"_s;
    const QString sqliteFile = folder + u"/updates.sqlite"_s;
    const auto access = MakeAccess(accessFile, 5000);
    WriteEmptyDatabase(sqliteFile, DatabaseKind::Sqlite);
    const auto sqlite = OpenDatabase(sqliteFile);
    Fill(*sqlite, u"光源"_s, kLightSourceColumns, 5000, LightSource);
    int round = 0;
    const auto submit = [&](Connection& connection) {
        ++round;
        return Milliseconds([&] {
            connection.BeginSubmit();
            for (int id = 1; id <= 1000; ++id) {
                connection.Execute(
                    u"update 光源 set "
                    u"LamphouseType=3,LamphouseModel='%1-%2',LuminousFlux=%3,LamphousePower=28,"
                    "Factory='澄曜照明',LamphouseName='T5直管荧光灯' where ID=%4"_s.arg(round)
                        .arg(id)
                        .arg(id * 5)
                        .arg(id * 4 + 60));
            }
            connection.EndSubmit();
        });
    };
    const double yardstick = MedianOf([&] { return submit(*sqlite); });
    return Report("a submit of 1,000 updates, beside the SQLite store",
                  MedianOf([&] { return submit(*access); }), yardstick, "ms", 2);
}

bool LargeTables(const QString& folder) {
    const auto few = MakeAccess(folder + u"/few.mdb"_s, 1000);
    const auto many = MakeAccess(folder + u"/many.mdb"_s, 100'000);
    const auto insert = [](Connection& connection) {
        return Milliseconds([&] { Fill(connection, u"光源"_s, kLightSourceColumns, 1000, LightSource); });
    };
    const double yardstick = MedianOf([&] { return insert(*few); });
    const bool inserts = Report("1,000 inserts into 100,000 rows, beside 1,000 rows",
                                MedianOf([&] { return insert(*many); }), yardstick, "ms", 1.3);
    // The files have an index on the luminaire of a factor, and none on the category of a light source.
    Fill(*many, u"利用系数"_s, u"LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor"_s, 100'000,
         [](int row) { return u"%1,%1,50,10,1,60"_s.arg(row / 500 + 1); });
    const auto search = [&](const QString& column) {
        return MedianOf([&] {
            return Milliseconds([&] {
                if (CountRows(*many,
                              u"select ID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where %1=77"_s.arg(
                                  column)) != 500) {
                    std::exit(2);
                }
            });
        });
    };
    const double scan = search(u"Pcc"_s);
    return Report("500 of 100,000 rows by index, beside a scan", search(u"LuminaireID"_s), scan, "ms",
                  0.05) &&
           inserts;
}

}  // namespace

int main(int argc, char* argv[]) {
    const QString argument = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    if (argument == u"--load" && argc == 3) {
        std::printf("%.3f ", Milliseconds([&] { Load(QString::fromLocal8Bit(argv[2]), Check::Yes); }));
        std::printf("%ld", PeakKilobytes());
        return 0;
    }
    const QTemporaryDir folder;
    const QString fixture = folder.filePath(u"fixture.mdb"_s);
    if (!QFile::copy(argument.isEmpty() ? QStringLiteral(ACCESS_FIXTURE) : argument, fixture)) {
        std::fprintf(stderr, "bench_access: the fixture cannot be copied\n");
        return 2;
    }
    try {
        bool met = LoadingBesideExport(fixture);
        met = LoadingLargeFiles(QString::fromLocal8Bit(argv[0]), folder.path()) && met;
        met = SubmittingBesideSqlite(folder.path()) && met;
        met = LargeTables(folder.path()) && met;
        return met ? 0 : 1;
    } catch (const ProviderError& error) {
        std::fprintf(stderr, "bench_access: %s\n", qPrintable(error.Message()));
        return 2;
    }
}
