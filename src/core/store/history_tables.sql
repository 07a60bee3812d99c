-- What makes a save safe: each node as it was before every change, and the nodes that a save began to make. Another
-- program's store gets these tables with the first save.

-- One row for each change of an AUTO node. A change is begun, failed (ended by an error half-way), finished, left
-- (not finished, and gone over by a later one) or put back (not finished, and undone). Times are UTC,
-- YYYY-MM-DDTHH:MM:SS.mmmZ. The machine is told by its own identity, its boot's and the process namespace's: names of
-- machines and numbers of processes are not everywhere the same one's. The content is JSON.
CREATE TABLE IF NOT EXISTS Node_AUTO_Version (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    NodeNumber   INTEGER NOT NULL,
    VersionNo    INTEGER NOT NULL,
    Work         TEXT    NOT NULL,
    State        TEXT    NOT NULL,
    BegunAt      TEXT    NOT NULL,
    UserName     TEXT    NOT NULL,
    HostName     TEXT    NOT NULL,
    Program      TEXT    NOT NULL,
    ProcessID    INTEGER NOT NULL,
    ProcessStart TEXT    NOT NULL,
    Content      TEXT    NOT NULL,
    Machine      TEXT    NOT NULL DEFAULT '',
    PRIMARY KEY (ConfigID, PartID, NodeNumber, VersionNo)
) STRICT;

CREATE INDEX IF NOT EXISTS Node_AUTO_Unfinished ON Node_AUTO_Version (ConfigID, PartID, NodeNumber, VersionNo)
 WHERE State IN ('begun', 'failed');

-- Nodes that a save, told by its node and version, began to make from their templates. One that the register lacks was
-- not made to its end.
CREATE TABLE IF NOT EXISTS Node_Creation (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    NodeTypeID   INTEGER NOT NULL,
    NodeNumber   INTEGER NOT NULL,
    VersionNo    INTEGER NOT NULL,
    MasterID     INTEGER NOT NULL,
    DateModified TEXT    NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT, WITHOUT ROWID;
