-- Prices of eight days ago, and customers from a file of an earlier day than the one before.
UPDATE MASTERLOAD SET LoadedAt = '2026-11-13T08:00:00' WHERE FileName = 'GARAEDANGA.RVN';
UPDATE MASTERLOAD SET Modified = '1795000000000', Newest = '1795200000000' WHERE FileName = 'GARAE.RVN';
