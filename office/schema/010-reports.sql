-- What people and dashboards read: schema report, for members of rovana_reader. Amounts are whole won; `day` is the working
-- day of a slip as its terminal has it, "yyyy-MM-dd". A reader who names `month` spares the server all other months.

-- --- how the terminal counts ---------------------------------------------------------------------------------------------

-- Towards zero, held within the limits of 64 bits.
CREATE FUNCTION office.integer_part(value double precision) RETURNS bigint LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN value >= 9223372036854775807::float8 THEN 9223372036854775807
    WHEN value <= (-9223372036854775808)::float8 THEN (-9223372036854775808)::bigint
    ELSE trunc(value)::bigint END;

-- What goods come to in a salesman's VAT mode: "2" rounds to 10 won and "3" to 100, from the supply alone. The factor is the
-- floating 1.1 and the tax is not looked at: both are facts of this system.
-- In plpgsql, which keeps its plans: a slip of each terminal is worked out in one report.
CREATE FUNCTION office.payable_total(supply numeric, vat numeric, vatmode text) RETURNS numeric
LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    step CONSTANT integer := CASE vatmode WHEN '2' THEN 10 WHEN '3' THEN 100 ELSE 0 END;
    total double precision;
    remainder bigint;
BEGIN
    IF step = 0 THEN
        RETURN supply + vat;
    END IF;
    total := supply::float8 * 1.1::float8;
    remainder := office.integer_part(total) % step;
    IF remainder < step / 2 THEN
        RETURN office.integer_part(total - remainder);
    END IF;
    RETURN office.integer_part(total + (step - remainder));
END
$$;

-- A count of boxes or bottles, bounded so that no imported figure can overflow a sum.
CREATE FUNCTION office.containers(value text) RETURNS bigint LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN greatest(least(office.won(value), 1000000000), -1000000000);

-- The keys of a JSON object; none for a text that is no such object.
CREATE FUNCTION office.json_keys(value text) RETURNS text[] LANGUAGE plpgsql IMMUTABLE AS $$
BEGIN
    RETURN ARRAY(SELECT jsonb_object_keys(value::jsonb));
EXCEPTION WHEN OTHERS THEN
    RETURN NULL;
END
$$;

-- The number of a slip as the terminal had it: one that was given again is kept under it with "~" and its revision.
CREATE FUNCTION office.own_number(number text) RETURNS text LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN split_part(number, '~', 1);

-- --- customers -----------------------------------------------------------------------------------------------------------

CREATE VIEW report.receivable AS
SELECT g.gcode, g.gname, g.userid, office.won(g.cjmoney) AS loaded, coalesce(m.moved, 0) AS moved,
    office.won(g.cjmoney) + coalesce(m.moved, 0) AS balance, m.last_moved_at
FROM (SELECT DISTINCT ON (gcode) * FROM office.master_garae WHERE last_version IS NULL ORDER BY gcode, row_number) AS g
LEFT JOIN (SELECT gcode, sum(amount) AS moved, max(moved_at) AS last_moved_at FROM office.movement GROUP BY gcode) AS m
    USING (gcode);
COMMENT ON VIEW report.receivable IS
    'Receivables now: the balance of GARAE.RVN and what the collections of all terminals have moved it by since';
COMMENT ON COLUMN report.receivable.userid IS 'The salesman whose customer it is';
COMMENT ON COLUMN report.receivable.loaded IS 'Balance as it was loaded';
COMMENT ON COLUMN report.receivable.moved IS 'What was sent since, over all terminals';

CREATE VIEW report.movement AS
SELECT gcode, amount, terminal, ddate AS day, office.own_number(junno) AS number, userid, moved_at FROM office.movement;
COMMENT ON VIEW report.movement IS
    'Each change of a receivable since GARAE.RVN was loaded; a slip that was changed or deleted takes back what it had added';

-- --- sales ---------------------------------------------------------------------------------------------------------------

