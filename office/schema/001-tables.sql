-- What the office keeps: terminals, master data, what the terminals sent, and every revision before.
-- Terminals have no right on this schema; they call the functions of schema terminal, which belong to rovana_owner.

-- The whole number that a terminal reads from a text: leading blanks, one sign, digits up to the first other character.
-- Without digits 0, with too many the limit of 64 bits.
CREATE FUNCTION office.odd_won(value text) RETURNS bigint LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN coalesce((
    SELECT least(greatest(((part)[1] || left('0' || ltrim((part)[2], '0'), 21))::numeric, -9223372036854775808),
        9223372036854775807)::bigint
    FROM regexp_match(value,
        E'^[\\s\u0085\u00A0\u1680\u2000-\u200A\u2028\u2029\u202F\u205F\u3000]*([+-]?)([0-9]+)') AS part
    WHERE part IS NOT NULL), 0);
-- A bound in the pattern would cost four times as much, and a view works out millions of these.
CREATE FUNCTION office.won(value text) RETURNS bigint LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN octet_length(value) < 19 AND value ~ '^-?[0-9]+$' THEN value::bigint ELSE office.odd_won(value) END;
COMMENT ON FUNCTION office.won IS 'The whole won, or count, that a terminal reads from a text; never an error';

-- The first day of the month that a day's text lies in; the year 1 for a text that is no day of 2000 to 2099.
CREATE FUNCTION office.month(ddate text) RETURNS date LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN ddate ~ '^20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])$'
    THEN make_date(substr(ddate, 1, 4)::int, substr(ddate, 6, 2)::int, 1) ELSE DATE '0001-01-01' END;

-- --- terminals -----------------------------------------------------------------------------------------------------------

CREATE TABLE office.terminal (
    terminal text PRIMARY KEY CHECK (terminal ~ '^[0-9]{1,10}$'),
    role_name name NOT NULL UNIQUE,
    users text[] NOT NULL CHECK (cardinality(users) > 0),
    enrolled_at timestamptz NOT NULL DEFAULT now(),
    last_seen timestamptz,
    last_sent timestamptz,
    clock_offset interval,
    schema_version integer,
    program_version text
);
COMMENT ON COLUMN office.terminal.role_name IS 'The role that it logs in as; by it the functions know who calls';
COMMENT ON COLUMN office.terminal.users IS 'The salesmen whose master data it may read and whose slips it may send';
COMMENT ON COLUMN office.terminal.clock_offset IS 'Its clock less the server''s when it was last seen';

-- What the office has to know of a salesman to read his slips. Terminals send it; a password is not among it.
CREATE TABLE office.salesman (
    terminal text NOT NULL REFERENCES office.terminal,
    userid text NOT NULL,
    username text NOT NULL DEFAULT '',
    vatmode text NOT NULL DEFAULT '',
    PRIMARY KEY (terminal, userid)
);

-- The number of the terminal that is logged in; null for anybody else.
CREATE FUNCTION office.session_terminal() RETURNS text LANGUAGE sql STABLE PARALLEL SAFE SECURITY DEFINER
RETURN (SELECT terminal FROM office.terminal WHERE role_name = session_user);

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

