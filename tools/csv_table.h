// A table in a plain text file: UTF-8, comma-separated, one row a line.
//
// Empty lines and lines that begin with # are skipped. The first other line names the columns. No field holds
// a comma or a quote. Each error is a SampleError that names file and line.
#pragma once

#include <QStringList>
#include <vector>

namespace quorvane {

// One row. The caller takes its fields one by one, in the order of the columns.
class CsvRow {
public:
    CsvRow(QString file, int line, QStringList columns, QStringList fields);

    // The next field. Only OptionalText accepts an empty one.
    QString Text();
    QString OptionalText();
    // The pieces of the next field, joined by "+". None is empty.
    QStringList List();
    // The next field as an unsigned number.
    double Real();
    int Integer();

    // Throws a SampleError about the last field taken.
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
    // Reads the file. It must have the given columns; with furtherColumns, others may follow.
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
