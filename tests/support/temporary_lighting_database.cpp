#include "tests/support/temporary_lighting_database.h"

#include <QDir>

#include "tools/database_schema.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

TemporaryLightingDatabase::TemporaryLightingDatabase() {
    const QDir folder(m_folder.path());
    folder.mkdir(u"bin"_s);
    folder.mkdir(u"Vexal"_s);
    Raw().Execute(QString::fromUtf8(kDatabaseSchema));
}

QStringList TemporaryLightingDatabase::Snapshot() const {
    const RawDatabase database = Raw();
    QStringList rows = database.Rows(u"select * from sqlite_schema order by name"_s);
    for (const char* table : {"光源类别", "光源", "灯具", "利用系数", "照度要求及功率密度"}) {
        rows << QString::fromUtf8(table)
             << database.Rows(u"select * from %1 order by ID"_s.arg(QString::fromUtf8(table)));
    }
    return rows;
}

}  // namespace quorvane