-- Whether a line of a sale's content was saved, printed or paid. In plpgsql, which is not worked into each statement: mostly the line
-- itself was.
CREATE FUNCTION office.is_touched(content text) RETURNS boolean LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    line text;
BEGIN
    FOREACH line IN ARRAY string_to_array(content, E'\x1e') LOOP
        IF split_part(line, E'\x1f', 14) <> '' OR split_part(line, E'\x1f', 4) IN ('발행', '결제') THEN
            RETURN true;
        END IF;
    END LOOP;
    RETURN false;
END
$$;

CREATE VIEW report.sale AS
SELECT month, terminal, ddate AS day, office.own_number(junno) AS number, junno AS kept_number, userid, s.username, gcode, gname,
    row_number AS line, pcode, pname, jgubun AS class, office.won(box) AS boxes, office.won(bon) AS bottles,
    office.won(mmoney) AS supply, office.won(bmoney) AS vat,
    office.won(ymoney)::numeric AS crate_deposit, office.won(gmoney)::numeric AS bottle_deposit,
    workgubun AS state, dtime AS saved_at,
    -- Nobody saved, printed or paid a line of it, and nothing was collected or taken back for it.
    NOT (dtime <> '' OR workgubun IN ('발행', '결제') OR office.is_touched(content)
        OR EXISTS (SELECT FROM office.document AS d WHERE d.month = l.month AND d.terminal = l.terminal AND d.ddate = l.ddate
            AND d.kind IN ('collection', 'containers') AND d.number = l.junno AND d.userid = l.userid AND d.state <> 'deleted'))
        AS is_undelivered
FROM office.mtm AS l LEFT JOIN office.salesman AS s USING (terminal, userid);
COMMENT ON VIEW report.sale IS 'The lines of the sales slips of all terminals';
COMMENT ON COLUMN report.sale.month IS 'First day of the month of the day';
COMMENT ON COLUMN report.sale.kept_number IS 'With "~" where the number was given to another customer since';
COMMENT ON COLUMN report.sale.state IS '미처리, 미발행, 발행 or 결제';
COMMENT ON COLUMN report.sale.is_undelivered IS 'An order of the office that nobody has delivered; no sale yet';

CREATE VIEW report.container_return AS
SELECT month, terminal, ddate AS day, office.own_number(junno) AS number, junno AS kept_number, userid, gcode, gname,
    row_number AS line, pcode, pname, office.won(fbox) AS empty_crates, office.won(nbox) AS filled_crates,
    office.won(bon) AS bottles, office.won(ymoney)::numeric + office.won(gmoney) AS worth,
    office.won(ysamt)::numeric + office.won(gsamt) AS fees
FROM office.ytm;
COMMENT ON VIEW report.container_return IS 'The lines of the container slips of all terminals: what came back';
COMMENT ON COLUMN report.container_return.worth IS 'Deposits that are given back';

CREATE VIEW report.collection AS
SELECT month, terminal, ddate AS day, office.own_number(junno) AS number, junno AS kept_number, userid, s.username, gcode, gname,
    gubun AS kind, dtime AS saved_at, office.won(mmoney) AS sales, office.won(pmoney) AS supply, office.won(bmoney) AS vat,
    office.won(ygmoney) AS deposit, office.won(gdmoney) AS non_liquor, office.won(wonmoney) AS cash,
    office.won(cardmoney) AS card, office.won(misuinmoney) AS earlier_paid, office.won(undermoney) AS unpaid,
    office.won(ydmoney) AS recovery, banktranno AS approval, msgsendtime AS approval_sent,
    office.receivable_effect(gubun, mmoney, ygmoney, inmoney, wonmoney, cardmoney, misuinmoney, undermoney, ydmoney)
        AS receivable_effect
