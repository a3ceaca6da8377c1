// The records of the lighting database: one plain structure a table, one field a column.
//
// Field names are the column names. Identifiers and other integers are 32-bit; reals are 64-bit. The ID
// stands first and is 0 for a record that has not been stored. Every structure compares field by field.
#pragma once

#include <QString>
#include <vector>

namespace quorvane {

using CString = QString;

// 光源类别: a light source category.
struct tagLAMPHOUSETYPE {
    int ID = 0;
    CString LamphouseType;  // name

    bool operator==(const tagLAMPHOUSETYPE&) const = default;
};

// 光源: a light source.
struct tagLAMPHOUSEINFO {
    int ID = 0;
    int LamphouseType = 0;  // ID of its category
    CString LamphouseModel;
    double LuminousFlux = 0;    // lm
    double LamphousePower = 0;  // W
    CString Factory;            // maker
    CString LamphouseName;

    bool operator==(const tagLAMPHOUSEINFO&) const = default;
};

// 灯具: a luminaire.
struct tagLUMINAIREINFO {
    int ID = 0;
    CString LamphouseTypeID;  // category IDs in decimal, joined by ","
    CString LampName;
    CString LampModel;
    double LuminaireEfficiency = 0;  // %
    int UtilizationFactorType = 0;   // 1: table by room index (RI), else by room cavity ratio (RCR)
    double MaxLhAA = 0;              // maximum spacing-to-height ratio, A-A plane
    double MaxLhBB = 0;              // maximum spacing-to-height ratio, B-B plane
    CString Factory;
    CString LamphouseCount;  // a count, or for mixed light the counts joined by ","; a text in the file
    int BallastCount = 0;
    double BallastPower = 0;          // W
    CString DefaultLamphouse;         // light source IDs in decimal, joined by ","
    CString UtilizationFactorFormat;  // carried along unchanged
    CString LampPhoto;                // "\Vexal\LuminairePhotoLib\<ID><extension>", or empty

    bool operator==(const tagLUMINAIREINFO&) const = default;
};

// 利用系数: one value of a luminaire's utilization factor table.
struct tagLUMINAIREUTILIZATIONFACTOR {
    int ID = 0;
    int LuminaireID = 0;
    int Pcc = 0;                   // effective ceiling cavity reflectance, %
    int Pw = 0;                    // wall reflectance, %
    int Pf = 0;                    // floor cavity reflectance, %
    double RCR_RI = 0;             // room cavity ratio or room index
    double UtilizationFactor = 0;  // 1

    bool operator==(const tagLUMINAIREUTILIZATIONFACTOR&) const = default;
};

// 照度要求及功率密度: what a place in a building requires.
struct tagILLUMINANCESTANDARD {
    int ID = 0;
    CString Vocation;  // trade
    CString BuildingType;
    CString Location;
    CString ReferencePlane;
    double ActualLPD = 0;         // lighting power density, current value, W/m²
    double ObjectiveLPD = 0;      // lighting power density, target value, W/m²
    int IlluminanceStandard = 0;  // maintained illuminance, lx
    int UGR = 0;                  // unified glare rating limit
    int Ra = 0;                   // colour rendering index

    bool operator==(const tagILLUMINANCESTANDARD&) const = default;
};

}  // namespace quorvane
