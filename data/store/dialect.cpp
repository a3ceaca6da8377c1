#include "data/store/dialect.h"

#include <array>

namespace quorvane {

namespace {

struct Rewrite {
    QStringView beginning;
    QStringView replacement;
};

// What SQLite does not speak, or speaks slowly. All else that the program says means the same in both.
constexpr std::array kRewrites{
    Rewrite{u"delete * from ", u"delete from "},
    // SQLite sorts all rows before it drops the equal ones, which takes five times as long. The row that
    // stands for its equals is the first one in both cases.
    Rewrite{u"select DISTINCT Factory from 光源 order by Factory",
            u"select Factory from (select DISTINCT Factory from 光源) order by Factory"},
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