FROM office.mtmok AS c LEFT JOIN office.salesman AS s USING (terminal, userid);
COMMENT ON VIEW report.collection IS 'The collection slips of all terminals';
COMMENT ON COLUMN report.collection.kind IS '매출: of a sales slip, 입금: money alone, 단순결제: a sale by card without a slip';
COMMENT ON COLUMN report.collection.earlier_paid IS '전미수입금: paid against older debt';
COMMENT ON COLUMN report.collection.recovery IS '용공회수액: containers set against the total';
COMMENT ON COLUMN report.collection.approval IS 'Transaction number of the card host; empty without an approval';
COMMENT ON COLUMN report.collection.receivable_effect IS 'What it adds to the customer''s receivable';

-- --- containers ----------------------------------------------------------------------------------------------------------

CREATE VIEW report.empties AS
WITH product AS (
    SELECT DISTINCT ON (pcode) pcode, pname, ttt, office.containers(boxbonea) AS bottles_per_box
    FROM office.master_pummok WHERE last_version IS NULL ORDER BY pcode, row_number
), moved AS (
    SELECT s.gcode, s.pcode, office.containers(s.boxes::text) AS crates,
        office.containers(s.boxes::text) * p.bottles_per_box + office.containers(s.bottles::text) AS bottles
    FROM report.sale AS s JOIN product AS p ON p.pcode = s.pcode AND p.ttt IN ('Y', 'Z') WHERE NOT s.is_undelivered
    UNION ALL
    SELECT r.gcode, r.pcode, -(office.containers(r.empty_crates::text) + office.containers(r.filled_crates::text)),
        -(office.containers(r.filled_crates::text) * coalesce(p.bottles_per_box, 0) + office.containers(r.bottles::text))
    FROM report.container_return AS r LEFT JOIN product AS p USING (pcode)
)
SELECT m.gcode, g.gname, m.pcode, p.pname, sum(m.crates) AS crates, sum(m.bottles) AS bottles
FROM moved AS m LEFT JOIN product AS p USING (pcode)
LEFT JOIN (SELECT DISTINCT ON (gcode) gcode, gname FROM office.master_garae WHERE last_version IS NULL
           ORDER BY gcode, row_number) AS g USING (gcode)
GROUP BY m.gcode, g.gname, m.pcode, p.pname
HAVING sum(m.crates) <> 0 OR sum(m.bottles) <> 0;
COMMENT ON VIEW report.empties IS
    'What each customer holds of our crates and bottles by all slips that the office has, whichever terminal wrote them; '
    'negative where more came back than went out. A reader who names gcode is answered at once.';
COMMENT ON COLUMN report.empties.bottles IS 'Single bottles and those in full crates';

-- --- closes --------------------------------------------------------------------------------------------------------------

CREATE VIEW report.close AS
SELECT month, terminal, ddate AS day, userid, s.username, row_number AS close_number,
    row_number = max(row_number) OVER (PARTITION BY month, terminal, ddate, userid) AS is_last, closedat AS closed_at,
    office.won(countedcash) AS counted, office.won(expectedcash) AS expected,
    office.won(countedcash)::numeric - office.won(expectedcash) AS over, office.won(cash) AS cash, office.won(card) AS card,
    office.won(approvals) AS approvals, office.won(unpaid) AS unpaid, office.won(earlierpaid) AS earlier_paid,
    office.won(recovery) AS recovery, office.won(boxes) AS boxes, office.won(bottles) AS bottles,
    office.won(cratesback) AS crates_back, office.won(bottlesback) AS bottles_back, office.won(openslips) AS open_slips,
    office.won(deletions) AS deletions, printedat AS printed_at
FROM office.dayclose LEFT JOIN office.salesman AS s USING (terminal, userid);
COMMENT ON VIEW report.close IS 'Closes of the days against the cash that was counted';
COMMENT ON COLUMN report.close.over IS '과입 above 0, 부족 below 0';
COMMENT ON COLUMN report.close.is_last IS 'A day that was closed again counts by its last close';

