// From the start of a process to its first painted window: the program with a new sample database of either
// kind against a program that shows a dialog with one Chinese label. The children are copies of this program,
// so that both load the same libraries.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/application.h"
#include "benchmarks/report.h"
#include "tools/sample_database.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace quorvane;

constexpr int kRounds = 11;

qint64 Now() {
    // The same clock in every process.
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Prints the time and ends the process once a window has been painted.
class FirstPaint : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && qobject_cast<QDialog*>(watched) != nullptr) {
            QTimer::singleShot(0, [] {
                std::printf("%lld\n", static_cast<long long>(Now()));
                std::fflush(stdout);
                std::_Exit(EXIT_SUCCESS);
            });
        }
        return false;
    }
};

int RunChild(QApplication& application, const QString& kind) {
    FirstPaint firstPaint;
    application.installEventFilter(&firstPaint);
    if (kind == u"program"_s) {
        CQuorvaneApp(application).Run();
    } else {
        QDialog dialog;
        QLabel label(u"光源"_s, &dialog);
        dialog.exec();
    }
    return EXIT_FAILURE;  // no window was painted
}

// Milliseconds.
double StartUp(const QString& executable, const QString& kind) {
    QProcess child;
    const qint64 start = Now();
    child.start(executable, {kind});
    if (!child.waitForFinished() || child.exitCode() != EXIT_SUCCESS) {
        std::fprintf(stderr, "the child %s failed\n", qPrintable(kind));
        std::exit(2);
    }
    return static_cast<double>(child.readAllStandardOutput().trimmed().toLongLong() - start) / 1000.0;
}

// Beside a database of its own, which the program looks for beside the folder of its executable.
bool ReportStart(const char* file, DatabaseKind kind) {
    const QTemporaryDir folder;
    const QString executable = folder.filePath(u"bin/quorvane"_s);
    WriteSampleDatabase(ReadSampleData({}), folder.filePath(u"Vexal/灯具数据库.mdb"_s), kind);
    if (!QDir(folder.path()).mkdir(u"bin"_s) ||
        !QFile::copy(QCoreApplication::applicationFilePath(), executable)) {
        std::fprintf(stderr, "this program could not be copied\n");
        std::exit(2);
    }
    std::vector<double> program;
    std::vector<double> label;
    for (int round = 0; round < kRounds; ++round) {
        program.push_back(StartUp(executable, u"program"_s));
        label.push_back(StartUp(executable, u"label"_s));
    }
    const auto name = std::string("start to first painted window, by its own clock, ") + file +
                      " (a dialog with one Chinese label)";
    return Report(name.c_str(), Median(program), Median(label), "ms", 1.25);
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc > 1) {
        QApplication application(argc, argv);
        return RunChild(application, QString::fromLocal8Bit(argv[1]));
    }
    QCoreApplication application(argc, argv);
    const bool met = ReportStart("SQLite", DatabaseKind::Sqlite);
    return ReportStart("Access", DatabaseKind::Access) && met ? 0 : 1;
}
