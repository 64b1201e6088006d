-- What a terminal may do: the functions of schema terminal. They run as rovana_owner, know the caller by the role that he
-- has logged in as, and are all that rovana_terminal may use.

-- The terminal that calls; an error for anybody else.
CREATE FUNCTION office.caller() RETURNS office.terminal LANGUAGE plpgsql STABLE AS $$
DECLARE
    found office.terminal;
BEGIN
    SELECT t.* INTO found FROM office.terminal AS t WHERE t.role_name = session_user;
    IF found.terminal IS NULL THEN
        RAISE EXCEPTION 'role % is no enrolled terminal', session_user USING ERRCODE = 'insufficient_privilege';
    END IF;
    RETURN found;
END
$$;

-- Why a terminal is not served, in words for whoever looks after it; null for one that is. 3 is the version of the
-- terminals' tables whose columns stand here.
CREATE FUNCTION office.refusal(their_schema integer, their_clock timestamptz) RETURNS text LANGUAGE sql STABLE
RETURN CASE
    WHEN their_schema > 3 THEN format(
        'the terminal''s tables have version %s and the office knows 3: upgrade the office first', their_schema)
    WHEN their_schema < 3 THEN format(
        'the terminal''s tables have version %s and the office has 3: upgrade the terminal''s programs', their_schema)
    WHEN abs(extract(epoch FROM their_clock - clock_timestamp())) > 86400 THEN format(
        'the terminal''s clock says %s and the office''s %s: set the clock', to_char(their_clock, 'YYYY-MM-DD HH24:MI'),
        to_char(clock_timestamp(), 'YYYY-MM-DD HH24:MI'))
    END;

-- --- comparing -----------------------------------------------------------------------------------------------------------

-- The days whose documents differ from the terminal's (its days in their order, with their digests): with an empty kind each
-- such day, then what the office has of it. From `first_day` to the end of the next month a day that the terminal does not name
-- has nothing there.
CREATE FUNCTION office.differences(me text, first_day text, their_days text[], their_digests bytea[])
RETURNS TABLE (day text, kind text, number text, userid text, digest bytea) LANGUAGE plpgsql STABLE AS $$
#variable_conflict use_column
DECLARE
    -- What is looked at, months and days as ranges: a list of them is longer in planning than in reading.
    begin_day CONSTANT text := least(first_day, their_days[1]);
    end_day CONSTANT text := CASE WHEN first_day < '9999' THEN '9999' ELSE their_days[cardinality(their_days)] END;
    -- A day that a clock gone wrong has written lies with those that are none.
    begin_month CONSTANT date := CASE WHEN begin_day < '2000' OR their_days[cardinality(their_days)] >= '2100' THEN '0001-01'
        ELSE left(begin_day, 7) END || '-01';
    end_month CONSTANT date := greatest(left(their_days[cardinality(their_days)], 7) || '-01',
        CASE WHEN first_day < '9999' THEN (current_date + 31)::text END);
    -- Days that the office knows, and those of them that differ.
    known text[] := '{}';
    differing text[] := '{}';
    ours record;
BEGIN
    FOR ours IN
        SELECT d.ddate, sha256(string_agg(d.digest, '' ORDER BY d.digest)) AS digest FROM office.document AS d
        WHERE d.month BETWEEN begin_month AND end_month AND d.terminal = me AND d.ddate BETWEEN begin_day AND end_day
            AND d.state = 'present'
        GROUP BY d.ddate
    LOOP
        known := known || ours.ddate;
        IF ours.digest IS DISTINCT FROM their_digests[array_position(their_days, ours.ddate)]
            AND (ours.ddate >= first_day OR ours.ddate = ANY (their_days)) THEN
            differing := differing || ours.ddate;
        END IF;
    END LOOP;
    kind := '';
    number := '';
    userid := '';
    FOREACH day IN ARRAY their_days LOOP
        IF day <> ALL (known) THEN
            RETURN NEXT;
        END IF;
    END LOOP;
    FOREACH day IN ARRAY differing LOOP
        RETURN NEXT;
        RETURN QUERY SELECT d.ddate, d.kind, d.number, d.userid, d.digest FROM office.document AS d
            WHERE d.month = office.month(differences.day) AND d.terminal = me AND d.ddate = differences.day AND d.state = 'present';
    END LOOP;
END
$$;

-- The orders of MTM.RVN from `first_day` on that the terminal has neither sent as a slip nor deleted.
CREATE FUNCTION office.open_orders(me office.terminal, first_day text) RETURNS SETOF office.master_mtm
LANGUAGE plpgsql STABLE AS $$
DECLARE
    orders CONSTANT office.master_mtm[] := ARRAY(SELECT o FROM office.master_mtm AS o
        WHERE o.userid = ANY (me.users) AND o.last_version IS NULL AND o.ddate >= first_day);
    months date[];
