-- Approvals that the host will not know, or not so: another salesman's of today, one of another amount, one of
-- yesterday, and one in cash.
INSERT INTO MTMOK (DDate, Gubun, GCode, GName, JunNo, DTime, UserID, WonMoney, CardMoney, MSGSENDTIME, BANKTRANNO)
VALUES
    ('2026-11-21', '매출', '0001', '이름이 아주 긴 거래처 상회', '5001', '08:00', 'B', '0', '50000', '20261121080000', '000000000099'),
    ('2026-11-21', '매출', '0002', '나루상회', '5002', '08:10', 'B', '0', '99000', '20261121081000', '000000000001'),
    ('2026-11-20', '매출', '0003', '다리상회', '5001', '08:20', 'A', '0', '77000', '20261120082000', '000000000098'),
    ('2026-11-21', '매출', '0003', '다리상회', '5003', '08:30', 'A', '30000', '0', '20261121083000', '000000000097');
