// The rows of an ADO record set.
#pragma once

#include <vector>

#include "data/store/ado/automation.h"

namespace quorvane::ado {

class AdoRecordset : public Recordset {
public:
    // Of an object that stands on its first row. None, or a closed one, is what a statement without rows
    // gives.
    explicit AdoRecordset(Object rows);
    ~AdoRecordset() override;

    bool AtEnd() const override { return m_atEnd; }
    void MoveNext() override;
    using Recordset::Value;
    int Column(const CString& columnName) const override;
    FieldValue Value(int index) const override;

private:
    void ReadEnd();

    Object m_rows;
    bool m_isOpen = false;
    bool m_atEnd = true;
    // A field object gives the value of the row on which the record set stands.
    std::vector<Object> m_fields;
    std::vector<CString> m_names;  // the provider qualifies those that stand twice
    DISPID m_value = DISPID_UNKNOWN;
};

}  // namespace quorvane::ado
