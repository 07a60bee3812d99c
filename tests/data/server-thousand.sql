-- Copies of AUTO node 8, all of which play MSG 50.
DO $$
DECLARE
    owner text;
    source text;
BEGIN
    FOREACH source IN ARRAY ARRAY['Node_AUTO', 'Detail_AUTO_Prompts', 'Node_General_Pool'] LOOP
        owner := CASE WHEN source LIKE 'Detail%' THEN 'NodeMasterID' ELSE 'NodeNumber' END;
        EXECUTE format('CREATE TEMP TABLE copy AS SELECT * FROM %s WHERE PartID = 2 AND %s = 8%s', source, owner,
                       CASE source WHEN 'Node_General_Pool' THEN ' AND NodeTypeID = 9' ELSE '' END);
        FOR number IN 1001..2000 LOOP
            EXECUTE format('UPDATE copy SET %s = %s', owner, number);
            EXECUTE format('INSERT INTO %s SELECT * FROM copy', source);
        END LOOP;
        DROP TABLE copy;
    END LOOP;
END $$;
UPDATE Detail_AUTO_Prompts SET NodeTypeID = 0, NodeType = 'MSG', NodeNumber = 50
 WHERE NodeMasterID > 1000 AND SequenceNo = 1;
