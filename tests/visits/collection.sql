-- Collections under one number: a colleague's and the salesman's own, and one of the day before.
INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,YGMoney,InMoney,
                   WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney)
SELECT column1,'입금',GCODE,GNAME,column2,'08:00',column3,'0','0','0','0','0','0','0','0','0','10000','0','0','0'
FROM GARAE, (VALUES ('2026-11-21','7001','A'), ('2026-11-21','7001','B'), ('2026-11-20','7009','A'))
WHERE GCODE = '0010';
