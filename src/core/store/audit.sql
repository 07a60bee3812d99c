-- What looks at a whole partition; beside the commands that nodes are read and written by.

-- name: Get_All_AUTO_Prompts
SELECT * FROM Detail_AUTO_Prompts
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
 ORDER BY NodeMasterID, SequenceNo;

-- name: Get_All_AUTO_Actions
SELECT * FROM Detail_AUTO_Action
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
 ORDER BY NodeMasterID, SequenceNo;

-- name: Get_Register
SELECT NodeTypeID, NodeNumber, NodeType, NodeDescription FROM Node_General_Pool
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
 ORDER BY NodeTypeID, NodeNumber;

-- name: Get_Unfinished_AUTO_Nodes
SELECT DISTINCT NodeNumber FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND State IN ('begun', 'failed')
 ORDER BY NodeNumber;

-- name: Get_Other_Nodes
SELECT NodeTypeID, NodeNumber FROM Node_MSG
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_CMD
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_TIME
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_DATE
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_XFER
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_DTMF
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_VOX
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_LIST
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_PAAS
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_TABLE
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
UNION ALL
SELECT NodeTypeID, NodeNumber FROM Node_DBN
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID;

-- The sets of types that nodes of a type may refer to, and whether each has the given type.
-- name: Get_Sets_With_Node_Type
SELECT Set_ID, MAX(CASE WHEN Child_Node_Type_ID = :Given_ChildTypeID THEN 1 ELSE 0 END) AS Offers
  FROM SR_Node_Type_can_contain_Node_Type
 WHERE Parent_Node_Type_ID = :Given_ParentTypeID
 GROUP BY Set_ID
 ORDER BY Set_ID;

-- name: Date_General_Pool
UPDATE Node_General_Pool SET DateModified = :Given_DateModified
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;
