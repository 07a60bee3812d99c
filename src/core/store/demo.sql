-- Reference data and the phone menu of an imaginary coffee roaster with three cafés. It is meant to be looked at and
-- to hold one of every case that the editor treats differently. Everything is in configuration 1: partition 2 is
-- the company's line, partition 1 a small one to compare with.

-- The names stand in the lists as "MSG 12", so they are short. HOLD is a type of which this editor cannot make nodes.
INSERT INTO SR_Node_Type_Names (ID, English_Name) VALUES
    (0, 'MSG'), (1, 'CMD'), (2, 'TIME'), (3, 'DATE'), (4, 'XFER'), (5, 'HOLD'), (6, 'DTMF'), (7, 'VOX'),
    (8, 'LIST'), (9, 'AUTO'), (12, 'PAAS'), (13, 'TABLE'), (15, 'DBN'),
    (814, 'NONE'), (816, 'SPEAK'), (817, 'M_ON'), (818, 'M_OFF'), (999, 'EMPTY');

-- What an AUTO node may refer to: a prompt (7) has to be something that can be heard, an action (6) may be anything,
-- and of the exceptions Timeout (1), Invalid (3), Abort (5), * (8) and # (9) only Invalid may speak what was keyed.
INSERT INTO SR_Node_Type_can_contain_Node_Type (Parent_Node_Type_ID, Set_ID, Child_Node_Type_ID) VALUES
    (9, 7, 0), (9, 7, 2), (9, 7, 8), (9, 7, 816), (9, 7, 817), (9, 7, 818), (9, 7, 999),

    (9, 6, 0), (9, 6, 1), (9, 6, 2), (9, 6, 3), (9, 6, 4), (9, 6, 5), (9, 6, 6), (9, 6, 7), (9, 6, 8), (9, 6, 9),
    (9, 6, 12), (9, 6, 13), (9, 6, 15), (9, 6, 816), (9, 6, 817), (9, 6, 818), (9, 6, 999),

    (9, 1, 0), (9, 1, 1), (9, 1, 2), (9, 1, 4), (9, 1, 8), (9, 1, 9), (9, 1, 13), (9, 1, 15), (9, 1, 814),
    (9, 3, 0), (9, 3, 1), (9, 3, 2), (9, 3, 4), (9, 3, 8), (9, 3, 9), (9, 3, 13), (9, 3, 15), (9, 3, 814), (9, 3, 816),
    (9, 5, 0), (9, 5, 1), (9, 5, 2), (9, 5, 4), (9, 5, 8), (9, 5, 9), (9, 5, 13), (9, 5, 15), (9, 5, 814),
    (9, 8, 0), (9, 8, 1), (9, 8, 2), (9, 8, 4), (9, 8, 8), (9, 8, 9), (9, 8, 13), (9, 8, 15), (9, 8, 814),
    (9, 9, 0), (9, 9, 1), (9, 9, 2), (9, 9, 4), (9, 9, 8), (9, 9, 9), (9, 9, 13), (9, 9, 15), (9, 9, 814);

-- 0 means that the partition has no nodes of the type. Partition 2 had tables once: AUTO 5 still refers to one.
-- From 814 on the types have no limits here, their numbers follow other rules.
INSERT INTO Node_Type_Max (Config_ID, PartitionID, NodeType_ID, Max_Number) VALUES
    (1, 2, 0, 250), (1, 2, 1, 40), (1, 2, 2, 20), (1, 2, 3, 20), (1, 2, 4, 60), (1, 2, 5, 5), (1, 2, 6, 30),
    (1, 2, 7, 10), (1, 2, 8, 15), (1, 2, 9, 40), (1, 2, 12, 8), (1, 2, 13, 0), (1, 2, 15, 10),

    (1, 1, 0, 30), (1, 1, 1, 0), (1, 1, 2, 0), (1, 1, 3, 0), (1, 1, 4, 0), (1, 1, 5, 0), (1, 1, 6, 0),
    (1, 1, 7, 0), (1, 1, 8, 0), (1, 1, 9, 5), (1, 1, 12, 0), (1, 1, 13, 0), (1, 1, 15, 0);

