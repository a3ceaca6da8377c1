// quorvane-sample-database: makes a sample database file, or checks a database, from the command line.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <cstdio>
#include <exception>

#include "data/store/store_factory.h"
#include "tools/database_copy.h"
#include "tools/database_sense.h"
#include "tools/sample_database.h"
#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace quorvane;

// Returns what the program returns: 1 where something is wrong.
int Check(const QString& file) {
    try {
        QStringList findings = CheckStoreFile(file);
        const auto connection = OpenDatabase(file);
        findings += CheckSense(*connection, QFileInfo(file).absolutePath());
        connection->Close();
        for (const QString& finding : findings) {
            std::printf("%s\n", qPrintable(finding));
        }
        std::printf("%s: %d findings\n", qPrintable(file), static_cast<int>(findings.size()));
        return findings.isEmpty() ? 0 : 1;
    } catch (const ProviderError& error) {
        throw SampleError(error.Message());
    }
}

int Run(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Makes a sample lighting database and, in the folder LuminairePhotoLib beside it, its "
        "photos. An existing file is never overwritten."_s);
    const QCommandLineOption rows(
        u"rows"_s,
        u"Makes a large file: N light sources in all (at most %1), a luminaire for each 25 and a "
        "requirement for each 2 of them; the first %2 luminaires have a utilization factor "
        "table."_s.arg(kMostLightSources)
            .arg(kMostEnlargedTables),
        u"N"_s);
    const QCommandLineOption folder(u"data"_s, u"Reads the data files from DIR instead of those built in."_s,
                                    u"DIR"_s);
    const QCommandLineOption sqlite(u"sqlite"_s, u"Makes an SQLite file instead of an Access file."_s);
    const QCommandLineOption check(
        u"check"_s,
        u"Makes nothing, but checks FILE, a database of either kind: its structure, and whether "
        "what it holds makes sense. Prints what is wrong."_s);
    parser.addOptions({rows, folder, sqlite, check});
    parser.addPositionalArgument(u"FILE"_s, u"The file to make."_s);
    parser.addHelpOption();
    parser.process(app);

    const QStringList files = parser.positionalArguments();
    if (files.size() != 1 || files.first().isEmpty()) {
        throw SampleError(u"name one file (--help tells more)"_s);
    }
    if (parser.isSet(check)) {
        return Check(files.first());
    }
    if (parser.isSet(folder) && parser.value(folder).isEmpty()) {
        throw SampleError(u"--data needs a folder"_s);
    }
    SampleData data = ReadSampleData(parser.value(folder));
    if (parser.isSet(rows)) {
        bool ok = false;
        const int count = parser.value(rows).toInt(&ok);
        if (!ok) {
            throw SampleError(u"--rows: \"%1\" is not a whole number"_s.arg(parser.value(rows)));
        }
        EnlargeSampleData(data, count);
    }
    WriteSampleDatabase(data, files.first(),
                        parser.isSet(sqlite) ? DatabaseKind::Sqlite : DatabaseKind::Access);
    std::printf(
        "%s: %zu light sources, %zu luminaires, %zu utilization factors, %zu requirements, %zu photos\n",
        qPrintable(files.first()), data.LightSources.size(), data.Luminaires.size(), data.Factors.size(),
        data.Requirements.size(), data.Photos.size());
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    try {
        const QCoreApplication app(argc, argv);
        return Run(app);
    } catch (const SampleError& error) {
        std::fprintf(stderr, "quorvane-sample-database: %s\n", qPrintable(error.Message()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quorvane-sample-database: %s\n", error.what());
    }
    return 1;
}