BEGIN
    IF cardinality(orders) = 0 THEN
        RETURN;
    END IF;
    months := ARRAY(SELECT DISTINCT office.month(o.ddate) FROM unnest(orders) AS o);
    RETURN QUERY SELECT (o).* FROM unnest(orders) AS o WHERE NOT EXISTS (
        SELECT FROM office.document AS d
        WHERE d.month = ANY (months) AND d.terminal = me.terminal AND d.ddate = o.ddate AND d.number = o.junno
            AND d.userid = o.userid AND d.kind IN ('sale', 'deletion'));
END
$$;

-- The first call of a terminal, and the only one when nothing has changed. Rows by `what`:
--   refused   nothing else; `note` says why
--   office    `number` is the terminal's
--   user      a salesman (`userid`) whose slips the terminal may send
--   day       a day that differs, then as `document` what the office has of it
--   master    a master file (`kind`); `note` changes with what the terminal would fetch, `day` is the time of its load
--   orders    there are orders to fetch
CREATE FUNCTION terminal.hello(their_schema integer, their_program text, their_clock timestamptz, first_day text,
    their_days text[], their_digests bytea[], their_salesmen text)
RETURNS TABLE (what text, day text, kind text, number text, userid text, digest bytea, note text)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me office.terminal;
    refusal text;
    master record;