-- Number 0 of a type is the template of which new nodes are copies, here and below.
-- The company's extensions are 601 to 660, one transfer each, so that all 60 numbers of the type are taken.
WITH Transfer (Number, Label) AS (VALUES
    (0, 'Transfer template'),
    (1, 'Operator'), (2, 'Sales'), (3, 'Wholesale'), (4, 'Machine service'), (5, 'Accounts, A to L'),
    (6, 'Accounts, M to Z'), (7, 'Café Zürich'), (8, 'Café Genève'), (9, 'Café Bern'), (10, 'Human resources'),
    (11, 'Roastery'), (12, 'Night porter'),
    (13, 'Anna Keller'), (14, 'Beat Brönnimann'), (15, 'Carla Rossi'), (16, 'Céline Dubois'),
    (17, 'Daniel Meier'), (18, 'Elif Yılmaz'), (19, 'Erik Sørensen'), (20, 'Fabienne Rochat'),
    (21, 'Franz Gübeli'), (22, 'Gianni Bernasconi'), (23, 'Hélène Favre'), (24, 'Jan Dvořák'),
    (25, 'Jörg Zürcher'), (26, 'José Núñez'), (27, 'Karin Frei'), (28, 'Kathleen O''Brien'),
    (29, 'Lars Nyström'), (30, 'Laura Huber'), (31, 'Luca Ferrari'), (32, 'Maëlle Perrin'),
    (33, 'Marco Zanetti'), (34, 'Margrit Hürlimann'), (35, 'Martin Schneider'), (36, 'Mateusz Łukasik'),
    (37, 'Monika Graf'), (38, 'Nadia Bühler'), (39, 'Noémie Girard'), (40, 'Olivier Chevalley'),
    (41, 'Patrick d''Amico'), (42, 'Petra Wüthrich'), (43, 'Rahel Steiner'), (44, 'René Aebischer'),
    (45, 'Reto Caduff'), (46, 'Sabine Krähenbühl'), (47, 'Sandro Conti'), (48, 'Simon Baumann'),
    (49, 'Sofia Pereira'), (50, 'Stefan Müller'), (51, 'Susanne Weiß'), (52, 'Thomas Gerber'),
    (53, 'Ueli Ammann'), (54, 'Urs Lüthi'), (55, 'Valérie Monnier'), (56, 'Vreni Stähli'),
    (57, 'Walter Müller'), (58, 'Yves Berset'), (59, 'Zoë Marti'), (60, 'Željko Horvat')
)
INSERT INTO Node_XFER (ConfigID, PartID, NodeTypeID, NodeNumber, StyleNodeNumber, HoldNodeType, HoldNodeNumber, Dial,
       MOHNodeType, MOHNodeNumber, Busy1NodeType, Busy1NodeNumber, Busy2NodeType, Busy2NodeNumber,
       NoAnswerNodeType, NoAnswerNodeNumber, AnswerNodeType, AnswerNodeNumber, NodeType, NodeDescription)
SELECT 1, 2, 4, Number, 1, 'MSG', 4, CASE WHEN Number > 0 THEN CAST(600 + Number AS TEXT) END,
       'HOLD', 1, 'MSG', 7, 'MSG', 35,
       'MSG', 8, 'NONE', 0, 'XFER', Label
  FROM Transfer;

-- A message's file is named after its partition and number. MSG 1 is where unchanged exceptions lead.
-- MSG 50 has no label. From 163 on there is a spoken name for every person with an extension.
WITH Message (PartID, Number, Label) AS (
    VALUES
    (2, 0, 'Message template'),

    (2, 1, 'Goodbye'), (2, 2, 'Welcome, main menu'),
    (2, 3, 'Today''s specials'), (2, 4, 'Please hold the line'),
    (2, 5, 'No choice was made'), (2, 6, 'Invalid choice, try again'),
    (2, 7, 'The line is busy'), (2, 8, 'Nobody answers'),
    (2, 9, 'One moment, please'),

    (2, 10, 'Opening hours'), (2, 11, 'Opening hours, Zürich'),
    (2, 12, 'Opening hours, Genève'), (2, 13, 'Opening hours, Bern'),
    (2, 14, 'Closed today'), (2, 15, 'Good morning'),
    (2, 16, 'Good evening'), (2, 17, 'Address, Café Zürich'),
    (2, 18, 'Address, Café Genève'), (2, 19, 'Address, Café Bern'),
    (2, 20, 'How to get here by tram'),

    (2, 21, 'Sales menu'), (2, 22, 'Wholesale prices'),
    (2, 23, 'This month''s roast'), (2, 24, 'Gift vouchers'),
    (2, 25, 'Delivery times'), (2, 26, 'Support menu'),
    (2, 27, 'How to descale a machine'), (2, 28, 'Grinder settings'),
    (2, 29, 'Have your serial number ready'), (2, 30, 'Spare parts'),
    (2, 31, 'Enter your customer number'), (2, 32, 'Enter your PIN'),
    (2, 33, 'The PIN is wrong'),

    (2, 34, 'After hours menu'), (2, 35, 'Leave a message'),
    (2, 36, 'Your message is saved'), (2, 37, 'Emergency numbers'),
    (2, 38, 'Für Deutsch die Eins'), (2, 39, 'Français : tapez deux'),
    (2, 40, 'For English press three'), (2, 41, 'Voice of Müller, menu'),
    (2, 42, 'Voice of Müller, episode 1'), (2, 43, 'Voice of Müller, episode 2'),
    (2, 44, 'Voice of Müller, trailer'),

    (2, 45, 'Accounts menu'), (2, 46, 'How to pay a bill'),
    (2, 47, 'Jobs menu'), (2, 48, 'Open positions'),
    (2, 49, 'Say yes or no'), (2, 50, NULL),
    (2, 51, 'Order status menu'), (2, 52, 'Your order is being roasted'),
    (2, 53, 'Your order has left the house'), (2, 54, 'Events menu'),
    (2, 55, 'Reservations menu'), (2, 56, 'Your table is reserved'),
    (2, 57, 'Baristas'' courses, dates'), (2, 58, 'Baristas'' courses, menu'),
    (2, 59, 'Microphone test'), (2, 60, 'Directory, introduction'),
    (2, 61, 'Directory, dial now'),

    (1, 0, 'Message template'),
    (1, 1, 'Head office, goodbye'),
    (1, 2, 'Head office, welcome'),
    (1, 3, 'Head office is closed')

    UNION ALL
    SELECT 2, 150 + NodeNumber, 'Directory, ' || NodeDescription FROM Node_XFER WHERE NodeNumber BETWEEN 13 AND 60
)
INSERT INTO Node_MSG (ConfigID, PartID, NodeTypeID, NodeNumber, MaxLength, OnOff, DTMF, Password, Directory,
       VexoFilename, Comment, SkipCount, Permission, WarningTone, LineAssignment, NodeType, NodeDescription, MSGArchive)
