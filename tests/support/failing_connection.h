// A connection to a real database file that records what it is asked and fails where told to.
#pragma once

#include <QStringList>
#include <algorithm>
#include <functional>
#include <memory>

#include "data/lighting_database.h"
#include "data/store/store_factory.h"
#include "tests/support/temporary_lighting_database.h"

namespace quorvane {

struct StatementLog {
    QStringList openings;    // connection strings
    QStringList statements;  // also "BeginSubmit", "EndSubmit" and "Close"
    QStringList failing;  // a statement that contains one of these texts fails; so do these steps and "Open"
    CString message = QStringLiteral("planned failure");
    std::function<void(QString& statement)> onStatement;  // before it is run; may change it
};

class FailingConnection : public Connection {
public:
    FailingConnection(const CString& name, StatementLog& log)
        : m_real(CreateStoreConnection(name)), m_log(log) {}

    static ConnectionFactory Factory(StatementLog& log) {
        return [&log](const CString& name) {
            log.openings += name;
            return std::make_shared<FailingConnection>(name, log);
        };
    }

    void Open(const CString& name, const CString& user, const CString& password, int options) override {
        FailIfPlanned(QStringLiteral("Open"));
        m_real->Open(name, user, password, options);
    }
    std::unique_ptr<Recordset> Execute(const CString& given) override {
        QString statement = given;
        m_log.statements += statement;
        if (m_log.onStatement) {
            m_log.onStatement(statement);
        }
        FailIfPlanned(statement);
        return m_real->Execute(statement);
    }
    void BeginSubmit() override {
        m_log.statements += QStringLiteral("BeginSubmit");
        m_real->BeginSubmit();
    }
    void EndSubmit() override {
        m_log.statements += QStringLiteral("EndSubmit");
        m_real->EndSubmit();
        FailIfPlanned(QStringLiteral("EndSubmit"));
    }
    void Close() override {
        m_log.statements += QStringLiteral("Close");
        FailIfPlanned(QStringLiteral("Close"));
        m_real->Close();
    }

private:
    void FailIfPlanned(const QString& step) const {
        if (std::ranges::any_of(m_log.failing, [&](const QString& text) { return step.contains(text); })) {
            throw ProviderError(m_log.message, FailureKind::Locked);
        }
    }

    std::shared_ptr<Connection> m_real;
    StatementLog& m_log;
};

// A lighting database of its own with some rows, open through such a connection.
struct FailingDatabase {
    // The rows are any statements.
    explicit FailingDatabase(const QString& rows) {
        file.Raw().Execute(rows);
        if (!database.Connect()) {
            qFatal("the database did not open");
        }
    }

    TemporaryLightingDatabase file;
    StatementLog log;
    CLightingDatabase database{FailingConnection::Factory(log), file.ExecutablePath()};
};

}  // namespace quorvane