-- A document is what has one identity: rows of one table under a day, number and user, or a payment under its message
-- number. All tables from here on are divided by `month`, that of the document's day.
CREATE SEQUENCE office.document_id;
CREATE TABLE office.document (
    month date NOT NULL,
    terminal text NOT NULL,
    kind text NOT NULL CHECK (kind IN ('sale', 'containers', 'collection', 'payment', 'prints', 'deletion', 'close')),
    ddate text NOT NULL,
    number text NOT NULL,
    userid text NOT NULL,
    digest bytea NOT NULL,
    revision integer NOT NULL DEFAULT 1,
    state text NOT NULL DEFAULT 'present' CHECK (state IN ('present', 'missing', 'deleted')),
    first_sent timestamptz NOT NULL DEFAULT now(),
    sent_at timestamptz NOT NULL DEFAULT now(),
    id bigint NOT NULL DEFAULT nextval('office.document_id'),
    PRIMARY KEY (terminal, ddate, kind, number, userid, month)
) PARTITION BY LIST (month);
CREATE INDEX ON office.document (terminal) WHERE state = 'missing';
COMMENT ON COLUMN office.document.digest IS 'SHA-256 of its kind and rows (office.digest)';
COMMENT ON COLUMN office.document.id IS 'By it the lines of a sale know their document; each content has another';
COMMENT ON COLUMN office.document.state IS
    'missing: the terminal has it no more and no deletion tells why; deleted: its rows are in office.history alone';

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
COMMENT ON COLUMN office.history.after_close IS 'It was superseded after its user had closed the day';
COMMENT ON COLUMN office.history.is_deleted IS 'The terminal deleted the document; else a later revision followed';

