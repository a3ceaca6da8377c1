#include <QApplication>

#include "app/application.h"
#include "app/single_instance.h"

int main(int argc, char* argv[]) {
    const quorvane::SingleInstanceGuard guard(QStringLiteral("Quorvane"));
    if (guard.IsAlreadyRunning()) {
        return 0;
    }
    QApplication application(argc, argv);
    quorvane::CQuorvaneApp(application).Run();
    return 0;
}
