-- What the office keeps: terminals, master data, what the terminals sent, and every revision before.
-- Terminals have no right on this schema; they call the functions of schema terminal, which belong to rovana_owner.

-- The whole number that a terminal reads from a text: leading blanks, one sign, digits up to the first other character.
-- Without digits 0, with too many the limit of 64 bits.
CREATE FUNCTION office.odd_won(value text) RETURNS bigint LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    part CONSTANT text[] := regexp_match(value,
        E'^[\\s\u0085\u00A0\u1680\u2000-\u200A\u2028\u2029\u202F\u205F\u3000]*([+-]?)([0-9]+)');
BEGIN
    RETURN CASE WHEN part IS NULL THEN 0
        ELSE least(greatest((part[1] || left('0' || ltrim(part[2], '0'), 21))::numeric, -9223372036854775808), 9223372036854775807)
        END;
END
$$;
-- A bound in the pattern would cost four times as much, and a view works out millions of these.
CREATE FUNCTION office.won(value text) RETURNS bigint LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN octet_length(value) < 19 AND value ~ '^-?[0-9]+$' THEN value::bigint ELSE office.odd_won(value) END;
COMMENT ON FUNCTION office.won IS 'The whole won, or count, that a terminal reads from a text; never an error';

-- The first day of the month that a day's text lies in; the year 1 for a text that is no day of 2000 to 2099.
CREATE FUNCTION office.month(ddate text) RETURNS date LANGUAGE sql IMMUTABLE PARALLEL SAFE
-- No pattern: a session is new each time, and would work the pattern out for one day.
RETURN CASE WHEN translate(ddate, '0123456789', '0000000000') = '0000-00-00' AND substr(ddate, 1, 2) = '20'
        AND substr(ddate, 6, 2) BETWEEN '01' AND '12' AND substr(ddate, 9, 2) BETWEEN '01' AND '31'
    THEN make_date(substr(ddate, 1, 4)::int, substr(ddate, 6, 2)::int, 1) ELSE DATE '0001-01-01' END;

-- --- terminals -----------------------------------------------------------------------------------------------------------

CREATE TABLE office.terminal (
    terminal text PRIMARY KEY CHECK (translate(terminal, '0123456789', '') = '' AND length(terminal) BETWEEN 1 AND 10),
    role_name name NOT NULL UNIQUE CHECK (role_name = 'terminal_' || terminal),
    users text[] NOT NULL CHECK (cardinality(users) > 0),
    enrolled_at timestamptz NOT NULL DEFAULT now(),
    last_seen timestamptz,
    last_sent timestamptz,
    clock_offset interval,
    schema_version integer,
    program_version text,
    salesmen text,
    has_lacked boolean NOT NULL DEFAULT false
);
COMMENT ON COLUMN office.terminal.role_name IS 'The role that it logs in as; by it the functions know who calls';
COMMENT ON COLUMN office.terminal.users IS 'The salesmen whose master data it may read and whose slips it may send';
COMMENT ON COLUMN office.terminal.salesmen IS 'What it said of its salesmen last; null where that has to be taken again';
COMMENT ON COLUMN office.terminal.has_lacked IS 'A document of it has been missing once; only then does a sync look for one';
COMMENT ON COLUMN office.terminal.clock_offset IS 'Its clock less the server''s when it was last seen';

-- What the office has to know of a salesman to read his slips. Terminals send it; a password is not among it.
CREATE TABLE office.salesman (
    terminal text NOT NULL REFERENCES office.terminal,
    userid text NOT NULL,
    username text NOT NULL DEFAULT '',
    vatmode text NOT NULL DEFAULT '',
    PRIMARY KEY (terminal, userid)
);

-- The number of the terminal that is logged in; null for anybody else. By the role's name alone: a policy asks in every statement.
CREATE FUNCTION office.session_terminal() RETURNS text LANGUAGE sql STABLE PARALLEL SAFE
RETURN CASE WHEN starts_with(session_user::text, 'terminal_') THEN substr(session_user::text, 10) END;

