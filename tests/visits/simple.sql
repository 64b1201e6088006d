-- The day's highest number of a collection.
INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,YGMoney,InMoney,
                   WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney)
SELECT '2026-11-21','입금',GCODE,GNAME,'7005','08:00','A','0','0','0','0','0','0','0','0','0','10000','0','0','0'
FROM GARAE WHERE GCODE = '0010';