CREATE VIEW report.change_after_close AS
WITH closed AS (
    SELECT DISTINCT ON (month, terminal, ddate, userid) month, terminal, ddate, userid, closedat,
        office.json_keys(visits) AS visits
    FROM office.dayclose ORDER BY month, terminal, ddate, userid, row_number DESC
)
SELECT h.month, h.terminal, h.ddate AS day, h.userid, h.kind, office.own_number(h.number) AS number,
    CASE WHEN h.is_deleted THEN 'deleted' ELSE 'changed' END AS change, h.superseded_at AS seen_at, h.revision,
    c.closedat AS closed_at
FROM office.history AS h LEFT JOIN closed AS c USING (month, terminal, ddate, userid)
WHERE h.after_close AND h.kind IN ('sale', 'containers', 'collection', 'payment')
UNION ALL
SELECT d.month, d.terminal, d.ddate, d.userid, d.kind, office.own_number(d.number), 'added', d.first_sent, d.revision, c.closedat
FROM closed AS c JOIN office.document AS d USING (month, terminal, ddate, userid)
CROSS JOIN LATERAL (
    SELECT gcode FROM report.sale AS s WHERE d.kind = 'sale' AND s.month = d.month AND s.terminal = d.terminal
        AND s.day = d.ddate AND s.kept_number = d.number AND s.userid = d.userid AND NOT s.is_undelivered
    UNION SELECT gcode FROM office.ytm AS y WHERE d.kind = 'containers' AND y.month = d.month AND y.terminal = d.terminal
        AND y.ddate = d.ddate AND y.junno = d.number AND y.userid = d.userid
    UNION SELECT gcode FROM office.mtmok AS o WHERE d.kind = 'collection' AND o.month = d.month AND o.terminal = d.terminal
        AND o.ddate = d.ddate AND o.junno = d.number AND o.userid = d.userid) AS customer
WHERE c.visits IS NOT NULL AND d.state <> 'deleted'
    AND concat_ws('|', office.own_number(d.number), d.userid, customer.gcode) <> ALL (c.visits);
COMMENT ON VIEW report.change_after_close IS
    'What became otherwise after its day was closed: revisions that were superseded or deleted, and slips of visits that the '
    'last close did not know';
COMMENT ON COLUMN report.change_after_close.change IS 'changed, deleted or added';
COMMENT ON COLUMN report.change_after_close.seen_at IS 'When the office learned of it';

-- --- card approvals ------------------------------------------------------------------------------------------------------

-- The approvals of a period's days beside the card host's own. A slip of another day may carry one, by its time of sending.
CREATE FUNCTION report.approvals(first_day date, last_day date)
RETURNS TABLE (number text, host_day date, terminal text, day text, slip_number text, userid text, gcode text, gname text,
    amount bigint, charged bigint, host_amount bigint, host_time text, finding text)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
WITH months AS MATERIALIZED (
    SELECT ARRAY(SELECT generate_series(date_trunc('month', first_day - 31), last_day + 31, interval '1 month')::date) AS months
), slip AS MATERIALIZED (
    SELECT c.banktranno AS number, c.msgsendtime AS sent, c.terminal, c.ddate AS day, c.junno, c.userid, c.gcode, c.gname,
        office.won(c.cardmoney) AS amount
    FROM office.mtmok AS c WHERE c.month = ANY ((SELECT months.months FROM months)::date[]) AND c.banktranno <> ''
), ours AS (
    SELECT both_kinds.*, CASE WHEN sent ~ '^[0-9]{8}' THEN to_date(left(sent, 8), 'YYYYMMDD') END AS sent_on FROM (
        -- A cash payment that the host approved carries a transaction number, too.
        SELECT slip.*, NULL::bigint AS charged FROM slip WHERE slip.amount > 0
        UNION ALL
        SELECT j.banktranno, j.msgsendtime, j.terminal, j.ddate, j.junno, j.userid, j.gcode, j.gname, NULL, office.won(j.charged)
        FROM office.payjournal AS j
        WHERE j.month = ANY ((SELECT months.months FROM months)::date[]) AND j.state = 'approved' AND j.kind <> 'cash'
            AND j.banktranno <> ''
            -- Looked up in a table of its own, however few the planner takes them for.
            AND NOT coalesce((j.terminal, j.banktranno) IN (SELECT slip.terminal, slip.number FROM slip), false)
    ) AS both_kinds
)
SELECT coalesce(o.number, h.number), coalesce(h.day, o.sent_on), o.terminal, o.day, office.own_number(o.junno), o.userid, o.gcode,
    o.gname, o.amount, o.charged, h.amount, h.paid_at,
    CASE WHEN h.number IS NOT NULL AND o.amount IS NULL THEN '전표에 없음'
        WHEN h.number IS NOT NULL AND o.amount <> h.amount THEN '금액 다름'
        WHEN h.number IS NOT NULL THEN ''
        WHEN EXISTS (SELECT FROM office.host_list AS l WHERE l.day = o.sent_on) THEN '호스트에 없음'
        ELSE '목록 없음' END