-- --- master data ---------------------------------------------------------------------------------------------------------

CREATE TABLE office.master_version (
    version bigint GENERATED ALWAYS AS IDENTITY PRIMARY KEY,
    file_name text NOT NULL,
    digest bytea NOT NULL,
    lines integer NOT NULL,
    loaded_at timestamptz NOT NULL DEFAULT now(),
    loaded_by text NOT NULL DEFAULT session_user
);
CREATE INDEX ON office.master_version (file_name, version);

-- The last version of a file that brought a salesman something else; the user '' stands for all of them. A terminal asks for
-- the highest version of '' and its users, and has nothing to fetch when it knows that one.
CREATE TABLE office.master_change (
    userid text NOT NULL,
    file_name text NOT NULL,
    version bigint NOT NULL,
    loaded_at timestamptz NOT NULL DEFAULT now(),
    PRIMARY KEY (userid, file_name)
);

-- A row counts from first_version on and, when last_version is not null, up to that one. The orders of MTM.RVN are added to
-- those before, as on a terminal; each of the other files replaces its table.
CREATE TABLE office.master_mtm (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '',
    gname text NOT NULL DEFAULT '', junno text NOT NULL DEFAULT '', workgubun text NOT NULL DEFAULT '',
    pcode text NOT NULL DEFAULT '', pname text NOT NULL DEFAULT '', jgubun text NOT NULL DEFAULT '',
    box text NOT NULL DEFAULT '', bon text NOT NULL DEFAULT '', mmoney text NOT NULL DEFAULT '',
    bmoney text NOT NULL DEFAULT '', ymoney text NOT NULL DEFAULT '', gmoney text NOT NULL DEFAULT '',
    userid text NOT NULL DEFAULT ''
);
CREATE TABLE office.master_garae (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    gcode text NOT NULL DEFAULT '', gname text NOT NULL DEFAULT '', gupju text NOT NULL DEFAULT '',
    enddate text NOT NULL DEFAULT '', sno text NOT NULL DEFAULT '', majin text NOT NULL DEFAULT '',
    cjdate text NOT NULL DEFAULT '', cjmoney text NOT NULL DEFAULT '', ttmoney text NOT NULL DEFAULT '',
    juso text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '', tel text NOT NULL DEFAULT '',
    bggubun text NOT NULL DEFAULT '', seek text NOT NULL DEFAULT '', userid text NOT NULL DEFAULT '',
    cardno text NOT NULL DEFAULT ''
);
CREATE TABLE office.master_pummok (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    pcode text NOT NULL DEFAULT '', pname text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '',
    size text NOT NULL DEFAULT '', boxbonea text NOT NULL DEFAULT '', boxsmoney text NOT NULL DEFAULT '',
    boxbmoney text NOT NULL DEFAULT '', bonsmoney text NOT NULL DEFAULT '', bonbmoney text NOT NULL DEFAULT '',
    aboxmmoney text NOT NULL DEFAULT '', aboxbmoney text NOT NULL DEFAULT '', abonmmoney text NOT NULL DEFAULT '',
    abonbmoney text NOT NULL DEFAULT '', bboxmmoney text NOT NULL DEFAULT '', bboxbmoney text NOT NULL DEFAULT '',
    bbonmmoney text NOT NULL DEFAULT '', bbonbmoney text NOT NULL DEFAULT '', ygmoney1 text NOT NULL DEFAULT '',
    ygmoney2 text NOT NULL DEFAULT '', gboxmoney1 text NOT NULL DEFAULT '', gbonmoney1 text NOT NULL DEFAULT '',
    gboxmoney2 text NOT NULL DEFAULT '', gbonmoney2 text NOT NULL DEFAULT '', jgubun text NOT NULL DEFAULT '',
    jbgubun text NOT NULL DEFAULT '', ttt text NOT NULL DEFAULT '', seek text NOT NULL DEFAULT ''
);
CREATE TABLE office.master_garaedanga (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    gcode text NOT NULL DEFAULT '', pcode text NOT NULL DEFAULT '', majin text NOT NULL DEFAULT '',
    boxmoney text NOT NULL DEFAULT '', boxbmoney text NOT NULL DEFAULT '', bonmoney text NOT NULL DEFAULT '',
    bonbmoney text NOT NULL DEFAULT '', ysmoney text NOT NULL DEFAULT '', ysboxmoney text NOT NULL DEFAULT '',
    ysbonmoney text NOT NULL DEFAULT ''
);
CREATE TABLE office.master_garaemajin (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    gcode text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '', majin text NOT NULL DEFAULT ''
);
CREATE TABLE office.master_barcode (
    first_version bigint NOT NULL, last_version bigint, row_number integer NOT NULL,
    pcode text NOT NULL DEFAULT '', barcode text NOT NULL DEFAULT ''
);
CREATE INDEX ON office.master_mtm (userid, first_version);
CREATE INDEX ON office.master_garae (userid, gcode) WHERE last_version IS NULL;
CREATE INDEX ON office.master_garae (gcode) WHERE last_version IS NULL;
CREATE INDEX ON office.master_pummok (pcode) WHERE last_version IS NULL;
CREATE INDEX ON office.master_barcode (pcode) WHERE last_version IS NULL;
CREATE INDEX ON office.master_garaedanga (gcode) WHERE last_version IS NULL;
CREATE INDEX ON office.master_garaemajin (gcode) WHERE last_version IS NULL;

