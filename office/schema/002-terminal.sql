-- What a terminal may do: the functions of schema terminal. They run as rovana_owner, know the caller by the role that he
-- has logged in as, and are all that rovana_terminal may use.

-- The kinds of documents: the table of a kind's rows, its columns in their order, and where in a row stand the document's
-- day, number (nothing for a close), user and customer.
CREATE TABLE office.kind (
    kind text PRIMARY KEY,
    table_name name NOT NULL,
    number_column name,
    columns text[] NOT NULL DEFAULT '{}',
    ddate_at integer,
    number_at integer,
    userid_at integer,
    gcode_at integer,
    condition text,
    insertion text
);
COMMENT ON COLUMN office.kind.condition IS
    'Which rows are a document''s: $1 its terminal, $2 its day, $3 its user, $4 its number and $5 its id';
COMMENT ON COLUMN office.kind.insertion IS 'The statement by which office.store writes rows of the kind';
INSERT INTO office.kind (kind, table_name, number_column) VALUES
    ('sale', 'mtm', 'junno'), ('containers', 'ytm', 'junno'), ('collection', 'mtmok', 'junno'),
    ('payment', 'payjournal', 'number'), ('prints', 'printlog', 'junno'), ('deletion', 'deleted', 'junno'),
    ('close', 'dayclose', NULL);
UPDATE office.kind AS k SET columns = (
    SELECT array_agg(attname::text ORDER BY attnum) FROM pg_attribute
    WHERE attrelid = format('office.%I', k.table_name)::regclass AND attnum > 0 AND NOT attisdropped
        AND attname NOT IN ('month', 'terminal', 'row_number', 'document_id'));
UPDATE office.kind SET ddate_at = array_position(columns, 'ddate'), userid_at = array_position(columns, 'userid'),
    number_at = array_position(columns, number_column::text),
    gcode_at = CASE WHEN kind IN ('sale', 'containers', 'collection') THEN array_position(columns, 'gcode') END;

-- Texts are taken apart by SELECT lists, which hand on each row: a function in FROM would keep all of them first.
UPDATE office.kind AS k SET insertion = format(
    'INSERT INTO office.%I (month, terminal, row_number, %s%s)
     SELECT $1, $2, n, %s%s
     FROM (SELECT number, userid, id, n, string_to_array(line, E''\x1f'') AS f
           FROM (SELECT number, userid, id, unnest(lines) AS line, generate_subscripts(lines, 1) AS n
                 FROM (SELECT number, userid, id, string_to_array(content, E''\x1e'') AS lines
                       FROM (SELECT unnest($3) AS kind, unnest($4) AS number, unnest($5) AS userid, unnest($6) AS content,
                                 unnest($7) AS known, unnest($9) AS id) AS d
                       WHERE kind = %L AND NOT known OFFSET 0) AS d) AS l OFFSET 0) AS r',
    k.table_name, CASE kind WHEN 'sale' THEN 'document_id, ' END, array_to_string(k.columns, ', '),
    CASE kind WHEN 'sale' THEN 'id, ' END,
    (SELECT string_agg(CASE i WHEN k.ddate_at THEN format(
        'CASE WHEN cardinality(f) = %s AND f[%s] = $8 AND f[%s] = userid AND %s = number THEN $8
              ELSE office.refuse_row(%L, number, userid) END', cardinality(k.columns), k.ddate_at, k.userid_at,
        coalesce('f[' || k.number_at || ']', ''''''), k.kind) ELSE format('f[%s]', i) END, ', ')
     FROM generate_subscripts(k.columns, 1) AS i), k.kind);
UPDATE office.kind AS k SET condition = CASE kind WHEN 'sale' THEN 'document_id = $5'
    ELSE format('terminal = $1 AND ddate = $2 AND userid = $3 AND %s = $4', coalesce(quote_ident(number_column), '''''')) END;

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

-- The months from that of `first_day` to the next one, and those of the days: what a statement names so that it looks at no
-- other partition.
CREATE FUNCTION office.months(first_day text, days text[]) RETURNS date[] LANGUAGE plpgsql STABLE AS $$
DECLARE
    month date := CASE WHEN first_day < '9999'
        THEN greatest(office.month(first_day), date_trunc('month', now() - interval '10 years')::date) END;
    months date[] := '{}';
    day text;
BEGIN
    WHILE month <= now() + interval '1 month' LOOP
        months := months || month;
        month := month + interval '1 month';
    END LOOP;
    FOREACH day IN ARRAY days LOOP
        IF office.month(day) <> ALL (months) THEN
            months := months || office.month(day);
        END IF;
    END LOOP;
    RETURN months;
