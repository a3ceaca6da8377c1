-- Statements that spoil something in the sample data, one after the other, each under what is found then besides.

-- 光源 3: its category
update 光源 set LamphouseType=77 where ID=3;

-- 光源 4: a field
update 光源 set Factory=null where ID=4;

-- 灯具 2: one of its light
update 灯具 set DefaultLamphouse='3,999' where ID=2;

-- 灯具 2: one of its categories
update 灯具 set LamphouseTypeID='1,66' where ID=2;

-- 灯具 2: its photo
update 灯具 set LampPhoto='\Vexal\LuminairePhotoLib\no.jpg' where ID=2;

-- 灯具 1: a utilization factor rises
update 利用系数 set UtilizationFactor=100 where ID in (select max(ID) from 利用系数 where LuminaireID=1);

-- 灯具 1: its factor table has two
insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) select LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor from 利用系数 where ID=1;

-- its luminaire is not there
insert into 利用系数 (LuminaireID,Pcc,Pw,Pf,RCR_RI,UtilizationFactor) values (999,1,1,1,1,1);

-- 光源类别 15: its ID holds a 5
insert into 光源类别 (ID,LamphouseType) values (15,'x');

-- 灯具 2: its factor table has gaps
delete from 利用系数 where ID in (select min(ID) from 利用系数 where LuminaireID=2);
