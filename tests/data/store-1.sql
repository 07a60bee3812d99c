-- A store of version 1 as auto-node 1.0 made it, but for the tables that say nothing here: an import and a restore of
-- AUTO 8, and of AUTO 1 an import and a save that was killed after its first two statements.
CREATE TABLE Node_General_Pool (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    NodeType        TEXT    NOT NULL,
    NodeDescription TEXT,
    DateModified    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT, WITHOUT ROWID;
CREATE TABLE Node_AUTO (
    ConfigID          INTEGER NOT NULL,
    PartID            INTEGER NOT NULL,
    NodeTypeID        INTEGER NOT NULL,
    NodeNumber        INTEGER NOT NULL,
    NumberOfDigits    INTEGER,
    TerminatingDigit  TEXT,
    SelectionTimeout  INTEGER,
    DigitTimeout      INTEGER,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT    NOT NULL,
    TimeoutNodeNumber INTEGER NOT NULL,
    InvalidNodeType   TEXT    NOT NULL,
    InvalidNodeNumber INTEGER NOT NULL,
    AbortNodeType     TEXT    NOT NULL,
    AbortNodeNumber   INTEGER NOT NULL,
    NodeType          TEXT    NOT NULL,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER NOT NULL,
    InvalidNodeTypeID INTEGER NOT NULL,
    AbortNodeTypeID   INTEGER NOT NULL,
    StarNodeTypeID    INTEGER NOT NULL,
    PoundNodeTypeID   INTEGER NOT NULL,
    StarNodeType      TEXT    NOT NULL,
    StarNodeNumber    INTEGER NOT NULL,
    PoundNodeType     TEXT    NOT NULL,
    PoundNodeNumber   INTEGER NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;
CREATE TABLE Detail_AUTO_Prompts (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER NOT NULL,
    NodeNumber   INTEGER NOT NULL,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT    NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;
CREATE TABLE Detail_AUTO_Action (
    ConfigID      INTEGER NOT NULL,
    PartID        INTEGER NOT NULL,
    SequenceNo    INTEGER NOT NULL,
    NodeTypeID    INTEGER NOT NULL,
    NodeNumber    INTEGER NOT NULL,
    NodeMasterID  INTEGER NOT NULL,
    DTMFRangeLow  TEXT,
    DTMFRangeHigh TEXT,
    NodeType      TEXT    NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;
CREATE TABLE Node_AUTO_Version (
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
    PRIMARY KEY (ConfigID, PartID, NodeNumber, VersionNo)
) STRICT;
CREATE TABLE Node_Creation (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    NodeTypeID   INTEGER NOT NULL,
    NodeNumber   INTEGER NOT NULL,
    VersionNo    INTEGER NOT NULL,
    MasterID     INTEGER NOT NULL,
    DateModified TEXT    NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeTypeID, NodeNumber)
) STRICT, WITHOUT ROWID;
INSERT INTO Node_General_Pool VALUES(1,2,9,1,'AUTO','Main menu','11/24/26');
INSERT INTO Node_General_Pool VALUES(1,2,9,8,'AUTO','Sales','11/24/26');
INSERT INTO Node_AUTO VALUES(1,2,9,1,3,'#',1,2,3,'MSG',1,'MSG',1,'MSG',1,'AUTO','Saved by 1',0,0,0,0,0,'MSG',1,'MSG',1);
INSERT INTO Node_AUTO VALUES(1,2,9,8,1,'No',8,3,3,'XFER',2,'MSG',6,'MSG',1,'AUTO','Sales',4,0,0,9,814,'AUTO',1,'NONE',0);
INSERT INTO Detail_AUTO_Prompts VALUES(1,2,1,0,21,8,'MSG');
INSERT INTO Detail_AUTO_Prompts VALUES(1,2,2,0,23,8,'MSG');
INSERT INTO Detail_AUTO_Action VALUES(1,2,1,6,2,8,'1','1','DTMF');
INSERT INTO Detail_AUTO_Action VALUES(1,2,2,0,22,8,'2','2','MSG');
INSERT INTO Node_AUTO_Version VALUES(1,2,8,1,'import','finished','2026-11-25T20:24:25.625Z','anna','host-1','auto-node',19697,'b1c24ff4-95eb-47c8-8f90-9f2039d79a77 84896','{"node":{"config":1,"partition":2,"number":8,"type":"AUTO","label":"Sales","settings":{"numberOfDigits":1,"retryLimit":3,"selectionTimeout":8,"digitTimeout":3,"terminatingDigit":"No"},"prompts":[{"sequence":1,"typeID":0,"type":"MSG","number":21},{"sequence":2,"typeID":0,"type":"MSG","number":23}],"actions":[{"sequence":1,"low":"1","high":"1","typeID":6,"type":"DTMF","number":2},{"sequence":2,"low":"2","high":"2","typeID":0,"type":"MSG","number":22}],"branches":{"Timeout":{"typeID":4,"type":"XFER","number":2},"Invalid":{"typeID":0,"type":"MSG","number":6},"Abort":{"typeID":0,"type":"MSG","number":1},"*":{"typeID":9,"type":"AUTO","number":1},"#":{"typeID":814,"type":"NONE","number":0}}},"register":{"type":"AUTO","label":"Sales","dateModified":"11/24/26"}}');
INSERT INTO Node_AUTO_Version VALUES(1,2,1,1,'import','finished','2026-11-25T20:24:25.627Z','anna','host-1','auto-node',19697,'b1c24ff4-95eb-47c8-8f90-9f2039d79a77 84896','{"node":{"config":1,"partition":2,"number":1,"type":"AUTO","label":"Café","settings":{"numberOfDigits":3,"retryLimit":3,"selectionTimeout":8,"digitTimeout":2,"terminatingDigit":"#"},"prompts":[{"sequence":1,"typeID":2,"type":"TIME","number":1},{"sequence":2,"typeID":0,"type":"MSG","number":2}],"actions":[{"sequence":1,"low":"1","high":"1","typeID":9,"type":"AUTO","number":8},{"sequence":2,"low":"2","high":"2","typeID":9,"type":"AUTO","number":9}],"branches":{"Timeout":{"typeID":4,"type":"XFER","number":1},"Invalid":{"typeID":0,"type":"MSG","number":6},"Abort":{"typeID":0,"type":"MSG","number":1},"*":{"typeID":9,"type":"AUTO","number":11},"#":{"typeID":814,"type":"NONE","number":0}}},"register":{"type":"AUTO","label":"Main menu","dateModified":"11/24/26"},"bytes":true}');
INSERT INTO Node_AUTO_Version VALUES(1,2,8,2,'restore','finished','2026-11-25T20:24:25.667Z','anna','host-1','auto-node',19698,'b1c24ff4-95eb-47c8-8f90-9f2039d79a77 84901','{"node":{"config":1,"partition":2,"number":8,"type":"AUTO","label":"Sales team","settings":{"numberOfDigits":1,"retryLimit":3,"selectionTimeout":8,"digitTimeout":3,"terminatingDigit":"No"},"prompts":[{"sequence":1,"typeID":0,"type":"MSG","number":21},{"sequence":2,"typeID":0,"type":"MSG","number":23}],"actions":[{"sequence":1,"low":"1","high":"1","typeID":6,"type":"DTMF","number":2},{"sequence":2,"low":"2","high":"2","typeID":0,"type":"MSG","number":22},{"sequence":3,"low":"3","high":"3","typeID":0,"type":"MSG","number":24},{"sequence":4,"low":"4","high":"4","typeID":0,"type":"MSG","number":25},{"sequence":5,"low":"5","high":"5","typeID":9,"type":"AUTO","number":5},{"sequence":6,"low":"6","high":"6","typeID":9,"type":"AUTO","number":20},{"sequence":7,"low":"9","high":"9","typeID":9,"type":"AUTO","number":1},{"sequence":8,"low":"0","high":"0","typeID":4,"type":"XFER","number":2}],"branches":{"Timeout":{"typeID":4,"type":"XFER","number":2},"Invalid":{"typeID":0,"type":"MSG","number":6},"Abort":{"typeID":0,"type":"MSG","number":1},"*":{"typeID":9,"type":"AUTO","number":1},"#":{"typeID":814,"type":"NONE","number":0}}},"register":{"type":"AUTO","label":"Sales team","dateModified":"11/24/26"}}');
INSERT INTO Node_AUTO_Version VALUES(1,2,1,2,'save','begun','2026-11-25T20:24:25.680Z','anna','host-1','Faults',19700,'b1c24ff4-95eb-47c8-8f90-9f2039d79a77 84902','{"node":{"config":1,"partition":2,"number":1,"type":"AUTO","label":"Main menu","settings":{"numberOfDigits":3,"retryLimit":3,"selectionTimeout":8,"digitTimeout":2,"terminatingDigit":"#"},"prompts":[{"sequence":1,"typeID":2,"type":"TIME","number":1},{"sequence":2,"typeID":0,"type":"MSG","number":2},{"sequence":3,"typeID":0,"type":"MSG","number":3}],"actions":[{"sequence":1,"low":"1","high":"1","typeID":9,"type":"AUTO","number":8},{"sequence":2,"low":"2","high":"2","typeID":9,"type":"AUTO","number":9},{"sequence":3,"low":"3","high":"3","typeID":0,"type":"MSG","number":10},{"sequence":4,"low":"4","high":"4","typeID":8,"type":"LIST","number":1},{"sequence":5,"low":"5","high":"5","typeID":9,"type":"AUTO","number":12},{"sequence":6,"low":"601","high":"660","typeID":1,"type":"CMD","number":1},{"sequence":7,"low":"7","high":"8","typeID":9,"type":"AUTO","number":4},{"sequence":8,"low":"9","high":"9","typeID":15,"type":"DBN","number":1},{"sequence":9,"low":"0","high":"0","typeID":4,"type":"XFER","number":1}],"branches":{"Timeout":{"typeID":4,"type":"XFER","number":1},"Invalid":{"typeID":0,"type":"MSG","number":6},"Abort":{"typeID":0,"type":"MSG","number":1},"*":{"typeID":9,"type":"AUTO","number":11},"#":{"typeID":814,"type":"NONE","number":0}}},"register":{"type":"AUTO","label":"Main menu","dateModified":"11/24/26"}}');
