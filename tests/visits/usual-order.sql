-- What three customers bought before. 강나루마트's newest slip has a return as well. 까치가든's newest has a product that
-- has left the price list since; the one before is an order of the office, of a salesman who rounds to hundreds. Two
-- products have bar codes.
INSERT INTO MTM SELECT column2, '매출', GCODE, GNAME, column3, '발행', Pcode, Pname, JGubun, column5, column6, '1000',
    '100', '0', '0', 'A', column7 FROM (VALUES
    ('0016', '2026-11-11', '5003', '1001', '3', '12', '10:15'), ('0016', '2026-11-11', '5003', '1009', '2', '0', '10:15'),
    ('0016', '2026-11-11', '5003', '1020', '5', '0', '10:15'), ('0016', '2026-11-11', '5003', '1027', '1', '4', '10:15'),
    ('0016', '2026-11-11', '5003', '1056', '4', '0', '10:15'), ('0016', '2026-11-11', '5003', '1021', '-1', '0', '10:15'),
    ('0076', '2026-11-10', '5001', '1001', '2', '5', '10:15'), ('0076', '2026-11-10', '5001', '1061', '1', '0', '10:15'),
    ('0076', '2026-11-10', '5001', '1040', '1', '0', '10:15'), ('0076', '2026-11-09', '0012', '1020', '6', '0', ''),
    ('0076', '2026-11-09', '0012', '1001', '1', '0', ''), ('0031', '2026-11-09', '5001', '1001', '2', '0', '10:15'),
    ('0031', '2026-11-09', '5001', '1020', '3', '0', '10:15'))
    JOIN GARAE ON GCODE = column1 JOIN PUMMOK ON Pcode = column4;
INSERT INTO BARCODE VALUES ('1001', '8801234567890'), ('1024', '0123456789012');
UPDATE MTM SET UserID = 'C', MMoney = '1040' WHERE GCode = '0076' AND DDate = '2026-11-09';
