// The tables of the lighting database in an SQLite file. The main program never creates them. The maker of
// sample databases and the tests do.
//
// Keys increase and are never reused. Text compares without regard to ASCII case, like in the other file
// format. Columns may be NULL because other tools write rows too.
#pragma once

namespace quorvane {

inline constexpr const char* kDatabaseSchema = R"sql(
CREATE TABLE 光源类别 (
    ID            INTEGER PRIMARY KEY AUTOINCREMENT,
    LamphouseType TEXT COLLATE NOCASE
) STRICT;
CREATE TABLE 光源 (
    ID             INTEGER PRIMARY KEY AUTOINCREMENT,
    LamphouseType  INTEGER,
    LamphouseModel TEXT COLLATE NOCASE,
    LuminousFlux   REAL,
    LamphousePower REAL,
    Factory        TEXT COLLATE NOCASE,
    LamphouseName  TEXT COLLATE NOCASE
) STRICT;
CREATE TABLE 灯具 (
    ID                      INTEGER PRIMARY KEY AUTOINCREMENT,
    LamphouseTypeID         TEXT COLLATE NOCASE,
    LampName                TEXT COLLATE NOCASE,
    LampModel               TEXT COLLATE NOCASE,
    LuminaireEfficiency     REAL,
    UtilizationFactorType   INTEGER,
    MaxLhAA                 REAL,
    MaxLhBB                 REAL,
    Factory                 TEXT COLLATE NOCASE,
    LamphouseCount          TEXT COLLATE NOCASE,
    BallastCount            INTEGER,
    BallastPower            REAL,
    DefaultLamphouse        TEXT COLLATE NOCASE,
    UtilizationFactorFormat TEXT COLLATE NOCASE,
    LampPhoto               TEXT COLLATE NOCASE
) STRICT;
CREATE TABLE 利用系数 (
    ID                INTEGER PRIMARY KEY AUTOINCREMENT,
    LuminaireID       INTEGER,
    Pcc               INTEGER,
    Pw                INTEGER,
    Pf                INTEGER,
    RCR_RI            REAL,
    UtilizationFactor REAL
) STRICT;
CREATE TABLE 照度要求及功率密度 (
    ID                  INTEGER PRIMARY KEY AUTOINCREMENT,
    Vocation            TEXT COLLATE NOCASE,
    BuildingType        TEXT COLLATE NOCASE,
    Location            TEXT COLLATE NOCASE,
    ReferencePlane      TEXT COLLATE NOCASE,
    ActualLPD           REAL,
    ObjectiveLPD        REAL,
    IlluminanceStandard INTEGER,
    UGR                 INTEGER,
    Ra                  INTEGER
) STRICT;
CREATE INDEX 光源_LamphouseType ON 光源 (LamphouseType);
CREATE INDEX 利用系数_LuminaireID ON 利用系数 (LuminaireID);
CREATE INDEX 照度要求及功率密度_Vocation ON 照度要求及功率密度 (Vocation, BuildingType);
)sql";

}  // namespace quorvane
