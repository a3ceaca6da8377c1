// Records as CBOR values, one array a record, in the order of the fields. What is read is not trusted.
#pragma once

#include <QCborArray>
#include <QCborMap>
#include <cmath>
#include <limits>
#include <optional>
#include <tuple>
#include <type_traits>
#include <vector>

#include "data/records.h"
#include "data/utilization_factor_table.h"

namespace quorvane {

// ---- The fields of each kind of record

template <typename Record>
auto FieldsOf(Record& record) {
    using Kind = std::remove_const_t<Record>;
    if constexpr (std::is_same_v<Kind, tagLAMPHOUSEINFO>) {
        auto& [id, type, model, flux, power, factory, name] = record;
        return std::tie(id, type, model, flux, power, factory, name);
    } else if constexpr (std::is_same_v<Kind, tagLUMINAIREINFO>) {
        auto& [id, types, name, model, efficiency, factorType, aa, bb, factory, count, ballasts, ballastPower,
               lightSources, format, photo] = record;
        return std::tie(id, types, name, model, efficiency, factorType, aa, bb, factory, count, ballasts,
                        ballastPower, lightSources, format, photo);
    } else if constexpr (std::is_same_v<Kind, tagLUMINAIREUTILIZATIONFACTOR>) {
        auto& [id, luminaire, pcc, pw, pf, rcr, factor] = record;
        return std::tie(id, luminaire, pcc, pw, pf, rcr, factor);
    } else if constexpr (std::is_same_v<Kind, tagColHeading>) {
        auto& [pcc, pw, pf] = record;
        return std::tie(pcc, pw, pf);
    } else {
        static_assert(std::is_same_v<Kind, tagILLUMINANCESTANDARD>);
        auto& [id, vocation, building, location, plane, actual, objective, illuminance, ugr, ra] = record;
        return std::tie(id, vocation, building, location, plane, actual, objective, illuminance, ugr, ra);
    }
}

// ---- Single values. False when the value is none of that kind.

inline constexpr qsizetype kLongestText = 65536;

inline bool ReadCbor(const QCborValue& value, int& number) {
    const qint64 read = value.toInteger();
    number = static_cast<int>(read);
    return value.isInteger() && number == read;
}
inline bool ReadCbor(const QCborValue& value, double& number) {
    number = value.toDouble();
    return (value.isDouble() || value.isInteger()) && std::isfinite(number);
}
inline bool ReadCbor(const QCborValue& value, CString& text) {
    text = value.toString();
    return value.isString() && text.size() <= kLongestText;
}

// ---- Records and lists of them

inline QCborValue ToCbor(int number) {
    return number;
}
inline QCborValue ToCbor(double number) {
    return number;
}

template <typename Record>
QCborValue ToCbor(const Record& record) {
    QCborArray values;
    std::apply([&values](const auto&... field) { (values.append(QCborValue(field)), ...); },
               FieldsOf(record));
    return values;
}

template <typename Record>
QCborValue ToCbor(const std::vector<Record>& records) {
    QCborArray values;
    for (const Record& record : records) {
        values.append(ToCbor(record));
    }
    return values;
}

template <typename Record>
bool ReadCbor(const QCborValue& value, Record& record) {
    const QCborArray values = value.toArray();
    const auto fields = FieldsOf(record);
    qsizetype at = 0;
    const auto read = [&](auto&... field) { return (ReadCbor(values.at(at++), field) && ...); };
    return values.size() == static_cast<qsizetype>(std::tuple_size_v<decltype(fields)>) &&
           std::apply(read, fields);
}

template <typename Record>
bool ReadCbor(const QCborValue& value, std::vector<Record>& records) {
    const QCborArray values = value.toArray();
    records.resize(static_cast<size_t>(values.size()));
    bool isRead = value.isArray();
    for (qsizetype at = 0; isRead && at < values.size(); ++at) {
        isRead = ReadCbor(values.at(at), records[static_cast<size_t>(at)]);
    }
    return isRead;
}

}  // namespace quorvane
