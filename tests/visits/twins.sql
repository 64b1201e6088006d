-- The office has sent one line twice, and a product that has left the price list.
DELETE FROM MTM;
INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,UserID)
SELECT '2026-11-21','매출','0001','가람국밥','0001','미발행',column1,column2,'01','1','0','30000','3000','1500','2000','A'
FROM (VALUES ('1001','참솔소주'), ('1001','참솔소주'), ('8888','옛날소주'));
