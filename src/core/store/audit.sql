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

-- Every partition that has a row of a node, of whatever kind.
-- name: Get_Partitions_With_Rows
SELECT ConfigID, PartID FROM Node_General_Pool
UNION
SELECT ConfigID, PartID FROM Node_AUTO
UNION
SELECT ConfigID, PartID FROM Detail_AUTO_Prompts
UNION
SELECT ConfigID, PartID FROM Detail_AUTO_Action
UNION
SELECT ConfigID, PartID FROM Node_MSG
UNION
SELECT ConfigID, PartID FROM Node_CMD
UNION
SELECT ConfigID, PartID FROM Detail_CMD
UNION
SELECT ConfigID, PartID FROM Node_TIME
UNION
SELECT ConfigID, PartID FROM Detail_TIME
UNION
SELECT ConfigID, PartID FROM Node_DATE
UNION
SELECT ConfigID, PartID FROM Detail_DATE
UNION
SELECT ConfigID, PartID FROM Node_XFER
UNION
SELECT ConfigID, PartID FROM Node_DTMF
UNION
SELECT ConfigID, PartID FROM Detail_DTMF_Prompts
UNION
SELECT ConfigID, PartID FROM Detail_DTMF_Action
UNION
SELECT ConfigID, PartID FROM Node_VOX
UNION
SELECT ConfigID, PartID FROM Detail_VOX_Prompts
UNION
SELECT ConfigID, PartID FROM Detail_VOX_Action
UNION
SELECT ConfigID, PartID FROM Node_LIST
UNION
SELECT ConfigID, PartID FROM Detail_LIST
UNION
SELECT ConfigID, PartID FROM Node_PAAS
UNION
SELECT ConfigID, PartID FROM Node_TABLE
UNION
SELECT ConfigID, PartID FROM Detail_TABLE_Action
UNION
SELECT ConfigID, PartID FROM Node_DBN
UNION
SELECT ConfigID, PartID FROM Detail_DBN_Prompts
 ORDER BY ConfigID, PartID;

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

-- name: Get_Recordings
SELECT NodeNumber, VexoFilename FROM Node_MSG
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
 ORDER BY NodeNumber;
