-- The only SQL that reads or writes nodes. Callers give the values in the order in which the placeholders first
-- occur, so that order is part of each command's interface. They read columns by name.
-- Portable on purpose: nothing here is of one engine only.

-- name: Get_Node_Type_can_contain_nodes
SELECT * FROM SR_Node_Type_can_contain_Node_Type
 WHERE Parent_Node_Type_ID = :Given_NodeTypeID AND Set_ID = :Given_SetID
 ORDER BY Parent_Node_Type_ID, Child_Node_Type_ID;

-- name: Get_Node_Names
SELECT * FROM SR_Node_Type_Names ORDER BY ID;

-- name: Get_Max_NodeNumber
SELECT * FROM Node_Type_Max
 WHERE Config_ID = :Given_ConfigID AND PartitionID = :Given_PartID AND NodeType_ID = :Given_NodeTypeID
 ORDER BY NodeType_ID;

-- name: Get_DTMF_Node
SELECT * FROM Node_DTMF
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeNumber = :Given_NodeNumber AND NodeTypeID = :Given_NodeTypeID;

-- name: Get_DTMF_PromptsNode
SELECT * FROM Detail_DTMF_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID
 ORDER BY SequenceNo;

-- name: Get_DTMF_ActionsNode
SELECT * FROM Detail_DTMF_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID
 ORDER BY SequenceNo;

-- name: Get_Description
SELECT * FROM Node_General_Pool
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeTypeID = :Given_NodeTypeID AND NodeNumber = :Given_NodeNumber;

-- name: Get_All_DTMF_Nodes
SELECT * FROM Node_DTMF
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
 ORDER BY NodeNumber;

-- name: Delete_DTMF_PromptsNode
DELETE FROM Detail_DTMF_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Delete_DTMF_ActionsNode
DELETE FROM Detail_DTMF_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Update_DTMF_Node
UPDATE Node_DTMF
   SET DTMFClear = :Given_DTMFClear, NumberOfDigits = :Given_NumberOfDigits,
       TerminatingDigit = :Given_TerminatingDigit, SelectionTimeout = :Given_SelectionTimeout,
       DigitTimeout = :Given_DigitTimeout, RetryLimit = :Given_RetryLimit,
       TimeoutNodeType = :Given_TimeoutNodeType, TimeoutNodeNumber = :Given_TimeoutNodeNumber,
       InvalidNodeType = :Given_InvalidNodeType, InvalidNodeNumber = :Given_InvalidNodeNumber,
       AbortNodeType = :Given_AbortNodeType, AbortNodeNumber = :Given_AbortNodeNumber,
       NodeType = :Given_NodeType, NodeDescription = :Given_NodeDescription,
       TimeoutNodeTypeID = :Given_TimeoutNodeTypeID, InvalidNodeTypeID = :Given_InvalidNodeTypeID,
       AbortNodeTypeID = :Given_AbortNodeTypeID
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeTypeID = :Given_NodeTypeID AND NodeNumber = :Given_NodeNumber;

-- name: Add_DTMF_PromptsNode
INSERT INTO Detail_DTMF_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       NodeType)
VALUES (:Given_ConfigID, :Given_PartID, :Given_SequenceNo, :Given_NodeTypeID, :Given_NodeNumber,
       :Given_NodeMasterID, :Given_NodeType);

-- name: Add_DTMF_ActionsNode
INSERT INTO Detail_DTMF_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       DTMFDigitCollected, NodeType)
VALUES (:Given_ConfigID, :Given_PartID, :Given_SequenceNo, :Given_NodeTypeID, :Given_NodeNumber,
       :Given_NodeMasterID, :Given_DTMFDigitCollected, :Given_NodeType);

