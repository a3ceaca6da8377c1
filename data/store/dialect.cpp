#include "data/store/dialect.h"

#include <array>

namespace quorvane {

namespace {

struct Rewrite {
    QStringView beginning;
    QStringView replacement;
};

// What SQLite does not speak. All else that the program says means the same in both.
constexpr std::array kRewrites{
    Rewrite{u"delete * from ", u"delete from "},
};

}  // namespace

CString ToSqliteDialect(const CString& statement) {
    for (const Rewrite& rewrite : kRewrites) {
        if (statement.startsWith(rewrite.beginning, Qt::CaseInsensitive)) {
            return CString(statement).replace(0, rewrite.beginning.size(), rewrite.replacement.toString());
        }
    }
    return statement;
}

}  // namespace quorvane
