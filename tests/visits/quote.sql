-- A customer whose name holds a single quote.
UPDATE GARAE SET GNAME = '오''솔길슈퍼' WHERE GCODE = '0068';