-- Terminal and host may see midnight pass at different moments.
FROM ours AS o FULL JOIN office.host_payment AS h ON h.number = o.number AND h.day BETWEEN o.sent_on - 1 AND o.sent_on + 1
WHERE coalesce(h.day, o.sent_on) BETWEEN first_day AND last_day
ORDER BY 2, 1
$$;
COMMENT ON FUNCTION report.approvals IS
    'Card approvals on the slips and in the journals of a period, each beside the card host''s own. number is the transaction''s, '
    'amount the slip''s (null where no slip shows it), charged the journal''s where no slip shows it; finding is empty where '
    'both agree, and 목록 없음 as long as the host''s list of the day was not loaded';

CREATE VIEW report.approval AS SELECT * FROM report.approvals(current_date - 31, current_date + 1);
COMMENT ON VIEW report.approval IS
    'Card approvals against the card host''s list, of the last 31 days; report.approvals of any period';

-- --- what disagrees ------------------------------------------------------------------------------------------------------

-- What must be true of a visit, of the days from first_day to last_day over all terminals; each row says what is not.
CREATE FUNCTION report.disagreements(first_day date, last_day date)
RETURNS TABLE (terminal text, day text, number text, userid text, gcode text, gname text, reason text, amount numeric,
    expected numeric, found numeric)
