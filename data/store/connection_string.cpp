#include "data/store/connection_string.h"

#include <QRegularExpression>

namespace quorvane {

CString DataSource(const CString& connectionString) {
    static const QRegularExpression entry(
        QStringLiteral("(?:^|;)\\s*Data Source\\s*=\\s*(.*?);?$"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    return entry.match(connectionString).captured(1);
}

}  // namespace quorvane
