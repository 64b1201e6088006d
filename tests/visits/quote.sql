-- A customer and a product whose names hold a single quote.
UPDATE GARAE SET GNAME = '오''솔길슈퍼' WHERE GCODE = '0068';
UPDATE PUMMOK SET Pname = '참''솔소주' WHERE Pcode = '1001';
