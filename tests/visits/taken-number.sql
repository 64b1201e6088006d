-- Numbers are sorted as texts: after 9999 the next one is 10000 for ever.
UPDATE MTM SET JunNo = '9999' WHERE JunNo = '0001';
