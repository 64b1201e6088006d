-- The terminal ended on the container slip of a visit: its sale is saved, what came back is not.
INSERT INTO MTM VALUES ('2026-11-21','매출','0076','까치가든','5001','미발행','1020','소주','10','1','0','30000','3000','0','0','C','09:01');
INSERT INTO TEMP VALUES ('2026-11-21','매출','0076','까치가든','5001','미발행','1020','소주','10','1','0','30000','3000','0','0');
INSERT INTO YTEMP VALUES ('2026-11-21','0076','까치가든','5001','1001','참솔소주','1','0','10','1500','1000','0','0');
INSERT INTO UNSAVED VALUES ('TEMP','C',''), ('YTEMP','C','1');
