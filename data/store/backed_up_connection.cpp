#include "data/store/backed_up_connection.h"

#include <utility>

#include "data/store/backup_copy.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

bool Writes(const CString& statement) {
    return !statement.trimmed().startsWith(u"select"_s, Qt::CaseInsensitive);
}

}  // namespace

BackedUpConnection::BackedUpConnection(std::shared_ptr<Connection> connection, const CString& path,
                                       AskWithoutCopy ask)
    : m_connection(std::move(connection)), m_path(path), m_ask(std::move(ask)) {}

void BackedUpConnection::Open(const CString& connectionString, const CString& user, const CString& password,
                              int options) {
    m_connection->Open(connectionString, user, password, options);
}

std::unique_ptr<Recordset> BackedUpConnection::Execute(const CString& statement) {
    if (Writes(statement)) {
        CopyOnce();
    }
    return m_connection->Execute(statement);
}

void BackedUpConnection::BeginSubmit() {
    CopyOnce();
    m_connection->BeginSubmit();
}

void BackedUpConnection::CopyOnce() {
    m_connection->RequireSoundFile();  // a copy of a damaged file would push out a good one
    if (!std::exchange(m_settled, true)) {
        try {
            MakeBackupCopy(m_path);
        } catch (const ProviderError& error) {
            m_refusal =
                m_ask(error.Message()) ? CString() : u"写入前未能备份数据库文件:%1"_s.arg(error.Message());
        }
    }
    if (!m_refusal.isEmpty()) {
        throw ProviderError(m_refusal);
    }
}

}  // namespace quorvane
