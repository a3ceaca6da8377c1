// quorvane-convert: copies a lighting database into a file of the other kind.

#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <exception>

#include "tools/database_copy.h"
#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace quorvane;

int Run(const QCoreApplication& app) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Copies all rows of the lighting database FROM into TO, IDs kept, and compares both "
        "afterwards. Either may be an Access or an SQLite file. TO must exist with its five tables "
        "empty. When a row cannot be copied, TO keeps those before it: start again with an empty file."_s);
    parser.addPositionalArgument(u"FROM"_s, u"The database to read."_s);
    parser.addPositionalArgument(u"TO"_s, u"The database to fill."_s);
    parser.addHelpOption();
    parser.process(app);
    const QStringList files = parser.positionalArguments();
    if (files.size() != 2) {
        throw SampleError(u"name the file to read and the file to fill (--help tells more)"_s);
    }
    const auto from = OpenDatabase(files[0]);
    const auto to = OpenDatabase(files[1]);
    const int rows = CopyDatabase(*from, *to);
    from->Close();
    to->Close();
    std::printf("%d rows are the same in both files\n", rows);
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    QString reason;
    try {
        const QCoreApplication app(argc, argv);
        return Run(app);
    } catch (const SampleError& error) {
        reason = error.Message();
    } catch (const ProviderError& error) {
        reason = error.Message();
    } catch (const std::exception& error) {
        reason = QString::fromLocal8Bit(error.what());
    }
    std::fprintf(stderr, "quorvane-convert: %s\n", qPrintable(reason));
    return 1;
}
