// The properties of a table and its columns, as the catalogue keeps them (docs/access-files.md,
// "Properties").
#pragma once

#include "data/store/access/catalog.h"

namespace quorvane::access {

// Enters into the table what the bytes of its properties say.
void ReadProperties(QByteArrayView bytes, CatalogEntry& table);

}  // namespace quorvane::access
