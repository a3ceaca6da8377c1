#include "tests/data/fake_ado_windows.h"

#include <map>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

int FakeAdo::objects = 0;

namespace {

void SetText(VARIANT& value, const std::wstring& text) {
    value.vt = VT_BSTR;
    value.bstrVal = ::SysAllocString(text.c_str());
}

void SetObject(VARIANT& value, IDispatch* object) {
    value.vt = VT_DISPATCH;
    value.pdispVal = object;
}

void SetNumber(VARIANT& value, LONG number) {
    value.vt = VT_I4;
    value.lVal = number;
}

QString Shown(const VARIANT& value) {
    switch (value.vt) {
        case VT_BSTR:
            return QString::fromWCharArray(value.bstrVal);
        case VT_I4:
            return QString::number(value.lVal);
        default:
            return u"VARIANT %1"_s.arg(value.vt);
    }
}

HRESULT STDMETHODCALLTYPE FillIn(EXCEPINFO* exception) {
    exception->bstrSource = ::SysAllocString(kFakeSource);
    exception->bstrDescription = ::SysAllocString(kFakeDescription);
    return S_OK;
}

void LeaveErrorInfo() {
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

// An object whose members are functions.
class FakeObject : public IDispatch {
public:
    using Member = std::function<void(const DISPPARAMS& arguments, VARIANT& result)>;

    FakeObject(FakeAdo& ado, std::map<std::wstring, Member> members)
        : m_ado(ado), m_members(std::move(members)) {
        ++FakeAdo::objects;
    }
    virtual ~FakeObject() { --FakeAdo::objects; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isKnown = id == IID_IUnknown || id == IID_IDispatch;
        *object = isKnown ? this : nullptr;
        if (isKnown) {
            AddRef();
        }
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const auto member = m_members.find(*names);
        *ids = member == m_members.end() ? DISPID_UNKNOWN
                                         : static_cast<DISPID>(std::distance(m_members.begin(), member));
        return member == m_members.end() ? DISP_E_UNKNOWNNAME : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT*) override {
        const auto& [name, member] = *std::next(m_members.begin(), id);
        const QString called = QString::fromStdWString(name);
        if (kind != DISPATCH_PROPERTYGET) {
            QStringList shown;
            for (UINT index = arguments->cArgs; index > 0; --index) {
                shown += Shown(arguments->rgvarg[index - 1]);
            }
            m_ado.calls += called + u'(' + shown.join(u", "_s) + u')';
        }
        if (m_ado.failingMember == called) {
            return Fail(*exception);
        }
        VARIANT ignored{};
        member(*arguments, result != nullptr ? *result : ignored);
        return S_OK;
    }

private:
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

    FakeAdo& m_ado;
    std::map<std::wstring, Member> m_members;
    ULONG m_references = 1;
};

void Nothing(const DISPPARAMS& /*arguments*/, VARIANT& /*result*/) {}

IDispatch* NewField(FakeAdo& ado, std::size_t column, const std::shared_ptr<std::size_t>& row) {
    return new FakeObject(
        ado, {{L"Name",
               [&ado, column](const DISPPARAMS&, VARIANT& result) { SetText(result, ado.columns[column]); }},
              {L"Value", [&ado, column, row](const DISPPARAMS&, VARIANT& result) {
                   ado.rows.at(*row).at(column)(result);
               }}});
}

IDispatch* NewFields(FakeAdo& ado, const std::shared_ptr<std::size_t>& row) {
    return new FakeObject(
        ado,
        {{L"Count", [&ado](const DISPPARAMS&,
                           VARIANT& result) { SetNumber(result, static_cast<LONG>(ado.columns.size())); }},
         {L"Item", [&ado, row](const DISPPARAMS& arguments, VARIANT& result) {
              SetObject(result, NewField(ado, static_cast<std::size_t>(arguments.rgvarg[0].lVal), row));
          }}});
}

IDispatch* NewRecordset(FakeAdo& ado) {
    const auto row = std::make_shared<std::size_t>(0);
    return new FakeObject(
        ado,
        {{L"State", [&ado](const DISPPARAMS&,
                           VARIANT& result) { SetNumber(result, ado.result == FakeResult::Rows ? 1 : 0); }},
         {L"Fields",
          [&ado, row](const DISPPARAMS&, VARIANT& result) { SetObject(result, NewFields(ado, row)); }},
         {L"EOF",
          [&ado, row](const DISPPARAMS&, VARIANT& result) {
              result.vt = VT_BOOL;
              result.boolVal = *row < ado.rows.size() ? VARIANT_FALSE : VARIANT_TRUE;
          }},
         {L"MoveNext", [row](const DISPPARAMS&, VARIANT&) { ++*row; }},
         {L"Close", Nothing}});
}

IDispatch* NewProperties(FakeAdo& ado) {
    return new FakeObject(ado, {{L"Item", [&ado](const DISPPARAMS&, VARIANT& result) {
                                     SetObject(result, new FakeObject(ado, {{L"Value", Nothing}}));
                                 }}});
}

IDispatch* NewConnection(FakeAdo& ado) {
    std::map<std::wstring, FakeObject::Member> members{
        {L"Open", Nothing},
        {L"Close", Nothing},
        {L"Execute", [&ado](const DISPPARAMS&, VARIANT& result) {
             if (ado.result != FakeResult::Nothing) {
                 SetObject(result, ado.result == FakeResult::NullObject ? nullptr : NewRecordset(ado));
             }
         }}};
    if (ado.hasProperties) {
        members[L"Properties"] = [&ado](const DISPPARAMS&, VARIANT& result) {
            SetObject(result, NewProperties(ado));
        };
    }
    return new FakeObject(ado, std::move(members));
}

class Factory : public IClassFactory {
public:
    explicit Factory(FakeAdo& ado) : m_ado(ado) {}
    virtual ~Factory() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isKnown = id == IID_IUnknown || id == IID_IClassFactory;
        *object = isKnown ? this : nullptr;
        m_references += isKnown ? 1 : 0;
        return isKnown ? S_OK : E_NOINTERFACE;
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
        IDispatch* made = NewConnection(m_ado);
        const HRESULT result = made->QueryInterface(id, object);
        made->Release();
        return result;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    FakeAdo& m_ado;
    ULONG m_references = 1;
};

}  // namespace

FakeAdoScope::FakeAdoScope(FakeAdo& ado) {
    CLSID id{};
    ::CLSIDFromProgID(L"ADODB.Connection", &id);
    auto* factory = new Factory(ado);
    ::CoRegisterClassObject(id, factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_registration);
    factory->Release();
}

FakeAdoScope::~FakeAdoScope() {
    ::CoRevokeClassObject(m_registration);
}

}  // namespace quorvane
