#include "tools/csv_table.h"

#include <QFile>
#include <QStringDecoder>
#include <cmath>
#include <utility>

#include "tools/sample_error.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

[[noreturn]] void FailAt(const QString& file, int line, const QString& reason) {
    throw SampleError(u"%1:%2: %3"_s.arg(file, QString::number(line), reason));
}

QString DecodeLine(const QString& file, int line, const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        FailAt(file, line, u"the line is not UTF-8 text"_s);
    }
    return text.trimmed();
}

QStringList SplitFields(const QString& text) {
    QStringList fields = text.split(u',');
    for (QString& field : fields) {
        field = field.trimmed();
    }
    return fields;
}

void CheckColumns(const QString& file, int line, const QStringList& found, const QStringList& wanted,
                  bool furtherColumns) {
    const bool matches = furtherColumns ? found.mid(0, wanted.size()) == wanted : found == wanted;
    if (!matches) {
        FailAt(file, line, u"the columns must be named %1"_s.arg(wanted.join(u',')));
    }
    QStringList distinct = found;
    if (distinct.removeDuplicates() > 0) {
        FailAt(file, line, u"two columns have the same name"_s);
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
        Fail(u"must not be empty"_s);
    }
    return text;
}

QStringList CsvRow::List() {
    QStringList pieces = Text().split(u'+');
    for (QString& piece : pieces) {
        piece = piece.trimmed();
        if (piece.isEmpty()) {
            Fail(u"an empty piece beside a plus sign"_s);
        }
    }
    return pieces;
}

double CsvRow::Real() {
    const QString text = Text();
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value) || value < 0) {
        Fail(u"\"%1\" is not a number of 0 or more"_s.arg(text));
    }
    return value;
}

int CsvRow::Integer() {
    const QString text = Text();
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < 0) {
        Fail(u"\"%1\" is not a whole number of 0 or more"_s.arg(text));
    }
    return value;
}

void CsvRow::Fail(const QString& reason) const {
    FailAt(m_file, m_line, u"%1: %2"_s.arg(m_columns.at(m_next - 1), reason));
}

CsvTable::CsvTable(const QString& file, const QStringList& columns, bool furtherColumns) : m_file(file) {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        throw SampleError(u"%1: cannot be read: %2"_s.arg(file, source.errorString()));
    }
    for (int line = 1; !source.atEnd(); ++line) {
        const QString text = DecodeLine(file, line, source.readLine());
        if (text.isEmpty() || text.startsWith(u'#')) {
            continue;
        }
        const QStringList fields = SplitFields(text);
        if (m_columns.isEmpty()) {
            CheckColumns(file, line, fields, columns, furtherColumns);
            m_columns = fields;
            continue;
        }
        if (fields.size() != m_columns.size()) {
            FailAt(file, line, u"%1 fields instead of %2"_s.arg(fields.size()).arg(m_columns.size()));
        }
        // Statements write texts between single quotes without escaping, so a row with one could never be
        // edited. Double quotes would promise that a field may hold a comma.
        if (text.contains(u'\'') || text.contains(u'"')) {
            FailAt(file, line, u"a quote is not allowed"_s);
        }
        m_rows.emplace_back(file, line, m_columns, fields);
    }
    if (m_columns.isEmpty()) {
        throw SampleError(u"%1: holds no line that names the columns"_s.arg(file));
    }
}

}  // namespace quorvane