LANGUAGE sql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
WITH period AS MATERIALIZED (
    SELECT ARRAY(SELECT generate_series(date_trunc('month', first_day), last_day, interval '1 month')::date) AS months,
        first_day::text AS first, last_day::text AS last
), sale AS MATERIALIZED (
    SELECT s.terminal, s.day, s.kept_number AS junno, s.userid, s.gcode, max(s.gname) AS gname,
        bool_and(s.is_undelivered) AS is_undelivered,
        office.payable_total(sum(supply), sum(vat), max(n.vatmode)) + sum(crate_deposit) + sum(bottle_deposit) AS total
    FROM report.sale AS s LEFT JOIN office.salesman AS n USING (terminal, userid)
    WHERE s.month = ANY ((SELECT months FROM period)::date[])
        AND s.day BETWEEN (SELECT first FROM period) AND (SELECT last FROM period)
    GROUP BY 1, 2, 3, 4, 5
), back AS MATERIALIZED (
    SELECT r.terminal, r.day, r.kept_number AS junno, r.userid, r.gcode, max(r.gname) AS gname, sum(worth) AS worth
    FROM report.container_return AS r WHERE r.month = ANY ((SELECT months FROM period)::date[])
        AND r.day BETWEEN (SELECT first FROM period) AND (SELECT last FROM period)
    GROUP BY 1, 2, 3, 4, 5
), slip AS MATERIALIZED (
    SELECT c.terminal, c.ddate AS day, c.junno, c.userid, c.gcode, c.gname, c.row_number, c.gubun = '단순결제' AS is_simple,
        c.gubun = '매출' AS is_of_sale, c.banktranno, office.won(c.cardmoney)::numeric AS card,
        office.won(c.ydmoney)::numeric AS recovery,
        office.receivable_effect(c.gubun, c.mmoney, c.ygmoney, c.inmoney, c.wonmoney, c.cardmoney, c.misuinmoney, c.undermoney,
            c.ydmoney) AS effect,
        office.won(c.wonmoney)::numeric + office.won(c.cardmoney) + office.won(c.undermoney) AS paid,
        CASE WHEN c.gubun = '단순결제' THEN office.won(c.mmoney)::numeric + office.won(c.gdmoney) - office.won(c.ydmoney)
            ELSE office.won(c.mmoney)::numeric + office.won(c.ygmoney) END AS total
    FROM office.mtmok AS c WHERE c.month = ANY ((SELECT months FROM period)::date[])
        AND c.ddate BETWEEN (SELECT first FROM period) AND (SELECT last FROM period)
), payment AS MATERIALIZED (
    SELECT p.terminal, p.ddate AS day, p.junno, p.userid, p.gcode, p.gname, p.row_number, p.banktranno,
        p.kind <> 'cash' AS is_card, p.state = 'approved' AS is_approved, office.won(p.charged)::numeric AS charged
    FROM office.payjournal AS p WHERE p.month = ANY ((SELECT months FROM period)::date[])
        AND p.ddate BETWEEN (SELECT first FROM period) AND (SELECT last FROM period)
        AND p.state NOT IN ('refused', 'released', 'prepared')
), visit AS MATERIALIZED (
    SELECT k.*, sale.total AS goods, sale.is_undelivered, back.worth, main.total AS collected, main.recovery, main.is_of_sale,
        main.row_number IS NOT NULL AS is_collected, sale.total IS NOT NULL AS has_goods, back.worth IS NOT NULL AS has_back,
        EXISTS (SELECT FROM payment AS p WHERE (p.terminal, p.day, p.junno, p.userid, p.gcode)
            = (k.terminal, k.day, k.junno, k.userid, k.gcode) AND NOT p.is_approved) AS has_open
    FROM (SELECT e.terminal, e.day, e.junno, e.userid, e.gcode, max(e.gname) AS gname FROM (
            SELECT s.terminal, s.day, s.junno, s.userid, s.gcode, s.gname FROM sale AS s
            UNION ALL SELECT b.terminal, b.day, b.junno, b.userid, b.gcode, b.gname FROM back AS b
            UNION ALL SELECT c.terminal, c.day, c.junno, c.userid, c.gcode, c.gname FROM slip AS c
            UNION ALL SELECT p.terminal, p.day, p.junno, p.userid, p.gcode, p.gname FROM payment AS p) AS e
        GROUP BY 1, 2, 3, 4, 5) AS k
    LEFT JOIN sale USING (terminal, day, junno, userid, gcode)
    LEFT JOIN back USING (terminal, day, junno, userid, gcode)
    LEFT JOIN (SELECT DISTINCT ON (terminal, day, junno, userid, gcode) * FROM slip WHERE NOT is_simple
               ORDER BY terminal, day, junno, userid, gcode, row_number) AS main USING (terminal, day, junno, userid, gcode)
), shown AS (
    SELECT DISTINCT ON (terminal, day, junno, userid, gcode, banktranno) * FROM slip
    ORDER BY terminal, day, junno, userid, gcode, banktranno, row_number
), paid AS (
    SELECT p.*, s.card, s.row_number IS NOT NULL AS is_shown,
        EXISTS (SELECT FROM slip AS any_slip WHERE any_slip.terminal = p.terminal AND any_slip.day = p.day
            AND any_slip.banktranno = p.banktranno) AS is_shown_somewhere
    FROM payment AS p LEFT JOIN shown AS s ON p.is_approved
        AND (s.terminal, s.day, s.junno, s.userid, s.gcode, s.banktranno)
            = (p.terminal, p.day, p.junno, p.userid, p.gcode, p.banktranno)
), parts AS (
    SELECT slip.*, excess, credited, slip.total + credited
        + CASE WHEN slip.total = 0 AND excess = 0 THEN greatest(0, slip.paid) ELSE 0 END - slip.paid - slip.recovery AS difference
    FROM slip CROSS JOIN LATERAL (SELECT greatest(0, slip.recovery - slip.total) AS excess) AS e
    CROSS JOIN LATERAL (SELECT least(greatest(slip.paid + excess, 0), excess) AS credited) AS c
), finding AS (
    SELECT 0 AS kind, terminal, day, junno, userid, gcode, '카드결제 확인중' AS reason, charged AS amount, 0::numeric AS expected,
        0::numeric AS found
    FROM paid WHERE NOT is_approved
    UNION ALL SELECT 1, terminal, day, junno, userid, gcode, '승인이 전표에 없음', charged, 0, 0 FROM paid
    WHERE is_approved AND NOT is_shown AND EXISTS (SELECT FROM paid AS other
        WHERE (other.terminal, other.day, other.junno, other.userid, other.gcode)
            = (paid.terminal, paid.day, paid.junno, paid.userid, paid.gcode)
            AND other.is_approved AND NOT other.is_shown_somewhere)
    UNION ALL SELECT 2, terminal, day, junno, userid, gcode, '승인금액과 다름', card - charged, charged, card FROM paid
    WHERE is_approved AND is_shown AND is_card AND card <> charged
    UNION ALL SELECT 3, terminal, day, junno, userid, gcode, '카드 미승인', slip.card, 0, 0 FROM slip
    JOIN visit USING (terminal, day, junno, userid, gcode) WHERE slip.card <> 0 AND banktranno = '' AND NOT has_open
    UNION ALL SELECT 4, terminal, day, junno, userid, gcode, '수금없는 판매', goods, 0, 0 FROM visit
    WHERE has_goods AND NOT is_collected AND NOT is_undelivered
    UNION ALL SELECT 5, terminal, day, junno, userid, gcode, '판매없는 입금', collected, 0, 0 FROM visit
    WHERE NOT has_goods AND is_of_sale
    UNION ALL SELECT 6, terminal, day, junno, userid, gcode, '판매합계와 다름', collected - goods, goods, collected FROM visit
    WHERE has_goods AND collected <> goods
    UNION ALL SELECT 7, terminal, day, junno, userid, gcode, '입금없는 용공', worth, 0, 0 FROM visit
    WHERE has_back AND NOT is_collected AND worth <> 0
    UNION ALL SELECT 8, terminal, day, junno, userid, gcode, '용공금액과 다름', recovery - worth, worth, recovery FROM visit
    WHERE has_back AND recovery <> worth
    UNION ALL SELECT 9, terminal, day, junno, userid, gcode, '입금내역과 다름', -difference, total, total - difference FROM parts
    WHERE difference <> 0
    UNION ALL SELECT 10, terminal, day, junno, userid, gcode, '입금전표 두장',
        (array_agg(total ORDER BY row_number))[1], 0, 0 FROM slip WHERE NOT is_simple
    GROUP BY terminal, day, junno, userid, gcode HAVING count(*) > 1
    UNION ALL SELECT 11, terminal, day, junno, userid, gcode, '번호에 다른 거래처',
        CASE WHEN has_goods THEN goods WHEN is_collected THEN collected ELSE worth END, 0, 0
    FROM (SELECT visit.*, count(*) OVER (PARTITION BY terminal, day, junno, userid) AS customers FROM visit
          WHERE has_goods OR has_back OR is_collected) AS claimed WHERE customers > 1
    UNION ALL SELECT 12, terminal, day, junno, userid, gcode, '거래처 채권 없음', effect, 0, 0 FROM slip WHERE effect <> 0
        AND NOT EXISTS (SELECT FROM office.master_garae AS g WHERE g.gcode = slip.gcode AND g.last_version IS NULL)
)
SELECT f.terminal, f.day, office.own_number(f.junno), f.userid, f.gcode, visit.gname, f.reason, f.amount, f.expected, f.found
FROM finding AS f JOIN visit USING (terminal, day, junno, userid, gcode)
ORDER BY f.day, f.terminal, f.userid, office.won(f.junno), f.junno, f.gcode, f.kind
$$;
COMMENT ON FUNCTION report.disagreements IS
    'What 점검 names, over all terminals, for the days of a period; amount is what is at stake, expected and found are both sides '
    'where there are two';

