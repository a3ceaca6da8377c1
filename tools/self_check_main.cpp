// quorvane-self-check: tries the program's database operations on a copy of a database, and prints a report.

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <cstdio>

#include "data/store/store_factory.h"
#include "tools/console.h"
#include "tools/self_check.h"

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace quorvane;

QByteArray Contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Returns what the program returns: 0 when everything is right.
int Run(const QString& path) {
    PrintLine(u"quorvane 自检报告 %1"_s.arg(QStringLiteral(QUORVANE_VERSION)));
    PrintLine(u"系统：%1，%2 程序"_s.arg(QSysInfo::prettyProductName(), QSysInfo::buildCpuArchitecture()));
    PrintLine(u"文件：%1（%2 字节）"_s.arg(path).arg(QFileInfo(path).size()));
    try {
        const QByteArray before = Contents(path);
        PrintLine(u"驱动：%1"_s.arg(StoreDriver(path)));
        SelfCheckReport report = CheckOperations(path, CreateStoreConnection);
        for (const QString& line : report.lines) {
            PrintLine(line);
        }
        if (Contents(path) != before) {
            PrintLine(u"失败  原文件在自检期间被改动"_s);
            ++report.failures;
        }
        PrintLine(u"共 %1 项，失败 %2 项"_s.arg(report.lines.size()).arg(report.failures));
        return report.failures == 0 ? 0 : 1;
    } catch (const ProviderError& error) {
        PrintLine(u"失败  %1"_s.arg(error.Message()));
        return 1;
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication app(argc, argv);
    const std::shared_ptr<void> console = OpenConsole();
    if (QCoreApplication::arguments().size() != 2) {
        PrintLine(u"用法：quorvane-self-check 数据库文件"_s);
        return 2;
    }
    return Run(QCoreApplication::arguments().constLast());
}
