// Files and connections to them, for tests that look at the bytes.
#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <memory>

#include "data/store/store_factory.h"

namespace quorvane {

// All of a file; empty when it cannot be read.
inline QByteArray Contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Makes the file and its folder where they are missing. A test that cannot write ends.
inline void WriteFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("%s cannot be written", qPrintable(path));
    }
}

// An open connection to a database file.
inline std::shared_ptr<Connection> OpenStore(const QString& path,
                                             const ConnectionFactory& factory = CreateStoreConnection) {
    const CString source = QStringLiteral("Data Source = %1;").arg(path);
    std::shared_ptr<Connection> connection = factory(source);
    connection->Open(source, {}, {}, -1);
    return connection;
}

}  // namespace quorvane