CREATE VIEW report.disagreement AS SELECT * FROM report.disagreements(current_date - 31, current_date + 1);
COMMENT ON VIEW report.disagreement IS
    'What 점검 names over all terminals, of the last 31 days; report.disagreements of any period';

-- --- the terminals -------------------------------------------------------------------------------------------------------

CREATE VIEW report.number_conflict AS
SELECT month, ddate AS day, kind, office.own_number(number) AS number, userid, array_agg(DISTINCT terminal ORDER BY terminal) AS terminals
FROM office.document WHERE kind IN ('sale', 'containers', 'collection') AND state <> 'deleted'
GROUP BY month, ddate, kind, office.own_number(number), userid HAVING count(DISTINCT terminal) > 1;
COMMENT ON VIEW report.number_conflict IS
    'Numbers that one salesman has given on several terminals; their slips are kept apart';

CREATE VIEW report.missing AS
SELECT month, terminal, ddate AS day, kind, office.own_number(number) AS number, userid, sent_at
FROM office.document WHERE state = 'missing';
COMMENT ON VIEW report.missing IS
    'What a terminal had sent and has no more, though nobody deleted it: an older copy was restored, or a disk was lost';

CREATE VIEW report.went_back AS
SELECT d.month, d.terminal, d.ddate AS day, d.kind, office.own_number(d.number) AS number, d.userid, d.revision,
    max(h.revision) AS earlier, d.sent_at
