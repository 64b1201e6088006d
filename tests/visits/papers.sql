-- Empties of the visit, taken back under the number that its sales slip is going to get, and those of the day before.
INSERT INTO YTM (DDate,GCode,GName,JunNo,PCode,PName,FBox,NBox,Bon,YMONEY,GMONEY,YSAMT,GSAMT,UserID) VALUES
('2026-11-21','0016','강나루마트','5001','1021','황금들맥주','2','3','7','10000','8710','1000','670','A'),
('2026-11-21','0016','강나루마트','5001','1001','참솔소주','0','0','12','0','1200','0','120','A'),
('2026-11-20','0016','강나루마트','5001','1001','참솔소주','1','0','0','1500','0','200','0','A');
INSERT INTO MTM (DDate,GCode,GName,JunNo,PCode,PName,Box,Bon,UserID,DTime) VALUES
('2026-11-20','0016','강나루마트','5001','1001','참솔소주','4','5','A','10:00');
-- The database refuses this customer's simple payments, and his visits lose their sales slip.
CREATE TRIGGER refused BEFORE INSERT ON MTMOK WHEN NEW.GCode = '0106' AND NEW.Gubun = '단순결제'
BEGIN SELECT RAISE(FAIL, 'refused'); END;
CREATE TRIGGER lost AFTER INSERT ON MTMOK WHEN NEW.GCode = '0106' BEGIN DELETE FROM MTM WHERE GCode = '0106'; END;