-- name: Duplicate_MSG_NODE
INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber, MaxLength, OnOff, DTMF, Password,
       Directory, VexoFilename, Comment, SkipCount, Permission, WarningTone, LineAssignment, NodeType,
       NodeDescription, MSGArchive)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, MaxLength, OnOff, DTMF, Password, Directory,
       :Given_VexoFilename, Comment, SkipCount, Permission, WarningTone, LineAssignment, NodeType,
       NodeDescription, MSGArchive
  FROM Node_MSG
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_CMD_NODE
INSERT INTO Node_CMD (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, NodeType, NodeDescription
  FROM Node_CMD
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_Detail_CMD_NODE
INSERT INTO Detail_CMD (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_CMD
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_TIME_Node
INSERT INTO Node_TIME (ConfigID, PartID, NodeTypeID, NodeNumber, StartTime, StopTime, NodeType,
       NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, StartTime, StopTime, NodeType, NodeDescription
  FROM Node_TIME
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_Detail_TIME_Node
INSERT INTO Detail_TIME (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_TIME
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_DATE_Node
INSERT INTO Node_DATE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, StartDay, StopDay, StartDate,
       StopDate, NodeType, NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, Mode, StartDay, StopDay, StartDate, StopDate,
       NodeType, NodeDescription
  FROM Node_DATE
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_Detail_DATE_Node
INSERT INTO Detail_DATE (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_DATE
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_XFER_Node
INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, StyleNodeNumber, HoldNodeType,
       HoldNodeNumber, Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType, Busy1NodeNumber, Busy2NodeType,
       Busy2NodeNumber, NoAnswerNodeType, NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType,
       NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, StyleNodeNumber, HoldNodeType, HoldNodeNumber,
       Dial, MOHNodeType, MOHNodeNumber, Busy1NodeType, Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber,
       NoAnswerNodeType, NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType, NodeDescription
  FROM Node_XFER
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DTMF_Node
INSERT INTO Node_DTMF (ConfigID, PartID, NodeTypeID, NodeNumber, DTMFClear, NumberOfDigits,
       TerminatingDigit, SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber,
       InvalidNodeType, InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription,
       TimeoutNodeTypeID, InvalidNodeTypeID, AbortNodeTypeID)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, DTMFClear, NumberOfDigits, TerminatingDigit,
       SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType,
       InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID,
       InvalidNodeTypeID, AbortNodeTypeID
  FROM Node_DTMF
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DetailPrompts_DTMF_Node
INSERT INTO Detail_DTMF_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_DTMF_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_DetailActions_DTMF_Node
INSERT INTO Detail_DTMF_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       DTMFDigitCollected, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, DTMFDigitCollected,
       NodeType
  FROM Detail_DTMF_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_VOX_Node
INSERT INTO Node_VOX (ConfigID, PartID, NodeTypeID, NodeNumber, Beep, Threshold, Wait, RetryLimit,
       TimeoutNodeType, TimeoutNodeNumber, AbortNodeType, AbortNodeNumber, DTMFNodeType, DTMFNodeNumber,
       NodeType, NodeDescription, TimeoutNodeTypeID, AbortNodeTypeID, DTMFNodeTypeID)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, Beep, Threshold, Wait, RetryLimit,
       TimeoutNodeType, TimeoutNodeNumber, AbortNodeType, AbortNodeNumber, DTMFNodeType, DTMFNodeNumber,
       NodeType, NodeDescription, TimeoutNodeTypeID, AbortNodeTypeID, DTMFNodeTypeID
  FROM Node_VOX
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DetailPrompts_VOX_Node
INSERT INTO Detail_VOX_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_VOX_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_DetailActions_VOX_Node
INSERT INTO Detail_VOX_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       PromptNodeType, PromptNodeNumber, NodeType, PromptNodeTypeID)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, PromptNodeType,
       PromptNodeNumber, NodeType, PromptNodeTypeID
  FROM Detail_VOX_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_LIST_Node
INSERT INTO Node_LIST (ConfigID, PartID, NodeTypeID, NodeNumber, ListMode, NodeType, NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, ListMode, NodeType, NodeDescription
  FROM Node_LIST
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_Detail_LIST_Node
INSERT INTO Detail_LIST (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_LIST
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_AUTO_Node
INSERT INTO Node_AUTO (ConfigID, PartID, NodeTypeID, NodeNumber, NumberOfDigits, TerminatingDigit,
       SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType,
       InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID,
       InvalidNodeTypeID, AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber,
       PoundNodeType, PoundNodeNumber)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, NumberOfDigits, TerminatingDigit,
       SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType,
       InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, NodeDescription, TimeoutNodeTypeID,
       InvalidNodeTypeID, AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber,
       PoundNodeType, PoundNodeNumber
  FROM Node_AUTO
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DetailPrompts_AUTO_Node
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, NodeType
  FROM Detail_AUTO_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_DetailActions_AUTO_Node
INSERT INTO Detail_AUTO_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       DTMFRangeLow, DTMFRangeHigh, NodeType)
SELECT ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, :Given_DesNodeMasterID, DTMFRangeLow,
       DTMFRangeHigh, NodeType
  FROM Detail_AUTO_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_PAAS_Node
INSERT INTO Node_PAAS (ConfigID, PartID, NodeTypeID, NodeNumber, Card, Line, Priority, Interrupt,
       NodeType, NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, Card, Line, Priority, Interrupt, NodeType,
       NodeDescription
  FROM Node_PAAS
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_TABLE_Node
INSERT INTO Node_TABLE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, Reference, InvalidNodeType,
       InvalidNodeNumber, InvalidNodeTypeID, ContinueNodeType, ContinueNodeNumber, ContinueNodeTypeID,
       NodeType, NodeDescription)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, Mode, Reference, InvalidNodeType,
       InvalidNodeNumber, InvalidNodeTypeID, ContinueNodeType, ContinueNodeNumber, ContinueNodeTypeID,
       NodeType, NodeDescription
  FROM Node_TABLE
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DetailActions_TABLE_Node
INSERT INTO Detail_TABLE_Action (ConfigID, PartID, SequenceNo, NodeType, NodeNumber, NodeTypeID,
       StartRange, EndRange, NodeMasterID)
SELECT ConfigID, PartID, SequenceNo, NodeType, NodeNumber, NodeTypeID, StartRange, EndRange,
       :Given_DesNodeMasterID
  FROM Detail_TABLE_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeMasterID = :Given_NodeMasterID;

-- name: Duplicate_Node_In_General_Pool
INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription,
       DateModified)
SELECT ConfigID, PartID, NodeTypeID, :Given_DesNodeNumber, NodeType, NodeDescription, :Given_DateModified
  FROM Node_General_Pool
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeNumber = :Given_NodeNumber AND NodeTypeID = :Given_NodeTypeID;

-- name: Update_Node_General_Pool
UPDATE Node_General_Pool
   SET NodeDescription = :Given_Description, DateModified = :Given_DateModified
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeTypeID = :Given_NodeTypeID AND NodeNumber = :Given_NodeNumber;

-- name: Get_AUTO_Node
SELECT * FROM Node_AUTO
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeNumber = :Given_NodeNumber AND NodeTypeID = :Given_NodeTypeID;

-- name: Get_AUTO_PromptsNode
SELECT * FROM Detail_AUTO_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID
 ORDER BY SequenceNo;

-- name: Get_AUTO_ActionsNode
SELECT * FROM Detail_AUTO_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID
 ORDER BY SequenceNo;

-- name: Get_All_AUTO_Nodes
SELECT * FROM Node_AUTO
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
 ORDER BY NodeNumber;

-- name: Delete_AUTO_PromptsNode
DELETE FROM Detail_AUTO_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Delete_AUTO_ActionsNode
DELETE FROM Detail_AUTO_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeMasterID = :Given_NodeMasterID;

-- name: Update_AUTO_Node
UPDATE Node_AUTO
   SET NumberOfDigits = :Given_NumberOfDigits, TerminatingDigit = :Given_TerminatingDigit,
       SelectionTimeout = :Given_SelectionTimeout, DigitTimeout = :Given_DigitTimeout,
       RetryLimit = :Given_RetryLimit, TimeoutNodeType = :Given_TimeoutNodeType,
       TimeoutNodeNumber = :Given_TimeoutNodeNumber, InvalidNodeType = :Given_InvalidNodeType,
       InvalidNodeNumber = :Given_InvalidNodeNumber, AbortNodeType = :Given_AbortNodeType,
       AbortNodeNumber = :Given_AbortNodeNumber, NodeType = :Given_NodeType,
       NodeDescription = :Given_NodeDescription, TimeoutNodeTypeID = :Given_TimeoutNodeTypeID,
       InvalidNodeTypeID = :Given_InvalidNodeTypeID, AbortNodeTypeID = :Given_AbortNodeTypeID,
       StarNodeTypeID = :Given_StarNodeTypeID, PoundNodeTypeID = :Given_PoundNodeTypeID,
       StarNodeType = :Given_StarNodeType, StarNodeNumber = :Given_StarNodeNumber,
       PoundNodeType = :Given_PoundNodeType, PoundNodeNumber = :Given_PoundNodeNumber
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND NodeTypeID = :Given_NodeTypeID AND NodeNumber = :Given_NodeNumber;

-- name: Add_AUTO_PromptsNode
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       NodeType)
VALUES (:Given_ConfigID, :Given_PartID, :Given_SequenceNo, :Given_NodeTypeID, :Given_NodeNumber,
       :Given_NodeMasterID, :Given_NodeType);

-- name: Add_AUTO_ActionsNode
INSERT INTO Detail_AUTO_Action (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber, NodeMasterID,
       DTMFRangeLow, DTMFRangeHigh, NodeType)
VALUES (:Given_ConfigID, :Given_PartID, :Given_SequenceNo, :Given_NodeTypeID, :Given_NodeNumber,
       :Given_NodeMasterID, :Given_DTMFRangeLow, :DTMFRangeHigh, :Given_NodeType);

-- name: Duplicate_DBN_Node
INSERT INTO Node_DBN (ConfigID, PartID, NodeNumber, NodeTypeID, NodeDescription, NodeType, Method,
       DirectoryNodeNumber, FirstLanguage, SecondLanguage, GreetingNodeType, GreetingNodeNumber,
       GreetingNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber, ValidMatchNodeTypeID, AbortNodeType,
       AbortNodeNumber, AbortNodeTypeID, StarNodeType, StarNodeNumber, StarNodeTypeID, PoundNodeType,
       PoundNodeNumber, PoundNodeTypeID, ZeroNodeType, ZeroNodeNumber, ZeroNodeTypeID, FirstMode,
       FirstMinDigits, FirstMaxDigits, FirstPromptNodeType, FirstPromptNodeNumber, FirstPromptNodeTypeID,
       SecondMode, SecondMinDigits, SecondMaxDigits, SecondPromptNodeType, SecondPromptNodeNumber,
       SecondPromptNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, TimeoutNodeTypeID, InvalidNodeType,
       InvalidNodeNumber, InvalidNodeTypeID, DigitTimeout, SelectionTimeout, RetryLimit, Confirm,
       MaxMatch, PlayName, BeforePromptNodeType, BeforePromptNodeNumber, BeforePromptNodeTypeID,
       AfterPromptNodeType, AfterPromptNodeNumber, AfterPromptNodeTypeID, ConfirmationExitNodeType,
       ConfirmationExitNodeNumber, ConfirmationExitNodeTypeID)
SELECT ConfigID, PartID, :Given_DesNodeNumber, NodeTypeID, NodeDescription, NodeType, Method,
       DirectoryNodeNumber, FirstLanguage, SecondLanguage, GreetingNodeType, GreetingNodeNumber,
       GreetingNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber, ValidMatchNodeTypeID, AbortNodeType,
       AbortNodeNumber, AbortNodeTypeID, StarNodeType, StarNodeNumber, StarNodeTypeID, PoundNodeType,
       PoundNodeNumber, PoundNodeTypeID, ZeroNodeType, ZeroNodeNumber, ZeroNodeTypeID, FirstMode,
       FirstMinDigits, FirstMaxDigits, FirstPromptNodeType, FirstPromptNodeNumber, FirstPromptNodeTypeID,
       SecondMode, SecondMinDigits, SecondMaxDigits, SecondPromptNodeType, SecondPromptNodeNumber,
       SecondPromptNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, TimeoutNodeTypeID, InvalidNodeType,
       InvalidNodeNumber, InvalidNodeTypeID, DigitTimeout, SelectionTimeout, RetryLimit, Confirm,
       MaxMatch, PlayName, BeforePromptNodeType, BeforePromptNodeNumber, BeforePromptNodeTypeID,
       AfterPromptNodeType, AfterPromptNodeNumber, AfterPromptNodeTypeID, ConfirmationExitNodeType,
       ConfirmationExitNodeNumber, ConfirmationExitNodeTypeID
  FROM Node_DBN
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber;

-- name: Duplicate_DetailPrompts_DBN_Node
INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, NodeMasterID, PromptNumber, PromptNodeType,
       PromptNodeNumber, PromptNodeTypeID)
SELECT ConfigID, PartID, :Given_DesNodeMasterID, PromptNumber, PromptNodeType, PromptNodeNumber,
       PromptNodeTypeID
  FROM Detail_DBN_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartitionID AND NodeMasterID = :Given_NodeMasterID;