-- --- what the terminals sent ---------------------------------------------------------------------------------------------

-- The kinds of documents: the terminal's table of a kind's rows, its columns in their order, and which of them a content has in
-- its rows: those that are not the document's day, number (a close has none) and user.
CREATE TABLE office.kind (
    kind text PRIMARY KEY,
    table_name name NOT NULL,
    number_column name,
    columns text[] NOT NULL,
    comment text NOT NULL,
    fields text[] GENERATED ALWAYS AS (
        array_remove(array_remove(array_remove(columns, 'ddate'), 'userid'), number_column::text)) STORED
);
INSERT INTO office.kind (kind, table_name, number_column, comment, columns) VALUES
    ('sale', 'mtm', 'junno', 'Lines of the sales slips', '{ddate, gubun, gcode, gname, junno, workgubun, pcode, pname, jgubun,
        box, bon, mmoney, bmoney, ymoney, gmoney, userid, dtime}'),
    ('containers', 'ytm', 'junno', 'Lines of the container slips', '{ddate, gcode, gname, junno, pcode, pname, fbox, nbox, bon,
        ymoney, gmoney, ysamt, gsamt, userid}'),
    ('collection', 'mtmok', 'junno', 'Collection slips', '{ddate, gubun, gcode, gname, junno, dtime, userid, mmoney, pmoney,
        bmoney, ymoney, gmoney, ygmoney, inmoney, wonmoney, cardmoney, misuinmoney, undermoney, ydmoney, gdmoney, msgsendtime,
        banktranno}'),
    ('payment', 'payjournal', 'number', 'Payments sent to the card host and what became of them', '{number, state, kind, charged,
        settledat, ddate, gubun, gcode, gname, junno, dtime, userid, mmoney, pmoney, bmoney, ymoney, gmoney, ygmoney, inmoney,
        wonmoney, cardmoney, misuinmoney, undermoney, ydmoney, gdmoney, msgsendtime, banktranno, saletotal, containerworth}'),
    ('prints', 'printlog', 'junno', 'Papers that were printed', '{ddate, junno, userid, document, copy, printedat}'),
    ('deletion', 'deleted', 'junno', 'What was deleted on the terminals', '{ddate, document, junno, userid, gcode, gname, total,
        deletedby, deletedat}'),
    ('close', 'dayclose', NULL, 'Closes of the days', '{ddate, userid, closedat, countedcash, expectedcash, cash, card, approvals,
        unpaid, earlierpaid, recovery, boxes, bottles, cratesback, bottlesback, openslips, strip, visits, deletions, printedat}');

