#include "grid/output/tab_text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorvane {
namespace {

constexpr QChar Quote = u'"';
constexpr QChar Tab = u'\t';

bool IsLineEnd(QChar character) {
    return character == u'\n' || character == u'\r';
}

bool NeedsQuotes(const CString& text) {
    // A byte order mark at the start of a file would be taken for none of its text.
    return text.startsWith(QChar(QChar::ByteOrderMark)) ||
           std::any_of(text.cbegin(), text.cend(), [](QChar character) {
               return character == Quote || character == Tab || IsLineEnd(character);
           });
}

void Append(CString& line, const CString& text) {
    if (!NeedsQuotes(text)) {
        line += text;
        return;
    }
    line += Quote;
    for (const QChar character : text) {
        line += character;
        if (character == Quote) {
            line += Quote;
        }
    }
    line += Quote;
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
        return position >= m_text.size() || m_text.at(position) == Tab || IsLineEnd(m_text.at(position));
    }

    std::vector<CString> ReadRow() {
        std::vector<CString> row;
        while (true) {
            std::optional<CString> quoted = ReadQuoted();
            row.push_back(quoted ? *std::move(quoted) : ReadPlain());
            if (m_at >= m_text.size() || m_text.at(m_at) != Tab) {
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

    // Nothing, and the position as it was, unless a whole quoted text stands here.
    std::optional<CString> ReadQuoted() {
        // Once a quote has had no end there is none further on for another: looking again would take a time
        // that grows with the square of the text.
        if (m_noClosingQuote || m_at >= m_text.size() || m_text.at(m_at) != Quote) {
            return std::nullopt;
        }
        CString content;
        qsizetype at = m_at + 1;
        while (true) {
            const qsizetype quote = m_text.indexOf(Quote, at);
            if (quote < 0) {
                m_noClosingQuote = true;
                return std::nullopt;
            }
            content += QStringView(m_text).sliced(at, quote - at);
            at = quote + 1;
            if (at >= m_text.size() || m_text.at(at) != Quote) {
                break;
            }
            content += Quote;
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
                text += Tab;
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
