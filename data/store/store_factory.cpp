#include "data/store/store_factory.h"

#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <algorithm>
#include <array>
#include <utility>

#include "data/database_path.h"
#include "data/store/access/header.h"
#include "data/store/access/sql/access_connection.h"
#include "data/store/ado/ado_connection.h"
#include "data/store/backed_up_connection.h"
#include "data/store/connection_string.h"
#include "data/store/sqlite_check.h"
#include "data/store/sqlite_connection.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

// Silent unless QT_LOGGING_RULES asks for it: quorvane.database.store.debug=true
Q_LOGGING_CATEGORY(lcStore, "quorvane.database.store", QtInfoMsg)

constexpr qint64 kHeadSize = 32;  // so many first bytes tell the kind of every database

bool Always() {
    return true;
}

struct Driver {
    bool (*recognises)(const QByteArray& head);
    bool (*isThere)();
    std::shared_ptr<Connection> (*create)();
    QStringList (*check)(const QString& path);
    const char* why;  // for the trace
};

// One line a driver. The first one that recognises the file and is there opens it.
constexpr std::array kDrivers{
    Driver{IsSqliteFile, Always, CreateSqliteConnection, CheckSqliteFile, "SQLite, for an SQLite file"},
    Driver{access::IsAccessFile, IsJetRegistered, CreateAdoConnection, CheckAccessFile,
           "ADO, for an Access file where Jet 4.0 is registered"},
    Driver{access::IsAccessFile, Always, CreateAccessConnection, CheckAccessFile,
           "the program's own driver, for an Access file where Jet 4.0 is not registered"},
};

QByteArray ReadHead(const CString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        throw ProviderError(u"there is no file %1"_s.arg(path), FailureKind::FileGone);
    }
    if (!info.isFile()) {
        throw ProviderError(u"%1 is not a file"_s.arg(path));
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw ProviderError(u"%1 cannot be read: %2"_s.arg(path, file.errorString()));
    }
    return file.read(kHeadSize);
}

const Driver& DriverOf(const CString& path) {
    const QByteArray head = ReadHead(path);
    const auto* driver = std::find_if(kDrivers.begin(), kDrivers.end(), [&](const Driver& candidate) {
        return candidate.recognises(head) && candidate.isThere();
    });
    if (driver == kDrivers.end()) {
        throw ProviderError(head.isEmpty() ? u"%1 is empty"_s.arg(path)
                                           : u"%1 is not a database"_s.arg(path));
    }
    return *driver;
}

}  // namespace

std::shared_ptr<Connection> CreateStoreConnection(const CString& connectionString) {
    const CString path = NativePath(DataSource(connectionString));
    if (path.isEmpty()) {
        throw ProviderError(u"the connection string names no data source"_s);
    }
    const Driver& driver = DriverOf(path);
    qCDebug(lcStore) << "driver:" << driver.why;
    return driver.create();
}

CString StoreDriver(const CString& path) {
    return QString::fromLatin1(DriverOf(path).why);
}

ConnectionFactory BackedUpStore(std::function<bool(const CString& reason)> goOn) {
    return [goOn = std::move(goOn)](const CString& connectionString) -> std::shared_ptr<Connection> {
        return std::make_shared<BackedUpConnection>(CreateStoreConnection(connectionString),
                                                    NativePath(DataSource(connectionString)), goOn);
    };
}

QStringList CheckStoreFile(const CString& path) {
    return DriverOf(path).check(path);
}

}  // namespace quorvane