SELECT 1, PartID, 0, Number, 120, 'On', 'Yes', '', 'Prompts',
       'P0' || PartID || 'M' || SUBSTR(CAST(1000 + Number AS TEXT), 2) || '.wav',
       '', 5, 'Play', 'No', 'All', 'MSG', Label, 'No'
  FROM Message;

-- The other types: as many nodes as the menus need, and a template each.
INSERT INTO Node_CMD (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription) VALUES
    (1, 2, 1, 0, 'CMD', 'Command template'),
    (1, 2, 1, 1, 'CMD', 'Dial the extension'),
    (1, 2, 1, 2, 'CMD', 'Auf Deutsch weiter'),
    (1, 2, 1, 3, 'CMD', 'Continuer en français'),
    (1, 2, 1, 4, 'CMD', 'Go on in English'),
    (1, 2, 1, 5, 'CMD', 'Hang up');
INSERT INTO Detail_CMD (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 9), (1, 2, 1, 2, 15, 'DBN', 1),
    (1, 2, 2, 1, 816, 'SPEAK', 41), (1, 2, 2, 2, 9, 'AUTO', 1),
    (1, 2, 3, 1, 816, 'SPEAK', 33), (1, 2, 3, 2, 9, 'AUTO', 1),
    (1, 2, 4, 1, 816, 'SPEAK', 44), (1, 2, 4, 2, 9, 'AUTO', 1),
    (1, 2, 5, 1, 0, 'MSG', 1);

INSERT INTO Node_TIME (ConfigID, PartID, NodeTypeID, NodeNumber, StartTime, StopTime, NodeType, NodeDescription) VALUES
    (1, 2, 2, 0, '00:00', '23:59', 'TIME', 'Time template'),
    (1, 2, 2, 1, '05:00', '12:00', 'TIME', 'Greeting by time of day'),
    (1, 2, 2, 2, '08:00', '18:00', 'TIME', 'Office open'),
    (1, 2, 2, 3, '12:00', '13:30', 'TIME', 'Lunch break'),
    (1, 2, 2, 4, '07:00', '22:00', 'TIME', 'Cafés open');
INSERT INTO Detail_TIME (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 15), (1, 2, 1, 2, 0, 'MSG', 16),
    (1, 2, 2, 1, 9, 'AUTO', 1), (1, 2, 2, 2, 9, 'AUTO', 10),
    (1, 2, 3, 1, 0, 'MSG', 35), (1, 2, 3, 2, 4, 'XFER', 1),
    (1, 2, 4, 1, 0, 'MSG', 10), (1, 2, 4, 2, 0, 'MSG', 14);

INSERT INTO Node_DATE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, StartDay, StopDay, StartDate, StopDate,
       NodeType, NodeDescription) VALUES
    (1, 2, 3, 0, 'Day', 'Monday', 'Sunday', NULL, NULL, 'DATE', 'Date template'),
    (1, 2, 3, 1, 'Day', 'Saturday', 'Sunday', NULL, NULL, 'DATE', 'Weekend'),
    (1, 2, 3, 2, 'Date', NULL, NULL, '12/24', '01/02', 'DATE', 'Christmas to New Year'),
    (1, 2, 3, 3, 'Date', NULL, NULL, '08/01', '08/01', 'DATE', 'National day');