-- A document is what has one identity: rows of one table under a day, number and user, or a payment under its message
-- number. It is kept as it came, in one row: a key for each line cost more to write than the line itself. What the identity says
-- stands in no row of the content, so a document's rows cannot be another's. Documents and their history are divided by
-- `month`, that of the document's day.
CREATE TABLE office.document (
    month date NOT NULL,
    terminal text NOT NULL,
    kind text NOT NULL,
    ddate text NOT NULL,
    number text NOT NULL,
    userid text NOT NULL,
    revision integer NOT NULL DEFAULT 1,
    state text NOT NULL DEFAULT 'present',
    first_sent timestamptz NOT NULL DEFAULT now(),
    sent_at timestamptz NOT NULL DEFAULT now(),
    digest bytea NOT NULL,
    gcode text,
    content text NOT NULL,
    PRIMARY KEY (terminal, ddate, kind, number, userid, month)
) PARTITION BY LIST (month);
CREATE INDEX ON office.document (terminal) WHERE state = 'missing';
CREATE INDEX ON office.document (gcode);
-- The payments of which it is open whether they were charged: a close names those of all days before it.
CREATE INDEX ON office.document (ddate) WHERE kind = 'payment' AND split_part(content, E'\x1f', 1) IN ('sent', 'unknown');
-- What is read most is a day of all terminals, which lies together.
CREATE INDEX ON office.document USING brin (ddate) WITH (autosummarize = on);
COMMENT ON COLUMN office.document.digest IS 'SHA-256 of its kind, number, user and content (office.digest)';
COMMENT ON COLUMN office.document.gcode IS 'The customer of all its rows; null where they may be of several, empty for a kind without customers';
COMMENT ON COLUMN office.document.content IS 'Its rows as they came, U+001E between two, U+001F between their fields';
COMMENT ON COLUMN office.document.state IS
    'present; missing: the terminal has it no more and no deletion tells why; deleted: its rows are in office.history alone';

-- Every revision that another has superseded, or a deletion has ended.
CREATE TABLE office.history (
    month date NOT NULL,
    terminal text NOT NULL,
    kind text NOT NULL,
    ddate text NOT NULL,
    number text NOT NULL,
    userid text NOT NULL,
    revision integer NOT NULL,
    digest bytea NOT NULL,
    content text NOT NULL,
    sent_at timestamptz NOT NULL,
    superseded_at timestamptz NOT NULL DEFAULT now(),
    after_close boolean NOT NULL DEFAULT false,
    is_deleted boolean NOT NULL DEFAULT false,
    PRIMARY KEY (month, terminal, ddate, kind, number, userid, revision)
) PARTITION BY LIST (month);
COMMENT ON COLUMN office.history.after_close IS
    'It was superseded after its user had closed the day; a change that came together with the close counts as one before it';
COMMENT ON COLUMN office.history.is_deleted IS 'The terminal deleted the document; else a later revision followed';

-- The terminal's tables as views, each with the terminal's own columns and texts; row_number counts the rows of a document from
-- 1. Whoever names month, day or customer reads no more than those: documents of one customer are found by it, the few that may
-- be of several by having none. Texts are taken apart by SELECT lists, which hand on each row.
DO $$
DECLARE
    k office.kind;
    part text;
    list text;
