#include <QApplication>
#include <cstdlib>

#include "app/application.h"
#include "app/platform_session.h"
#include "app/single_instance.h"
#include "model/async_reader.h"

using namespace Qt::Literals::StringLiterals;

namespace {

void RunProgram(int argc, char* argv[]) {
    const quorvane::SingleInstanceGuard guard(u"Quorvane"_s);
    if (guard.IsAlreadyRunning()) {
        return;
    }
    const std::shared_ptr<void> session = quorvane::OpenPlatformSession();
    QApplication application(argc, argv);
    quorvane::CQuorvaneApp(application).Run();
}

}  // namespace

int main(int argc, char* argv[]) {
    RunProgram(argc, argv);
    // A reader that still waits for a drive may go on at any moment. It must not find static objects
    // destroyed.
    if (!quorvane::AsyncReader::WaitForAll(std::chrono::milliseconds(100))) {
        std::_Exit(EXIT_SUCCESS);
    }
    return EXIT_SUCCESS;
}