-- The rows, each table with the terminal's own columns and texts; row_number counts them within their document from 1. What
-- is read most is a day of all terminals. Most of all rows are lines of sales: their key is two numbers that grow, since a key
-- of texts cost more to write than the line itself, and their days are found by where they lie.
CREATE TABLE office.mtm (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '',
    gname text NOT NULL DEFAULT '', junno text NOT NULL DEFAULT '', workgubun text NOT NULL DEFAULT '',
    pcode text NOT NULL DEFAULT '', pname text NOT NULL DEFAULT '', jgubun text NOT NULL DEFAULT '',
    box text NOT NULL DEFAULT '', bon text NOT NULL DEFAULT '', mmoney text NOT NULL DEFAULT '',
    bmoney text NOT NULL DEFAULT '', ymoney text NOT NULL DEFAULT '', gmoney text NOT NULL DEFAULT '',
    userid text NOT NULL DEFAULT '', dtime text NOT NULL DEFAULT '',
    document_id bigint NOT NULL DEFAULT nextval('office.document_id'),
    PRIMARY KEY (document_id, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.mtm IS 'Lines of the sales slips';
CREATE TABLE office.ytm (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '', gname text NOT NULL DEFAULT '',
    junno text NOT NULL DEFAULT '', pcode text NOT NULL DEFAULT '', pname text NOT NULL DEFAULT '',
    fbox text NOT NULL DEFAULT '', nbox text NOT NULL DEFAULT '', bon text NOT NULL DEFAULT '',
    ymoney text NOT NULL DEFAULT '', gmoney text NOT NULL DEFAULT '', ysamt text NOT NULL DEFAULT '',
    gsamt text NOT NULL DEFAULT '', userid text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, junno, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.ytm IS 'Lines of the container slips';
CREATE TABLE office.mtmok (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', gubun text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '',
    gname text NOT NULL DEFAULT '', junno text NOT NULL DEFAULT '', dtime text NOT NULL DEFAULT '',
    userid text NOT NULL DEFAULT '', mmoney text NOT NULL DEFAULT '', pmoney text NOT NULL DEFAULT '',
    bmoney text NOT NULL DEFAULT '', ymoney text NOT NULL DEFAULT '', gmoney text NOT NULL DEFAULT '',
    ygmoney text NOT NULL DEFAULT '', inmoney text NOT NULL DEFAULT '', wonmoney text NOT NULL DEFAULT '',
    cardmoney text NOT NULL DEFAULT '', misuinmoney text NOT NULL DEFAULT '', undermoney text NOT NULL DEFAULT '',
    ydmoney text NOT NULL DEFAULT '', gdmoney text NOT NULL DEFAULT '', msgsendtime text NOT NULL DEFAULT '',
    banktranno text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, junno, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.mtmok IS 'Collection slips';
CREATE TABLE office.payjournal (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    number text NOT NULL DEFAULT '', state text NOT NULL DEFAULT '', kind text NOT NULL DEFAULT '',
    charged text NOT NULL DEFAULT '', settledat text NOT NULL DEFAULT '', ddate text NOT NULL DEFAULT '',
    gubun text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '', gname text NOT NULL DEFAULT '',
    junno text NOT NULL DEFAULT '', dtime text NOT NULL DEFAULT '', userid text NOT NULL DEFAULT '',
    mmoney text NOT NULL DEFAULT '', pmoney text NOT NULL DEFAULT '', bmoney text NOT NULL DEFAULT '',
    ymoney text NOT NULL DEFAULT '', gmoney text NOT NULL DEFAULT '', ygmoney text NOT NULL DEFAULT '',
    inmoney text NOT NULL DEFAULT '', wonmoney text NOT NULL DEFAULT '', cardmoney text NOT NULL DEFAULT '',
    misuinmoney text NOT NULL DEFAULT '', undermoney text NOT NULL DEFAULT '', ydmoney text NOT NULL DEFAULT '',
    gdmoney text NOT NULL DEFAULT '', msgsendtime text NOT NULL DEFAULT '', banktranno text NOT NULL DEFAULT '',
    saletotal text NOT NULL DEFAULT '', containerworth text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, number, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.payjournal IS 'Payments sent to the card host and what became of them';
CREATE TABLE office.printlog (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', junno text NOT NULL DEFAULT '', userid text NOT NULL DEFAULT '',
    document text NOT NULL DEFAULT '', copy text NOT NULL DEFAULT '', printedat text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, junno, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.printlog IS 'Papers that were printed';
CREATE TABLE office.deleted (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', document text NOT NULL DEFAULT '', junno text NOT NULL DEFAULT '',
    userid text NOT NULL DEFAULT '', gcode text NOT NULL DEFAULT '', gname text NOT NULL DEFAULT '',
    total text NOT NULL DEFAULT '', deletedby text NOT NULL DEFAULT '', deletedat text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, junno, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.deleted IS 'What was deleted on the terminals';
CREATE TABLE office.dayclose (
    month date NOT NULL, terminal text NOT NULL, row_number integer NOT NULL,
    ddate text NOT NULL DEFAULT '', userid text NOT NULL DEFAULT '', closedat text NOT NULL DEFAULT '',
    countedcash text NOT NULL DEFAULT '', expectedcash text NOT NULL DEFAULT '', cash text NOT NULL DEFAULT '',
    card text NOT NULL DEFAULT '', approvals text NOT NULL DEFAULT '', unpaid text NOT NULL DEFAULT '',
    earlierpaid text NOT NULL DEFAULT '', recovery text NOT NULL DEFAULT '', boxes text NOT NULL DEFAULT '',
    bottles text NOT NULL DEFAULT '', cratesback text NOT NULL DEFAULT '', bottlesback text NOT NULL DEFAULT '',
    openslips text NOT NULL DEFAULT '', strip text NOT NULL DEFAULT '', visits text NOT NULL DEFAULT '',
    deletions text NOT NULL DEFAULT '', printedat text NOT NULL DEFAULT '',
    PRIMARY KEY (ddate, terminal, userid, row_number, month)
) PARTITION BY LIST (month);
COMMENT ON TABLE office.dayclose IS 'Closes of the days';
CREATE INDEX ON office.mtm (gcode);
CREATE INDEX ON office.mtm USING brin (ddate) WITH (autosummarize = on);
CREATE INDEX ON office.ytm (gcode);
CREATE INDEX ON office.mtmok (gcode);

-- SHA-256 of a document: its kind, then its rows in their order, each after U+001E, their fields in the order of the columns
-- with U+001F between two. `content` is the rows with U+001E between two.
CREATE FUNCTION office.digest(kind text, content text) RETURNS bytea LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN sha256(convert_to(kind || E'\x1e' || content, 'UTF8'));

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
    FOREACH parent IN ARRAY ARRAY['document', 'history', 'mtm', 'ytm', 'mtmok', 'payjournal', 'printlog', 'deleted',
                                  'dayclose'] LOOP
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
CREATE FUNCTION office.earlier_paid(slip office.mtmok) RETURNS numeric LANGUAGE plpgsql IMMUTABLE PARALLEL SAFE AS $$
DECLARE
    paid CONSTANT numeric := office.won(slip.misuinmoney);
    excess CONSTANT numeric := office.won(slip.ydmoney)::numeric - office.won(slip.mmoney) - office.won(slip.ygmoney);
BEGIN
    RETURN CASE WHEN excess > 0 AND paid = excess AND office.won(slip.wonmoney) = 0 AND office.won(slip.cardmoney) = 0
        AND office.won(slip.undermoney) = 0 THEN 0 ELSE paid END;
END
$$;

-- What a collection slip adds to its customer's receivable: its total less all that was paid against it. What came in is the
-- sum that the slip has, whatever its parts are. A simple payment adds nothing.
CREATE FUNCTION office.receivable_effect(slip office.mtmok) RETURNS numeric LANGUAGE sql IMMUTABLE PARALLEL SAFE
-- One expression, which is worked out where the function stands.
RETURN CASE WHEN (slip).gubun = '단순결제' THEN 0 ELSE
    office.won((slip).mmoney)::numeric + office.won((slip).ygmoney) - office.won((slip).ydmoney) - office.won((slip).inmoney)
    - CASE WHEN (slip).misuinmoney IN ('', '0') THEN 0 ELSE office.earlier_paid(slip) END
    END;

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

CREATE FUNCTION office.move_receivables() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
    PERFORM office.hold_balances();
    IF TG_OP IN ('DELETE', 'UPDATE') THEN
        INSERT INTO office.movement (gcode, amount, terminal, ddate, junno, userid)
        SELECT gcode, -effect, terminal, ddate, junno, userid
        FROM (SELECT slip.*, office.receivable_effect(slip) AS effect FROM before AS slip OFFSET 0) AS slips WHERE effect <> 0;
    END IF;
    IF TG_OP IN ('INSERT', 'UPDATE') THEN
        INSERT INTO office.movement (gcode, amount, terminal, ddate, junno, userid)
        SELECT gcode, effect, terminal, ddate, junno, userid
        FROM (SELECT slip.*, office.receivable_effect(slip) AS effect FROM after AS slip OFFSET 0) AS slips WHERE effect <> 0;
    END IF;
    RETURN NULL;
END
$$;
CREATE TRIGGER collections_added AFTER INSERT ON office.mtmok
    REFERENCING NEW TABLE AS after FOR EACH STATEMENT EXECUTE FUNCTION office.move_receivables();
CREATE TRIGGER collections_taken AFTER DELETE ON office.mtmok
    REFERENCING OLD TABLE AS before FOR EACH STATEMENT EXECUTE FUNCTION office.move_receivables();
CREATE TRIGGER collections_changed AFTER UPDATE ON office.mtmok
    REFERENCING OLD TABLE AS before NEW TABLE AS after FOR EACH STATEMENT EXECUTE FUNCTION office.move_receivables();

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
    FOREACH name IN ARRAY ARRAY['document', 'history', 'mtm', 'ytm', 'mtmok', 'payjournal', 'printlog', 'deleted',
                                'dayclose', 'salesman'] LOOP
        EXECUTE format('ALTER TABLE office.%I ENABLE ROW LEVEL SECURITY', name);
        EXECUTE format('ALTER TABLE office.%I FORCE ROW LEVEL SECURITY', name);
        EXECUTE format('CREATE POLICY own ON office.%I USING ((SELECT office.session_terminal()) IS NULL '
                       'OR terminal = (SELECT office.session_terminal()))', name);
    END LOOP;
END
$$;

-- Whoever reads a view runs its functions himself.
GRANT EXECUTE ON FUNCTION office.odd_won, office.won, office.month, office.session_terminal, office.earlier_paid,
    office.receivable_effect TO rovana_reader;
