// Which tables the file has, and what their makers laid down for them beyond their columns
// (docs/access-files.md, "The catalogue").
#pragma once

#include <map>
#include <vector>

#include "data/store/access/disk/pages.h"

namespace quorvane::access {

struct ColumnRules {
    bool required = false;    // takes no NULL
    bool takesEmpty = false;  // takes an empty text
    QString defaultValue;     // an expression; empty: none
};

struct CatalogEntry {
    QString name;
    PageNumber definition = 0;
    bool linked = false;  // the table is in another file
    bool system = false;
    bool hasValidation = false;            // values are checked by an expression
    bool hasRelationship = false;          // other tables' rows must exist for this one's, or the other way
    std::map<QString, ColumnRules> rules;  // by the column's name in lower case

    ColumnRules Rules(const QString& column) const;
};

// All tables, system tables included. Throws AccessError when the catalogue is damaged.
std::vector<CatalogEntry> ReadCatalog(const Pages& pages);

}  // namespace quorvane::access
