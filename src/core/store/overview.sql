-- What looks at more than one node at once; beside the commands that the editor reads and writes nodes by.

-- name: Get_Partitions
SELECT ConfigID, PartID, SUM(AutoNode) AS AutoNodes, SUM(Registered) AS RegisteredNodes
  FROM (SELECT ConfigID, PartID, 1 AS AutoNode, 0 AS Registered FROM Node_AUTO WHERE NodeNumber <> 0
        UNION ALL
        SELECT ConfigID, PartID, 0, 1 FROM Node_General_Pool WHERE NodeNumber <> 0) AS Nodes
 GROUP BY ConfigID, PartID
 ORDER BY ConfigID, PartID;

-- name: Get_AUTO_Overview
SELECT Node_AUTO.*,
       (SELECT COUNT(*) FROM Detail_AUTO_Prompts
         WHERE Detail_AUTO_Prompts.ConfigID = Node_AUTO.ConfigID AND Detail_AUTO_Prompts.PartID = Node_AUTO.PartID
           AND Detail_AUTO_Prompts.NodeMasterID = Node_AUTO.NodeNumber) AS Prompts,
       (SELECT COUNT(*) FROM Detail_AUTO_Action
         WHERE Detail_AUTO_Action.ConfigID = Node_AUTO.ConfigID AND Detail_AUTO_Action.PartID = Node_AUTO.PartID
           AND Detail_AUTO_Action.NodeMasterID = Node_AUTO.NodeNumber) AS Actions
  FROM Node_AUTO
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND NodeTypeID = :Given_NodeTypeID
 ORDER BY NodeNumber;