INSERT INTO Detail_DATE (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 4, 'XFER', 12), (1, 2, 1, 2, 4, 'XFER', 1),
    (1, 2, 2, 1, 0, 'MSG', 14),
    (1, 2, 3, 1, 0, 'MSG', 14);

INSERT INTO Node_DTMF (ConfigID, PartID, NodeTypeID, NodeNumber, DTMFClear, NumberOfDigits, TerminatingDigit,
       SelectionTimeout, DigitTimeout, RetryLimit, TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber,
       InvalidNodeTypeID, InvalidNodeType, InvalidNodeNumber, AbortNodeTypeID, AbortNodeType, AbortNodeNumber,
       NodeType, NodeDescription) VALUES
    (1, 2, 6, 0, 'Yes', 1, 'No', 5, 3, 3, 0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 'DTMF', 'Digit template'),
    (1, 2, 6, 1, 'Yes', 6, '#', 10, 4, 2, 0, 'MSG', 5, 0, 'MSG', 6, 0, 'MSG', 1, 'DTMF', 'Customer number'),
    (1, 2, 6, 2, 'Yes', 4, '#', 10, 4, 2, 0, 'MSG', 5, 0, 'MSG', 33, 0, 'MSG', 1, 'DTMF', 'PIN for wholesale');
INSERT INTO Detail_DTMF_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 31),
    (1, 2, 2, 1, 0, 'MSG', 32);
INSERT INTO Detail_DTMF_Action (ConfigID, PartID, NodeMasterID, SequenceNo, DTMFDigitCollected, NodeTypeID, NodeType,
       NodeNumber) VALUES
    (1, 2, 0, 1, '1', 0, 'MSG', 1),
    (1, 2, 1, 1, '1', 4, 'XFER', 5), (1, 2, 1, 2, '2', 4, 'XFER', 6),
    (1, 2, 2, 1, '1', 4, 'XFER', 3);

INSERT INTO Node_VOX (ConfigID, PartID, NodeTypeID, NodeNumber, Beep, Threshold, Wait, RetryLimit,
       TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, AbortNodeTypeID, AbortNodeType, AbortNodeNumber,
       DTMFNodeTypeID, DTMFNodeType, DTMFNodeNumber, NodeType, NodeDescription) VALUES
    (1, 2, 7, 0, 'Yes', 'Medium', '2', 3, 0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 'VOX', 'Voice template'),
    (1, 2, 7, 1, 'Yes', 'Low', '3', 2, 0, 'MSG', 5, 0, 'MSG', 1, 6, 'DTMF', 1, 'VOX', 'Say yes or no');
INSERT INTO Detail_VOX_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 49);
INSERT INTO Detail_VOX_Action (ConfigID, PartID, NodeMasterID, SequenceNo, PromptNodeTypeID, PromptNodeType,
       PromptNodeNumber, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 9, 4, 'XFER', 12), (1, 2, 1, 2, 0, 'MSG', 1, 1, 'CMD', 5);

INSERT INTO Node_LIST (ConfigID, PartID, NodeTypeID, NodeNumber, ListMode, NodeType, NodeDescription) VALUES
    (1, 2, 8, 0, 'Sequence', 'LIST', 'List template'),
    (1, 2, 8, 1, 'Sequence', 'LIST', 'Addresses of the cafés'),
    (1, 2, 8, 2, 'Random', 'LIST', 'Voice of Müller, archive'),
    (1, 2, 8, 3, 'Sequence', 'LIST', 'Opening hours of the cafés');
INSERT INTO Detail_LIST (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 17), (1, 2, 1, 2, 0, 'MSG', 18), (1, 2, 1, 3, 0, 'MSG', 19), (1, 2, 1, 4, 0, 'MSG', 20),
    (1, 2, 2, 1, 0, 'MSG', 42), (1, 2, 2, 2, 0, 'MSG', 43),
    (1, 2, 3, 1, 0, 'MSG', 11), (1, 2, 3, 2, 0, 'MSG', 12), (1, 2, 3, 3, 0, 'MSG', 13);

INSERT INTO Node_PAAS (ConfigID, PartID, NodeTypeID, NodeNumber, Card, Line, Priority, Interrupt, NodeType,
       NodeDescription) VALUES
    (1, 2, 12, 0, '1', '1', 'Normal', 'No', 'PAAS', 'Paging template'),
    (1, 2, 12, 1, '1', '2', 'High', 'Yes', 'PAAS', 'Page the roastery'),
    (1, 2, 12, 2, '1', '3', 'Normal', 'No', 'PAAS', 'Page Café Zürich');

