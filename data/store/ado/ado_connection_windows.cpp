#include "data/store/ado/ado_connection.h"

#include <QLoggingCategory>

#include "data/store/ado/ado_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

using namespace ado;

Q_LOGGING_CATEGORY(lcAdo, "quorvane.database.ado", QtDebugMsg)

// Jet commits a single statement in memory first and writes it a moment later, unless it is told to wait.
const CString kWriteAtOnce = u"Jet OLEDB:Implicit Commit Sync"_s;

class AdoConnection : public Connection {
public:
    void Open(const CString& connectionString, const CString& user, const CString& password,
              int options) override {
        Object connection = Object::Create(L"ADODB.Connection");
        connection.Call(L"Open", connectionString, user, password, qint64{options});
        WriteAtOnce(connection);
        m_connection = std::move(connection);
    }

    std::unique_ptr<Recordset> Execute(const CString& statement) override {
        return std::make_unique<AdoRecordset>(Object(OpenConnection().Call(L"Execute", statement)));
    }

    void Close() override {
        OpenConnection().Call(L"Close");
        m_connection = Object();
    }

private:
    const Object& OpenConnection() const {
        if (!m_connection) {
            throw ProviderError(u"the connection is not open"_s);
        }
        return m_connection;
    }

    // A provider that does not know the setting is used as it is.
    static void WriteAtOnce(const Object& connection) {
        try {
            const Object properties(connection.Property(L"Properties"));
            const Object setting(properties.Property(L"Item", kWriteAtOnce));
            setting.SetProperty(L"Value", qint64{1});
        } catch (const ProviderError& error) {
            qCDebug(lcAdo).noquote() << "statements may reach the disk late:" << error.Message();
        }
    }

    Object m_connection;
};

}  // namespace

// The name of the provider is registered for 64-bit programs too, its library is not.
bool IsJetRegistered() {
    CLSID id{};
    LPOLESTR idText = nullptr;
    if (FAILED(::CLSIDFromProgID(L"Microsoft.Jet.OLEDB.4.0", &id)) ||
        FAILED(::StringFromCLSID(id, &idText))) {
        return false;
    }
    const std::wstring library = L"CLSID\\" + std::wstring(idText) + L"\\InprocServer32";
    ::CoTaskMemFree(idText);
    return ::RegGetValueW(HKEY_CLASSES_ROOT, library.c_str(), nullptr, RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ,
                          nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}

std::shared_ptr<Connection> CreateAdoConnection() {
    return std::make_shared<AdoConnection>();
}

}  // namespace quorvane
