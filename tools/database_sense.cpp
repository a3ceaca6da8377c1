#include "tools/database_sense.h"

#include <QFileInfo>
#include <QSet>

#include "data/field_reader.h"

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

// A sentence, and the query for the IDs about which it is true.
struct Rule {
    QString finding;
    QString query;
};

const Rule kRules[] = {
    {u"光源类别 %1: a field has no value"_s, u"select ID from 光源类别 where LamphouseType is null"_s},
    {u"光源 %1: a field has no value"_s,
     u"select ID from 光源 where LamphouseType is null or LamphouseModel is null or LuminousFlux is null or "
     "LamphousePower is null or Factory is null or LamphouseName is null"_s},
    {u"灯具 %1: a field has no value"_s,
     u"select ID from 灯具 where LamphouseTypeID is null or LampName is null or LampModel is null or "
     "LuminaireEfficiency is null or UtilizationFactorType is null or MaxLhAA is null or MaxLhBB is null or "
     "Factory is null or LamphouseCount is null or BallastCount is null or BallastPower is null or "
     "DefaultLamphouse is null or UtilizationFactorFormat is null or LampPhoto is null"_s},
    {u"利用系数 %1: a field has no value"_s,
     u"select ID from 利用系数 where LuminaireID is null or Pcc is null or Pw is null or Pf is null or "
     u"RCR_RI "
     "is null or UtilizationFactor is null"_s},
    {u"照度要求及功率密度 %1: a field has no value"_s,
     u"select ID from 照度要求及功率密度 where Vocation is null or BuildingType is null or Location is null "
     u"or "
     "ReferencePlane is null or ActualLPD is null or ObjectiveLPD is null or IlluminanceStandard is null or "
     "UGR "
     "is null or Ra is null"_s},
    {u"光源类别 %1: its ID holds a 5, so its luminaires are taken for mixed light"_s,
     u"select ID from 光源类别 where ID like '%5%' and LamphouseType <> '混光灯'"_s},
    {u"光源 %1: its category is not there"_s,
     u"select ID from 光源 where LamphouseType not in (select ID from 光源类别)"_s},
    {u"利用系数 %1: its luminaire is not there"_s,
     u"select ID from 利用系数 where LuminaireID not in (select ID from 灯具)"_s},
    {u"灯具 %1: its factor table has two values for one place"_s,
     u"select distinct LuminaireID from (select LuminaireID from 利用系数 group by "
     u"LuminaireID,Pcc,Pw,Pf,RCR_RI "
     "having count(*) > 1)"_s},
    {u"灯具 %1: its factor table has gaps"_s,
     u"select LuminaireID from 利用系数 group by LuminaireID having count(distinct "
     "Pcc||'/'||Pw||'/'||Pf||'/'||RCR_RI) < count(distinct Pcc||'/'||Pw||'/'||Pf) * count(distinct RCR_RI)"_s},
    {u"灯具 %1: a utilization factor rises with the room cavity ratio"_s,
     u"select distinct LuminaireID from (select LuminaireID, UtilizationFactor > lag(UtilizationFactor) over "
     "(partition by LuminaireID,Pcc,Pw,Pf order by RCR_RI) as rises from 利用系数 where LuminaireID in "
     "(select ID "
     "from 灯具 where UtilizationFactorType <> 1)) where rises"_s},
};

QSet<QString> Ids(Connection& connection, const QString& table) {
    QSet<QString> ids;
    for (const auto rows = connection.Execute(u"select ID from "_s + table); !rows->AtEnd();
         rows->MoveNext()) {
        ids += ToTextField(rows->Value(0));
    }
    return ids;
}

bool HoldsOthers(const QString& list, const QSet<QString>& known) {
    const QStringList pieces = list.split(u',', Qt::SkipEmptyParts);
    return std::any_of(pieces.begin(), pieces.end(),
                       [&](const QString& piece) { return !known.contains(piece.trimmed()); });
}

// The photo as a file beside the database, where its text names the usual folder.
QString PhotoFile(QString photo, const QString& folder) {
    photo.replace(u'\\', u'/');
    static const QString kUsual = u"/Vexal/"_s;
    return photo.startsWith(kUsual, Qt::CaseInsensitive) ? folder + u'/' + photo.mid(kUsual.size())
                                                         : folder + u"/../"_s + photo;
}

// What the texts of the luminaires refer to.
QStringList CheckLuminaires(Connection& connection, const QString& folder) {
    const QSet<QString> categories = Ids(connection, u"光源类别"_s);
    const QSet<QString> sources = Ids(connection, u"光源"_s);
    QStringList findings;
    const auto rows = connection.Execute(
        u"select ID,LamphouseTypeID,DefaultLamphouse,LampPhoto from 灯具 where LamphouseTypeID is not null "
        u"and "
        "DefaultLamphouse is not null and LampPhoto is not null"_s);
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const QString luminaire = u"灯具 "_s + ToTextField(rows->Value(0));
        if (HoldsOthers(ToTextField(rows->Value(1)), categories)) {
            findings += luminaire + u": one of its categories is not there"_s;
        }
        if (HoldsOthers(ToTextField(rows->Value(2)), sources)) {
            findings += luminaire + u": one of its light sources is not there"_s;
        }
        const QString photo = ToTextField(rows->Value(3));
        if (!photo.isEmpty() && !QFileInfo(PhotoFile(photo, folder)).isFile()) {
            findings += luminaire + u": its photo "_s + photo + u" is not there"_s;
        }
    }
    return findings;
}

}  // namespace

QStringList CheckSense(Connection& connection, const QString& folder) {
    QStringList findings;
    for (const Rule& rule : kRules) {
        for (const auto rows = connection.Execute(rule.query); !rows->AtEnd(); rows->MoveNext()) {
            findings += rule.finding.arg(ToTextField(rows->Value(0)));
        }
    }
    return findings + CheckLuminaires(connection, folder);
}

}  // namespace quorvane
