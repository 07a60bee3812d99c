-- The history of AUTO nodes, beside the commands that nodes are read and written by.

-- name: Get_AUTO_Versions
SELECT VersionNo, Work, State, BegunAt, UserName, HostName, Program, ProcessID, ProcessStart
  FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
 ORDER BY VersionNo DESC;

-- name: Get_Newest_AUTO_Version
SELECT VersionNo, Work, State, BegunAt, UserName, HostName, Program, ProcessID, ProcessStart
  FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
 ORDER BY VersionNo DESC LIMIT 1;

-- name: Get_Unfinished_AUTO_Versions
SELECT VersionNo, Work, State, BegunAt, UserName, HostName, Program, ProcessID, ProcessStart
  FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND State IN ('begun', 'failed')
 ORDER BY VersionNo DESC;

-- name: Get_AUTO_Version_Machine
SELECT Machine FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo;

-- name: Set_AUTO_Version_Machine
UPDATE Node_AUTO_Version SET Machine = :Given_Machine
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo;

-- name: Get_AUTO_Version_Content
SELECT Content FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo;

-- name: Add_AUTO_Version
INSERT INTO Node_AUTO_Version (ConfigID, PartID, NodeNumber, VersionNo, Work, State, BegunAt, UserName, HostName,
       Program, ProcessID, ProcessStart, Content)
VALUES (:Given_ConfigID, :Given_PartID, :Given_NodeNumber, :Given_VersionNo, :Given_Work, :Given_State,
        :Given_BegunAt, :Given_UserName, :Given_HostName, :Given_Program, :Given_ProcessID, :Given_ProcessStart,
        :Given_Content);

-- name: Set_AUTO_Version_State
UPDATE Node_AUTO_Version SET State = :Given_State
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo AND State IN ('begun', 'failed');

-- name: Renew_AUTO_Version
UPDATE Node_AUTO_Version SET BegunAt = :Given_BegunAt
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo AND State = 'begun'
   AND NOT EXISTS (SELECT 1 FROM Node_AUTO_Version AS Later
                    WHERE Later.ConfigID = Node_AUTO_Version.ConfigID AND Later.PartID = Node_AUTO_Version.PartID
                      AND Later.NodeNumber = Node_AUTO_Version.NodeNumber
                      AND Later.VersionNo > Node_AUTO_Version.VersionNo);

-- name: Leave_AUTO_Versions
UPDATE Node_AUTO_Version SET State = 'left'
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo < :Given_VersionNo AND State IN ('begun', 'failed');

-- name: Delete_AUTO_Version
DELETE FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo = :Given_VersionNo;

-- name: Prune_AUTO_Versions
DELETE FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
   AND VersionNo IN (SELECT VersionNo FROM Node_AUTO_Version
                      WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeNumber = :Given_NodeNumber
                        AND VersionNo <= :Given_VersionNo
                      ORDER BY VersionNo LIMIT :Given_Count)
   AND (BegunAt < :Given_BegunAt OR VersionNo <= :Given_LastOfTooMany) AND State NOT IN ('begun', 'failed');

-- name: Get_AUTO_Nodes_With_Versions
SELECT ConfigID, PartID, NodeNumber, MAX(VersionNo) AS VersionNo, MAX(LENGTH(Content)) AS Size
  FROM Node_AUTO_Version
 GROUP BY ConfigID, PartID, NodeNumber
 ORDER BY ConfigID, PartID, NodeNumber;

-- name: Get_Creation
SELECT MasterID, VersionNo, DateModified FROM Node_Creation
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;

-- name: Get_Creations
SELECT NodeTypeID, NodeNumber, DateModified FROM Node_Creation
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND MasterID = :Given_MasterID
   AND VersionNo = :Given_VersionNo
 ORDER BY NodeTypeID, NodeNumber;

-- name: Add_Creation
INSERT INTO Node_Creation (ConfigID, PartID, NodeTypeID, NodeNumber, VersionNo, MasterID, DateModified)
VALUES (:Given_ConfigID, :Given_PartID, :Given_NodeTypeID, :Given_NodeNumber, :Given_VersionNo, :Given_MasterID,
        :Given_DateModified);

-- name: Delete_Creation
DELETE FROM Node_Creation
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;

-- name: Delete_Finished_Creations
DELETE FROM Node_Creation
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND MasterID = :Given_MasterID
   AND EXISTS (SELECT 1 FROM Node_General_Pool
                WHERE Node_General_Pool.ConfigID = Node_Creation.ConfigID
                  AND Node_General_Pool.PartID = Node_Creation.PartID
                  AND Node_General_Pool.NodeTypeID = Node_Creation.NodeTypeID
                  AND Node_General_Pool.NodeNumber = Node_Creation.NodeNumber);

-- name: Put_Back_General_Pool
UPDATE Node_General_Pool SET NodeType = :Given_NodeType, NodeDescription = :Given_Description,
       DateModified = :Given_DateModified
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;

-- name: Add_General_Pool
INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, DateModified)
VALUES (:Given_ConfigID, :Given_PartID, :Given_NodeTypeID, :Given_NodeNumber, :Given_NodeType, :Given_Description,
        :Given_DateModified);

-- name: Add_AUTO_Node
INSERT INTO Node_AUTO (ConfigID, PartID, NodeTypeID, NodeNumber, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeType,
       InvalidNodeNumber, AbortNodeType, AbortNodeNumber, NodeType, TimeoutNodeTypeID, InvalidNodeTypeID,
       AbortNodeTypeID, StarNodeTypeID, PoundNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeType, PoundNodeNumber)
VALUES (:Given_ConfigID, :Given_PartID, :Given_NodeTypeID, :Given_NodeNumber, '', 0, '', 0, '', 0, '', 0, 0, 0, 0, 0,
        '', 0, '', 0);

-- name: Delete_AUTO_Node
DELETE FROM Node_AUTO
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;

-- name: Delete_General_Pool
DELETE FROM Node_General_Pool
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
   AND NodeNumber = :Given_NodeNumber;

-- name: Get_Log
SELECT ConfigID, PartID, NodeNumber, VersionNo, Work, State, BegunAt, UserName, HostName, Program, ProcessID,
       ProcessStart
  FROM Node_AUTO_Version
 WHERE BegunAt >= :Given_Since AND BegunAt < :Given_Until
 ORDER BY BegunAt DESC, ConfigID, PartID, NodeNumber, VersionNo DESC;

-- name: Get_Log_Of_Partition
SELECT ConfigID, PartID, NodeNumber, VersionNo, Work, State, BegunAt, UserName, HostName, Program, ProcessID,
       ProcessStart
  FROM Node_AUTO_Version
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND BegunAt >= :Given_Since AND BegunAt < :Given_Until
 ORDER BY BegunAt DESC, NodeNumber, VersionNo DESC;

-- name: Get_Contents
SELECT ConfigID, PartID, NodeNumber, VersionNo, Content FROM Node_AUTO_Version
 ORDER BY ConfigID, PartID, NodeNumber, VersionNo;
