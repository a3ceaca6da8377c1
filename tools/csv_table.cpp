#include "tools/csv_table.h"

#include <QFile>
#include <QStringDecoder>
#include <cmath>
#include <utility>

#include "tools/sample_error.h"

namespace quorvane {
namespace {

[[noreturn]] void FailAt(const QString& file, int line, const QString& reason) {
    throw SampleError(QStringLiteral("%1:%2: %3").arg(file, QString::number(line), reason));
}

QString DecodeLine(const QString& file, int line, const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        FailAt(file, line, QStringLiteral("the line is not UTF-8 text"));
    }
    return text.trimmed();
}

QStringList SplitFields(const QString& file, int line, const QString& text) {
    QStringList fields;
    QString field;
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'"') {
            const bool doubled = quoted && i + 1 < text.size() && text[i + 1] == u'"';
            if (doubled) {
                field += c;
                ++i;
            } else {
                quoted = !quoted;
            }
        } else if (c == u',' && !quoted) {
            fields += field.trimmed();
            field.clear();
        } else {
            field += c;
        }
    }
    if (quoted) {
        FailAt(file, line, QStringLiteral("a double quote is not closed"));
    }
    fields += field.trimmed();
    return fields;
}

void CheckColumns(const QString& file, int line, const QStringList& found, const QStringList& wanted,
                  bool furtherColumns) {
    const bool matches = furtherColumns ? found.mid(0, wanted.size()) == wanted : found == wanted;
    if (!matches) {
        FailAt(file, line, QStringLiteral("the columns must be named %1").arg(wanted.join(u',')));
    }
    QStringList distinct = found;
    if (distinct.removeDuplicates() > 0) {
        FailAt(file, line, QStringLiteral("two columns have the same name"));
    }
}

}  // namespace

CsvRow::CsvRow(QString file, int line, QStringList columns, QStringList fields)
    : m_file(std::move(file)), m_line(line), m_columns(std::move(columns)), m_fields(std::move(fields)) {}

QString CsvRow::OptionalText() {
    return m_fields.at(m_next++);
}

QString CsvRow::Text() {
    QString text = OptionalText();
    if (text.isEmpty()) {
        Fail(QStringLiteral("must not be empty"));
    }
    return text;
}

QStringList CsvRow::List() {
    QStringList pieces = Text().split(u'+');
    for (QString& piece : pieces) {
        piece = piece.trimmed();
        if (piece.isEmpty()) {
            Fail(QStringLiteral("an empty piece beside a plus sign"));
        }
    }
    return pieces;
}

double CsvRow::Real() {
    const QString text = Text();
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value < 0) {
        Fail(QStringLiteral("\"%1\" is not a number of 0 or more").arg(text));
    }
    return value;
}

int CsvRow::Integer() {
    const QString text = Text();
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 0) {
        Fail(QStringLiteral("\"%1\" is not a whole number of 0 or more").arg(text));
    }
    return value;
}

void CsvRow::Fail(const QString& reason) const {
    FailAt(m_file, m_line, QStringLiteral("%1: %2").arg(m_columns.at(m_next - 1), reason));
}

CsvTable::CsvTable(const QString& file, const QStringList& columns, bool furtherColumns) : m_file(file) {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        throw SampleError(QStringLiteral("%1: cannot be read: %2").arg(file, source.errorString()));
    }
    for (int line = 1; !source.atEnd(); ++line) {
        const QString text = DecodeLine(file, line, source.readLine());
        if (text.isEmpty() || text.startsWith(u'#')) {
            continue;
        }
        const QStringList fields = SplitFields(file, line, text);
        if (m_columns.isEmpty()) {
            CheckColumns(file, line, fields, columns, furtherColumns);
            m_columns = fields;
            continue;
        }
        if (fields.size() != m_columns.size()) {
            FailAt(file, line,
                   QStringLiteral("%1 fields instead of %2").arg(fields.size()).arg(m_columns.size()));
        }
        // The statements of the programs that read the database write a text between single quotes as it
        // stands: a row holding one could never be edited.
        if (text.contains(u'\'')) {
            FailAt(file, line, QStringLiteral("a single quote is not allowed"));
        }
        m_rows.emplace_back(file, line, m_columns, fields);
    }
    if (m_columns.isEmpty()) {
        throw SampleError(QStringLiteral("%1: holds no line that names the columns").arg(file));
    }
}

}  // namespace quorvane
