// A connection that copies its file before the first statement that writes.
#pragma once

#include "data/connection.h"

namespace quorvane {

// Asks whether to write although the file could not be copied, for the reason given.
using AskWithoutCopy = std::function<bool(const CString& reason)>;

class BackedUpConnection : public Connection {
public:
    // PATH is the file of the connection behind this one.
    BackedUpConnection(std::shared_ptr<Connection> connection, const CString& path, AskWithoutCopy ask);

    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override;
    // A statement that writes fails where the file could not be copied and the answer was no. The question is
    // asked once.
    std::unique_ptr<Recordset> Execute(const CString& statement) override;
    // Copies before the submit takes its lock: closing a file drops all locks that the process has on it.
    void BeginSubmit() override;
    void EndSubmit() override { m_connection->EndSubmit(); }
    void Close() override { m_connection->Close(); }
    bool IsCheckRunning() const override { return m_connection->IsCheckRunning(); }
    void RequireSoundFile() override { m_connection->RequireSoundFile(); }
    CString ChangesPutAside() const override { return m_connection->ChangesPutAside(); }

private:
    void CopyOnce();

    std::shared_ptr<Connection> m_connection;
    CString m_path;
    AskWithoutCopy m_ask;
    bool m_settled = false;  // copied, or asked
    CString m_refusal;       // why nothing may be written; empty: it may
};

}  // namespace quorvane
