-- What a role may not do with what others did; each fails, or does nothing.
DO $$
DECLARE
    forgery text;
BEGIN
    FOREACH forgery IN ARRAY ARRAY[
        'DELETE FROM Node_AUTO_Version WHERE VersionNo = 100',
        'UPDATE Node_AUTO_Version SET State = ''finished'' WHERE VersionNo = 100',
        'UPDATE Node_AUTO_Version SET UserName = ''x''',
        'UPDATE Node_AUTO_Version SET Content = ''''',
        'INSERT INTO Node_AUTO_Version SELECT 1, 2, 9, 1, '''', '''', '''', ''ben as ben'', '''', '''', 1, '''', '''''] LOOP
        BEGIN
            EXECUTE forgery;
        EXCEPTION WHEN insufficient_privilege THEN
            NULL;
        END;
    END LOOP;
END $$;
