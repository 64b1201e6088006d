-- 어부마트 has margins for the classes 02, 05 and 06. With a contract price for a beer and a margin of his own he
-- has three ways to a price; the farther ones must not count.
UPDATE GARAE SET MAJIN = '15' WHERE GCODE = '0023';
INSERT INTO GARAEDANGA VALUES ('0023', '1021', '50', '35001', '3501', '1751', '176', '2100', '2700', '131');
