-- Roles and schemas. Run by the administrator at every init and upgrade, before the numbered migrations, so each statement
-- may meet what it makes. The migrations themselves run as rovana_owner. Members of rovana_certificate are the terminals that
-- log in with a certificate rather than a password: pg_hba.conf tells them by it.

DO $$
DECLARE
    name text;
BEGIN
    FOREACH name IN ARRAY ARRAY['rovana_owner', 'rovana_terminal', 'rovana_certificate', 'rovana_reader'] LOOP
        IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = name) THEN
            EXECUTE format('CREATE ROLE %I NOLOGIN', name);
        END IF;
    END LOOP;
    IF NOT pg_has_role(current_user, 'rovana_owner', 'MEMBER') THEN
        EXECUTE format('GRANT rovana_owner TO %I', current_user);
    END IF;
    -- With a lock of its own a terminal would hold up all others, with large objects fill the disk.
    FOR name IN SELECT oid::regprocedure FROM pg_proc WHERE pronamespace = 'pg_catalog'::regnamespace
            AND (proname ~ '^pg_(try_)?advisory_' OR proname IN ('lo_creat', 'lo_create', 'lo_from_bytea', 'lo_put', 'lowrite'))
    LOOP
        EXECUTE format('REVOKE EXECUTE ON FUNCTION %s FROM PUBLIC', name);
        EXECUTE format('GRANT EXECUTE ON FUNCTION %s TO rovana_owner', name);
    END LOOP;
    EXECUTE format('REVOKE ALL ON DATABASE %I FROM PUBLIC', current_database());
    EXECUTE format('GRANT CONNECT ON DATABASE %I TO rovana_owner, rovana_terminal, rovana_reader', current_database());
    -- Migrations make their own schemas and the loads work in a table of the session.
    -- Compiling a statement over many partitions takes longer than running it.
    EXECUTE format('ALTER DATABASE %I SET jit = off', current_database());
    EXECUTE format('GRANT TEMPORARY, CREATE ON DATABASE %I TO rovana_owner', current_database());
END
$$;

REVOKE ALL ON SCHEMA public FROM PUBLIC;

CREATE SCHEMA IF NOT EXISTS office AUTHORIZATION rovana_owner;
CREATE SCHEMA IF NOT EXISTS terminal AUTHORIZATION rovana_owner;
CREATE SCHEMA IF NOT EXISTS report AUTHORIZATION rovana_owner;
GRANT USAGE ON SCHEMA terminal TO rovana_terminal;
-- Whoever reads a view runs its functions himself; of schema office a reader may use no more than those.
GRANT USAGE ON SCHEMA report, office TO rovana_reader;

-- Nobody may run a function before he is told to.
ALTER DEFAULT PRIVILEGES FOR ROLE rovana_owner REVOKE EXECUTE ON FUNCTIONS FROM PUBLIC;
ALTER DEFAULT PRIVILEGES FOR ROLE rovana_owner IN SCHEMA terminal GRANT EXECUTE ON FUNCTIONS TO rovana_terminal;
ALTER DEFAULT PRIVILEGES FOR ROLE rovana_owner IN SCHEMA report GRANT SELECT ON TABLES TO rovana_reader;

CREATE TABLE IF NOT EXISTS office.migration (
    number integer PRIMARY KEY,
    name text NOT NULL,
    applied_at timestamptz NOT NULL DEFAULT now(),
    program_version text NOT NULL
);
COMMENT ON TABLE office.migration IS 'The numbered migrations that this database has';
ALTER TABLE office.migration OWNER TO rovana_owner;
