-- A day's slips of the salesman beside a colleague's and those of the day before; long names, amounts of ten
-- digits, negative ones, and balances that are 0 in several spellings.
DELETE FROM MTM;
UPDATE GARAE SET CJMONEY = CASE GCODE WHEN '0001' THEN '00' WHEN '0002' THEN '' WHEN '0003' THEN '-45000'
    WHEN '0004' THEN '9876543210' WHEN '0005' THEN '120000' ELSE '0' END,
    USERID = CASE WHEN GCODE = '0005' THEN 'B' WHEN GCODE < '0005' THEN 'A' ELSE USERID END;
UPDATE GARAE SET GNAME = '대한민국에서가장이름이긴전통주막과포장마차' WHERE GCODE = '0004';
INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,UserID,DTime)
SELECT column1,'매출','0003','강나루마트',column2,column3,column4,column5,'01',column6,column7,column8,column9,column10,column11,column12,'09:30'
FROM (VALUES
 ('2026-11-21','5001','결제','1001','참솔소주','3','12','68500','6850','3000','6000','A'),
 ('2026-11-21','5002','미처리','1001','참솔소주','2','0','42000','4200','2000','4000','A'),
 ('2026-11-21','5002','미발행','1049','블랙포인트위스키 17년 선물세트','0','-2','-150000','-15000','0','-900','A'),
 ('2026-11-21','5003','발행','1027','황금들맥주 대병','1200','24','9876543210','987654321','12000000','48000000','A'),
 ('2026-11-21','5001','미발행','1001','참솔소주','7','7','70000','7000','700','700','B'),
 ('2026-11-20','5001','미발행','1001','참솔소주','9','9','90000','9000','900','900','A'));
INSERT INTO YTM (DDate,GCode,GName,JunNo,PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,GSAMT,UserID)
SELECT column1,'0003','강나루마트',column2,column3,column4,column5,column6,column7,column8,column9,column10,column11,column12
FROM (VALUES
 ('2026-11-21','6001','1001','참솔소주','2','3','15','10000','21000','250','1300','A'),
 ('2026-11-21','6002','1001','참솔소주','1','','0','2000','','50','0','A'),
 ('2026-11-21','6002','1027','황금들맥주 대병','0','0','20','0','2000','0','200','A'),
 ('2026-11-21','6001','1001','참솔소주','5','5','5','5000','5000','5','5','B'));
INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,MMoney,PMoney,BMoney,YMoney,GMoney,YGMoney,InMoney,
                   WonMoney,CardMoney,MisuInMoney,UnderMoney,YDMoney,GDMoney,MSGSENDTIME,BANKTRANNO)
SELECT column1,column2,column3,GNAME,column4,'10:00',column5,'0','0','0','0','0','0','0',
       column6,column7,column8,column9,column10,'0','20261121100000',column11
FROM GARAE, (VALUES
 ('2026-11-21','매출','0003','5001','A','0','84350','0','0','0','000000000021'),
 ('2026-11-21','매출','0003','5002','A','-10000','0','10000','0','60000',NULL),
 ('2026-11-21','매출','0004','5003','A','0','0','0','9876543210','31000',''),
 ('2026-11-21','단순결제','0004','7001','A','0','1234567890','0','0','0','000000000022'),
 ('2026-11-21','입금','0001','7002','A','50000','0','200000','0','0','000000000023'),
 ('2026-11-21','입금','0001','7003','A','0','30000','0','0','0',''),
 ('2026-11-21','입금','0003','7001','B','7000','7000','7000','7000','7000','000000000024'),
 ('2026-11-20','매출','0003','5001','A','9000','9000','9000','9000','9000','000000000020'))
WHERE GCODE = column3;
DELETE FROM BankMoney;
INSERT INTO BankMoney VALUES ('2026-11-21','0001','가람국밥','310000'), ('2026-11-20','0001','가람국밥','99'),
 ('2026-11-21','0004','대한민국에서가장이름이긴전통주막과포장마차','45000');
