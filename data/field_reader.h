// Reads the fields of a record set's present row as the types that records hold.
#pragma once

#include "data/connection.h"

namespace quorvane {

// What a value of another type converts to, a number in a text included. A NULL, a text that is no number
// and an integer beyond 32 bits are ProviderErrors.
int ToIntegerField(const FieldValue& value);
double ToRealField(const FieldValue& value);
CString ToTextField(const FieldValue& value);

class FieldReader {
public:
    explicit FieldReader(const Recordset& rows) : m_rows(rows) {}

    int Integer(const CString& column) const { return ToIntegerField(m_rows.Value(column)); }
    double Real(const CString& column) const { return ToRealField(m_rows.Value(column)); }
    CString Text(const CString& column) const { return ToTextField(m_rows.Value(column)); }

private:
    const Recordset& m_rows;
};

}  // namespace quorvane
