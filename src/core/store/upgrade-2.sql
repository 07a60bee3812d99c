-- From version 1: whoever saves is told from others where two machines have one name, and of thousands of versions those
-- that did not finish are found at once.
ALTER TABLE Node_AUTO_Version ADD COLUMN Machine TEXT NOT NULL DEFAULT '';

CREATE INDEX IF NOT EXISTS Node_AUTO_Unfinished ON Node_AUTO_Version (ConfigID, PartID, NodeNumber, VersionNo)
 WHERE State IN ('begun', 'failed');
