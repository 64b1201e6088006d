-- Sales slips of the day with numbers at the ends of their ranges. They count whoever wrote them.
DELETE FROM MTM;
INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,UserID,DTime)
SELECT '2026-11-21','매출',GCODE,GNAME,
       CASE GCODE WHEN '0013' THEN '10000' WHEN '0026' THEN '9999' WHEN '0023' THEN '5499' ELSE '4999' END,
       '미발행','1001','참솔소주','01','1','0','30000','3000','1500','2000',USERID,'08:00'
FROM GARAE WHERE GCODE IN ('0013', '0026', '0023', '0020');
-- Another day's numbers do not count.
INSERT INTO MTM (DDate,GCode,GName,JunNo,WorkGubun,PCode,UserID)
VALUES ('2026-11-20','0026','코스모스국밥','9000','미발행','1001','A');
