// Opening the photo dialog on a picture in a folder of many files against one in a folder of few: from the
// constructor to the first paint, and to the picture's selection in the tree. Exits with 1 when the target is
// missed.
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "benchmarks/report.h"
#include "editors/photo/directory_tree.h"
#include "editors/photo/photo_dialog.h"

using namespace Qt::Literals::StringLiterals;

using namespace quorvane;

namespace {

constexpr int kManyFiles = 50'000;
constexpr int kFewFiles = 50;
constexpr int kRounds = 15;

QString PictureName(const QTemporaryDir& folder, int number) {
    return folder.filePath(u"图片 %1.bmp"_s.arg(number));
}

void Fill(const QTemporaryDir& folder, int files) {
    for (int number = 0; number < files; ++number) {
        QFile file(PictureName(folder, number));
        if (!file.open(QIODevice::WriteOnly)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file.fileName()));
            std::exit(2);
        }
    }
    QImage picture(200, 200, QImage::Format_RGB32);
    picture.fill(Qt::darkYellow);
    picture.save(PictureName(folder, files / 2));
}

// Tells when the dialog paints first.
class FirstPaint : public QObject {
public:
    bool painted = false;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
};

struct Times {
    std::vector<double> firstPaint;  // ms
    std::vector<double> selection;   // ms
    std::vector<double> longestGap;  // ms in which the window answered nothing
};

void OpenOnce(const QTemporaryDir& folder, int files, Times& times) {
    const QString path = PictureName(folder, files / 2);
    QElapsedTimer timer;
    timer.start();
    const auto milliseconds = [&timer] { return static_cast<double>(timer.nsecsElapsed()) / 1e6; };
    CLuminairePhotoSettingDlg dialog(path, u"灯具"_s, nullptr);
    FirstPaint firstPaint;
    dialog.installEventFilter(&firstPaint);
    dialog.show();
    while (!firstPaint.painted) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    times.firstPaint.push_back(milliseconds());
    const auto* tree = dialog.findChild<CDirTreeCtrl*>();
    double longestGap = 0;
    while (tree->SelectedPath() != path) {
        const double before = milliseconds();
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        longestGap = std::max(longestGap, milliseconds() - before);
        QThread::usleep(200);  // without this the loop would take a processor from the reading
    }
    times.selection.push_back(milliseconds());
    times.longestGap.push_back(longestGap);
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QTemporaryDir fewFolder;
    const QTemporaryDir manyFolder;
    Fill(fewFolder, kFewFiles);
    Fill(manyFolder, kManyFiles);
    Times warmUp;
    OpenOnce(fewFolder, kFewFiles, warmUp);
    Times few;
    Times many;
    for (int round = 0; round < kRounds; ++round) {
        OpenOnce(manyFolder, kManyFiles, many);
        OpenOnce(fewFolder, kFewFiles, few);
    }
    const bool met = Report("photo dialog, first paint, 50,000 files (50 files)", Median(many.firstPaint),
                            Median(few.firstPaint), "ms", 2.0);
    std::printf(
        "  picture selected in the tree after %.1f ms (%.1f ms); longest standstill meanwhile %.1f ms\n",
        Median(many.selection), Median(few.selection), Median(many.longestGap));
    return met ? 0 : 1;
}
