// The values of automation: a VARIANT that is freed with its owner, and what it means as the value of a
// field.
#pragma once

#include <windows.h>
// The headers of automation need that one before them.
#include <oleauto.h>

#include "data/connection.h"

namespace quorvane::ado {

class Variant {
public:
    Variant() { ::VariantInit(&m_value); }
    // NULL is VT_NULL, an integer VT_I4 or, beyond 32 bits, VT_DECIMAL, a real VT_R8 and a text VT_BSTR.
    // Throws std::bad_alloc.
    explicit Variant(const FieldValue& value);
    Variant(Variant&& other) noexcept : m_value(other.m_value) { ::VariantInit(&other.m_value); }
    Variant& operator=(Variant&& other) noexcept {
        std::swap(m_value, other.m_value);
        return *this;
    }
    ~Variant() { ::VariantClear(&m_value); }

    VARIANT& Get() { return m_value; }
    const VARIANT& Get() const { return m_value; }

private:
    VARIANT m_value;
};

// What a database's field holds, by the table in variant_windows.cpp. A type that is not in it is a
// ProviderError that names it.
FieldValue ToFieldValue(const VARIANT& value);

}  // namespace quorvane::ado
