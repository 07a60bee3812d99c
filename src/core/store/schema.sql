-- The tables of the named commands, with columns in the order in which the commands name them.
-- Every value arrives as text: STRICT turns it into the column's type and refuses what it cannot turn.
-- Keys are ordered for the commands: each is one search in the table's own tree (WITHOUT ROWID), and rows come
-- out of it in the order asked for.
-- No foreign keys: a node may refer to nodes that do not exist yet. The editor offers to create them.

-- Reference data, read only.
CREATE TABLE SR_Node_Type_Names (
    ID           INTEGER NOT NULL,
    English_Name TEXT    NOT NULL,
    PRIMARY KEY (ID)
) STRICT, WITHOUT ROWID;

CREATE TABLE SR_Node_Type_can_contain_Node_Type (
    Parent_Node_Type_ID INTEGER NOT NULL,
    Set_ID              INTEGER NOT NULL,
    Child_Node_Type_ID  INTEGER NOT NULL,
    PRIMARY KEY (Parent_Node_Type_ID, Set_ID, Child_Node_Type_ID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_Type_Max (
    Config_ID   INTEGER NOT NULL,
    PartitionID INTEGER NOT NULL,
    NodeType_ID INTEGER NOT NULL,
    Max_Number  INTEGER NOT NULL,
    PRIMARY KEY (Config_ID, PartitionID, NodeType_ID)
) STRICT, WITHOUT ROWID;

-- The register of existing nodes, one row per node of every type.
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

-- References must be whole, as a row cannot be shown without them. Settings and label have defaults and may be Null.
-- The number stands before the type in the key: copies look up by number alone, the selector lists by number.
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

-- Lists of a node: the key holds the rows of one owner together and in sequence.
-- Ranges are digit sequences, not numbers: 007 is not 7.
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

-- The other node types are only copied, from their templates. All but the key may be Null, and columns whose
-- values only those nodes' own editors know are TEXT, so that a copy carries codes and numbers alike.
CREATE TABLE Node_MSG (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    MaxLength       INTEGER,
    OnOff           TEXT,
    DTMF            TEXT,
    Password        TEXT,
    Directory       TEXT,
    VexoFilename    TEXT,
    Comment         TEXT,
    SkipCount       INTEGER,
    Permission      TEXT,
    WarningTone     TEXT,
    LineAssignment  TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    MSGArchive      TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_CMD (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_CMD (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_TIME (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    StartTime       TEXT,
    StopTime        TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_TIME (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_DATE (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    Mode            TEXT,
    StartDay        TEXT,
    StopDay         TEXT,
    StartDate       TEXT,
    StopDate        TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_DATE (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_XFER (
    ConfigID           INTEGER NOT NULL,
    PartID             INTEGER NOT NULL,
    NodeTypeID         INTEGER NOT NULL,
    NodeNumber         INTEGER NOT NULL,
    StyleNodeNumber    INTEGER,
    HoldNodeType       TEXT,
    HoldNodeNumber     INTEGER,
    Dial               TEXT,
    MOHNodeType        TEXT,
    MOHNodeNumber      INTEGER,
    Busy1NodeType      TEXT,
    Busy1NodeNumber    INTEGER,
    Busy2NodeType      TEXT,
    Busy2NodeNumber    INTEGER,
    NoAnswerNodeType   TEXT,
    NoAnswerNodeNumber INTEGER,
    AnswerNodeType     TEXT,
    AnswerNodeNumber   INTEGER,
    NodeType           TEXT,
    NodeDescription    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_DTMF (
    ConfigID          INTEGER NOT NULL,
    PartID            INTEGER NOT NULL,
    NodeTypeID        INTEGER NOT NULL,
    NodeNumber        INTEGER NOT NULL,
    DTMFClear         TEXT,
    NumberOfDigits    INTEGER,
    TerminatingDigit  TEXT,
    SelectionTimeout  INTEGER,
    DigitTimeout      INTEGER,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT,
    TimeoutNodeNumber INTEGER,
    InvalidNodeType   TEXT,
    InvalidNodeNumber INTEGER,
    AbortNodeType     TEXT,
    AbortNodeNumber   INTEGER,
    NodeType          TEXT,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER,
    InvalidNodeTypeID INTEGER,
    AbortNodeTypeID   INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_DTMF_Prompts (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_DTMF_Action (
    ConfigID           INTEGER NOT NULL,
    PartID             INTEGER NOT NULL,
    SequenceNo         INTEGER NOT NULL,
    NodeTypeID         INTEGER,
    NodeNumber         INTEGER,
    NodeMasterID       INTEGER NOT NULL,
    DTMFDigitCollected TEXT,
    NodeType           TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_VOX (
    ConfigID          INTEGER NOT NULL,
    PartID            INTEGER NOT NULL,
    NodeTypeID        INTEGER NOT NULL,
    NodeNumber        INTEGER NOT NULL,
    Beep              TEXT,
    Threshold         TEXT,
    Wait              TEXT,
    RetryLimit        INTEGER,
    TimeoutNodeType   TEXT,
    TimeoutNodeNumber INTEGER,
    AbortNodeType     TEXT,
    AbortNodeNumber   INTEGER,
    DTMFNodeType      TEXT,
    DTMFNodeNumber    INTEGER,
    NodeType          TEXT,
    NodeDescription   TEXT,
    TimeoutNodeTypeID INTEGER,
    AbortNodeTypeID   INTEGER,
    DTMFNodeTypeID    INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_VOX_Prompts (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_VOX_Action (
    ConfigID         INTEGER NOT NULL,
    PartID           INTEGER NOT NULL,
    SequenceNo       INTEGER NOT NULL,
    NodeTypeID       INTEGER,
    NodeNumber       INTEGER,
    NodeMasterID     INTEGER NOT NULL,
    PromptNodeType   TEXT,
    PromptNodeNumber INTEGER,
    NodeType         TEXT,
    PromptNodeTypeID INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_LIST (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    ListMode        TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_LIST (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeTypeID   INTEGER,
    NodeNumber   INTEGER,
    NodeMasterID INTEGER NOT NULL,
    NodeType     TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_PAAS (
    ConfigID        INTEGER NOT NULL,
    PartID          INTEGER NOT NULL,
    NodeTypeID      INTEGER NOT NULL,
    NodeNumber      INTEGER NOT NULL,
    Card            TEXT,
    Line            TEXT,
    Priority        TEXT,
    Interrupt       TEXT,
    NodeType        TEXT,
    NodeDescription TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_TABLE (
    ConfigID           INTEGER NOT NULL,
    PartID             INTEGER NOT NULL,
    NodeTypeID         INTEGER NOT NULL,
    NodeNumber         INTEGER NOT NULL,
    Mode               TEXT,
    Reference          TEXT,
    InvalidNodeType    TEXT,
    InvalidNodeNumber  INTEGER,
    InvalidNodeTypeID  INTEGER,
    ContinueNodeType   TEXT,
    ContinueNodeNumber INTEGER,
    ContinueNodeTypeID INTEGER,
    NodeType           TEXT,
    NodeDescription    TEXT,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_TABLE_Action (
    ConfigID     INTEGER NOT NULL,
    PartID       INTEGER NOT NULL,
    SequenceNo   INTEGER NOT NULL,
    NodeType     TEXT,
    NodeNumber   INTEGER,
    NodeTypeID   INTEGER,
    StartRange   TEXT,
    EndRange     TEXT,
    NodeMasterID INTEGER NOT NULL,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, SequenceNo)
) STRICT, WITHOUT ROWID;

CREATE TABLE Node_DBN (
    ConfigID                   INTEGER NOT NULL,
    PartID                     INTEGER NOT NULL,
    NodeNumber                 INTEGER NOT NULL,
    NodeTypeID                 INTEGER NOT NULL,
    NodeDescription            TEXT,
    NodeType                   TEXT,
    Method                     TEXT,
    DirectoryNodeNumber        INTEGER,
    FirstLanguage              TEXT,
    SecondLanguage             TEXT,
    GreetingNodeType           TEXT,
    GreetingNodeNumber         INTEGER,
    GreetingNodeTypeID         INTEGER,
    ValidMatchNodeType         TEXT,
    ValidMatchNodeNumber       INTEGER,
    ValidMatchNodeTypeID       INTEGER,
    AbortNodeType              TEXT,
    AbortNodeNumber            INTEGER,
    AbortNodeTypeID            INTEGER,
    StarNodeType               TEXT,
    StarNodeNumber             INTEGER,
    StarNodeTypeID             INTEGER,
    PoundNodeType              TEXT,
    PoundNodeNumber            INTEGER,
    PoundNodeTypeID            INTEGER,
    ZeroNodeType               TEXT,
    ZeroNodeNumber             INTEGER,
    ZeroNodeTypeID             INTEGER,
    FirstMode                  TEXT,
    FirstMinDigits             INTEGER,
    FirstMaxDigits             INTEGER,
    FirstPromptNodeType        TEXT,
    FirstPromptNodeNumber      INTEGER,
    FirstPromptNodeTypeID      INTEGER,
    SecondMode                 TEXT,
    SecondMinDigits            INTEGER,
    SecondMaxDigits            INTEGER,
    SecondPromptNodeType       TEXT,
    SecondPromptNodeNumber     INTEGER,
    SecondPromptNodeTypeID     INTEGER,
    TimeoutNodeType            TEXT,
    TimeoutNodeNumber          INTEGER,
    TimeoutNodeTypeID          INTEGER,
    InvalidNodeType            TEXT,
    InvalidNodeNumber          INTEGER,
    InvalidNodeTypeID          INTEGER,
    DigitTimeout               INTEGER,
    SelectionTimeout           INTEGER,
    RetryLimit                 INTEGER,
    Confirm                    TEXT,
    MaxMatch                   INTEGER,
    PlayName                   TEXT,
    BeforePromptNodeType       TEXT,
    BeforePromptNodeNumber     INTEGER,
    BeforePromptNodeTypeID     INTEGER,
    AfterPromptNodeType        TEXT,
    AfterPromptNodeNumber      INTEGER,
    AfterPromptNodeTypeID      INTEGER,
    ConfirmationExitNodeType   TEXT,
    ConfirmationExitNodeNumber INTEGER,
    ConfirmationExitNodeTypeID INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeNumber, NodeTypeID)
) STRICT, WITHOUT ROWID;

CREATE TABLE Detail_DBN_Prompts (
    ConfigID         INTEGER NOT NULL,
    PartID           INTEGER NOT NULL,
    NodeMasterID     INTEGER NOT NULL,
    PromptNumber     INTEGER NOT NULL,
    PromptNodeType   TEXT,
    PromptNodeNumber INTEGER,
    PromptNodeTypeID INTEGER,
    PRIMARY KEY (ConfigID, PartID, NodeMasterID, PromptNumber)
) STRICT, WITHOUT ROWID;
