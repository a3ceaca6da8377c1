// A provider of databases for automation, registered in this process in the place of the system's ADO. It
// does what the test tells it and counts what it hands out.
#pragma once

#include <windows.h>
// The headers of automation need that one before them.
#include <oleauto.h>

#include <QStringList>
#include <functional>
#include <vector>

namespace quorvane {

// How a member of an object ends; E_FAIL and the like come with nothing but their code.
struct FakeFailure {
    enum class Way { None, Code, Exception, DeferredException, ErrorInfo };
    Way way = Way::None;
    HRESULT code = E_FAIL;
};

// The source and the description of every failure that has them.
inline constexpr const wchar_t* kFakeSource = L"JET 引擎";
inline constexpr const wchar_t* kFakeDescription = L"找不到文件。\r\n";

enum class FakeResult { Rows, ClosedRecordset, Nothing, NullObject };

struct FakeAdo {
    std::vector<std::wstring> columns;
    // Each makes one value; a row is a list of them.
    std::vector<std::vector<std::function<void(VARIANT&)>>> rows;
    FakeResult result = FakeResult::Rows;
    QString failingMember;  // such as "Open"
    FakeFailure failure;
    bool hasProperties = true;

    QStringList calls;   // "Open(…, …)" for each method called and each property set
    static int objects;  // that have not been released
};

// While it lives, a new "ADODB.Connection" is one of the fake.
class FakeAdoScope {
public:
    explicit FakeAdoScope(FakeAdo& ado);
    ~FakeAdoScope();
    FakeAdoScope(const FakeAdoScope&) = delete;
    FakeAdoScope& operator=(const FakeAdoScope&) = delete;

private:
    DWORD m_registration = 0;
};

}  // namespace quorvane
