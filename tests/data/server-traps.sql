-- What somebody leaves beside the tables who may: what fits a statement's types better than the server's own.
GRANT CREATE ON SCHEMA public TO PUBLIC;
CREATE TABLE sprung (name text);
CREATE FUNCTION spring(text) RETURNS boolean LANGUAGE sql AS
    $$ INSERT INTO public.sprung VALUES ($1) RETURNING true $$;
CREATE FUNCTION obj_description(oid, text) RETURNS text LANGUAGE sql AS $$ SELECT public.spring('function')::text $$;
CREATE FUNCTION same(varchar, varchar) RETURNS boolean LANGUAGE sql AS $$ SELECT public.spring('=') $$;
CREATE OPERATOR = (FUNCTION = same, LEFTARG = varchar, RIGHTARG = varchar);
CREATE FUNCTION same(name, name) RETURNS boolean LANGUAGE sql AS $$ SELECT public.spring('~~') $$;
CREATE OPERATOR ~~ (FUNCTION = same, LEFTARG = name, RIGHTARG = name);
ALTER TABLE Node_AUTO ALTER NodeType TYPE varchar;
