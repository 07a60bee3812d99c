-- The columns in which nodes refer to others, and the statements over them, each said once for all columns. A reference
-- is a type and a number: its columns begin with a word, or with none, and end in NodeTypeID, NodeType and NodeNumber.
-- Where there is no type ID, the type's name stands for it. Numbers without either refer to no node.
--
-- A line: the table; the type of the nodes that it is of; the columns of their number and, of rows that a node has
-- several of, of the row's number ("0" otherwise); the words, "-" for none. Who reads the rows puts them in order: an
-- engine would sort those of each column by themselves first.
-- with ID: Node_DTMF 6 NodeNumber 0 Timeout Invalid Abort
-- with ID: Detail_DTMF_Prompts 6 NodeMasterID SequenceNo -
-- with ID: Detail_DTMF_Action 6 NodeMasterID SequenceNo -
-- with ID: Detail_CMD 1 NodeMasterID SequenceNo -
-- with ID: Detail_TIME 2 NodeMasterID SequenceNo -
-- with ID: Detail_DATE 3 NodeMasterID SequenceNo -
-- with ID: Node_VOX 7 NodeNumber 0 Timeout Abort DTMF
-- with ID: Detail_VOX_Prompts 7 NodeMasterID SequenceNo -
-- with ID: Detail_VOX_Action 7 NodeMasterID SequenceNo - Prompt
-- with ID: Detail_LIST 8 NodeMasterID SequenceNo -
-- with ID: Node_TABLE 13 NodeNumber 0 Invalid Continue
-- with ID: Detail_TABLE_Action 13 NodeMasterID SequenceNo -
-- with ID: Node_DBN 15 NodeNumber 0 Greeting ValidMatch Abort Star Pound Zero FirstPrompt SecondPrompt Timeout Invalid BeforePrompt AfterPrompt ConfirmationExit
-- with ID: Detail_DBN_Prompts 15 NodeMasterID PromptNumber Prompt
-- with ID: Node_AUTO 9 NodeNumber 0 Timeout Invalid Abort Star Pound
-- with ID: Detail_AUTO_Prompts 9 NodeMasterID SequenceNo -
-- with ID: Detail_AUTO_Action 9 NodeMasterID SequenceNo -
-- by name: Node_XFER 4 NodeNumber 0 Hold MOH Busy1 Busy2 NoAnswer Answer

-- over all: Get_Uses
-- with ID
SELECT @type@ AS HolderTypeID, @number@ AS HolderNumber, @position@ AS ReferenceNo, @row@ AS RowNo,
       @word@NodeTypeID AS NodeTypeID, @word@NodeType AS NodeType
  FROM @table@
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND @word@NodeNumber = :Given_NodeNumber
   AND @word@NodeTypeID IN (:Given_TypeID, :Given_TypeID2, :Given_TypeID3)
-- by name
SELECT @type@, @number@, @position@, @row@, CAST(NULL AS INTEGER), @word@NodeType
  FROM @table@
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID AND @word@NodeNumber = :Given_NodeNumber
   AND @word@NodeType IN (:Given_Type, :Given_Type2, :Given_Type3)
-- end of statement

-- over all but 9: Get_Other_References
-- with ID
SELECT @type@ AS HolderTypeID, @number@ AS HolderNumber, @position@ AS ReferenceNo, @row@ AS RowNo,
       @word@NodeTypeID AS NodeTypeID, @word@NodeType AS NodeType, @word@NodeNumber AS NodeNumber
  FROM @table@
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
-- by name
SELECT @type@, @number@, @position@, @row@, CAST(NULL AS INTEGER), @word@NodeType, @word@NodeNumber
  FROM @table@
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
-- end of statement

-- for each: Repoint_
-- with ID
UPDATE @table@
   SET @word@NodeTypeID = :New_TypeID, @word@NodeType = :New_Type, @word@NodeNumber = :New_NodeNumber
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND @word@NodeNumber = :Given_NodeNumber AND @word@NodeTypeID = :Given_TypeID
-- by name
UPDATE @table@
   SET @word@NodeType = :New_Type, @word@NodeNumber = :New_NodeNumber
 WHERE ConfigID = :Given_ConfigID AND PartID = :Given_PartID
   AND @word@NodeNumber = :Given_NodeNumber AND @word@NodeType = :Given_Type
-- end of statement
