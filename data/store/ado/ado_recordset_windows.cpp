#include <algorithm>

#include "data/store/ado/ado_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::ado {

namespace {

// A number or, as ADO has it, true: -1 where C++ has 1.
qint64 Integer(const Variant& value) {
    const FieldValue field = ToFieldValue(value.Get());
    const auto* integer = std::get_if<qint64>(&field);
    return integer != nullptr ? *integer : 0;
}

CString Text(const Variant& value) {
    FieldValue field = ToFieldValue(value.Get());
    auto* text = std::get_if<CString>(&field);
    return text != nullptr ? std::move(*text) : CString();
}

}  // namespace

AdoRecordset::AdoRecordset(Object rows) : m_rows(std::move(rows)) {
    m_isOpen = m_rows && Integer(m_rows.Property(L"State")) != 0;
    if (!m_isOpen) {
        return;
    }
    const Object fields(m_rows.Property(L"Fields"));
    const qint64 count = Integer(fields.Property(L"Count"));
    for (qint64 index = 0; index < count; ++index) {
        Object field(fields.Property(L"Item", index));
        m_names.push_back(Text(field.Property(L"Name")));
        m_fields.push_back(std::move(field));
    }
    if (!m_fields.empty()) {
        m_value = m_fields.front().Member(L"Value");
    }
    ReadEnd();
}

AdoRecordset::~AdoRecordset() {
    try {
        if (m_isOpen) {
            m_rows.Call(L"Close");
        }
    } catch (const ProviderError&) {
        // Releasing it closes it as well.
    }
}

void AdoRecordset::ReadEnd() {
    m_atEnd = Integer(m_rows.Property(L"EOF")) != 0;
}

void AdoRecordset::MoveNext() {
    if (m_atEnd) {
        throw ProviderError(u"the record set is at its end"_s);
    }
    m_rows.Call(L"MoveNext");
    ReadEnd();
}

int AdoRecordset::Column(const CString& columnName) const {
    const auto name = std::find_if(m_names.begin(), m_names.end(), [&](const CString& known) {
        return known.compare(columnName, Qt::CaseInsensitive) == 0;
    });
    if (name == m_names.end()) {
        throw ProviderError(u"the result has no column %1"_s.arg(columnName));
    }
    return static_cast<int>(name - m_names.begin());
}

FieldValue AdoRecordset::Value(int index) const {
    if (m_atEnd) {
        throw ProviderError(u"the record set is at its end"_s);
    }
    if (index < 0 || static_cast<std::size_t>(index) >= m_fields.size()) {
        throw ProviderError(u"the result has no column %1"_s.arg(index));
    }
    const Object& field = m_fields[static_cast<std::size_t>(index)];
    return ToFieldValue(field.Invoke(m_value, DISPATCH_PROPERTYGET).Get());
}

}  // namespace quorvane::ado
