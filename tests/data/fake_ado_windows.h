// A provider of databases for automation, registered in this process in the place of the system's ADO. It
// does what the test tells it and counts what it hands out.
#pragma once

#include <windows.h>
// The headers of automation need that one before them.
#include <oleauto.h>

#include <QStringList>
#include <functional>
#include <iterator>
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
    std::vector<const wchar_t*> columns;
    // Each makes one value; a row is a list of them.
    std::vector<std::vector<std::function<void(VARIANT&)>>> rows;
    FakeResult result = FakeResult::Rows;
    QString failingMember;  // such as "Open"
    FakeFailure failure;
    bool hasProperties = true;

    QStringList calls;              // "Open(…, …)" for each method called and each property set
    std::size_t row = 0;            // of the record set that was opened last
    static inline int objects = 0;  // that have not been released
};

// A connection, record set, list of fields, field or setting: what it is asked shows which. The first one
// makes connections.
class FakeObject : public IDispatch, public IClassFactory {
public:
    explicit FakeObject(FakeAdo& ado, LONG column = 0)
        : m_ado(ado), m_column(static_cast<std::size_t>(column)) {
        ++FakeAdo::objects;
    }
    virtual ~FakeObject() { --FakeAdo::objects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (id == IID_IClassFactory) {
            *object = static_cast<IClassFactory*>(this);
        } else if (id == IID_IUnknown || id == IID_IDispatch) {
            *object = static_cast<IDispatch*>(this);
        }
        m_references += *object != nullptr ? 1 : 0;
        return *object != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        auto* made = new FakeObject(m_ado);
        const HRESULT result = made->QueryInterface(id, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const qsizetype member = kMembers.indexOf(QString::fromWCharArray(*names));
        *ids = static_cast<DISPID>(member);
        return member < 0 || (!m_ado.hasProperties && kMembers[member] == u"Properties") ? DISP_E_UNKNOWNNAME
                                                                                         : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT*) override {
        const QString& member = kMembers[id];
        if (kind != DISPATCH_PROPERTYGET) {
            QStringList shown;
            for (UINT index = arguments->cArgs; index > 0; --index) {
                const VARIANT& value = arguments->rgvarg[index - 1];
                shown += value.vt == VT_BSTR ? QString::fromWCharArray(value.bstrVal)
                                             : QString::number(value.lVal);
            }
            m_ado.calls += member + u'(' + shown.join(QStringLiteral(", ")) + u')';
        }
        if (m_ado.failingMember == member) {
            return Fail(*exception);
        }
        if (result != nullptr) {
            Answer(member, *arguments, *result);
        }
        return S_OK;
    }

private:
    void Answer(const QString& member, const DISPPARAMS& arguments, VARIANT& result) {
        const auto give = [&result](VARTYPE type, auto VARIANT::*part, auto content) {
            result.vt = type;
            result.*part = content;
        };
        const auto giveObject = [&](FakeObject* object) {
            give(VT_DISPATCH, &VARIANT::pdispVal, static_cast<IDispatch*>(object));
        };
        if (member == u"Execute" && m_ado.result != FakeResult::Nothing) {
            m_ado.row = 0;
            giveObject(m_ado.result == FakeResult::NullObject ? nullptr : new FakeObject(m_ado));
        } else if (member == u"Fields" || member == u"Properties") {
            giveObject(new FakeObject(m_ado));
        } else if (member == u"Item") {
            const VARIANT& key = arguments.rgvarg[0];  // of a field its index, of a setting its name
            giveObject(new FakeObject(m_ado, key.vt == VT_I4 ? key.lVal : 0));
        } else if (member == u"State") {
            give(VT_I4, &VARIANT::lVal, m_ado.result == FakeResult::Rows ? 1 : 0);
        } else if (member == u"Count") {
            give(VT_I4, &VARIANT::lVal, static_cast<LONG>(m_ado.columns.size()));
        } else if (member == u"Name") {
            give(VT_BSTR, &VARIANT::bstrVal, ::SysAllocString(m_ado.columns[m_column]));
        } else if (member == u"Value") {
            m_ado.rows.at(m_ado.row).at(m_column)(result);
        } else if (member == u"EOF") {
            const bool isAtEnd = m_ado.row == m_ado.rows.size();
            give(VT_BOOL, &VARIANT::boolVal, isAtEnd ? VARIANT_TRUE : VARIANT_FALSE);
        } else if (member == u"MoveNext") {
            ++m_ado.row;
        }
    }

    HRESULT Fail(EXCEPINFO& exception) const {
        switch (m_ado.failure.way) {
            case FakeFailure::Way::Exception:
                FillIn(&exception);
                break;
            case FakeFailure::Way::DeferredException:
                exception.pfnDeferredFillIn = FillIn;
                break;
            case FakeFailure::Way::ErrorInfo:
                LeaveErrorInfo();
                [[fallthrough]];
            default:
                return m_ado.failure.code;
        }
        exception.scode = m_ado.failure.code;
        return DISP_E_EXCEPTION;
    }
    static HRESULT STDMETHODCALLTYPE FillIn(EXCEPINFO* exception) {
        exception->bstrSource = ::SysAllocString(kFakeSource);
        exception->bstrDescription = ::SysAllocString(kFakeDescription);
        return S_OK;
    }
    static void LeaveErrorInfo() {
        ICreateErrorInfo* made = nullptr;
        IErrorInfo* information = nullptr;
        ::CreateErrorInfo(&made);
        made->SetSource(const_cast<LPOLESTR>(kFakeSource));
        made->SetDescription(const_cast<LPOLESTR>(kFakeDescription));
        made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&information));
        ::SetErrorInfo(0, information);
        information->Release();
        made->Release();
    }

    static inline const QStringList kMembers =
        QStringLiteral("Open Close Execute Properties State Fields Count Item Name Value EOF MoveNext")
            .split(u' ');
    FakeAdo& m_ado;
    std::size_t m_column;  // of a field
    ULONG m_references = 1;
};

// While it lives, a new "ADODB.Connection" is one of the fake.
class FakeAdoScope {
public:
    explicit FakeAdoScope(FakeAdo& ado) {
        CLSID id{};
        ::CLSIDFromProgID(L"ADODB.Connection", &id);
        auto* factory = new FakeObject(ado);
        ::CoRegisterClassObject(id, static_cast<IClassFactory*>(factory), CLSCTX_INPROC_SERVER,
                                REGCLS_MULTIPLEUSE, &m_registration);
        factory->Release();
    }
    ~FakeAdoScope() { ::CoRevokeClassObject(m_registration); }
    FakeAdoScope(const FakeAdoScope&) = delete;
    FakeAdoScope& operator=(const FakeAdoScope&) = delete;

private:
    DWORD m_registration = 0;
};

}  // namespace quorvane