-- TABLE 1 is the one left over from when the partition had tables.
INSERT INTO Node_TABLE (ConfigID, PartID, NodeTypeID, NodeNumber, Mode, Reference, InvalidNodeTypeID, InvalidNodeType,
       InvalidNodeNumber, ContinueNodeTypeID, ContinueNodeType, ContinueNodeNumber, NodeType, NodeDescription) VALUES
    (1, 2, 13, 0, 'Digits', '', 0, 'MSG', 1, 0, 'MSG', 1, 'TABLE', 'Table template'),
    (1, 2, 13, 1, 'Digits', 'Orders', 0, 'MSG', 6, 4, 'XFER', 2, 'TABLE', 'Orders by number');
INSERT INTO Detail_TABLE_Action (ConfigID, PartID, NodeMasterID, SequenceNo, StartRange, EndRange, NodeTypeID,
       NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, '0', '9', 0, 'MSG', 1),
    (1, 2, 1, 1, '1000', '4999', 0, 'MSG', 52), (1, 2, 1, 2, '5000', '9999', 0, 'MSG', 53);

WITH DialByName (Number, Label) AS (VALUES (0, 'Dial-by-name template'), (1, 'Dial by name'))
INSERT INTO Node_DBN (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription,
       Method, DirectoryNodeNumber, FirstLanguage, SecondLanguage, DigitTimeout, SelectionTimeout, RetryLimit,
       Confirm, MaxMatch, PlayName, FirstMode, FirstMinDigits, FirstMaxDigits, SecondMode, SecondMinDigits,
       SecondMaxDigits, GreetingNodeTypeID, GreetingNodeType, GreetingNodeNumber,
       FirstPromptNodeTypeID, FirstPromptNodeType, FirstPromptNodeNumber,
       SecondPromptNodeTypeID, SecondPromptNodeType, SecondPromptNodeNumber,
       BeforePromptNodeTypeID, BeforePromptNodeType, BeforePromptNodeNumber,
       AfterPromptNodeTypeID, AfterPromptNodeType, AfterPromptNodeNumber,
       ValidMatchNodeTypeID, ValidMatchNodeType, ValidMatchNodeNumber,
       ConfirmationExitNodeTypeID, ConfirmationExitNodeType, ConfirmationExitNodeNumber,
       TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeTypeID, InvalidNodeType, InvalidNodeNumber,
       AbortNodeTypeID, AbortNodeType, AbortNodeNumber, ZeroNodeTypeID, ZeroNodeType, ZeroNodeNumber,
       StarNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeTypeID, PoundNodeType, PoundNodeNumber)
SELECT 1, 2, 15, Number, 'DBN', Label,
       'Last name', 1, 'German', 'French', 3, 8, 3,
       'Yes', 5, 'Yes', 'Letters', 3, 8, 'Letters', 3,
       8, 0, 'MSG', 60,
       0, 'MSG', 61,
       0, 'MSG', 61,
       0, 'MSG', 9,
       0, 'MSG', 9,
       4, 'XFER', 1,
       0, 'MSG', 1,
       0, 'MSG', 5, 0, 'MSG', 6,
       0, 'MSG', 1, 4, 'XFER', 1,
       814, 'NONE', 0, 814, 'NONE', 0
  FROM DialByName;
INSERT INTO Detail_DBN_Prompts (ConfigID, PartID, NodeMasterID, PromptNumber, PromptNodeTypeID, PromptNodeType,
       PromptNodeNumber) VALUES
    (1, 2, 0, 1, 0, 'MSG', 1),
    (1, 2, 1, 1, 0, 'MSG', 60), (1, 2, 1, 2, 0, 'MSG', 61);

