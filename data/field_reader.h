// Reads the fields of a record set's present row as the types that records hold.
#pragma once

#include <vector>

#include "data/connection.h"

namespace quorvane {

// What a value of another type converts to, a number in a text included. A NULL, a text that is no number
// and an integer beyond 32 bits are ProviderErrors.
int ToIntegerField(const FieldValue& value);
double ToRealField(const FieldValue& value);
CString ToTextField(FieldValue value);

// One reader serves all rows of a record set: it asks for the index of each column once.
class FieldReader {
public:
    explicit FieldReader(const Recordset& rows) : m_rows(rows) {}

    // column is a literal.
    int Integer(const char16_t* column) const { return ToIntegerField(Value(column)); }
    double Real(const char16_t* column) const { return ToRealField(Value(column)); }
    CString Text(const char16_t* column) const { return ToTextField(Value(column)); }

private:
    struct KnownColumn {
        const char16_t* name;  // told by its address
        int index;
    };

    FieldValue Value(const char16_t* column) const { return m_rows.Value(IndexOf(column)); }
    int IndexOf(const char16_t* column) const;

    const Recordset& m_rows;
    mutable std::vector<KnownColumn> m_columns;
    mutable std::size_t m_next = 0;  // in m_columns; rows are read in the same order of columns
};

}  // namespace quorvane
