#include <QApplication>
#include <cstdlib>

#include "app/application.h"
#include "app/single_instance.h"
#include "model/async_reader.h"

namespace {

void RunProgram(int argc, char* argv[]) {
    const quorvane::SingleInstanceGuard guard(QStringLiteral("Quorvane"));
    if (guard.IsAlreadyRunning()) {
        return;
    }
    QApplication application(argc, argv);
    quorvane::CQuorvaneApp(application).Run();
}

}  // namespace

int main(int argc, char* argv[]) {
    RunProgram(argc, argv);
    // What still waits for a drive may go on at any moment, and must not find the program half taken down.
    if (!quorvane::AsyncReader::WaitForAll(std::chrono::milliseconds(100))) {
        std::_Exit(EXIT_SUCCESS);
    }
    return EXIT_SUCCESS;
}
