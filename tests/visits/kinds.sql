-- A frequent product that has been withdrawn since, one that has left the price list, and a customer without a kind.
INSERT INTO MPUMMOK VALUES ('1003', '한빛재소주', '360ml', '공용', '999'), ('8888', '옛날소주', '360ml', '공용', '1002');
UPDATE GARAE SET GUBUN = '' WHERE GCODE = '0027';
