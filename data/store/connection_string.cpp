#include "data/store/connection_string.h"

namespace quorvane {

// By hand: a regular expression that has no memory tells no more than that nothing was found.
CString DataSource(const CString& connectionString) {
    const QStringView text(connectionString);
    const qsizetype entry = text.indexOf(u"Data Source", 0, Qt::CaseInsensitive);
    const qsizetype sign = entry < 0 ? -1 : text.indexOf(u'=', entry);
    if (sign < 0) {
        return {};
    }
    QStringView path = text.sliced(sign + 1);
    while (path.startsWith(u' ')) {
        path = path.sliced(1);
    }
    return path.chopped(path.endsWith(u';') ? 1 : 0).toString();
}

}  // namespace quorvane