END
$$;

-- The days whose documents differ from the terminal's (its days with their digests): with an empty kind each such day, then
-- what the office has of it. From `first_day` on a day that the terminal does not name has nothing there.
CREATE FUNCTION office.differences(me text, first_day text, their_days text[], their_digests bytea[])
RETURNS TABLE (day text, kind text, number text, userid text, digest bytea) LANGUAGE plpgsql STABLE AS $$
#variable_conflict use_column
DECLARE
    months CONSTANT date[] := office.months(first_day, their_days);
BEGIN
    RETURN QUERY WITH ours AS MATERIALIZED (
        SELECT d.ddate, d.kind, d.number, d.userid, d.digest FROM office.document AS d
        WHERE d.month = ANY (months) AND d.terminal = me AND d.state = 'present'
            AND (d.ddate >= first_day OR d.ddate = ANY (their_days))
    ), differing AS MATERIALIZED (
        SELECT ddate FROM unnest(their_days, their_digests) AS theirs (ddate, digest)
        FULL JOIN (SELECT ddate, sha256(string_agg(digest, '' ORDER BY digest)) AS digest FROM ours GROUP BY ddate) AS days
            USING (ddate)
        WHERE theirs.digest IS DISTINCT FROM days.digest
    )
    SELECT ddate, '', '', '', NULL::bytea FROM differing
    UNION ALL
    SELECT * FROM ours WHERE ddate IN (SELECT ddate FROM differing);
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
--   user      a salesman (`userid`) of the terminal; `number` is his VAT mode and `note` his name as the office knows them
--   day       a day that differs, then as `document` what the office has of it
--   master    a master file (`kind`); `note` changes with what the terminal would fetch, `day` is the time of its load
--   orders    there are orders to fetch
CREATE FUNCTION terminal.hello(their_schema integer, their_program text, their_clock timestamptz, first_day text,
    their_days text[], their_digests bytea[])
