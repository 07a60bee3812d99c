-- Rows 6 are refused when they are to take effect; those above are in others' way twice before they are not.
CREATE SEQUENCE tries;
CREATE FUNCTION late() RETURNS trigger LANGUAGE plpgsql AS $$
BEGIN
    IF NEW.SequenceNo = 6 THEN
        RAISE EXCEPTION 'too late' USING ERRCODE = '23000';
    ELSIF nextval('public.tries') % 3 <> 0 THEN
        RAISE EXCEPTION 'too late' USING ERRCODE = '40001';
    END IF;
    RETURN NULL;
END $$;
CREATE CONSTRAINT TRIGGER late AFTER INSERT ON Detail_AUTO_Prompts INITIALLY DEFERRED
    FOR EACH ROW WHEN (NEW.NodeMasterID = 1 AND NEW.SequenceNo > 5) EXECUTE FUNCTION late();
