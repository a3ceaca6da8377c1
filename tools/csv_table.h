// A table in a plain text file: UTF-8, comma-separated, one row a line.
//
// Empty lines and lines that begin with # are skipped; the first line left names the columns. A field that
// holds a comma may stand in double quotes. Whatever is wrong is a SampleError that names file and line.
#pragma once

#include <QStringList>
#include <vector>

namespace quorvane {

// One row. Its fields are taken one after the other, in the order of the columns.
class CsvRow {
public:
    CsvRow(QString file, int line, QStringList columns, QStringList fields);

    // The next field; OptionalText alone takes an empty one.
    QString Text();
    QString OptionalText();
    // The pieces of the next field, which are joined by "+"; none is empty.
    QStringList List();
    // The next field as an unsigned number.
    double Real();
    int Integer();

    // Throws a SampleError about the field taken last.
    [[noreturn]] void Fail(const QString& reason) const;

private:
    QString m_file;
    int m_line;
    QStringList m_columns;
    QStringList m_fields;
    qsizetype m_next = 0;
};

class CsvTable {
public:
    // Reads the file, whose columns must be the given ones; with furtherColumns others may follow them.
    CsvTable(const QString& file, const QStringList& columns, bool furtherColumns = false);

    const QString& File() const { return m_file; }
    const QStringList& Columns() const { return m_columns; }
    const std::vector<CsvRow>& Rows() const { return m_rows; }

private:
    QString m_file;
    QStringList m_columns;
    std::vector<CsvRow> m_rows;
};

}  // namespace quorvane
