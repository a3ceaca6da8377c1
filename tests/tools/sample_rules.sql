-- Rules of the sample data that its reader does not check. Each query returns the rows that break its rule.

-- every category but the two special ones has light sources
select ID from 光源类别 where LamphouseType not in ('混光灯', '常用灯具') and ID not in (select LamphouseType from 光源);

-- flux per watt is that of real lamps
select ID from 光源 where LuminousFlux / LamphousePower not between 10 and 150;

-- efficiency and spacing are real
select ID from 灯具 where LuminaireEfficiency not between 40 and 95 or MaxLhAA not between 0.5 and 2 or MaxLhBB
not between 0.5 and 2;

-- a factor table is whole
select l.ID from 灯具 l join 利用系数 f on LuminaireID = l.ID group by l.ID having count(distinct Pcc || ' ' || Pw ||
' ' || Pf) < 10 or count(distinct RCR_RI) < 10 or count(f.ID) <> count(distinct Pcc || ' ' || Pw || ' ' || Pf
|| ' ' || RCR_RI) or count(f.ID) <> count(distinct Pcc || ' ' || Pw || ' ' || Pf) * count(distinct RCR_RI);

-- only luminaires for streets have no factor table
select ID from 灯具 where (LampName like '%路灯') = (ID in (select LuminaireID from 利用系数));

-- factors are in the bounds of physics
select f.ID from 利用系数 f join 灯具 l on LuminaireID = l.ID where UtilizationFactor <= 0 or UtilizationFactor >
LuminaireEfficiency / 100 / (1 - max(Pcc, Pw) * Pf / 1e4) + 0.005;

-- factors grow with the room index and fall with the room cavity ratio
select step from (select (UtilizationFactor - lag(UtilizationFactor) over (partition by LuminaireID, Pcc, Pw,
Pf order by RCR_RI)) * iif(UtilizationFactorType = 1, 1, -1) as step from 利用系数 join 灯具 l on LuminaireID = l.ID)
where step < 0;

-- a lighter room has no smaller factor
select a.ID from 利用系数 a join 利用系数 b using (LuminaireID, RCR_RI) where a.Pcc >= b.Pcc and a.Pw >= b.Pw and a.Pf
>= b.Pf and a.UtilizationFactor < b.UtilizationFactor;

-- a target density is at most the current one
select ID from 照度要求及功率密度 where ObjectiveLPD > ActualLPD or (ObjectiveLPD = 0) <> (ActualLPD = 0) or
IlluminanceStandard < 30 or UGR not in (0, 19, 22, 25, 28) or Ra not in (20, 40, 60, 80, 90);

-- a place stands once
select 1 from 照度要求及功率密度 group by Vocation, BuildingType, Location having count(*) > 1;
