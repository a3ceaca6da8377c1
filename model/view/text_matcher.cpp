#include "model/view/text_matcher.h"

#include <algorithm>

#include "model/view/pinyin.h"

namespace quorvane {
namespace {

bool IsLetter(QChar character) {
    return character >= u'a' && character <= u'z';
}

bool IsInNumber(QChar character) {
    constexpr QStringView kInNumbers = u"0123456789.+-eEinfa";  // also "inf" and "nan"
    return kInNumbers.contains(character);
}

}  // namespace

TextMatcher::TextMatcher(const CString& sought) : m_sought(sought, Qt::CaseInsensitive) {
    const CString lower = sought.toLower();
    if (std::any_of(lower.begin(), lower.end(), IsLetter)) {
        m_initials = lower;
    }
}

bool TextMatcher::CanBeInNumber() const {
    const CString sought = m_sought.pattern().toLower();
    return std::all_of(sought.begin(), sought.end(), IsInNumber);
}

bool TextMatcher::Matches(const CString& text) const {
    return !IsEmpty() && (m_sought.indexIn(text) >= 0 || (!m_initials.isEmpty() && MatchesInitials(text)));
}

bool TextMatcher::MatchesInitials(const CString& text) const {
    const auto isInitial = [](QChar character, QChar initial) { return PinyinInitial(character) == initial; };
    return std::search(text.begin(), text.end(), m_initials.begin(), m_initials.end(), isInitial) !=
           text.end();
}

CString TextMatcher::Replaced(CString text, const CString& replacement) const {
    return IsEmpty() ? text : text.replace(m_sought.pattern(), replacement, Qt::CaseInsensitive);
}

}  // namespace quorvane
