// TextMatcher: whether a text holds what the user is looking for.
#pragma once

#include <QStringMatcher>

#include "data/records.h"

namespace quorvane {

// Upper and lower case are the same. Letters are also found as the initials of Chinese characters: "yg" finds
// 荧光.
class TextMatcher {
public:
    // An empty text finds nothing.
    explicit TextMatcher(const CString& sought = {});

    bool IsEmpty() const { return m_sought.pattern().isEmpty(); }
    // Whether numbers as they are shown can hold it.
    bool CanBeInNumber() const;
    bool Matches(const CString& text) const;
    // The text with each place where the sought text itself stands replaced; initials replace nothing.
    CString Replaced(CString text, const CString& replacement) const;

private:
    bool MatchesInitials(const CString& text) const;

    QStringMatcher m_sought;
    CString m_initials;  // empty: none
};

}  // namespace quorvane
