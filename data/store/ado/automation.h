// Late-bound automation: members of COM objects, called by their names.
//
// COM must be initialised in the calling thread. What a member fails with is a ProviderError with the source
// and the description that the object gave, or the system's text for its code.
#pragma once

#include <initializer_list>
#include <utility>

#include "data/store/ado/variant.h"

namespace quorvane::ado {

// One reference to an object.
class Object {
public:
    Object() = default;  // none
    // A new object of the class registered under that name.
    static Object Create(const wchar_t* className);
    // The object in a value; none when the value holds none.
    explicit Object(const Variant& value);
    Object(Object&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Object& operator=(Object&& other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Object();

    explicit operator bool() const { return m_object != nullptr; }

    // The number of a member, which saves looking it up at each call. All objects of one class share it.
    DISPID Member(const wchar_t* name) const;

    template <typename... Arguments>
    Variant Call(const wchar_t* name, const Arguments&... arguments) const {
        return Invoke(Member(name), DISPATCH_METHOD, {FieldValue(arguments)...});
    }
    template <typename... Arguments>
    Variant Property(const wchar_t* name, const Arguments&... arguments) const {
        return Invoke(Member(name), DISPATCH_PROPERTYGET, {FieldValue(arguments)...});
    }
    void SetProperty(const wchar_t* name, const FieldValue& value) const {
        Invoke(Member(name), DISPATCH_PROPERTYPUT, {value});
    }
    Variant Invoke(DISPID member, WORD kind, std::initializer_list<FieldValue> arguments = {}) const;

private:
    explicit Object(IDispatch* owned) : m_object(owned) {}

    IDispatch* m_object = nullptr;
};

}  // namespace quorvane::ado