RETURNS TABLE (what text, day text, kind text, number text, userid text, digest bytea, note text)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me office.terminal;
    refusal CONSTANT text := office.refusal(their_schema, their_clock);
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
    IF refusal IS NOT NULL THEN
        RETURN QUERY SELECT 'refused', '', '', '', '', NULL::bytea, refusal;
        RETURN;
    END IF;
    RETURN QUERY SELECT 'office', '', '', me.terminal, '', NULL::bytea, '';
    RETURN QUERY SELECT 'user', '', '', coalesce(s.vatmode, ''), u, NULL::bytea, coalesce(s.username, '')
        FROM unnest(me.users) AS u LEFT JOIN office.salesman AS s ON s.terminal = me.terminal AND s.userid = u;
    RETURN QUERY SELECT CASE d.kind WHEN '' THEN 'day' ELSE 'document' END, d.day, d.kind, d.number, d.userid, d.digest, ''
        FROM office.differences(me.terminal, first_day, their_days, their_digests) AS d;
    FOR master IN
        SELECT c.file_name, max(c.version) AS version, max(c.loaded_at) AS loaded_at FROM office.master_change AS c
        WHERE c.userid = '' OR c.userid = ANY (me.users) GROUP BY c.file_name ORDER BY c.file_name
    LOOP
        IF master.file_name <> 'MTM.RVN' THEN
            RETURN QUERY SELECT 'master', to_char(master.loaded_at AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS.MS"Z"'),
                master.file_name, '', '', NULL::bytea, concat_ws(':', master.version,
                    CASE WHEN master.file_name = 'GARAE.RVN' THEN office.others_movements(me) END,
                    -- A salesman who comes brings customers that no newer version has.
                    CASE WHEN master.file_name LIKE 'GARAE%' THEN array_to_string(me.users, '') END);
        ELSIF EXISTS (SELECT FROM office.open_orders(me, first_day)) THEN
            RETURN QUERY SELECT 'orders', '', '', '', '', NULL::bytea, '';
        END IF;
    END LOOP;
END
$$;

-- How often other terminals have moved the balances of this one's customers since GARAE.RVN was loaded. Its own movements are
-- in the balances that it has.
CREATE FUNCTION office.others_movements(me office.terminal) RETURNS bigint LANGUAGE sql STABLE
RETURN (SELECT count(*) FROM office.movement AS m WHERE m.terminal <> me.terminal AND m.gcode IN (
    SELECT g.gcode FROM office.master_garae AS g WHERE g.userid = ANY (me.users) AND g.last_version IS NULL));

-- The same for days that hello was not asked for. A day that is not named is not looked at.
CREATE FUNCTION terminal.compare(their_days text[], their_digests bytea[])
RETURNS TABLE (day text, kind text, number text, userid text, digest bytea)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
BEGIN
    RETURN QUERY SELECT d.* FROM office.differences((office.caller()).terminal, '9999-12-31', their_days, their_digests) AS d;
END
$$;

-- What the slips' reports need of the salesmen. One of another terminal's is an error.
CREATE FUNCTION terminal.salesmen(userids text[], usernames text[], vatmodes text[]) RETURNS void
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
DECLARE
    me CONSTANT office.terminal := office.caller();
BEGIN
    PERFORM office.refuse_others(me, userids);
    INSERT INTO office.salesman AS s (terminal, userid, username, vatmode)
    SELECT me.terminal, u, coalesce(n, ''), coalesce(v, '') FROM unnest(userids, usernames, vatmodes) AS each (u, n, v)
    ON CONFLICT (terminal, userid) DO UPDATE SET username = excluded.username, vatmode = excluded.vatmode;
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

-- The rows of a document as they were sent, U+001E between two.
CREATE FUNCTION office.content(doc office.document) RETURNS text LANGUAGE plpgsql STABLE AS $$
DECLARE
    k office.kind;
    content text;
BEGIN
    SELECT * INTO k FROM office.kind AS each WHERE each.kind = doc.kind;
    EXECUTE format(
        'SELECT string_agg(concat_ws(E''\x1f'', %s), E''\x1e'' ORDER BY row_number) FROM office.%I
         WHERE month = %L AND %s',
        -- A slip that was put aside has its own number in the rows only.
        (SELECT string_agg(CASE WHEN name = k.number_column THEN format('split_part(%I, ''~'', 1)', name)
                                ELSE quote_ident(name) END, ', ' ORDER BY i)
         FROM unnest(k.columns) WITH ORDINALITY AS c (name, i)),
        k.table_name, doc.month, k.condition)
        INTO content USING doc.terminal, doc.ddate, doc.userid, doc.number, doc.id;
    RETURN content;
END
$$;

-- Takes a document's rows away and keeps them as a revision of its number.
CREATE FUNCTION office.retire(doc office.document, deleted boolean) RETURNS void LANGUAGE plpgsql AS $$
DECLARE
    k office.kind;
BEGIN
    SELECT * INTO k FROM office.kind AS each WHERE each.kind = doc.kind;
    INSERT INTO office.history (month, terminal, kind, ddate, number, userid, revision, digest, content, sent_at, after_close,
        is_deleted)
    VALUES (doc.month, doc.terminal, doc.kind, doc.ddate, split_part(doc.number, '~', 1), doc.userid, doc.revision, doc.digest,
        office.content(doc), doc.sent_at,
        EXISTS (SELECT FROM office.dayclose AS c WHERE c.month = doc.month AND c.terminal = doc.terminal
                    AND c.ddate = doc.ddate AND c.userid = doc.userid),
        deleted);
    EXECUTE format('DELETE FROM office.%I WHERE month = %L AND %s', k.table_name, doc.month, k.condition)
        USING doc.terminal, doc.ddate, doc.userid, doc.number, doc.id;
END
$$;

-- The customer of a document's first row; null for a kind without customers.
CREATE FUNCTION office.customer(kind_of text, content text) RETURNS text LANGUAGE sql STABLE
RETURN (SELECT split_part(split_part(content, E'\x1e', 1), E'\x1f', k.gcode_at) FROM office.kind AS k WHERE k.kind = kind_of);

-- Makes room for what comes under the identity of `doc`. Another customer's slip under its number is no later revision: the
-- number was given again, and what the terminal may have lost of it stands aside, under the number with "~" and its
-- revision, until a trace of its deletion is seen.
CREATE FUNCTION office.supersede(doc office.document, new_content text) RETURNS void LANGUAGE plpgsql AS $$
DECLARE
    aside CONSTANT text := doc.number || '~' || doc.revision;
    k office.kind;
BEGIN
    SELECT * INTO k FROM office.kind AS each WHERE each.kind = doc.kind;
    IF k.gcode_at IS NULL OR office.customer(doc.kind, office.content(doc)) = office.customer(doc.kind, new_content) THEN
        PERFORM office.retire(doc, false);
        RETURN;
    END IF;
    EXECUTE format('UPDATE office.%I SET %I = $6 WHERE month = %L AND %s', k.table_name, k.number_column, doc.month, k.condition)
        USING doc.terminal, doc.ddate, doc.userid, doc.number, doc.id, aside;
    INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, revision, state, first_sent, sent_at, id)
    VALUES (doc.month, doc.terminal, doc.kind, doc.ddate, aside, doc.userid, doc.digest, doc.revision, 'missing',
        doc.first_sent, doc.sent_at, doc.id);
