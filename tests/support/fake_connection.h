// A connection that remembers what it was asked, answers with prepared rows, and fails where told to.
#pragma once

#include <algorithm>
#include <deque>
#include <vector>

#include "data/connection.h"

namespace quorvane {

struct FakeResult {
    std::vector<CString> columns;
    std::vector<std::vector<FieldValue>> rows;
};

class FakeRecordset : public Recordset {
public:
    explicit FakeRecordset(FakeResult result) : m_result(std::move(result)) {}

    bool AtEnd() const override { return m_row == m_result.rows.size(); }
    void MoveNext() override { ++m_row; }
    int Column(const CString& columnName) const override {
        const auto column = std::find(m_result.columns.begin(), m_result.columns.end(), columnName);
        return static_cast<int>(column - m_result.columns.begin());
    }
    FieldValue Value(int index) const override {
        return m_result.rows.at(m_row).at(static_cast<std::size_t>(index));
    }

private:
    FakeResult m_result;
    std::size_t m_row = 0;
};

class FakeConnection : public Connection {
public:
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override {
        openings.push_back(connectionString);
        if (!user.isEmpty() || !password.isEmpty() || options != -1) {
            throw ProviderError(QStringLiteral("unexpected user, password or options"));
        }
        FailWith(openFailure);
    }
    std::unique_ptr<Recordset> Execute(const CString& statement) override {
        statements.push_back(statement);
        for (const CString& text : failures) {
            FailWith(statement.contains(text) ? QStringLiteral("planned failure") : CString());
        }
        FakeResult result;
        if (!results.empty()) {
            result = std::move(results.front());
            results.pop_front();
        }
        return std::make_unique<FakeRecordset>(std::move(result));
    }
    void BeginSubmit() override { statements.push_back(QStringLiteral("BeginSubmit")); }
    void EndSubmit() override {
        statements.push_back(QStringLiteral("EndSubmit"));
        FailWith(endSubmitFailure);
    }
    void Close() override {
        ++closings;
        FailWith(closeFailure);
    }

    // A factory that hands out the given connection every time.
    static ConnectionFactory Factory(const std::shared_ptr<FakeConnection>& connection) {
        return [connection](const CString&) { return connection; };
    }

    std::vector<CString> openings;    // connection strings
    std::vector<CString> statements;  // also those that failed, with BeginSubmit and EndSubmit among them
    int closings = 0;
    std::deque<FakeResult> results;  // for the next statements; afterwards they have no rows
    std::vector<CString> failures;   // a statement holding one of these texts fails
    CString openFailure, closeFailure, endSubmitFailure;  // messages; empty: it works

private:
    static void FailWith(const CString& message) {
        if (!message.isEmpty()) {
            throw ProviderError(message, FailureKind::Locked);
        }
    }
};

}  // namespace quorvane
