#include <algorithm>
#include <vector>

#include "data/store/ado/automation.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::ado {

namespace {

// Frees a text that the caller of an object owns.
CString Take(BSTR text) {
    const CString result = QString::fromWCharArray(text, static_cast<qsizetype>(::SysStringLen(text)));
    ::SysFreeString(text);
    return result;
}

FailureKind KindOf(HRESULT code) {
    constexpr auto permissionDenied = static_cast<HRESULT>(0x80040E09);  // of OLE DB
    switch (code) {
        case E_OUTOFMEMORY:
            return FailureKind::OutOfMemory;
        case E_ACCESSDENIED:
        case permissionDenied:
            return FailureKind::ReadOnly;
        default:
            return FailureKind::Other;
    }
}

CString SystemText(HRESULT code) {
    return qt_error_string(static_cast<int>(code)).trimmed();
}

// The source alone says nothing of what happened, so it stands in front of a description.
[[noreturn]] void Throw(HRESULT code, const CString& source, const CString& description) {
    const CString text = description.trimmed().isEmpty() ? SystemText(code) : description.trimmed();
    throw ProviderError(source.isEmpty() ? text : u"%1: %2"_s.arg(source, text), KindOf(code));
}

[[noreturn]] void ThrowException(EXCEPINFO& exception) {
    if (exception.pfnDeferredFillIn != nullptr) {
        exception.pfnDeferredFillIn(&exception);
    }
    ::SysFreeString(exception.bstrHelpFile);
    const CString source = Take(exception.bstrSource);
    const CString description = Take(exception.bstrDescription);
    Throw(exception.scode != 0 ? exception.scode : E_FAIL, source, description);
}

// What the object left for the thread about its last failure.
[[noreturn]] void ThrowErrorInfo(HRESULT code) {
    IErrorInfo* information = nullptr;
    if (::GetErrorInfo(0, &information) != S_OK) {
        Throw(code, {}, {});
    }
    BSTR source = nullptr;
    BSTR description = nullptr;
    information->GetSource(&source);
    information->GetDescription(&description);
    information->Release();
    const CString sourceText = Take(source);
    Throw(code, sourceText, Take(description));
}

}  // namespace

Object Object::Create(const wchar_t* className) {
    CLSID id{};
    void* object = nullptr;
    HRESULT result = ::CLSIDFromProgID(className, &id);
    if (SUCCEEDED(result)) {
        result = ::CoCreateInstance(id, nullptr, CLSCTX_ALL, IID_IDispatch, &object);
    }
    if (FAILED(result)) {
        Throw(result, QString::fromWCharArray(className), {});
    }
    return Object(static_cast<IDispatch*>(object));
}

Object::Object(const Variant& value) {
    const VARIANT& variant = value.Get();
    if (variant.vt == VT_DISPATCH && variant.pdispVal != nullptr) {
        m_object = variant.pdispVal;
        m_object->AddRef();
    }
}

Object::~Object() {
    if (m_object != nullptr) {
        m_object->Release();
    }
}

DISPID Object::Member(const wchar_t* name) const {
    auto* nameText = const_cast<LPOLESTR>(name);
    DISPID member = DISPID_UNKNOWN;
    const HRESULT result = m_object->GetIDsOfNames(IID_NULL, &nameText, 1, LOCALE_USER_DEFAULT, &member);
    if (FAILED(result)) {
        Throw(result, QString::fromWCharArray(name), {});
    }
    return member;
}

Variant Object::Invoke(DISPID member, WORD kind, std::initializer_list<FieldValue> arguments) const {
    // An object takes its arguments from the last one to the first.
    std::vector<Variant> values;
    std::transform(std::rbegin(arguments), std::rend(arguments), std::back_inserter(values),
                   [](const FieldValue& argument) { return Variant(argument); });
    std::vector<VARIANT> passed;
    std::transform(values.begin(), values.end(), std::back_inserter(passed),
                   [](const Variant& value) { return value.Get(); });
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = kind == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{passed.data(), isPut ? &put : nullptr, static_cast<UINT>(passed.size()),
                          isPut ? 1U : 0U};
    ::SetErrorInfo(0, nullptr);  // what an earlier failure left
    Variant result;
    EXCEPINFO exception{};
    UINT wrongArgument = 0;
    const HRESULT code = m_object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                          isPut ? nullptr : &result.Get(), &exception, &wrongArgument);
    if (code == DISP_E_EXCEPTION) {
        ThrowException(exception);
    }
    if (FAILED(code)) {
        ThrowErrorInfo(code);
    }
    return result;
}

}  // namespace quorvane::ado