-- The menus. AUTO 2 has nothing but its defaults, AUTO 3 Null wherever that can be, and there is no AUTO 25.
-- AUTO 6 refers to nodes that do not exist; the same message is missing there under several types.
INSERT INTO Node_AUTO (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription,
       NumberOfDigits, TerminatingDigit, RetryLimit, SelectionTimeout, DigitTimeout,
       TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber, InvalidNodeTypeID, InvalidNodeType, InvalidNodeNumber,
       AbortNodeTypeID, AbortNodeType, AbortNodeNumber, StarNodeTypeID, StarNodeType, StarNodeNumber,
       PoundNodeTypeID, PoundNodeType, PoundNodeNumber) VALUES
    (1, 2, 9, 0, 'AUTO', 'Menu template', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 1, 'AUTO', 'Main menu', 3, '#', 3, 8, 2,
     4, 'XFER', 1, 0, 'MSG', 6, 0, 'MSG', 1, 9, 'AUTO', 11, 814, 'NONE', 0),
    (1, 2, 9, 2, 'AUTO', 'Not built yet', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 3, 'AUTO', NULL, NULL, NULL, NULL, NULL, NULL,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 4, 'AUTO', 'Extension directory', 3, 'No', 3, 15, 4,
     4, 'XFER', 1, 0, 'MSG', 6, 0, 'MSG', 1, 15, 'DBN', 1, 9, 'AUTO', 1),
    (1, 2, 9, 5, 'AUTO', 'Order status', 4, '#', 2, 10, 4,
     0, 'MSG', 5, 13, 'TABLE', 1, 0, 'MSG', 1, 9, 'AUTO', 8, 814, 'NONE', 0),
    (1, 2, 9, 6, 'AUTO', 'Events', 2, '*', 3, 8, 3,
     0, 'MSG', 242, 816, 'SPEAK', 100, 9, 'AUTO', 33, 4, 'XFER', 1, 814, 'NONE', 0),
    (1, 2, 9, 7, 'AUTO', 'Seasonal offers', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 8, 'AUTO', 'Sales', 1, 'No', 3, 8, 3,
     4, 'XFER', 2, 0, 'MSG', 6, 0, 'MSG', 1, 9, 'AUTO', 1, 814, 'NONE', 0),
    (1, 2, 9, 9, 'AUTO', 'Support', 1, '*/#', 2, 10, 3,
     4, 'XFER', 4, 816, 'SPEAK', 7, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 10, 'AUTO', 'After hours', 1, 'No', 1, 6, 2,
     0, 'MSG', 35, 0, 'MSG', 6, 1, 'CMD', 5, 2, 'TIME', 2, 814, 'NONE', 0),
    (1, 2, 9, 11, 'AUTO', 'Language selection', 1, 'No', 5, 5, 1,
     1, 'CMD', 2, 1, 'CMD', 2, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 12, 'AUTO', 'Voice of Müller', 2, '#', 0, 20, 5,
     8, 'LIST', 2, 0, 'MSG', 6, 0, 'MSG', 1, 9, 'AUTO', 1, 814, 'NONE', 0),
    (1, 2, 9, 13, 'AUTO', 'Accounts', 6, '#', 2, 30, 5,
     4, 'XFER', 1, 0, 'MSG', 6, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 14, 'AUTO', 'Jobs', 1, 'No', 3, 5, 3,
     0, 'MSG', 5, 0, 'MSG', 6, 0, 'MSG', 1, 9, 'AUTO', 1, 814, 'NONE', 0),
    (1, 2, 9, 15, 'AUTO', 'Réservations, Café Genève', 1, '*', 3, 8, 3,
     4, 'XFER', 8, 0, 'MSG', 6, 0, 'MSG', 1, 814, 'NONE', 0, 9, 'AUTO', 1),
    (1, 2, 9, 20, 'AUTO', 'Baristas'' courses', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 2, 9, 40, 'AUTO', 'Line test, longest times', 7, '*/#', 5, 60, 15,
     0, 'MSG', 59, 0, 'MSG', 59, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),

    (1, 1, 9, 0, 'AUTO', 'Menu template', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 1, 9, 1, 'AUTO', 'Head office, by day', 1, 'No', 3, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 814, 'NONE', 0, 814, 'NONE', 0),
    (1, 1, 9, 2, 'AUTO', 'Head office, by night', 1, 'No', 1, 5, 3,
     0, 'MSG', 1, 0, 'MSG', 1, 0, 'MSG', 1, 9, 'AUTO', 1, 814, 'NONE', 0);

