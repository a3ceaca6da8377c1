// The columns of the grid on the page "灯具库".
#pragma once

namespace quorvane::luminaire_columns {

enum Column {
    Number,
    Name,
    Model,
    Efficiency,
    MaxLhAA,
    MaxLhBB,
    Categories,
    LightSources,
    LightSourceCount,
    BallastCount,
    BallastPower,
    Maker,
    Photo,
    FactorKind,
    FactorTable,
};

}  // namespace quorvane::luminaire_columns
