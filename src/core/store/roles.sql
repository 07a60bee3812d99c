-- The three roles of a store on a server, for its database's owner to run once, after the store was made:
--     psql -f roles.sql DATABASE
-- and then to give each person one: GRANT kal_edits TO anna;
-- kal_reads   lists, shows, checks; changes nothing
-- kal_edits   all that the editor does: saves nodes, makes missing ones, keeps the history
-- kal_owns    also the reference data: node types, what may refer to what, highest numbers
-- The tables themselves stay with who made them. A role that is there already is kept.
DO $$
DECLARE
    name text;
BEGIN
    FOREACH name IN ARRAY ARRAY['kal_reads', 'kal_edits', 'kal_owns'] LOOP
        IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = name) THEN
            EXECUTE format('CREATE ROLE %I NOLOGIN', name);
        END IF;
        EXECUTE format('GRANT CONNECT ON DATABASE %I TO %I', current_database(), name);
        EXECUTE format('GRANT USAGE ON SCHEMA %I TO %I', current_schema(), name);
        EXECUTE format('GRANT SELECT ON ALL TABLES IN SCHEMA %I TO %I', current_schema(), name);
    END LOOP;
    FOR name IN
        SELECT tablename FROM pg_tables
         WHERE schemaname = current_schema() AND (tablename LIKE 'node\_%' OR tablename LIKE 'detail\_%')
           AND tablename <> 'node_type_max'
    LOOP
        EXECUTE format('GRANT INSERT, UPDATE, DELETE ON %I TO kal_edits', name);
    END LOOP;
    EXECUTE format('GRANT INSERT, UPDATE, DELETE ON ALL TABLES IN SCHEMA %I TO kal_owns', current_schema());
END $$;