-- AUTO 7 has what stands for a prompt that is still to be chosen; so has the template, which every new menu copies.
-- AUTO 15 has gaps in its sequence, as other programs may leave them.
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, 999, 'EMPTY', 1),
    (1, 2, 1, 1, 2, 'TIME', 1), (1, 2, 1, 2, 0, 'MSG', 2), (1, 2, 1, 3, 0, 'MSG', 3),
    (1, 2, 3, 1, 0, 'MSG', 50),
    (1, 2, 5, 1, 0, 'MSG', 51),
    (1, 2, 6, 1, 0, 'MSG', 54), (1, 2, 6, 2, 0, 'MSG', 240), (1, 2, 6, 3, 817, 'M_ON', 241),
    (1, 2, 6, 4, 2, 'TIME', 19), (1, 2, 6, 5, 8, 'LIST', 14),
    (1, 2, 7, 1, 999, 'EMPTY', 1),
    (1, 2, 8, 1, 0, 'MSG', 21), (1, 2, 8, 2, 0, 'MSG', 23),
    (1, 2, 9, 1, 0, 'MSG', 26), (1, 2, 9, 2, 816, 'SPEAK', 24), (1, 2, 9, 3, 0, 'MSG', 29),
    (1, 2, 10, 1, 0, 'MSG', 34), (1, 2, 10, 2, 8, 'LIST', 3),
    (1, 2, 11, 1, 0, 'MSG', 38), (1, 2, 11, 2, 0, 'MSG', 39), (1, 2, 11, 3, 0, 'MSG', 40),
    (1, 2, 12, 1, 817, 'M_ON', 44), (1, 2, 12, 2, 0, 'MSG', 41), (1, 2, 12, 3, 818, 'M_OFF', 44),
    (1, 2, 13, 1, 0, 'MSG', 45), (1, 2, 13, 2, 0, 'MSG', 31),
    (1, 2, 14, 1, 0, 'MSG', 47),
    (1, 2, 15, 1, 0, 'MSG', 55), (1, 2, 15, 3, 0, 'MSG', 12), (1, 2, 15, 7, 2, 'TIME', 4),
    (1, 2, 20, 1, 0, 'MSG', 58),
    (1, 2, 40, 1, 0, 'MSG', 59), (1, 2, 40, 2, 816, 'SPEAK', 999),

    (1, 1, 0, 1, 999, 'EMPTY', 1),
    (1, 1, 1, 1, 0, 'MSG', 2),
    (1, 1, 2, 1, 0, 'MSG', 3);

-- Ranges need not be single digits or of one length, and leading zeros count (AUTO 13).
INSERT INTO Detail_AUTO_Action (ConfigID, PartID, NodeMasterID, SequenceNo, DTMFRangeLow, DTMFRangeHigh, NodeTypeID,
       NodeType, NodeNumber) VALUES
    (1, 2, 0, 1, '0', '0', 4, 'XFER', 1),

    (1, 2, 1, 1, '1', '1', 9, 'AUTO', 8),
    (1, 2, 1, 2, '2', '2', 9, 'AUTO', 9),
    (1, 2, 1, 3, '3', '3', 0, 'MSG', 10),
    (1, 2, 1, 4, '4', '4', 8, 'LIST', 1),
    (1, 2, 1, 5, '5', '5', 9, 'AUTO', 12),
    (1, 2, 1, 6, '601', '660', 1, 'CMD', 1),
    (1, 2, 1, 7, '7', '8', 9, 'AUTO', 4),
    (1, 2, 1, 8, '9', '9', 15, 'DBN', 1),
    (1, 2, 1, 9, '0', '0', 4, 'XFER', 1),

    (1, 2, 3, 1, NULL, NULL, 0, 'MSG', 50),

    (1, 2, 5, 1, '1000', '9999', 13, 'TABLE', 1),
    (1, 2, 5, 2, '1', '1', 0, 'MSG', 52),
    (1, 2, 5, 3, '2', '2', 0, 'MSG', 53),

    (1, 2, 6, 1, '1', '1', 0, 'MSG', 240),
    (1, 2, 6, 2, '2', '2', 1, 'CMD', 30),
    (1, 2, 6, 3, '3', '3', 818, 'M_OFF', 241),
    (1, 2, 6, 4, '4', '4', 5, 'HOLD', 4),
    (1, 2, 6, 5, '5', '5', 3, 'DATE', 18),
    (1, 2, 6, 6, '6', '6', 6, 'DTMF', 21),
    (1, 2, 6, 7, '7', '7', 7, 'VOX', 9),
    (1, 2, 6, 8, '8', '8', 12, 'PAAS', 7),
    (1, 2, 6, 9, '9', '9', 15, 'DBN', 8),
    (1, 2, 6, 10, '10', '19', 9, 'AUTO', 33),
    (1, 2, 6, 11, '0', '0', 4, 'XFER', 1),

    (1, 2, 8, 1, '1', '1', 6, 'DTMF', 2),
    (1, 2, 8, 2, '2', '2', 0, 'MSG', 22),
    (1, 2, 8, 3, '3', '3', 0, 'MSG', 24),
    (1, 2, 8, 4, '4', '4', 0, 'MSG', 25),
    (1, 2, 8, 5, '5', '5', 9, 'AUTO', 5),
    (1, 2, 8, 6, '6', '6', 9, 'AUTO', 20),
    (1, 2, 8, 7, '9', '9', 9, 'AUTO', 1),
    (1, 2, 8, 8, '0', '0', 4, 'XFER', 2),

    (1, 2, 9, 1, '1', '1', 0, 'MSG', 27),
    (1, 2, 9, 2, '2', '2', 0, 'MSG', 28),
    (1, 2, 9, 3, '3', '3', 0, 'MSG', 30),
    (1, 2, 9, 4, '4', '4', 5, 'HOLD', 1),
    (1, 2, 9, 5, '5', '8', 4, 'XFER', 4),
    (1, 2, 9, 6, '9', '9', 9, 'AUTO', 1),

    (1, 2, 10, 1, '1', '1', 3, 'DATE', 1),
    (1, 2, 10, 2, '2', '2', 12, 'PAAS', 1),
    (1, 2, 10, 3, '3', '3', 0, 'MSG', 37),
    (1, 2, 10, 4, '4', '4', 7, 'VOX', 1),
    (1, 2, 10, 5, '0', '0', 4, 'XFER', 12),

    (1, 2, 11, 1, '1', '1', 1, 'CMD', 2),
    (1, 2, 11, 2, '2', '2', 1, 'CMD', 3),
    (1, 2, 11, 3, '3', '3', 1, 'CMD', 4),

    (1, 2, 12, 1, '1', '1', 0, 'MSG', 42),
    (1, 2, 12, 2, '2', '2', 0, 'MSG', 43),
    (1, 2, 12, 3, '10', '99', 8, 'LIST', 2),
    (1, 2, 12, 4, '7', '7', 817, 'M_ON', 44),
    (1, 2, 12, 5, '8', '8', 818, 'M_OFF', 44),
    (1, 2, 12, 6, '9', '9', 816, 'SPEAK', 12),

    (1, 2, 13, 1, '007', '007', 0, 'MSG', 46),
    (1, 2, 13, 2, '000100', '004999', 4, 'XFER', 5),
    (1, 2, 13, 3, '005000', '009999', 4, 'XFER', 6),
    (1, 2, 13, 4, '100000', '999999', 6, 'DTMF', 1),
    (1, 2, 13, 5, '0', '0', 4, 'XFER', 1),

    (1, 2, 14, 1, '1', '1', 0, 'MSG', 48),
    (1, 2, 14, 2, '2', '2', 4, 'XFER', 10),
    (1, 2, 14, 3, '3', '3', 999, 'EMPTY', 1),

    (1, 2, 15, 1, '1', '1', 0, 'MSG', 56),
    (1, 2, 15, 3, '2', '2', 0, 'MSG', 18),
    (1, 2, 15, 7, '3', '3', 2, 'TIME', 3),

    (1, 2, 20, 1, '1', '4', 0, 'MSG', 57),
    (1, 2, 20, 2, '9', '9', 9, 'AUTO', 8),

    (1, 2, 40, 1, '0000000', '9999999', 816, 'SPEAK', 0),

    (1, 1, 0, 1, '0', '0', 0, 'MSG', 1),
    (1, 1, 1, 1, '1', '1', 9, 'AUTO', 2),
    (1, 1, 1, 2, '2', '2', 0, 'MSG', 3),
    (1, 1, 2, 1, '1', '1', 9, 'AUTO', 1);

