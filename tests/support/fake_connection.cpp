#include "tests/support/fake_connection.h"

#include <algorithm>

namespace quorvane {

namespace {

class FakeRecordset : public Recordset {
public:
    explicit FakeRecordset(FakeResult result) : m_result(std::move(result)) {}

    bool AtEnd() const override { return m_row == m_result.rows.size(); }
    void MoveNext() override { ++m_row; }
    FieldValue Value(const CString& columnName) const override {
        const auto column = std::find(m_result.columns.begin(), m_result.columns.end(), columnName);
        if (column == m_result.columns.end()) {
            throw ProviderError(QStringLiteral("no column ") + columnName);
        }
        return Value(static_cast<int>(column - m_result.columns.begin()));
    }
    FieldValue Value(int index) const override {
        return m_result.rows.at(m_row).at(static_cast<std::size_t>(index));
    }

private:
    FakeResult m_result;
    std::size_t m_row = 0;
};

void FailWith(const CString& message) {
    if (!message.isEmpty()) {
        throw ProviderError(message);
    }
}

}  // namespace

void FakeConnection::Open(const CString& connectionString, const CString& user, const CString& password,
                          int options) {
    openings.push_back(connectionString);
    if (!user.isEmpty() || !password.isEmpty() || options != -1) {
        throw ProviderError(QStringLiteral("unexpected user, password or options"));
    }
    FailWith(openFailure);
}

std::unique_ptr<Recordset> FakeConnection::Execute(const CString& statement) {
    statements.push_back(statement);
    if (std::any_of(failures.begin(), failures.end(),
                    [&](const CString& text) { return statement.contains(text); })) {
        throw ProviderError(QStringLiteral("planned failure"));
    }
    FakeResult result;
    if (!results.empty()) {
        result = std::move(results.front());
        results.pop_front();
    }
    return std::make_unique<FakeRecordset>(std::move(result));
}

void FakeConnection::Close() {
    ++closings;
    FailWith(closeFailure);
}

ConnectionFactory FakeConnection::Factory(const std::shared_ptr<FakeConnection>& connection) {
    return [connection](const CString&) { return connection; };
}

}  // namespace quorvane
