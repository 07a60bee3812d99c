-- The three roles of a store on a server, for its database's owner to run after the store was made, and again with
-- later versions of this file:
--     psql -f roles.sql DATABASE
-- and then to give each person one: GRANT kal_edits TO anna;
-- kal_reads   lists, shows, checks; changes nothing
-- kal_edits   all that the editor does: saves nodes, makes missing ones, keeps the history
-- kal_owns    also the reference data: node types, what may refer to what, highest numbers
-- The tables themselves stay with who made them. A role that is there already is kept.
DO $$
DECLARE
    store CONSTANT name := pg_catalog.current_schema();
    -- Of the history: whether this role added a row, as the end of the user's name says. Of others' rows one only marks
    -- a change that did not finish as gone over or put back, and drops what is older than the history is kept.
    own CONSTANT text := $own$(username = session_user
        OR right(username, length(' as ' || session_user)) = ' as ' || session_user)$own$;
    old CONSTANT text := $old$begunat < to_char(now() AT TIME ZONE 'UTC' - interval '90 days', 'YYYY-MM-DD')$old$;
    role text;
    tables text;
    rule text;
BEGIN
    -- Where others may make functions, one that fits better than the server's own would be called here.
    PERFORM pg_catalog.set_config('search_path', 'pg_catalog, pg_temp', true);
    EXECUTE format('REVOKE CREATE ON SCHEMA %I FROM PUBLIC', store);
    IF EXISTS (SELECT FROM pg_namespace, aclexplode(nspacl) AS granted
                WHERE nspname = store AND granted.grantee = 0 AND granted.privilege_type = 'CREATE') THEN
        RAISE WARNING 'Everybody may still make tables and functions beside the store. The owner of schema % has to '
            'run: REVOKE CREATE ON SCHEMA % FROM PUBLIC', store, store;
    END IF;
    FOREACH role IN ARRAY ARRAY['kal_reads', 'kal_edits', 'kal_owns'] LOOP
        IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = role) THEN
            EXECUTE format('CREATE ROLE %I NOLOGIN', role);
        END IF;
        EXECUTE format('GRANT CONNECT ON DATABASE %I TO %I', current_database(), role);
        EXECUTE format('GRANT USAGE ON SCHEMA %I TO %I', store, role);
        EXECUTE format('GRANT SELECT ON ALL TABLES IN SCHEMA %I TO %I', store, role);
    END LOOP;
    FOR tables IN
        SELECT format('%I.%I', schemaname, tablename) FROM pg_tables
         WHERE schemaname = store AND (starts_with(tablename, 'node_') OR starts_with(tablename, 'detail_'))
           AND tablename NOT IN ('node_type_max', 'node_auto_version')
    LOOP
        EXECUTE 'GRANT INSERT, UPDATE, DELETE ON ' || tables || ' TO kal_edits';
    END LOOP;
    EXECUTE format('GRANT INSERT, UPDATE, DELETE ON ALL TABLES IN SCHEMA %I TO kal_owns', store);

    -- Another program's store gets its history with its owner's first save.
    tables := format('%I.node_auto_version', store);
    IF to_regclass(tables) IS NOT NULL THEN
        EXECUTE 'REVOKE UPDATE ON ' || tables || ' FROM kal_edits, kal_owns';
        EXECUTE 'GRANT INSERT, DELETE, UPDATE (state, begunat) ON ' || tables || ' TO kal_edits, kal_owns';
        EXECUTE 'ALTER TABLE ' || tables || ' ENABLE ROW LEVEL SECURITY';
        FOREACH rule IN ARRAY ARRAY[
            'SELECT USING (true)',
            'INSERT WITH CHECK (' || own || ')',
            'UPDATE USING (' || own || $if$ OR state IN ('begun', 'failed')) WITH CHECK ($if$
                || own || $if$ OR state IN ('left', 'put back'))$if$,
            'DELETE USING (' || own || ' OR ' || old || ')']
        LOOP
            role := 'kal_' || lower(split_part(rule, ' ', 1));
            EXECUTE format('DROP POLICY IF EXISTS %I ON %s', role, tables);
            EXECUTE format('CREATE POLICY %I ON %s FOR %s', role, tables, rule);
        END LOOP;
    END IF;
END $$;
