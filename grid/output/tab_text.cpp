#include "grid/output/tab_text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorvane {
namespace {

constexpr QChar kQuote = u'"';
constexpr QChar kTab = u'\t';

bool IsLineEnd(QChar character) {
    return character == u'\n' || character == u'\r';
}

bool NeedsQuotes(const CString& text) {
    // Readers drop a byte order mark at the start of a file.
    return text.startsWith(QChar(QChar::ByteOrderMark)) ||
           std::any_of(text.cbegin(), text.cend(), [](QChar character) {
               return character == kQuote || character == kTab || IsLineEnd(character);
           });
}

void Append(CString& line, const CString& text) {
    if (!NeedsQuotes(text)) {
        line += text;
        return;
    }
    line += kQuote;
    for (const QChar character : text) {
        line += character;
        if (character == kQuote) {
            line += kQuote;
        }
    }
    line += kQuote;
}

class Reader {
public:
    explicit Reader(const CString& text) : m_text(text) {}

    TextTable Read() {
        TextTable table;
        while (m_at < m_text.size()) {
            table.push_back(ReadRow());
        }
        return table;
    }

private:
    bool AtFieldEnd(qsizetype position) const {
        return position >= m_text.size() || m_text.at(position) == kTab || IsLineEnd(m_text.at(position));
    }

    std::vector<CString> ReadRow() {
        std::vector<CString> row;
        while (true) {
            std::optional<CString> quoted = ReadQuoted();
            row.push_back(quoted ? *std::move(quoted) : ReadPlain());
            if (m_at >= m_text.size() || m_text.at(m_at) != kTab) {
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
        CString content;
        qsizetype at = m_at + 1;
        while (true) {
            const qsizetype quote = m_text.indexOf(kQuote, at);
            if (quote < 0) {
                m_noClosingQuote = true;
                return std::nullopt;
            }
            content += QStringView(m_text).sliced(at, quote - at);
            at = quote + 1;
            if (at >= m_text.size() || m_text.at(at) != kQuote) {
                break;
            }
            content += kQuote;
            ++at;
        }
        if (!AtFieldEnd(at) || !NeedsQuotes(content)) {
            return std::nullopt;
        }
        m_at = at;
        return content;
    }

    const CString& m_text;
    qsizetype m_at = 0;
    bool m_noClosingQuote = false;
};

}  // namespace

CString WriteTabText(const TextTable& table) {
    CString text;
    bool firstRow = true;
    for (const std::vector<CString>& row : table) {
        if (!std::exchange(firstRow, false)) {
            text += u'\n';
        }
        bool firstText = true;
        for (const CString& field : row) {
            if (!std::exchange(firstText, false)) {
                text += kTab;
            }
            Append(text, field);
        }
    }
    return text;
}

TextTable ReadTabText(const CString& text) {
    return Reader(text).Read();
}

}  // namespace quorvane
