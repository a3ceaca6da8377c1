#include "tools/database_copy.h"

#include <QLocale>
#include <QStringList>

#include "data/store/store_factory.h"
#include "tools/sample_error.h"

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct TableColumns {
    QString name;
    QStringList columns;
};

const TableColumns kTables[] = {
    {u"光源类别"_s, {u"ID"_s, u"LamphouseType"_s}},
    {u"光源"_s,
     {u"ID"_s, u"LamphouseType"_s, u"LamphouseModel"_s, u"LuminousFlux"_s, u"LamphousePower"_s, u"Factory"_s,
      u"LamphouseName"_s}},
    {u"灯具"_s,
     {u"ID"_s, u"LamphouseTypeID"_s, u"LampName"_s, u"LampModel"_s, u"LuminaireEfficiency"_s,
      u"UtilizationFactorType"_s, u"MaxLhAA"_s, u"MaxLhBB"_s, u"Factory"_s, u"LamphouseCount"_s,
      u"BallastCount"_s, u"BallastPower"_s, u"DefaultLamphouse"_s, u"UtilizationFactorFormat"_s,
      u"LampPhoto"_s}},
    {u"利用系数"_s,
     {u"ID"_s, u"LuminaireID"_s, u"Pcc"_s, u"Pw"_s, u"Pf"_s, u"RCR_RI"_s, u"UtilizationFactor"_s}},
    {u"照度要求及功率密度"_s,
     {u"ID"_s, u"Vocation"_s, u"BuildingType"_s, u"Location"_s, u"ReferencePlane"_s, u"ActualLPD"_s,
      u"ObjectiveLPD"_s, u"IlluminanceStandard"_s, u"UGR"_s, u"Ra"_s}},
};

QString Literal(const FieldValue& value) {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        return QString::number(*whole);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return QString::number(*real, 'g', QLocale::FloatingPointShortest);
    }
    const auto* text = std::get_if<CString>(&value);
    return text == nullptr ? u"null"_s : u'\'' + QString(*text).replace(u'\'', u"''"_s) + u'\'';
}

using Row = std::vector<FieldValue>;

// All at once: a query is given up after some time, and what is done with each row can take longer.
std::vector<Row> Rows(Connection& connection, const TableColumns& table) {
    std::vector<Row> rows;
    const auto result =
        connection.Execute(u"select %1 from %2 order by ID"_s.arg(table.columns.join(u','), table.name));
    for (; !result->AtEnd(); result->MoveNext()) {
        Row& row = rows.emplace_back();
        for (int column = 0; column < table.columns.size(); ++column) {
            row.push_back(result->Value(column));
        }
    }
    return rows;
}

// An omitted field may get a default from the table; a NULL has to be written over it.
void CopyRow(Connection& to, const TableColumns& table, const Row& values) {
    QStringList given;
    QStringList literals;
    QStringList missing;
    for (std::size_t column = 0; column < values.size(); ++column) {
        const QString& name = table.columns[static_cast<qsizetype>(column)];
        if (std::holds_alternative<std::monostate>(values[column])) {
            missing += name + u"=null"_s;
        } else {
            given += name;
            literals += Literal(values[column]);
        }
    }
    to.Execute(u"insert into %1 (%2) values ("_s.arg(table.name, given.join(u',')) + literals.join(u',') +
               u')');
    if (!missing.isEmpty()) {
        to.Execute(u"update %1 set %2 where ID="_s.arg(table.name, missing.join(u',')) + literals.first());
    }
}

int CopyTable(Connection& from, Connection& to, const TableColumns& table) {
    if (!to.Execute(u"select ID from %1 limit 1"_s.arg(table.name))->AtEnd()) {
        throw SampleError(u"table %1 of the target holds rows already"_s.arg(table.name));
    }
    const std::vector<Row> rows = Rows(from, table);
    for (const Row& row : rows) {
        CopyRow(to, table, row);
    }
    return static_cast<int>(rows.size());
}

// A whole number and the same one as a real are alike: the columns may be of different types.
bool Same(const FieldValue& left, const FieldValue& right) {
    const auto number = [](const FieldValue& value) -> std::optional<double> {
        const auto* whole = std::get_if<qint64>(&value);
        const auto* real = std::get_if<double>(&value);
        return whole != nullptr  ? static_cast<double>(*whole)
               : real != nullptr ? std::optional(*real)
                                 : std::nullopt;
    };
    return number(left) || number(right) ? number(left) == number(right) : left == right;
}

void Compare(Connection& from, Connection& to, const TableColumns& table) {
    const std::vector<Row> expected = Rows(from, table);
    const std::vector<Row> found = Rows(to, table);
    if (expected.size() != found.size()) {
        throw SampleError(u"table %1 has another number of rows after copying"_s.arg(table.name));
    }
    for (std::size_t row = 0; row < expected.size(); ++row) {
        for (std::size_t column = 0; column < expected[row].size(); ++column) {
            if (!Same(expected[row][column], found[row][column])) {
                throw SampleError(u"table %1, ID %2: column %3 differs after copying"_s.arg(
                    table.name, Literal(expected[row].front()),
                    table.columns[static_cast<qsizetype>(column)]));
            }
        }
    }
}

}  // namespace

std::shared_ptr<Connection> OpenDatabase(const QString& file) {
    const CString source = u"Data Source = "_s + file + u';';
    std::shared_ptr<Connection> connection = CreateStoreConnection(source);
    connection->Open(source, {}, {}, -1);
    return connection;
}

int CopyDatabase(Connection& from, Connection& to) {
    try {
        int rows = 0;
        to.BeginSubmit();
        for (const TableColumns& table : kTables) {
            rows += CopyTable(from, to, table);
        }
        to.EndSubmit();
        for (const TableColumns& table : kTables) {
            Compare(from, to, table);
        }
        return rows;
    } catch (const ProviderError& error) {
        throw SampleError(error.Message());
    }
}

}  // namespace quorvane