BEGIN
    FOR k IN SELECT * FROM office.kind LOOP
        SELECT 'SELECT month, terminal, row_number, ' || string_agg(CASE WHEN name = k.number_column THEN 'number AS ' || name
            ELSE coalesce('f[' || array_position(k.fields, name) || '] AS ' || name, name) END, ', ' ORDER BY i) || ', content'
        INTO list FROM unnest(k.columns) WITH ORDINALITY AS c (name, i);
        part := format(
            'FROM (SELECT month, terminal, ddate, number, userid, gcode, content,
                 generate_subscripts(string_to_array(content, E''\x1e''), 1) AS row_number,
                 string_to_array(unnest(string_to_array(content, E''\x1e'')), E''\x1f'') AS f
             FROM office.document WHERE kind = %L', k.kind);
        IF k.kind IN ('sale', 'containers', 'collection') THEN
            list := replace(list, format('f[%s] AS gcode', array_position(k.fields, 'gcode')), 'gcode') || ' ' || part
                || ' AND gcode IS NOT NULL) AS d UNION ALL ' || list || ' ' || part || ' AND gcode IS NULL) AS d';
        ELSE
            list := list || ' ' || part || ') AS d';
        END IF;
        EXECUTE format('CREATE VIEW office.%I AS %s', k.table_name, list);
        EXECUTE format('COMMENT ON VIEW office.%I IS %L', k.table_name, k.comment);
    END LOOP;
END
$$;

-- SHA-256 of a document: its kind, U+001E, its number, U+001F, its user, and its content after another U+001E.
CREATE FUNCTION office.digest(kind text, number text, userid text, content text) RETURNS bytea LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN sha256(convert_to(kind || E'\x1e' || number || E'\x1f' || userid || E'\x1e' || content, 'UTF8'));

-- Makes the partitions of a month where they are missing. Whoever inserts calls it first.
CREATE TABLE office.month (month date PRIMARY KEY);
CREATE FUNCTION office.make_month(wanted date) RETURNS void LANGUAGE plpgsql SECURITY DEFINER
SET search_path = office, pg_temp AS $$
DECLARE
    parent text;
    part text;
BEGIN
    IF EXISTS (SELECT FROM office.month WHERE office.month.month = wanted) THEN
        RETURN;
    END IF;
    -- One at a time; who waited finds them made.
    PERFORM pg_advisory_xact_lock(hashtext('office.make_month'));
    IF EXISTS (SELECT FROM office.month WHERE office.month.month = wanted) THEN
        RETURN;
    END IF;
    FOREACH parent IN ARRAY ARRAY['document', 'history'] LOOP
        -- Attached rather than made in place, which would keep out everybody who reads.
        part := parent || to_char(wanted, '_YYYY_MM');
        EXECUTE format('CREATE TABLE office.%I (LIKE office.%I INCLUDING ALL)', part, parent);
        EXECUTE format('ALTER TABLE office.%I ATTACH PARTITION office.%I FOR VALUES IN (%L)', parent, part, wanted);
    END LOOP;
    INSERT INTO office.month VALUES (wanted);
END
$$;
-- The one for days that are none.
SELECT office.make_month(DATE '0001-01-01');

-- --- receivables ---------------------------------------------------------------------------------------------------------

-- What a slip has taken in against older debt beside its total. A recovery above the total that a settling button has booked is
-- in the recovery already and counts once. In plpgsql, which is not worked into each statement: few slips have any.
CREATE FUNCTION office.earlier_paid(mmoney text, ygmoney text, wonmoney text, cardmoney text, misuinmoney text, undermoney text,
    ydmoney text) RETURNS numeric LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    paid CONSTANT numeric := office.won(misuinmoney);
    excess CONSTANT numeric := office.won(ydmoney)::numeric - office.won(mmoney) - office.won(ygmoney);
BEGIN
    RETURN CASE WHEN excess > 0 AND paid = excess AND office.won(wonmoney) = 0 AND office.won(cardmoney) = 0
        AND office.won(undermoney) = 0 THEN 0 ELSE paid END;
END
$$;

-- What a collection slip adds to its customer's receivable: its total less all that was paid against it. What came in is the
-- sum that the slip has, whatever its parts are. A simple payment adds nothing.
CREATE FUNCTION office.receivable_effect(gubun text, mmoney text, ygmoney text, inmoney text, wonmoney text, cardmoney text,
    misuinmoney text, undermoney text, ydmoney text) RETURNS numeric LANGUAGE sql IMMUTABLE PARALLEL SAFE
-- One expression, which is worked out where the function stands.
RETURN CASE WHEN gubun = '단순결제' THEN 0 ELSE
    office.won(mmoney)::numeric + office.won(ygmoney) - office.won(ydmoney) - office.won(inmoney)
    - CASE WHEN misuinmoney IN ('', '0') THEN 0
        ELSE office.earlier_paid(mmoney, ygmoney, wonmoney, cardmoney, misuinmoney, undermoney, ydmoney) END
    END;

-- The same of a row of a collection's content, for one that cannot be read at a glance.
CREATE FUNCTION office.receivable_effect(f text[]) RETURNS numeric LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
BEGIN
    RETURN office.receivable_effect(f[1], f[5], f[10], f[11], f[12], f[13], f[14], f[15], f[16]);
END
$$;

-- What has moved a customer's receivable since GARAE.RVN was loaded. Only added to, so that terminals that send at the
-- same time do not wait for each other; a load of GARAE.RVN takes out what its balances have.
CREATE TABLE office.movement (
    gcode text NOT NULL,
    amount numeric NOT NULL,
    terminal text NOT NULL,
    ddate text NOT NULL,
    junno text NOT NULL,
    userid text NOT NULL,
    moved_at timestamptz NOT NULL DEFAULT now()
);
CREATE INDEX ON office.movement (gcode);

-- Taken by whoever changes slips; a load of GARAE.RVN takes it alone, so that every change is in the balances it replaces or
-- comes after them.
CREATE FUNCTION office.hold_balances() RETURNS void LANGUAGE sql
RETURN pg_advisory_xact_lock_shared(hashtext('office.balances'));

-- --- the card host's list ------------------------------------------------------------------------------------------------

-- The days whose list was loaded, an empty one included.
CREATE TABLE office.host_list (
    day date PRIMARY KEY,
    loaded_at timestamptz NOT NULL DEFAULT now(),
    loaded_by text NOT NULL DEFAULT session_user
);
CREATE TABLE office.host_payment (
    day date NOT NULL REFERENCES office.host_list,
    number text NOT NULL,
    paid_at text NOT NULL DEFAULT '',
    amount bigint NOT NULL,
    PRIMARY KEY (day, number)
);
COMMENT ON TABLE office.host_payment IS 'The card host''s approved payments of a day; a load of a day replaces it';
COMMENT ON COLUMN office.host_payment.number IS 'Transaction number';
COMMENT ON COLUMN office.host_payment.paid_at IS 'hhmmss by the host''s clock';

-- --- rights --------------------------------------------------------------------------------------------------------------

-- A second wall: even a function of the owner sees nothing of another terminal while a terminal is logged in.
DO $$
DECLARE
    name text;
BEGIN
    FOREACH name IN ARRAY ARRAY['document', 'history', 'salesman'] LOOP
        EXECUTE format('ALTER TABLE office.%I ENABLE ROW LEVEL SECURITY', name);
        EXECUTE format('ALTER TABLE office.%I FORCE ROW LEVEL SECURITY', name);
        EXECUTE format('CREATE POLICY own ON office.%I USING (terminal = coalesce((SELECT office.session_terminal()), terminal))',
            name);
    END LOOP;
END
$$;

-- Whoever reads a view runs its functions himself.
GRANT EXECUTE ON FUNCTION office.odd_won, office.won, office.month, office.session_terminal, office.earlier_paid,
    office.receivable_effect(text, text, text, text, text, text, text, text, text) TO rovana_reader;
