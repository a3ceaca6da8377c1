// The kept edits of a factor table as a CBOR value.
#pragma once

#include <optional>

#include "model/factor_table/factor_table_editing.h"
#include "model/kept/record_cbor.h"

namespace quorvane {

inline QCborValue ToCbor(const UtilizationFactorTable::Contents& contents) {
    return QCborArray{ToCbor(contents.factors), ToCbor(contents.surplus), ToCbor(contents.headings),
                      ToCbor(contents.rowValues), ToCbor(contents.deletedIds)};
}

inline QCborValue ToCbor(const FactorTableEditing::Kept& kept) {
    return QCborArray{kept.luminaireId, ToCbor(kept.stored), ToCbor(kept.edited)};
}

inline bool ReadCbor(const QCborValue& value, UtilizationFactorTable::Contents& contents) {
    const QCborArray values = value.toArray();
    return values.size() == 5 && ReadCbor(values.at(0), contents.factors) &&
           ReadCbor(values.at(1), contents.surplus) && ReadCbor(values.at(2), contents.headings) &&
           ReadCbor(values.at(3), contents.rowValues) && ReadCbor(values.at(4), contents.deletedIds);
}

inline std::optional<FactorTableEditing::Kept> ReadFactorTable(const QCborValue& value) {
    const QCborArray values = value.toArray();
    FactorTableEditing::Kept kept;
    const bool isRead = values.size() == 3 && ReadCbor(values.at(0), kept.luminaireId) &&
                        ReadCbor(values.at(1), kept.stored) && ReadCbor(values.at(2), kept.edited);
    return isRead ? std::optional(kept) : std::nullopt;
}

}  // namespace quorvane
