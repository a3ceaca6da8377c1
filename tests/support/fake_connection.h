// A connection that remembers what it was asked, answers with prepared rows, and fails where told to.
#pragma once

#include <deque>
#include <vector>

#include "data/connection.h"

namespace quorvane {

struct FakeResult {
    std::vector<CString> columns;
    std::vector<std::vector<FieldValue>> rows;
};

class FakeConnection : public Connection {
public:
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override;
    std::unique_ptr<Recordset> Execute(const CString& statement) override;
    void Close() override;

    // A factory that hands out the given connection every time.
    static ConnectionFactory Factory(const std::shared_ptr<FakeConnection>& connection);

    std::vector<CString> openings;    // connection strings
    std::vector<CString> statements;  // also those that failed
    int closings = 0;
    std::deque<FakeResult> results;     // for the next statements; afterwards they have no rows
    std::vector<CString> failures;      // a statement holding one of these texts fails
    CString openFailure, closeFailure;  // messages; empty: it works
};

}  // namespace quorvane
