-- The colleague's day and yesterday are none of this salesman's close.
INSERT INTO MTM (DDate, GCode, JunNo, WorkGubun, PCode, Box, Bon, UserID, DTime)
VALUES ('2026-11-21', '0001', '5001', '발행', '1001', '90', '90', 'B', '09:05'),
       ('2026-11-20', '0001', '5001', '발행', '1001', '90', '90', 'A', '09:05'),
       ('2026-11-21', '0001', '5002', '결제', '1001', '3', '12', 'A', '09:05'),
       ('2026-11-21', '0001', '5003', '미발행', '1001', '2', '0', 'A', '09:05'),
       -- Nothing is collected for this one; nobody has delivered the office's four orders.
       ('2026-11-21', '0007', '5007', '미발행', '1001', '1', '4', 'A', '09:05');
INSERT INTO YTM (DDate, GCode, JunNo, PCode, FBox, NBox, Bon, UserID)
VALUES ('2026-11-21', '0001', '5003', '1001', '1', '2', '7', 'A'),
       ('2026-11-21', '0001', '5004', '1001', '90', '90', '90', 'B');
INSERT INTO MTMOK (DDate, Gubun, GCode, GName, JunNo, UserID, MMoney, YGMoney, WonMoney, CardMoney, MisuInMoney, UnderMoney, YDMoney, BANKTRANNO)
VALUES ('2026-11-21', '매출', '0001', '가', '5001', 'B', '999', '0', '999', '0', '0', '0', '0', NULL),
       -- By card, and an old debt in cash; on credit; a recovery above the total, settled by a button; the
       -- same keyed; half in cash.
       ('2026-11-21', '매출', '0001', '가', '5002', 'A', '120000', '10500', '0', '130500', '50000', '0', '0', '000000000001'),
       ('2026-11-21', '매출', '0002', '나', '5003', 'A', '80000', '7000', '0', '0', '0', '87000', '0', NULL),
       ('2026-11-21', '입금', '0003', '다', '5004', 'A', '0', '0', '0', '0', '60000', '0', '60000', NULL),
       ('2026-11-21', '매출', '0004', '라', '5005', 'A', '40000', '0', '-10000', '0', '10000', '0', '50000', NULL),
       ('2026-11-21', '매출', '0005', '마', '5006', 'A', '30000', '5000', '35000', '0', '0', '0', '0', NULL);
