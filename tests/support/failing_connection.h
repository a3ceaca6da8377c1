// A connection to a real database file that records its statements and fails where told to.
#pragma once

#include <QStringList>
#include <algorithm>
#include <functional>
#include <memory>

#include "data/connection.h"
#include "data/store/store_factory.h"

namespace quorvane {

struct StatementLog {
    QStringList statements;
    QStringList failing;  // a statement that contains one of these texts fails; so does "EndSubmit"
    std::function<void(const QString& statement)> onStatement;
};

class FailingConnection : public Connection {
public:
    FailingConnection(const CString& name, StatementLog& log)
        : m_real(CreateStoreConnection(name)), m_log(log) {}

    static ConnectionFactory Factory(StatementLog& log) {
        return [&log](const CString& name) { return std::make_shared<FailingConnection>(name, log); };
    }

    void Open(const CString& name, const CString& user, const CString& password, int options) override {
        m_real->Open(name, user, password, options);
    }
    std::unique_ptr<Recordset> Execute(const CString& statement) override {
        m_log.statements += statement;
        if (m_log.onStatement) {
            m_log.onStatement(statement);
        }
        FailIfPlanned(statement);
        return m_real->Execute(statement);
    }
    void BeginSubmit() override { m_real->BeginSubmit(); }
    void EndSubmit() override {
        m_real->EndSubmit();
        FailIfPlanned(QStringLiteral("EndSubmit"));
    }
    void Close() override { m_real->Close(); }

private:
    void FailIfPlanned(const QString& step) const {
        if (std::ranges::any_of(m_log.failing, [&](const QString& text) { return step.contains(text); })) {
            throw ProviderError(QStringLiteral("planned failure"), FailureKind::Locked);
        }
    }

    std::shared_ptr<Connection> m_real;
    StatementLog& m_log;
};

}  // namespace quorvane
