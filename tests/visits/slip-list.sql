-- Slips in every state, with the collection and container rows of a visit beside them.
UPDATE MTM SET WorkGubun = '결제' WHERE JunNo IN ('0001', '0002');
UPDATE MTM SET WorkGubun = '발행' WHERE JunNo = '0003';
INSERT INTO MTMOK (DDate,Gubun,GCode,GName,JunNo,DTime,UserID,CardMoney)
SELECT DISTINCT DDate, '매출', GCode, GName, JunNo, '10:00', UserID, '1000' FROM MTM WHERE UserID = 'A';
INSERT INTO YTM (DDate,GCode,GName,JunNo,PCode,UserID)
SELECT DISTINCT DDate, GCode, GName, JunNo, '1001', UserID FROM MTM WHERE UserID = 'A';
UPDATE MTMOK SET BANKTRANNO = '000000000042', MSGSENDTIME = '20261121100000' WHERE JunNo = '0004';
-- Another day's rows of the same number stay whatever is deleted today, another salesman's do not.
INSERT INTO MTMOK (DDate,GCode,GName,JunNo,UserID,InMoney,BANKTRANNO)
VALUES ('2026-11-20', '0001', '가람국밥', '0003', 'A', '0', NULL), ('2026-11-21', '0013', '파도국밥', '0003', 'B', '36500', '000000000043');
INSERT INTO MTM (DDate,GCode,GName,JunNo,WorkGubun,PCode,UserID)
VALUES ('2026-11-20', '0001', '가람국밥', '0003', '미발행', '1001', 'A'), ('2026-11-21', '0013', '파도국밥', '0003', '미발행', '1001', 'B');
-- The office has sent one line twice, and a product that has left the price list, under the last number of four digits.
INSERT INTO MTM (DDate,Gubun,GCode,GName,JunNo,WorkGubun,PCode,PName,JGubun,Box,Bon,MMoney,BMoney,YMoney,GMoney,UserID)
SELECT '2026-11-21','매출','0001','가람국밥','9999','미발행',column1,column2,'01','1','0','30000','3000','1500','2000','A'
FROM (VALUES ('1001','참솔소주'), ('1001','참솔소주'), ('8888','옛날소주'));
