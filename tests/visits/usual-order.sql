-- What 강나루마트 bought before. The newest slip has a return as well; the one before is an order of the office, and
-- one of its products has left the price list since. Two products have bar codes.
INSERT INTO MTM SELECT column1, '매출', '0016', '강나루마트', column2, '발행', Pcode, Pname, JGubun, column4, column5, '1000',
    '100', '0', '0', 'A', column6 FROM (VALUES
    ('2026-11-11', '5003', '1001', '3', '12', '10:15'), ('2026-11-11', '5003', '1009', '2', '0', '10:15'),
    ('2026-11-11', '5003', '1020', '5', '0', '10:15'), ('2026-11-11', '5003', '1027', '1', '4', '10:15'),
    ('2026-11-11', '5003', '1056', '4', '0', '10:15'), ('2026-11-11', '5003', '1021', '-1', '0', '10:15'),
    ('2026-11-08', '0012', '1001', '2', '0', ''), ('2026-11-08', '0012', '1061', '1', '0', ''),
    ('2026-11-08', '0012', '1040', '1', '0', '')) JOIN PUMMOK ON Pcode = column3;
INSERT INTO BARCODE VALUES ('1001', '8801234567890'), ('1024', '0123456789012');
