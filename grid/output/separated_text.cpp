#include "grid/output/separated_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

constexpr QChar kQuote = u'"';
constexpr QChar kTab = u'\t';
constexpr QStringView kSeparators = u",;\t";  // of the files that other programs write

bool IsLineEnd(QChar character) {
    return character == u'\n' || character == u'\r';
}

bool NeedsQuotes(const CString& text, QStringView separators) {
    // Readers drop a byte order mark at the start of a file.
    return text.startsWith(QChar(QChar::ByteOrderMark)) ||
           std::any_of(text.cbegin(), text.cend(), [=](QChar character) {
               return character == kQuote || separators.contains(character) || IsLineEnd(character);
           });
}

void Append(CString& line, const CString& text, QStringView separators) {
    line += NeedsQuotes(text, separators) ? kQuote + CString(text).replace(kQuote, u"\"\""_s) + kQuote : text;
}

// The first of the separators is written; a text that holds one of the others is quoted as well.
void AppendRow(CString& line, const std::vector<CString>& row, QStringView separators) {
    bool isFirst = true;
    for (const CString& field : row) {
        if (!std::exchange(isFirst, false)) {
            line += separators.front();
        }
        Append(line, field, separators);
    }
}

// The place of the quote that closes the one at `open`, or -1. Two quotes in a row close nothing.
qsizetype ClosingQuote(const CString& text, qsizetype open) {
    for (qsizetype at = text.indexOf(kQuote, open + 1); at >= 0; at = text.indexOf(kQuote, at + 2)) {
        if (at + 1 == text.size() || text.at(at + 1) != kQuote) {
            return at;
        }
    }
    return -1;
}

// The separator that stands most often, outside quoted fields, in the first row that has one; the comma only
// if it is alone.
QChar SeparatorOf(const CString& text) {
    std::array<int, kSeparators.size()> counts{};
    const auto endsField = [&text](qsizetype at) {
        return at == text.size() || kSeparators.contains(text.at(at)) || IsLineEnd(text.at(at));
    };
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text.at(at) == kQuote && (at == 0 || endsField(at - 1))) {
            const qsizetype end = ClosingQuote(text, at);
            at = end >= 0 && endsField(end + 1) ? end : at;
        } else if (IsLineEnd(text.at(at)) && counts != decltype(counts){}) {
            break;
        } else if (const qsizetype separator = kSeparators.indexOf(text.at(at)); separator >= 0) {
            ++counts[static_cast<std::size_t>(separator)];
        }
    }
    const auto most = std::max_element(counts.rbegin(), counts.rend());
    return kSeparators.at(counts.rend() - most - 1);
}

class Reader {
public:
    // quotesAreText: quotes around a text that needs none belong to it.
    Reader(const CString& text, QChar separator, bool quotesAreText)
        : m_text(text), m_separator(separator), m_quotesAreText(quotesAreText) {}

    TextTable Read() {
        TextTable table;
        while (m_at < m_text.size()) {
            table.push_back(ReadRow());
        }
        return table;
    }

private:
    bool AtFieldEnd(qsizetype position) const {
        return position >= m_text.size() || m_text.at(position) == m_separator ||
               IsLineEnd(m_text.at(position));
    }

    std::vector<CString> ReadRow() {
        std::vector<CString> row;
        while (true) {
            std::optional<CString> quoted = ReadQuoted();
            row.push_back(quoted ? *std::move(quoted) : ReadPlain());
            if (m_at >= m_text.size() || m_text.at(m_at) != m_separator) {
                break;
            }
            ++m_at;
        }
        if (m_at < m_text.size()) {
            const bool two =
                m_text.at(m_at) == u'\r' && m_at + 1 < m_text.size() && m_text.at(m_at + 1) == u'\n';
            m_at += two ? 2 : 1;
        }
        return row;
    }

    CString ReadPlain() {
        const qsizetype start = m_at;
        while (!AtFieldEnd(m_at)) {
            ++m_at;
        }
        return m_text.sliced(start, m_at - start);
    }

    // The quoted text that starts here; nothing, without moving, when there is no whole one.
    std::optional<CString> ReadQuoted() {
        // After one quote without an end no later one has an end either. Searching again for each of them
        // would take time that grows with the square of the text.
        if (m_noClosingQuote || m_at >= m_text.size() || m_text.at(m_at) != kQuote) {
            return std::nullopt;
        }
        const qsizetype close = ClosingQuote(m_text, m_at);
        m_noClosingQuote = close < 0;
        if (close < 0 || !AtFieldEnd(close + 1)) {
            return std::nullopt;
        }
        CString content = m_text.sliced(m_at + 1, close - m_at - 1).replace(u"\"\""_s, u"\""_s);
        if (m_quotesAreText && !NeedsQuotes(content, QStringView(&m_separator, 1))) {
            return std::nullopt;
        }
        m_at = close + 1;
        return content;
    }

    const CString& m_text;
    const QChar m_separator;
    const bool m_quotesAreText;
    qsizetype m_at = 0;
    bool m_noClosingQuote = false;
};

}  // namespace

CString WriteTabText(const TextTable& table) {
    CString text;
    bool isFirst = true;
    for (const std::vector<CString>& row : table) {
        if (!std::exchange(isFirst, false)) {
            text += u'\n';
        }
        AppendRow(text, row, QStringView(&kTab, 1));
    }
    return text;
}

TextTable ReadTabText(const CString& text) {
    return Reader(text, kTab, true).Read();
}

CString WriteCsv(const TextTable& table) {
    CString text;
    for (const std::vector<CString>& row : table) {
        AppendRow(text, row, kSeparators);
        text += u"\r\n"_s;
    }
    return text;
}

TextTable ReadCsv(const CString& text) {
    return Reader(text, SeparatorOf(text), false).Read();
}

}  // namespace quorvane