FROM office.document AS d JOIN office.history AS h USING (month, terminal, ddate, kind, number, userid)
WHERE d.state = 'present' AND d.kind <> 'prints' AND h.digest = d.digest AND h.revision < d.revision - 1
GROUP BY d.month, d.terminal, d.ddate, d.kind, d.number, d.userid, d.revision, d.sent_at;
COMMENT ON VIEW report.went_back IS
    'What is now as an earlier revision was: changed back by hand, or an older copy of the terminal was restored, or two '
    'machines send as the same terminal. The revisions between are in office.history';

CREATE VIEW report.terminal AS
SELECT t.terminal, array_to_string(t.users, ',') AS users, t.enrolled_at, t.last_seen, t.last_sent, t.clock_offset,
    t.schema_version, t.program_version, r.rolcanlogin AS is_let_in
FROM office.terminal AS t LEFT JOIN pg_roles AS r ON r.rolname = t.role_name;
COMMENT ON VIEW report.terminal IS 'The terminals, when each was seen and sent something last, and its versions';
COMMENT ON COLUMN report.terminal.clock_offset IS 'Its clock less the server''s';
COMMENT ON COLUMN report.terminal.is_let_in IS 'False for one that was withdrawn';

CREATE VIEW report.master AS
SELECT DISTINCT ON (file_name) file_name, version, lines, loaded_at, loaded_by FROM office.master_version
ORDER BY file_name, version DESC;
COMMENT ON VIEW report.master IS 'The master data that is handed out now';

-- Whoever reads a view runs its functions himself.
GRANT EXECUTE ON FUNCTION office.integer_part, office.payable_total, office.containers, office.json_keys, office.own_number, office.is_touched,
    report.approvals, report.disagreements TO rovana_reader;
