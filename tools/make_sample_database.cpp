// quorvane-sample-database: makes a sample database file from the command line.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <exception>

#include "tools/sample_database.h"
#include "tools/sample_error.h"

namespace {

using namespace quorvane;

void Run(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Makes a sample lighting database and, in the folder LuminairePhotoLib beside it, its "
                       "photos. An existing file is never overwritten."));
    const QCommandLineOption rows(
        QStringLiteral("rows"),
        QStringLiteral(
            "Makes a large file: N light sources in all (at most %1), a luminaire for each 25 and a "
            "requirement for each 2 of them; the first %2 luminaires have a utilization factor "
            "table.")
            .arg(kMostLightSources)
            .arg(kMostEnlargedTables),
        QStringLiteral("N"));
    const QCommandLineOption folder(
        QStringLiteral("data"), QStringLiteral("Reads the data files from DIR instead of those built in."),
        QStringLiteral("DIR"));
    parser.addOptions({rows, folder});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The file to make."));
    parser.addHelpOption();
    parser.process(app);

    const QStringList files = parser.positionalArguments();
    if (files.size() != 1 || files.first().isEmpty()) {
        throw SampleError(QStringLiteral("name one file to make (--help tells more)"));
    }
    if (parser.isSet(folder) && parser.value(folder).isEmpty()) {
        throw SampleError(QStringLiteral("--data needs a folder"));
    }
    SampleData data = ReadSampleData(parser.value(folder));
    if (parser.isSet(rows)) {
        bool ok = false;
        const int count = parser.value(rows).toInt(&ok);
        if (!ok) {
            throw SampleError(QStringLiteral("--rows: \"%1\" is not a whole number").arg(parser.value(rows)));
        }
        EnlargeSampleData(data, count);
    }
    WriteSampleDatabase(data, files.first());
    std::printf(
        "%s: %zu light sources, %zu luminaires, %zu utilization factors, %zu requirements, %zu photos\n",
        qPrintable(files.first()), data.LightSources.size(), data.Luminaires.size(), data.Factors.size(),
        data.Requirements.size(), data.Photos.size());
}

}  // namespace

int main(int argc, char* argv[]) {
    try {
        const QCoreApplication app(argc, argv);
        Run(app);
        return 0;
    } catch (const SampleError& error) {
        std::fprintf(stderr, "quorvane-sample-database: %s\n", qPrintable(error.Message()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "quorvane-sample-database: %s\n", error.what());
    }
    return 1;
}
