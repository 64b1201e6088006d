-- A day in figures, for the page that a manager looks at and for any dashboard.

CREATE VIEW report.sale_slip AS
SELECT s.month, s.terminal, s.day, s.number, s.kept_number, s.userid, s.gcode, max(s.gname) AS gname, count(*) AS lines,
    max(s.saved_at) AS saved_at, office.payable_total(sum(s.supply), sum(s.vat), max(n.vatmode)) AS goods,
    sum(s.crate_deposit) + sum(s.bottle_deposit) AS deposits,
    office.payable_total(sum(s.supply), sum(s.vat), max(n.vatmode)) + sum(s.crate_deposit) + sum(s.bottle_deposit) AS total
FROM report.sale AS s LEFT JOIN office.salesman AS n USING (terminal, userid)
WHERE NOT s.is_undelivered
GROUP BY s.month, s.terminal, s.day, s.number, s.kept_number, s.userid, s.gcode;
COMMENT ON VIEW report.sale_slip IS 'The sales slips of all terminals with their totals, without orders that nobody has delivered';
COMMENT ON COLUMN report.sale_slip.goods IS 'Supply and VAT, rounded in the salesman''s VAT mode';

CREATE VIEW report.salesman_day AS
WITH product AS (
    SELECT DISTINCT ON (pcode) pcode, office.containers(boxbonea) AS bottles_per_box
    FROM office.master_pummok WHERE last_version IS NULL ORDER BY pcode, row_number
), part AS (
    SELECT month, terminal, day, userid, 1 AS slips, total AS sales, 0::numeric AS cash, 0::numeric AS card, 0::numeric AS unpaid,
        0::numeric AS earlier_paid, 0::numeric AS recovery, 0::bigint AS crates_back, 0::bigint AS bottles_back,
        NULL::numeric AS counted, NULL::numeric AS expected, NULL::text AS closed_at
    FROM report.sale_slip
    UNION ALL
    SELECT month, terminal, day, userid, 0, 0, cash, card, unpaid, earlier_paid, recovery, 0, 0, NULL, NULL, NULL
    FROM report.collection
    UNION ALL
    SELECT r.month, r.terminal, r.day, r.userid, 0, 0, 0, 0, 0, 0, 0,
        office.containers(r.empty_crates::text) + office.containers(r.filled_crates::text),
        office.containers(r.filled_crates::text) * coalesce(p.bottles_per_box, 0) + office.containers(r.bottles::text),
        NULL, NULL, NULL
    FROM report.container_return AS r LEFT JOIN product AS p USING (pcode)
    UNION ALL
    SELECT month, terminal, day, userid, 0, 0, 0, 0, 0, 0, 0, 0, 0, counted, expected, closed_at
    FROM report.close WHERE is_last
    UNION ALL
    -- A salesman who has nothing left but deletions was at work, too; one who has only fetched orders was not.
    SELECT month, terminal, ddate, userid, 0, 0, 0, 0, 0, 0, 0, 0, 0, NULL, NULL, NULL FROM office.document
    WHERE kind IN ('payment', 'deletion')
)
SELECT p.month, p.terminal, p.day, p.userid, max(n.username) AS username, sum(p.slips) AS slips, sum(p.sales) AS sales,
    sum(p.cash) AS cash, sum(p.card) AS card, sum(p.unpaid) AS unpaid, sum(p.earlier_paid) AS earlier_paid,
    sum(p.recovery) AS recovery, sum(p.crates_back) AS crates_back, sum(p.bottles_back) AS bottles_back,
    max(p.closed_at) AS closed_at, max(p.counted) AS counted, max(p.expected) AS expected,
    max(p.counted) - max(p.expected) AS over
FROM part AS p LEFT JOIN office.salesman AS n USING (terminal, userid)
GROUP BY p.month, p.terminal, p.day, p.userid;
COMMENT ON VIEW report.salesman_day IS 'What each salesman has done on a day, by what the office has of it now';
COMMENT ON COLUMN report.salesman_day.unpaid IS 'Sold on credit';
COMMENT ON COLUMN report.salesman_day.over IS 'By the last close: 과입 above 0, 부족 below 0; null for a day that was not closed';

CREATE VIEW report.sale_hour AS
SELECT month, day, terminal, userid, substring(saved_at FROM '^([01][0-9]|2[0-3]):[0-5][0-9]')::integer AS hour,
    count(*) AS slips, sum(total) AS total
FROM report.sale_slip GROUP BY 1, 2, 3, 4, 5;
COMMENT ON VIEW report.sale_hour IS 'Sales by the hour in which the slips were saved; null for a slip without a time';

CREATE VIEW report.sale_product AS
SELECT month, day, terminal, userid, pcode, max(pname) AS pname, sum(boxes) AS boxes, sum(bottles) AS bottles,
    sum(supply::numeric + vat) AS amount
FROM report.sale WHERE NOT is_undelivered GROUP BY month, day, terminal, userid, pcode;
COMMENT ON VIEW report.sale_product IS 'Sales by product, supply and VAT, without deposits';

CREATE VIEW report.terminal_day AS
SELECT month, terminal, ddate AS day, count(*) FILTER (WHERE state = 'present') AS documents,
    count(*) FILTER (WHERE state = 'missing') AS missing, max(sent_at) AS sent_at
FROM office.document GROUP BY month, terminal, ddate;
COMMENT ON VIEW report.terminal_day IS
    'What each terminal has sent of a day; none for a terminal that has sent nothing of it';
COMMENT ON COLUMN report.terminal_day.missing IS 'Sent once, and gone from the terminal without a deletion';

-- An order that nobody has delivered lies on each terminal of its salesman, and is nobody's slip.
CREATE OR REPLACE VIEW report.number_conflict AS
SELECT month, ddate AS day, kind, office.own_number(number) AS number, userid, array_agg(DISTINCT terminal ORDER BY terminal) AS terminals
FROM office.document AS d WHERE kind IN ('sale', 'containers', 'collection') AND state <> 'deleted'
    AND (kind <> 'sale' OR EXISTS (SELECT FROM report.sale AS s WHERE s.month = d.month AND s.terminal = d.terminal
        AND s.day = d.ddate AND s.kept_number = d.number AND s.userid = d.userid AND NOT s.is_undelivered))
GROUP BY month, ddate, kind, office.own_number(number), userid HAVING count(DISTINCT terminal) > 1;
