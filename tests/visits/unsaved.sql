-- The terminal ended on a slip whose first line was saved and whose second was not.
INSERT INTO MTM VALUES ('2026-11-21','매출','0076','까치가든','5001','미발행','1020','소주','10','1','0','30000','3000','0','0','A','09:01');
INSERT INTO TEMP VALUES ('2026-11-21','매출','0076','까치가든','5001','미발행','1020','소주','10','1','0','30000','3000','0','0');
INSERT INTO TEMP VALUES ('2026-11-21','매출','0076','까치가든','5001','미처리','1001','소주','10','2','0','60000','6000','0','0');
INSERT INTO UNSAVED VALUES ('TEMP','A','1');