END
$$;

-- Whether a document that the terminal has no more is deleted rather than lost.
CREATE FUNCTION office.is_deleted(doc office.document) RETURNS boolean LANGUAGE plpgsql STABLE AS $$
DECLARE
    own_number CONSTANT text := split_part(doc.number, '~', 1);
    content text;
    paper text;
BEGIN
    -- The prints of a slip are forgotten whenever it changes.
    IF doc.kind = 'prints' THEN
        RETURN EXISTS (SELECT FROM office.document AS d WHERE d.month = doc.month AND d.terminal = doc.terminal
            AND d.ddate = doc.ddate AND d.number = doc.number AND d.userid = doc.userid AND d.state = 'present'
            AND d.kind IN ('sale', 'containers', 'collection'));
    END IF;
    paper := CASE doc.kind WHEN 'sale' THEN '거래명세서' WHEN 'containers' THEN '용공인수증' WHEN 'collection' THEN '입금표' END;
    IF paper IS NULL THEN
        RETURN false;
    END IF;
    content := office.content(doc);
    -- A trace of its deletion that came after it. A collection of which nothing is left goes with its sale or its
    -- containers, under their trace; a trace has a name's quote as it could be stored.
    RETURN EXISTS (
            SELECT FROM office.deleted AS t JOIN office.document AS d ON d.month = t.month AND d.terminal = t.terminal
                AND d.kind = 'deletion' AND d.ddate = t.ddate AND d.number = t.junno AND d.userid = t.userid
            WHERE t.month = doc.month AND t.terminal = doc.terminal AND t.ddate = doc.ddate AND t.junno = own_number
                AND t.userid = doc.userid AND d.sent_at > doc.sent_at
                AND t.gcode = replace(office.customer(doc.kind, content), '''', '’')
                AND (t.document = paper OR doc.kind = 'collection'))
        -- It has another number now: what another customer left under a number that was given again goes to 4001 and up.
        OR (doc.kind <> 'sale' AND EXISTS (
            SELECT FROM office.document AS d WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate
                AND d.kind = doc.kind AND d.userid = doc.userid AND d.state = 'present' AND d.number <> own_number
                AND d.number ~ '^4[0-9]{3}$'
                AND office.unnumbered(d.kind, office.content(d)) = office.unnumbered(doc.kind, content)));
END
$$;

-- A slip's content without its number and what a new number changes.
CREATE FUNCTION office.unnumbered(kind_of text, content text) RETURNS text LANGUAGE sql STABLE
RETURN (SELECT string_agg((
        SELECT string_agg(field, E'\x1f' ORDER BY i) FROM unnest(string_to_array(line, E'\x1f')) WITH ORDINALITY AS f (field, i)
        WHERE i <> k.number_at AND (k.kind <> 'collection' OR k.columns[i] <> 'gubun')), E'\x1e' ORDER BY n)
    FROM office.kind AS k, unnest(string_to_array(content, E'\x1e')) WITH ORDINALITY AS l (line, n) WHERE k.kind = kind_of);

-- The error for a row that is not of its document.
CREATE FUNCTION office.refuse_row(kind text, number text, userid text) RETURNS text LANGUAGE plpgsql AS $$
BEGIN
    RAISE EXCEPTION 'the rows of % % of user % are not its own', kind, number, userid USING ERRCODE = 'invalid_parameter_value';
END
$$;

-- Takes documents of a day: one that is there as it is changes nothing, another content is its next revision. With `is_last`
-- the day is whole: what was named as absent, and all that the terminal was found to lack before, is deleted where a trace
-- says so, and else kept as missing; of a day that may be in an archive it stays as it is. Returns how many were taken, deleted and are missing.
CREATE FUNCTION terminal.send(the_day text, kinds text[], numbers text[], userids text[], contents text[], digests bytea[],
    absent_kinds text[], absent_numbers text[], absent_userids text[], is_last boolean, is_archived boolean)
RETURNS TABLE (stored integer, deleted integer, missing integer)
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
#variable_conflict use_column
DECLARE
    me CONSTANT office.terminal := office.caller();
    the_month CONSTANT date := office.month(the_day);
    doc office.document;
BEGIN
    stored := 0;
    deleted := 0;
    missing := 0;
    IF cardinality(kinds) > 0 THEN
        IF the_month < DATE '2000-01-01' OR the_day::date IS NULL THEN
            RAISE EXCEPTION '"%" is no day', the_day USING ERRCODE = 'invalid_parameter_value';
        END IF;
        IF NOT userids <@ me.users THEN
            PERFORM office.refuse_others(me, userids);
        END IF;
        -- The last table that make_month makes: asked for without a statement.
        IF to_regclass('office.dayclose' || to_char(the_month, '_YYYY_MM')) IS NULL THEN
            PERFORM office.make_month(the_month);
        END IF;
    END IF;
    -- A copy of the terminal's disk may be at work in a second machine.
    PERFORM pg_advisory_xact_lock(hashtext('office.terminal'), hashtext(me.terminal));
    IF cardinality(kinds) > 0 THEN
        stored := office.store(me.terminal, the_day, kinds, numbers, userids, contents, digests);
    END IF;
    IF is_last AND (cardinality(absent_kinds) > 0 OR EXISTS (
        SELECT FROM office.document AS d
        WHERE d.month = the_month AND d.terminal = me.terminal AND d.ddate = the_day AND d.state = 'missing')) THEN
        FOR doc IN
            SELECT d.* FROM office.document AS d
            WHERE d.month = the_month AND d.terminal = me.terminal AND d.ddate = the_day
                AND (d.state = 'missing' OR (d.state = 'present' AND (d.kind, d.number, d.userid) IN (
                    SELECT a.kind, a.number, a.userid
                    FROM unnest(absent_kinds, absent_numbers, absent_userids) AS a (kind, number, userid))))
            -- What has become of a slip decides about its prints.
            ORDER BY d.kind = 'prints'
        LOOP
            IF office.settle(doc, is_archived) THEN
                deleted := deleted + 1;
            ELSIF NOT is_archived THEN
                missing := missing + 1;
            END IF;
        END LOOP;
    END IF;
    IF stored + deleted > 0 THEN
        UPDATE office.terminal AS t SET last_sent = now() WHERE t.terminal = me.terminal;
    END IF;
    RETURN NEXT;
END
$$;

-- Writes documents, and the rows of those that have none; an error unless they are what they are said to be. Returns how many
-- were not there as they are. Nobody else writes this terminal's documents meanwhile.
CREATE FUNCTION office.store(me text, the_day text, kinds text[], numbers text[], userids text[], contents text[],
    digests bytea[]) RETURNS integer LANGUAGE plpgsql AS $$
#variable_conflict use_column
DECLARE
    the_month CONSTANT date := office.month(the_day);
    -- Of each document whether it has a row already, and whether its rows are there.
    noted boolean[];
    known boolean[];
    -- By which its rows know it: what has been kept aside, or not retired yet, keeps the one of before.
    ids bigint[];
    superseded boolean;
    wrong text;
    each record;
    statement text;
    changed integer;
BEGIN
    SELECT array_agg(n.kind), array_agg(n.number), array_agg(n.userid), array_agg(n.content), array_agg(n.digest),
        array_agg(d.digest IS NOT NULL), array_agg(d.digest IS NOT DISTINCT FROM n.digest AND d.state = 'missing'),
        array_agg(CASE WHEN d.digest = n.digest AND d.state = 'missing' THEN d.id ELSE nextval('office.document_id') END),
        bool_or(d.digest <> n.digest AND d.state <> 'deleted'),
        min(CASE WHEN n.is_wrong THEN concat_ws(' ', n.kind, n.number, 'of user', n.userid) END)
    INTO kinds, numbers, userids, contents, digests, noted, known, ids, superseded, wrong
    FROM (SELECT *, kind IS NULL OR number IS NULL OR userid IS NULL OR content IS NULL OR strpos(number, '~') > 0
            -- office.digest, written out: it is worked out for every document.
            OR digest IS DISTINCT FROM sha256(convert_to(kind || E'\x1e' || content, 'UTF8')) AS is_wrong
        FROM (SELECT unnest(kinds) AS kind, unnest(numbers) AS number, unnest(userids) AS userid, unnest(contents) AS content,
                  unnest(digests) AS digest) AS d OFFSET 0) AS n
    LEFT JOIN office.document AS d ON d.month = the_month AND d.terminal = me AND d.ddate = the_day
        AND d.kind = n.kind AND d.number = n.number AND d.userid = n.userid
    WHERE n.is_wrong OR d.digest IS DISTINCT FROM n.digest OR d.state <> 'present';
    IF wrong IS NOT NULL THEN
        RAISE EXCEPTION 'the digest of % does not fit its content', wrong USING ERRCODE = 'invalid_parameter_value';
    END IF;
    IF kinds IS NULL THEN
        RETURN 0;
    END IF;
    IF superseded THEN
        FOR each IN
            SELECT d AS doc, n.content
            FROM unnest(kinds, numbers, userids, contents, digests) AS n (kind, number, userid, content, digest)
            JOIN office.document AS d USING (kind, number, userid)
            WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.digest <> n.digest
                AND d.state <> 'deleted'
        LOOP
            PERFORM office.supersede(each.doc, each.content);
        END LOOP;
    END IF;
    IF true = ANY (noted) THEN
        UPDATE office.document AS d
        SET revision = d.revision + (d.digest <> n.digest OR d.state = 'deleted')::integer, digest = n.digest,
            state = 'present', sent_at = now(), id = n.id
        FROM unnest(kinds, numbers, userids, digests, ids) AS n (kind, number, userid, digest, id)
        WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.kind = n.kind AND d.number = n.number
            AND d.userid = n.userid;
        GET DIAGNOSTICS changed = ROW_COUNT;
        IF changed <> cardinality(array_remove(noted, false)) THEN
            RAISE EXCEPTION 'a document was sent twice in one call' USING ERRCODE = 'invalid_parameter_value';
        END IF;
    END IF;
    IF false = ANY (noted) THEN
        INSERT INTO office.document (month, terminal, kind, ddate, number, userid, digest, id)
        SELECT the_month, me, n.kind, the_day, n.number, n.userid, n.digest, n.id
        FROM (SELECT unnest(kinds) AS kind, unnest(numbers) AS number, unnest(userids) AS userid, unnest(digests) AS digest,
                  unnest(noted) AS noted, unnest(ids) AS id OFFSET 0) AS n
        WHERE NOT n.noted;
    END IF;
    FOR statement IN SELECT k.insertion FROM office.kind AS k WHERE k.kind = ANY (kinds) LOOP
        EXECUTE statement USING the_month, me, kinds, numbers, userids, contents, known, the_day, ids;
    END LOOP;
    RETURN cardinality(kinds);
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
        UPDATE office.document AS d SET state = CASE WHEN deleted THEN 'deleted' ELSE 'missing' END
        WHERE d.month = doc.month AND d.terminal = doc.terminal AND d.ddate = doc.ddate
            AND d.kind = doc.kind AND d.number = doc.number AND d.userid = doc.userid;
    END IF;
    RETURN deleted;
END
$$;

-- --- fetching ------------------------------------------------------------------------------------------------------------

-- The master files with the statement for a file's lines, a line feed after each: the customers of the terminal's salesmen
-- with the office's balances and what all terminals have sent since, their prices and margins, and all products and bar codes.
CREATE TABLE office.master_file (file_name text PRIMARY KEY, selection text NOT NULL);
INSERT INTO office.master_file
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
    file office.master_file;
BEGIN
    IF EXISTS (SELECT FROM unnest(file_names) AS name WHERE name NOT IN (SELECT f.file_name FROM office.master_file AS f)) THEN
        RAISE EXCEPTION 'there is no master file "%"', array_to_string(file_names, '", "')
            USING ERRCODE = 'invalid_parameter_value';
    END IF;
    customers := ARRAY(SELECT g.gcode FROM office.master_garae AS g WHERE g.userid = ANY (me.users) AND g.last_version IS NULL);
    FOR file IN SELECT f.* FROM office.master_file AS f WHERE f.file_name = ANY (file_names) LOOP
        file_name := file.file_name;
        EXECUTE file.selection INTO lines USING me.users, customers;
        RETURN NEXT;
    END LOOP;
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
            CASE WHEN d.number LIKE '%~%' THEN NULL ELSE office.content(d) END
        FROM office.document AS d
        WHERE d.month = the_month AND d.terminal = me AND d.ddate = the_day AND d.state <> 'deleted';
END
$$;

GRANT EXECUTE ON ALL FUNCTIONS IN SCHEMA terminal TO rovana_terminal;