-- AUTO 4 is the large one, to scroll and to measure: the introduction, 28 spoken names and "dial now" as prompts,
-- and an action for each of the 60 extensions.
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber) VALUES
    (1, 2, 4, 1, 0, 'MSG', 60), (1, 2, 4, 30, 0, 'MSG', 61);
INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType, NodeNumber)
SELECT ConfigID, PartID, 4, NodeNumber - 161, NodeTypeID, NodeType, NodeNumber
  FROM Node_MSG
 WHERE PartID = 2 AND NodeNumber BETWEEN 163 AND 190;
INSERT INTO Detail_AUTO_Action (ConfigID, PartID, NodeMasterID, SequenceNo, DTMFRangeLow, DTMFRangeHigh, NodeTypeID,
       NodeType, NodeNumber)
SELECT ConfigID, PartID, 4, NodeNumber, Dial, Dial, NodeTypeID, NodeType, NodeNumber
  FROM Node_XFER
 WHERE PartID = 2 AND NodeNumber > 0;

-- The register: every node once, under its own label. HOLD nodes are kept by another program and only known here.
INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, DateModified)
          SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '09/14/26' FROM Node_MSG
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '09/15/26' FROM Node_CMD
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '09/15/26' FROM Node_TIME
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '09/15/26' FROM Node_DATE
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/02/26' FROM Node_XFER
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/02/26' FROM Node_DTMF
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/02/26' FROM Node_VOX
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/02/26' FROM Node_LIST
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/05/26' FROM Node_PAAS
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/05/26' FROM Node_TABLE
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, '10/05/26' FROM Node_DBN
UNION ALL SELECT ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription,
                 CASE WHEN NodeDescription IS NOT NULL THEN '11/24/26' END FROM Node_AUTO;
INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, NodeDescription, DateModified) VALUES
    (1, 2, 5, 1, 'HOLD', 'Music on hold', '10/05/26'),
    (1, 2, 5, 2, 'HOLD', 'Silence on hold', '10/05/26');