BEGIN
    -- When a terminal was seen need not outlast a loss of power, and nobody waits for the disk for it.
    PERFORM set_config('synchronous_commit', 'off', true);
    UPDATE office.terminal AS t SET last_seen = now(), clock_offset = their_clock - clock_timestamp(),
        schema_version = their_schema, program_version = left(their_program, 100)
    WHERE t.role_name = session_user RETURNING t.* INTO me;
    IF me.terminal IS NULL THEN
        PERFORM office.caller();
    END IF;
    IF their_schema <> 3 OR me.clock_offset NOT BETWEEN '-1 day' AND '1 day' THEN
        refusal := office.refusal(their_schema, their_clock);
    END IF;
    day := '';
    kind := '';
    number := '';
    userid := '';
    note := '';
    IF refusal IS NOT NULL THEN
        what := 'refused';
        note := refusal;
        RETURN NEXT;
        RETURN;
    END IF;
    IF me.salesmen IS DISTINCT FROM their_salesmen THEN
        PERFORM office.take_salesmen(me, their_salesmen);
    END IF;
    what := 'office';
    number := me.terminal;
    RETURN NEXT;
    what := 'user';
    number := '';
    FOREACH userid IN ARRAY me.users LOOP
        RETURN NEXT;
    END LOOP;
    RETURN QUERY SELECT CASE d.kind WHEN '' THEN 'day' ELSE 'document' END, d.day, d.kind, d.number, d.userid, d.digest, ''
        FROM office.differences(me.terminal, first_day, their_days, their_digests) AS d;
    userid := '';
    FOR master IN
        SELECT DISTINCT ON (c.file_name) c.file_name, c.version, c.loaded_at FROM office.master_change AS c
        WHERE c.userid = ANY (array_append(me.users, '')) ORDER BY c.file_name, c.version DESC
    LOOP
        IF master.file_name = 'MTM.RVN' THEN
            IF EXISTS (SELECT FROM office.open_orders(me, first_day)) THEN
                RETURN QUERY SELECT 'orders', '', '', '', '', NULL::bytea, '';
            END IF;
            CONTINUE;
        END IF;
        what := 'master';
        kind := master.file_name;
        day := to_char(master.loaded_at AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS.MS"Z"');
        note := master.version;
        -- An empty table needs no statement.
        IF kind = 'GARAE.RVN' THEN
            note := note || ':' || CASE WHEN pg_relation_size('office.movement') = 0 THEN 0 ELSE office.others_movements(me) END;
        END IF;
        -- A salesman who comes brings customers that no newer version has.
        IF starts_with(kind, 'GARAE') THEN
            note := note || ':' || array_to_string(me.users, '');
        END IF;
        RETURN NEXT;
    END LOOP;
END
$$;

-- What the slips' reports need of the terminal's salesmen, each after U+001E: id, name and VAT mode with U+001F between two. Of
-- others nothing is taken.
CREATE FUNCTION office.take_salesmen(me office.terminal, told text) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
    INSERT INTO office.salesman AS s (terminal, userid, username, vatmode)
    SELECT DISTINCT ON (f[1]) me.terminal, f[1], coalesce(f[2], ''), coalesce(f[3], '')
    FROM (SELECT string_to_array(unnest(string_to_array(told, E'\x1e')), E'\x1f') AS f) AS each WHERE f[1] = ANY (me.users)
    ON CONFLICT (terminal, userid) DO UPDATE SET username = excluded.username, vatmode = excluded.vatmode;
    UPDATE office.terminal AS t SET salesmen = told WHERE t.terminal = me.terminal;
END
$$;

-- How often other terminals have moved the balances of this one's customers since GARAE.RVN was loaded. Its own movements are
-- in the balances that it has. In plpgsql, which is not worked into a caller that does not ask.
CREATE FUNCTION office.others_movements(me office.terminal) RETURNS bigint LANGUAGE plpgsql STABLE AS $$
BEGIN
    RETURN (SELECT count(*) FROM office.movement AS m WHERE m.terminal <> me.terminal AND m.gcode IN (
        SELECT g.gcode FROM office.master_garae AS g WHERE g.userid = ANY (me.users) AND g.last_version IS NULL));
END
$$;

-- The same for days that hello was not asked for. A day that is not named is not looked at.
CREATE FUNCTION terminal.compare(their_days text[], their_digests bytea[])
RETURNS TABLE (day text, kind text, number text, userid text, digest bytea)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
BEGIN
    RETURN QUERY SELECT d.* FROM office.differences((office.caller()).terminal, '9999-12-31', their_days, their_digests) AS d;
END
$$;

CREATE FUNCTION office.refuse_others(me office.terminal, userids text[]) RETURNS void LANGUAGE plpgsql STABLE AS $$
BEGIN
    IF NOT userids <@ me.users THEN
        RAISE EXCEPTION 'terminal % is not enrolled for user %', me.terminal,
            (SELECT string_agg(DISTINCT u, ', ') FROM unnest(userids) AS u WHERE u <> ALL (me.users))
            USING ERRCODE = 'insufficient_privilege';
    END IF;
END
$$;

-- --- sending -------------------------------------------------------------------------------------------------------------

-- Keeps a document as a revision of its number.
CREATE FUNCTION office.retire(doc office.document, deleted boolean) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
    INSERT INTO office.history (month, terminal, kind, ddate, number, userid, revision, digest, content, sent_at, after_close,
        is_deleted)
    VALUES (doc.month, doc.terminal, doc.kind, doc.ddate, split_part(doc.number, '~', 1), doc.userid, doc.revision, doc.digest,
        doc.content, doc.sent_at,
        EXISTS (SELECT FROM office.document AS c WHERE c.month = doc.month AND c.terminal = doc.terminal
                    AND c.ddate = doc.ddate AND c.kind = 'close' AND c.userid = doc.userid AND c.state <> 'deleted'
                    -- A close that comes with the change came after it, unless a deletion's trace is later.
                    AND (c.first_sent < now() OR deleted AND EXISTS (
                        SELECT FROM office.deleted AS t JOIN office.dayclose AS w USING (month, terminal, ddate, userid)
                        WHERE t.month = doc.month AND t.terminal = doc.terminal AND t.ddate = doc.ddate AND t.userid = doc.userid
                            AND t.junno = split_part(doc.number, '~', 1)
                            AND t.gcode = office.traced_customer(doc.kind, doc.content)
                            AND t.deletedat > w.closedat))),
        deleted);
    PERFORM office.move(doc, -1);
END
$$;

-- Adds what a collection does to its customers' receivables, or with -1 takes it back.
CREATE FUNCTION office.move(doc office.document, sign integer) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
    IF doc.kind = 'collection' THEN
        PERFORM office.hold_balances();
        INSERT INTO office.movement (gcode, amount, terminal, ddate, junno, userid)
        SELECT f[2], sign * effect, doc.terminal, doc.ddate, doc.number, doc.userid
        FROM (SELECT f, office.receivable_effect(f) AS effect
              FROM (SELECT string_to_array(unnest(string_to_array(doc.content, E'\x1e')), E'\x1f') AS f) AS r OFFSET 0) AS r
        WHERE effect <> 0;
    END IF;
END
$$;

-- The customer of a document's first row; null for a kind without customers.
CREATE FUNCTION office.customer(kind text, content text) RETURNS text LANGUAGE sql IMMUTABLE
RETURN CASE kind WHEN 'sale' THEN split_part(content, E'\x1f', 2) WHEN 'containers' THEN split_part(content, E'\x1f', 1)
    WHEN 'collection' THEN split_part(content, E'\x1f', 2) END;

-- The same as a trace of its deletion has it: without a quote, which no statement of a terminal takes.
CREATE FUNCTION office.traced_customer(kind text, content text) RETURNS text LANGUAGE sql IMMUTABLE
RETURN replace(office.customer(kind, content), '''', '’');

-- The customer where all rows begin as the first does, with the customer; else null. Empty for a kind without customers.
CREATE FUNCTION office.only_customer(kind text, content text) RETURNS text LANGUAGE sql IMMUTABLE
RETURN CASE
    WHEN kind NOT IN ('sale', 'collection', 'containers') THEN ''
    WHEN strpos(content, E'\x1e') = 0
        OR strpos(replace(content, E'\x1e' || split_part(content, E'\x1f', 1) || E'\x1f'
                || CASE kind WHEN 'containers' THEN '' ELSE split_part(content, E'\x1f', 2) || E'\x1f' END, ''), E'\x1e') = 0
    THEN split_part(content, E'\x1f', CASE kind WHEN 'containers' THEN 1 ELSE 2 END) END;

-- The customers of a document's rows; null for a kind without customers.
CREATE FUNCTION office.customers(kind text, content text) RETURNS text[] LANGUAGE sql IMMUTABLE
RETURN CASE WHEN kind IN ('sale', 'containers', 'collection') THEN (
    SELECT array_agg(split_part(line, E'\x1f', CASE kind WHEN 'containers' THEN 1 ELSE 2 END))
    FROM unnest(string_to_array(content, E'\x1e')) AS line) END;

-- Makes room for what comes under the identity of `doc`. A slip of other customers alone under its number is no later revision:
-- the number was given again, and what the terminal may have lost of it stands aside, under the number with "~" and its
-- revision, until a trace of its deletion is seen.
CREATE FUNCTION office.supersede(doc office.document, new_content text) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
    IF coalesce(office.customers(doc.kind, doc.content) && office.customers(doc.kind, new_content), true) THEN
        PERFORM office.retire(doc, false);
        RETURN;
    END IF;
    doc.number := doc.number || '~' || doc.revision;
    doc.state := 'missing';
    INSERT INTO office.document SELECT doc.*;
    UPDATE office.terminal AS t SET has_lacked = true WHERE t.terminal = doc.terminal;
END
$$;

-- Whether a trace tells of the slip's deletion. One that stood there already when the slip was sent is of a slip before. A
-- collection of which nothing is left goes with its sale or its containers, under their trace.
CREATE FUNCTION office.has_trace(doc office.document) RETURNS boolean LANGUAGE plpgsql STABLE AS $$
DECLARE
    own_number CONSTANT text := split_part(doc.number, '~', 1);
    customer CONSTANT text := office.traced_customer(doc.kind, doc.content);
    paper CONSTANT text := CASE doc.kind WHEN 'sale' THEN '거래명세서' WHEN 'containers' THEN '용공인수증' END;
BEGIN
    RETURN EXISTS (
        SELECT FROM office.document AS t, unnest(string_to_array(t.content, E'\x1e')) AS line
        WHERE t.month = doc.month AND t.terminal = doc.terminal AND t.ddate = doc.ddate AND t.kind = 'deletion'
            AND t.number = own_number AND t.userid = doc.userid
            AND split_part(line, E'\x1f', 2) = customer AND (split_part(line, E'\x1f', 1) = paper OR doc.kind = 'collection')
            AND NOT coalesce((
                SELECT line = ANY (string_to_array(was.content, E'\x1e'))
                FROM (SELECT h.revision, h.sent_at, h.content FROM office.history AS h
                      WHERE h.month = t.month AND h.terminal = t.terminal AND h.ddate = t.ddate AND h.kind = t.kind
                          AND h.number = t.number AND h.userid = t.userid
                      UNION ALL SELECT t.revision, t.sent_at, t.content) AS was
                WHERE was.sent_at <= doc.sent_at ORDER BY was.revision DESC LIMIT 1), false));
END
$$;

-- Whether the slip has another number now: what another customer left under a number that was given again goes to 4001 and up. It
-- may have been changed there since.
CREATE FUNCTION office.has_moved(doc office.document) RETURNS boolean LANGUAGE plpgsql STABLE AS $$
DECLARE
    own_number CONSTANT text := split_part(doc.number, '~', 1);
    customer CONSTANT text := office.customer(doc.kind, doc.content);
    is_given_again CONSTANT boolean := EXISTS (
        SELECT FROM office.document AS o WHERE o.month = doc.month AND o.terminal = doc.terminal AND o.ddate = doc.ddate
            AND o.number = own_number AND o.userid = doc.userid AND o.state = 'present'
            AND office.customer(o.kind, o.content) <> customer);
BEGIN
    RETURN EXISTS (
        SELECT FROM office.document AS d WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate
            AND d.kind = doc.kind AND d.userid = doc.userid AND d.state = 'present' AND d.number <> own_number
            AND d.number ~ '^4[0-9]{3}$'
            AND (office.unnumbered(d.kind, d.content) = office.unnumbered(doc.kind, doc.content)
                OR (is_given_again AND d.first_sent > doc.sent_at AND office.customer(d.kind, d.content) = customer)));
END
$$;

-- Whether a document that the terminal has no more is deleted rather than lost.
CREATE FUNCTION office.is_deleted(doc office.document) RETURNS boolean LANGUAGE plpgsql STABLE AS $$
BEGIN
    RETURN CASE
        WHEN doc.kind = 'sale' THEN office.has_trace(doc)
        WHEN doc.kind IN ('containers', 'collection') THEN office.has_trace(doc) OR office.has_moved(doc)
        -- The prints of a slip are forgotten whenever it changes, and go with it.
        WHEN doc.kind = 'prints' THEN coalesce((
            SELECT bool_or(d.state = 'present') OR bool_and(d.state = 'deleted') FROM office.document AS d
            WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate AND d.number = doc.number
                AND d.userid = doc.userid AND d.kind IN ('sale', 'containers', 'collection')), false)
        ELSE false END;
END
$$;

-- A slip's content without what a new number changes.
CREATE FUNCTION office.unnumbered(kind text, content text) RETURNS text LANGUAGE sql IMMUTABLE
RETURN CASE kind WHEN 'collection' THEN (SELECT string_agg(substr(line, strpos(line, E'\x1f')), E'\x1e' ORDER BY n)
        FROM unnest(string_to_array(content, E'\x1e')) WITH ORDINALITY AS l (line, n))
    ELSE content END;

-- The error for a document that is not what it is said to be.
CREATE FUNCTION office.refuse(kind text, number text, userid text, content text, digest bytea) RETURNS bytea LANGUAGE plpgsql AS $$
BEGIN
    RAISE EXCEPTION USING ERRCODE = 'invalid_parameter_value', MESSAGE = concat_ws(' ',
        CASE WHEN digest IS DISTINCT FROM office.digest(kind, number, userid, content) THEN 'the digest does not fit the content of'
            ELSE 'a document cannot have such rows or such a number:' END, kind, number, 'of user', userid);
END
$$;

-- How many fields a row of the kind has: written out here, so that no session has to look it up.
DO $$
BEGIN
    EXECUTE (SELECT 'CREATE FUNCTION office.fields(kind text) RETURNS integer LANGUAGE sql IMMUTABLE RETURN CASE kind'
        || string_agg(format(' WHEN %L THEN %s', kind, cardinality(fields)), '') || ' END' FROM office.kind);
END
$$;

-- The document's digest, or an error unless that is the digest of the rest, and the rows have together the fields of their kind.
CREATE FUNCTION office.proven(kind text, number text, userid text, content text, digest bytea) RETURNS bytea LANGUAGE sql
RETURN CASE
    -- office.digest, written out: it is worked out for every document, and only so where this stands.
    WHEN digest = sha256(convert_to(kind || E'\x1e' || number || E'\x1f' || userid || E'\x1e' || content, 'UTF8'))
        AND strpos(number, '~') = 0
        AND octet_length(content) - octet_length(replace(content, E'\x1f', ''))
            = (office.fields(kind) - 1) * (1 + octet_length(content) - octet_length(replace(content, E'\x1e', '')))
    THEN digest ELSE office.refuse(kind, number, userid, content, digest) END;

-- Takes documents of a day, whose contents come as one text with two U+001E between: one that is there as it is changes
-- nothing, another content is its next revision. With `is_last` the day is whole: what was named as absent, and all that the
-- terminal was found to lack before, is deleted where a trace says so, and else kept as missing; of a day that may be in an
-- archive it stays as it is. Returns how many were taken, deleted and are missing.
CREATE FUNCTION terminal.send(the_day text, kinds text[], numbers text[], userids text[], contents text, digests bytea[],
    absent_kinds text[], absent_numbers text[], absent_userids text[], is_last boolean, is_archived boolean)
RETURNS TABLE (stored integer, deleted integer, missing integer)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me office.terminal;
    the_month CONSTANT date := office.month(the_day);
BEGIN
    -- A copy of the terminal's disk may be at work in a second machine: it waits here until this one is done.
    UPDATE office.terminal AS t SET last_sent = now() WHERE t.role_name = session_user RETURNING t.* INTO me;
    IF me.terminal IS NULL THEN
        PERFORM office.caller();
    END IF;
    stored := 0;
    deleted := 0;
    missing := 0;
    IF cardinality(kinds) > 0 THEN
        IF the_day::date IS NULL OR (the_month < DATE '2000-01-01' AND the_day !~ '^[0-9]{4}-[0-9]{2}-[0-9]{2}$') THEN
            RAISE EXCEPTION '"%" is no day', the_day USING ERRCODE = 'invalid_parameter_value';
        END IF;
        IF NOT userids <@ me.users THEN
            PERFORM office.refuse_others(me, userids);
        END IF;
        -- The last table that make_month makes: asked for without a statement.
        IF to_regclass('office.history' || to_char(the_month, '_YYYY_MM')) IS NULL THEN
            PERFORM office.make_month(the_month);
        END IF;
        BEGIN
            IF 'collection' = ANY (kinds) THEN
                PERFORM office.hold_balances();
            END IF;
            -- One statement, and what it need not look up is written out: a session plans it for this one day.
            WITH n AS MATERIALIZED (
                SELECT unnest(kinds) AS kind, unnest(numbers) AS number, unnest(userids) AS userid, unnest(digests) AS digest,
                    unnest(string_to_array(contents, E'\x1e\x1e')) AS content
            ), moved AS (
                INSERT INTO office.movement (gcode, amount, terminal, ddate, junno, userid)
                SELECT f[2], effect, me.terminal, the_day, number, userid
                FROM (SELECT number, userid, f, CASE
                        -- What most slips are is read at a glance.
                        WHEN f[1] <> '단순결제' AND f[14] = '0' AND octet_length(f[5] || f[10] || f[11] || f[16]) < 19
                            AND translate(f[5] || f[10] || f[11] || f[16], '0123456789', '') = ''
                            THEN ('0' || f[5])::bigint + ('0' || f[10])::bigint - ('0' || f[11])::bigint - ('0' || f[16])::bigint
                        ELSE office.receivable_effect(f) END AS effect
                      FROM (SELECT number, userid, string_to_array(unnest(string_to_array(content, E'\x1e')), E'\x1f') AS f
                            FROM n WHERE kind = 'collection') AS r OFFSET 0) AS r
                WHERE effect <> 0
            )
            INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, gcode, content)
            SELECT the_month, me.terminal, kind, the_day, number, userid, office.proven(kind, number, userid, content, digest),
                office.only_customer(kind, content), content
            FROM n;
            stored := cardinality(kinds);
        EXCEPTION WHEN unique_violation THEN
            stored := office.store_each(me.terminal, the_month, the_day, kinds, numbers, userids, contents, digests);
            -- Something may stand aside now.
            me.has_lacked := true;
        END;
    END IF;
    IF is_last AND (me.has_lacked OR cardinality(absent_kinds) > 0) THEN
        SELECT * INTO deleted, missing
        FROM office.settle_all(me.terminal, the_day, absent_kinds, absent_numbers, absent_userids, is_archived);
    END IF;
    IF is_last AND 'deletion' = ANY (kinds) THEN
        PERFORM office.outlive(me.terminal, the_month, the_day);
    END IF;
    RETURN NEXT;
END
$$;

-- A slip that is there when traces come under its number has outlived them: it was given the number after one, or is a collection
-- that stayed without its sale or containers. Lost later, it did not go with them.
CREATE FUNCTION office.outlive(me text, the_month date, the_day text) RETURNS void LANGUAGE plpgsql AS $$
BEGIN
    UPDATE office.document AS s SET sent_at = now() FROM office.document AS t
    WHERE s.month = the_month AND s.terminal = me AND s.ddate = the_day AND s.kind IN ('sale', 'containers', 'collection')
        AND s.state = 'present'
        AND t.month = the_month AND t.terminal = me AND t.ddate = the_day AND t.kind = 'deletion'
        AND t.number = s.number AND t.userid = s.userid AND t.sent_at > s.sent_at;
END
$$;

-- Writes documents of which some are there already, as they are or otherwise. Returns how many were not there as they are.
CREATE FUNCTION office.store_each(me text, the_month date, the_day text, kinds text[], numbers text[], userids text[],
    contents text, digests bytea[]) RETURNS integer LANGUAGE plpgsql AS $$
#variable_conflict use_column
DECLARE
    stored integer := 0;
    each record;
    doc office.document;
BEGIN
    IF EXISTS (SELECT FROM unnest(kinds, numbers, userids) AS n (kind, number, userid) GROUP BY kind, number, userid
               HAVING count(*) > 1) THEN
        RAISE EXCEPTION 'a document was sent twice in one call' USING ERRCODE = 'invalid_parameter_value';
    END IF;
    FOR each IN
        SELECT n.kind, n.number, n.userid, n.content, office.proven(n.kind, n.number, n.userid, n.content, n.digest) AS digest,
            office.only_customer(n.kind, n.content) AS gcode, d.digest AS was, d.state
        FROM unnest(kinds, numbers, userids, string_to_array(contents, E'\x1e\x1e'), digests)
            AS n (kind, number, userid, content, digest)
        LEFT JOIN office.document AS d ON d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.kind = n.kind
            AND d.number = n.number AND d.userid = n.userid
    LOOP
        CONTINUE WHEN each.digest = each.was AND each.state = 'present';
        IF each.was IS NULL THEN
            INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, gcode, content)
            VALUES (the_month, me, each.kind, the_day, each.number, each.userid, each.digest, each.gcode, each.content)
            RETURNING * INTO doc;
            PERFORM office.move(doc, 1);
        ELSIF each.digest = each.was AND each.state = 'missing' THEN
            UPDATE office.document AS d SET state = 'present', sent_at = now()
            WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.kind = each.kind
                AND d.number = each.number AND d.userid = each.userid;
        ELSE
            IF each.state <> 'deleted' THEN
                SELECT d.* INTO doc FROM office.document AS d
                WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.kind = each.kind
                    AND d.number = each.number AND d.userid = each.userid;
                PERFORM office.supersede(doc, each.content);
            END IF;
            UPDATE office.document AS d SET revision = d.revision + 1, state = 'present', sent_at = now(), digest = each.digest,
                gcode = each.gcode, content = each.content
            WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.kind = each.kind
                AND d.number = each.number AND d.userid = each.userid
            RETURNING d.* INTO doc;
            PERFORM office.move(doc, 1);
        END IF;
        stored := stored + 1;
    END LOOP;
    RETURN stored;
END
$$;

-- Decides about the documents of a day that were named as absent, or are missing.
CREATE FUNCTION office.settle_all(me text, the_day text, absent_kinds text[], absent_numbers text[], absent_userids text[],
    is_archived boolean, OUT deleted integer, OUT missing integer) LANGUAGE plpgsql AS $$
DECLARE
    doc office.document;
BEGIN
    deleted := 0;
    missing := 0;
    FOR doc IN
        SELECT d.* FROM office.document AS d
        WHERE d.month = office.month(the_day) AND d.terminal = me AND d.ddate = the_day
            AND (d.state = 'missing' OR (d.state = 'present' AND (d.kind, d.number, d.userid) IN (
                SELECT a.kind, a.number, a.userid
                FROM unnest(absent_kinds, absent_numbers, absent_userids) AS a (kind, number, userid))))
        -- What has become of a slip decides about its prints.
        ORDER BY d.kind = 'prints'
    LOOP
        -- The prints of a slip that may be in an archive are there, too.
        CONTINUE WHEN is_archived AND doc.kind = 'prints' AND EXISTS (
            SELECT FROM unnest(absent_kinds, absent_numbers, absent_userids) AS a (kind, number, userid)
            JOIN office.document AS d USING (kind, number, userid)
            WHERE d.month = doc.month AND d.terminal = me AND d.ddate = the_day AND d.number = doc.number AND d.userid = doc.userid
                AND d.kind IN ('sale', 'containers', 'collection') AND d.state = 'present');
        IF office.settle(doc, is_archived) THEN
            deleted := deleted + 1;
        ELSIF NOT is_archived THEN
            missing := missing + 1;
        END IF;
    END LOOP;
    IF missing > 0 THEN
        UPDATE office.terminal AS t SET has_lacked = true WHERE t.terminal = me AND NOT t.has_lacked;
    END IF;
END
$$;

-- Decides about a document that the terminal lacks; true when it is deleted.
CREATE FUNCTION office.settle(doc office.document, is_archived boolean) RETURNS boolean LANGUAGE plpgsql AS $$
DECLARE
    deleted CONSTANT boolean := office.is_deleted(doc);
    aside CONSTANT boolean := doc.number LIKE '%~%';
BEGIN
    IF deleted THEN
        PERFORM office.retire(doc, true);
    END IF;
    IF deleted AND aside THEN
        DELETE FROM office.document AS d WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate
            AND d.kind = doc.kind AND d.number = doc.number AND d.userid = doc.userid;
    ELSIF deleted OR NOT is_archived THEN
        UPDATE office.document AS d SET state = CASE WHEN deleted THEN 'deleted' ELSE 'missing' END,
            content = CASE WHEN deleted THEN '' ELSE content END
        WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate
            AND d.kind = doc.kind AND d.number = doc.number AND d.userid = doc.userid;
    END IF;
    RETURN deleted;
END
$$;

-- --- fetching ------------------------------------------------------------------------------------------------------------

-- The master files with the statement for a file's lines, a line feed after each: the customers of the terminal's salesmen
-- with the office's balances and what all terminals have sent since, their prices and margins, and all products and bar codes.
CREATE TABLE office.master_file (file_name text PRIMARY KEY, selection text NOT NULL, lines text);
ALTER TABLE office.master_file ALTER lines SET STORAGE EXTERNAL;
COMMENT ON COLUMN office.master_file.lines IS 'Of a file that is the same for all terminals, as the last load left them';
INSERT INTO office.master_file (file_name, selection)
SELECT upper(name) || '.RVN', format(
    'SELECT coalesce(string_agg(concat_ws(''|'', %s) || E''|\n'', '''' ORDER BY r.row_number), '''')
     FROM office.master_%s AS r WHERE r.last_version IS NULL %s', columns, name, condition)
FROM (VALUES ('pummok', ''), ('barcode', ''), ('garae', 'AND r.userid = ANY ($1)'),
    ('garaedanga', 'AND r.gcode = ANY ($2)'), ('garaemajin', 'AND r.gcode = ANY ($2)')) AS file (name, condition)
CROSS JOIN LATERAL (
    -- A balance that nobody has moved stays the text that it is.
    SELECT string_agg(CASE WHEN name = 'garae' AND attname = 'cjmoney'
        THEN 'coalesce((SELECT (office.won(r.cjmoney) + sum(m.amount))::text FROM office.movement AS m WHERE m.gcode = r.gcode
                        HAVING sum(m.amount) <> 0), r.cjmoney)'
        ELSE 'r.' || quote_ident(attname) END, ', ' ORDER BY attnum)
    FROM pg_attribute WHERE attrelid = format('office.master_%s', name)::regclass AND attnum > 0 AND NOT attisdropped
        AND attname NOT IN ('first_version', 'last_version', 'row_number')) AS c (columns);

CREATE FUNCTION terminal.masters(file_names text[]) RETURNS TABLE (file_name text, lines text)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me CONSTANT office.terminal := office.caller();
    customers text[];
    file record;
    found integer := 0;
BEGIN
    IF file_names && '{GARAEDANGA.RVN,GARAEMAJIN.RVN}' THEN
        customers := ARRAY(SELECT g.gcode FROM office.master_garae AS g WHERE g.userid = ANY (me.users) AND g.last_version IS NULL);
    END IF;
    FOR file IN SELECT f.file_name, f.selection, f.lines FROM office.master_file AS f WHERE f.file_name = ANY (file_names) LOOP
        file_name := file.file_name;
        lines := file.lines;
        IF lines IS NULL THEN
            EXECUTE file.selection INTO lines USING me.users, customers;
        END IF;
        found := found + 1;
        RETURN NEXT;
    END LOOP;
    IF found < cardinality(file_names) THEN
        RAISE EXCEPTION 'there is no such master file among "%"', array_to_string(file_names, '", "')
            USING ERRCODE = 'invalid_parameter_value';
    END IF;
END
$$;

-- Keeps the lines of a file that is the same for all terminals ready; whoever loads it calls this.
CREATE FUNCTION office.keep_lines(of_file text) RETURNS void LANGUAGE plpgsql AS $$
DECLARE
    made text;
BEGIN
    EXECUTE (SELECT selection FROM office.master_file WHERE file_name = of_file) INTO made;
    UPDATE office.master_file SET lines = made WHERE file_name = of_file;
END
$$;

-- The open orders as lines of MTM.RVN, with what tells whether the terminal has them.
CREATE FUNCTION terminal.orders(first_day text) RETURNS TABLE (ddate text, junno text, userid text, line text)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
BEGIN
    RETURN QUERY SELECT o.ddate, o.junno, o.userid, concat_ws('|', o.ddate, o.gubun, o.gcode, o.gname, o.junno, o.workgubun,
            o.pcode, o.pname, o.jgubun, o.box, o.bon, o.mmoney, o.bmoney, o.ymoney, o.gmoney, o.userid) || '|'
        FROM office.open_orders(office.caller(), first_day) AS o ORDER BY o.first_version, o.row_number;
END
$$;

-- --- recovering ----------------------------------------------------------------------------------------------------------

-- The days from `first_day` on of which the office has documents of the terminal.
CREATE FUNCTION terminal.days(first_day text) RETURNS SETOF text
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
DECLARE
    me CONSTANT text := (office.caller()).terminal;
BEGIN
    RETURN QUERY SELECT DISTINCT d.ddate FROM office.document AS d
        WHERE d.terminal = me AND d.ddate >= first_day AND d.state <> 'deleted' ORDER BY 1;
END
$$;

-- The day's documents as the terminal sent them last, those that it lacks included. What stands aside, since its number was
-- given again, has no content.
CREATE FUNCTION terminal.documents(the_day text) RETURNS TABLE (kind text, number text, userid text, digest bytea, content text)
LANGUAGE plpgsql STABLE SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me CONSTANT text := (office.caller()).terminal;
    the_month CONSTANT date := office.month(the_day);
BEGIN
    RETURN QUERY SELECT d.kind, d.number, d.userid, d.digest,
            CASE WHEN d.number LIKE '%~%' THEN NULL ELSE d.content END
        FROM office.document AS d
        WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.state <> 'deleted';
END
$$;

GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA terminal TO rovana_terminal;
