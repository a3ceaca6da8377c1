#include "data/store/connection_string.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

CString DataSource(const CString& connectionString) {
    static const QRegularExpression entry(
        u"(?:^|;)\\s*Data Source\\s*=\\s*(.*?);?$"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    return entry.match(connectionString).captured(1);
}

}  // namespace quorvane
