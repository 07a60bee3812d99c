#include "RunProgram.h"
#include "StoredNode.h"
#include "testing/FaultySystem.h"
#include "testing/Person.h"

namespace KAL_AUTO_Node {
namespace {

// The lists as they are stored: A, the actions, then P, the prompts.
Texts Details(const TestStore& store, int node) {
    const std::string own = " WHERE ConfigID = 1 AND PartID = 2 AND NodeMasterID = " + std::to_string(node);
    return store.Rows("SELECT 'A' || SequenceNo AS Place, NodeTypeID, NodeType, NodeNumber,"
                      " DTMFRangeLow || '-' || DTMFRangeHigh FROM Detail_AUTO_Action" +
                      own +
                      " UNION ALL SELECT"
                      " 'P' || SequenceNo, NodeTypeID, NodeType, NodeNumber, '' FROM Detail_AUTO_Prompts" +
                      own + " ORDER BY Place");
}

// The label of AUTO 8 in its record and in the register.
std::string Labels(const TestStore& store) {
    return store.Value("SELECT Node_AUTO.NodeDescription, Node_General_Pool.NodeDescription FROM Node_AUTO"
                       " JOIN Node_General_Pool USING (ConfigID, PartID, NodeTypeID, NodeNumber)"
                       " WHERE ConfigID = 1 AND PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8");
}

// AUTO 15 has gaps in its sequence numbers; its five exceptions get different types, so that no two values of
// the record can change places unseen.
TEST(Saving, WritesTheNodeAsItStandsInTheWindow) {
    const TestStore store;
    store.Execute("UPDATE Node_AUTO SET NodeType = 'old', TimeoutNodeType = 'old' WHERE NodeNumber = 15;"
                  "UPDATE Detail_AUTO_Prompts SET NodeType = 'old' WHERE NodeMasterID = 15");
    Person person;
    Texts told;
    EXPECT_TRUE(person.Edit(15, [&] {
        Person::TypeLabel("Table reservations");
        Person::Choose("cmbNumDigits", "4");
        Person::Choose("cmbTermDigit", "*/#");
        Person::Choose("cmbRetryLimit", "2");
        Person::Choose("cmbSelTimeOut", "42");
        Person::Choose("cmbDigitTimeOut", "11");

        Person::ClickRow("LVPrompts", 2);
        Person::Press("cmdPromptsUp");
        Person::Press("cmdPromptsAdd");

        Person::ClickRow("LVActions", 1);
        Person::Press("cmdActionsEdit");
        Person::TypeOver("txtActionsDTMFRangeLow", "020");
        Person::TypeOver("txtActionsDTMFRangeHigh", "29");
        Person::Choose("cmbActionsNode", "XFER");
        Person::Choose("cmbActionsNumber", "19");

        Person::ClickRow("LVExceptions", 2);
        Person::Press("cmdExceptionsEdit");
        Person::Choose("cmbExceptionsAbortNode", "CMD");
        Person::Choose("cmbExceptionsAbortNumber", "5");
        Person::ClickRow("LVExceptions", 3);
        Person::Choose("cmbExceptionsStarNode", "DBN");
        Person::ClickRow("LVExceptions", 4);
        Person::Choose("cmbExceptionsPoundNumber", "12");

        Person::WaitForFocus();
        QCoreApplication::processEvents();
        const ToldInStatusBar watch([&](const std::string& text) {
            told.push_back(text);
            EXPECT_FALSE(Person::Find<QFrame>("Frame1")->isEnabled());
            EXPECT_TRUE(told.size() == 1 || Person::Pointer() == Qt::WaitCursor) << text;
        });
        Person::Press("cmdApply");
        EXPECT_FALSE(Person::Dirty());
        Person::ExpectIdle();
    }));
    EXPECT_EQ(told, (Texts{"Checking for duplicate ranges. Please wait...",
                           "Checking for non-existing nodes. Please wait...",
                           "Saving node information. Please wait..."}));
    EXPECT_EQ(
        store.Rows("SELECT NumberOfDigits, TerminatingDigit, RetryLimit, SelectionTimeout, DigitTimeout,"
                   " NodeType, NodeDescription, TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber,"
                   " InvalidNodeTypeID, InvalidNodeType, InvalidNodeNumber, AbortNodeTypeID, AbortNodeType,"
                   " AbortNodeNumber, StarNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeTypeID,"
                   " PoundNodeType, PoundNodeNumber FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 15"),
        Texts{"4|*/#|2|42|11|AUTO|Table reservations|4|XFER|8|0|MSG|6|1|CMD|5|15|DBN|1|9|AUTO|12"});
    EXPECT_EQ(store.Rows("SELECT NodeType, NodeDescription, DateModified FROM Node_General_Pool"
                         " WHERE ConfigID = 1 AND PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 15"),
              Texts{"AUTO|Table reservations|" + ShortDateOfToday()});
    EXPECT_EQ(Details(store, 15), (Texts{"A1|0|MSG|56|1-1", "A2|4|XFER|19|020-29", "A3|2|TIME|3|3-3",
                                         "P1|0|MSG|55|", "P2|2|TIME|4|", "P3|0|MSG|12|", "P4|0|MSG|1|"}));
}

TEST(Saving, StoresListsThatHoldNothingAndLabelsThatHoldAnything) {
    const TestStore store;
    Person person;
    // AUTO 2 has neither prompts nor actions.
    EXPECT_TRUE(person.Edit(2, [&] {
        Person::TypeLabel("Changed");
        Person::Press("cmdApply");
        EXPECT_EQ(Details(store, 2), Texts{});

        Person::Choose("cmbNode", "AUTO 14");
        for (const std::string list : {"Prompts", "Actions"}) {
            Person::List("LV" + list)->selectAll();
            Person::Press("cmd" + list + "Remove");
        }
        Person::Press("cmdApply");
        EXPECT_EQ(Details(store, 14), Texts{"P1|999|EMPTY|1|"}) << "a prompt that is still to be chosen";

        const std::string longest(10000, 'x');
        for (const std::string label : {"O'Brien's'); DROP TABLE Node_AUTO;-- 100% %1 \\n ? :Given_ID @x $1",
                                        "  Żółć 日本語 \U0001F600 e\u0301  ", longest.c_str(), ""}) {
            Person::Choose("cmbNode", "AUTO 8");
            Person::Paste(Person::TextBox("txtDescription"), label);
            Person::Press("cmdApply");
            EXPECT_EQ(Labels(store), label + '|' + label);
            Person::Press("cmdNext");
            Person::Press("cmdPrevious");
            EXPECT_EQ(Person::Label(), label);
        }
        if (!TestStore::OnServer()) {
            store.Execute("DROP TABLE Node_AUTO_Version; DROP TABLE Node_Creation;"
                          "CREATE VIEW Node_Creation AS SELECT 1");
            for (const char* label : {"One", "Two"}) {
                Person::TypeLabel(label);
                Person::Press("cmdApply");
            }
            EXPECT_EQ(person.Boxes(),
                      std::vector{Information(
                          "This store can keep no history, so what is saved here cannot be taken back.")});
            EXPECT_EQ(Labels(store), "Two|Two");
        }
    }));
}

// Each statement of a save fails once. What ran before it stays, unless the person wants the node put back.
// Left are the labels and how many details.
TEST(Saving, ThatFailsHalfWayKeepsWhatWasWrittenOrIsPutBack) {
    constexpr std::array<std::array<const char*, 4>, 6> failures = {{
        {"DELETE ON Detail_AUTO_Prompts", "TRUE", "Delete_AUTO_PromptsNode", "Sales|Sales 10"},
        {"DELETE ON Detail_AUTO_Action", "TRUE", "Delete_AUTO_ActionsNode", "Sales|Sales 8"},
        {"UPDATE ON Node_AUTO", "TRUE", "Update_AUTO_Node", "Sales|Sales 0"},
        {"UPDATE ON Node_General_Pool", "TRUE", "Update_Node_General_Pool", "New|Sales 0"},
        {"INSERT ON Detail_AUTO_Prompts", "NEW.SequenceNo = 2", "Add_AUTO_PromptsNode", "New|New 1"},
        {"INSERT ON Detail_AUTO_Action", "NEW.SequenceNo = 3", "Add_AUTO_ActionsNode", "New|New 4"},
    }};
    const TestStore store;
    store.Execute(
        "UPDATE Detail_AUTO_Action SET SequenceNo = 70, DTMFRangeLow = NULL"
        " WHERE PartID = 2 AND NodeMasterID = 8 AND SequenceNo = 8;"
        "UPDATE Node_AUTO SET RetryLimit = NULL, AbortNodeType = 'old' WHERE PartID = 2 AND NodeNumber = 8");
    const Texts before = StoredNode(store, 8);
    const auto left = [&] { return Labels(store) + ' ' + std::to_string(Details(store, 8).size()); };
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        for (const auto& [statement, condition, command, expected] : failures) {
            for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
                SCOPED_TRACE(std::string(statement) + ", answer " + std::to_string(answer));
                // A server takes all of it back by itself.
                const bool half = statement != failures[0][0] && !TestStore::OnServer();
                store.Refuse(statement, condition);
                Person::TypeLabel("New");
                person.WillAnswer({QMessageBox::Ok});
                if (half) {
                    person.WillAnswer({answer});
                }
                // Putting back meets the same trouble, unless it is over.
                person.LookAtBox = [&](const QMessageBox& box) {
                    if (box.standardButtons() == QMessageBox::Ok) {
                        Person::ExpectIdle();
                    } else {
                        store.Allow();
                    }
                };
                Person::Press("cmdApply");
                const auto boxes = person.Boxes();
                ASSERT_EQ(boxes.size(), half ? 2U : 1U);
                EXPECT_EQ(boxes[0], ErrorBox("Source: " + store.Engine() +
                                             " - SaveChanges \r\nDescription: the disk is on fire (command " +
                                             command + ", " + store.Place() + ")"));
                EXPECT_EQ(Person::Dirty(), !half) << "as after a save, where something of it is written";
                if (!half || answer == QMessageBox::Yes) {
                    EXPECT_EQ(StoredNode(store, 8), before);
                    EXPECT_EQ(Person::Label(), half ? "Sales" : "New");
                    continue;
                }
                EXPECT_EQ(boxes[1].title, "Confirmation");
                EXPECT_EQ(left(), expected);
                // Opened again, it is offered once more.
                person.WillAnswer({QMessageBox::No, QMessageBox::Yes});
                Person::Press("cmdNext");
                Person::Press("cmdPrevious");
                Person::Press("cmdNext");
                Person::Press("cmdPrevious");
                EXPECT_EQ(person.Boxes(), (std::vector{boxes[1], boxes[1]}));
                EXPECT_EQ(StoredNode(store, 8), before);
                EXPECT_EQ(Person::Label(), "Sales");
            }
        }
        // Who saves in order to leave is not held up.
        store.Refuse("UPDATE ON Node_AUTO");
        person.LookAtBox = nullptr;
        Person::TypeLabel("Newer");
        person.WillAnswer({QMessageBox::Yes});
        Person::Press("cmdNext");
        EXPECT_EQ(person.Boxes().size(), TestStore::OnServer() ? 2U : 3U) << "question, report and offer";
        EXPECT_EQ(Person::Text("cmbNode"), TestStore::OnServer() ? "AUTO 8" : "AUTO 9");
        Person::TypeLabel("New");
        Person::Press("cmdOK");
        EXPECT_EQ(person.Boxes().size(), TestStore::OnServer() ? 1U : 2U);
        EXPECT_EQ(Person::Window("GUI")->isVisible(), TestStore::OnServer()) << "nothing is written there";
    }));
}

// Of what somebody else has stored meanwhile the person sees what it is, goes over it, loads it or does
// neither.
TEST(Saving, AsksBeforeItGoesOverWhatSomebodyElseHasStored) {
    const TestStore store;
    Person person;
    person.LookAtBox = [](const QMessageBox& box) {
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No)) << box.text().toStdString();
    };
    EXPECT_TRUE(person.Edit(8, [&] {
        struct Answer {
            std::vector<QMessageBox::StandardButton> given;
            const char* shown;
            const char* stored;
            bool dirty;
        };

        for (const auto& [given, shown, stored, dirty] :
             {Answer{{QMessageBox::No}, "Mine", "Theirs|Theirs", true},
              Answer{{QMessageBox::Discard, QMessageBox::No}, "Mine", "Theirs|Theirs", true},
              Answer{{QMessageBox::Discard, QMessageBox::Yes}, "Theirs", "Theirs|Theirs", false},
              Answer{{QMessageBox::Yes}, "Mine", "Mine|Mine", false}}) {
            Person::TypeLabel("Mine");
            for (const char* table : {"Node_AUTO", "Node_General_Pool"}) {
                store.Execute(std::string("UPDATE ") + table +
                              " SET NodeDescription = 'Theirs' WHERE PartID = 2" +
                              " AND NodeTypeID = 9 AND NodeNumber = 8");
            }
            for (const auto answer : given) {
                person.WillAnswer({answer});
            }
            Person::Press(given.size() == 1 ? "cmdApply" : "cmdOK");
            const auto boxes = person.Boxes();
            ASSERT_EQ(boxes.size(), given.size());
            EXPECT_EQ(boxes[0].text,
                      "AUTO 8 is stored otherwise than the window has loaded it. Another program has "
                      "changed it:\r\nlabel \"Sales\" → \"Theirs\"\r\nin the register label "
                      "\"Sales\" → \"Theirs\"\r\n\r\nDo you want to save over that?");
            EXPECT_EQ(Person::Label() + '/' + Labels(store), std::string(shown) + '/' + stored);
            EXPECT_EQ(Person::Dirty(), dirty);
            ASSERT_TRUE(Person::Window("GUI")->isVisible());
            // As it was.
            for (const char* table : {"Node_AUTO", "Node_General_Pool"}) {
                store.Execute(std::string("UPDATE ") + table +
                              " SET NodeDescription = 'Sales' WHERE PartID = 2" +
                              " AND NodeTypeID = 9 AND NodeNumber = 8");
            }
            if (!dirty) {
                Person::Press("cmdNext");
                Person::Press("cmdPrevious");
            }
        }
        store.Execute("UPDATE Detail_AUTO_Prompts SET SequenceNo = SequenceNo + 9 WHERE NodeMasterID = 8");
        Person::TypeLabel("Sales");
        Person::Press("cmdApply");
        EXPECT_EQ(person.Boxes(), std::vector<Box>{});
        // However much it is, it can be read.
        store.Execute("UPDATE Detail_AUTO_Action SET NodeNumber = 99 WHERE PartID = 2 AND NodeMasterID = 8;"
                      "UPDATE Detail_AUTO_Prompts SET NodeNumber = 99 WHERE PartID = 2 AND NodeMasterID = 8;"
                      "UPDATE Node_AUTO SET RetryLimit = 1, NodeDescription = '" +
                      std::string(300, 'x') + "' WHERE PartID = 2 AND NodeNumber = 8");
        Person::TypeLabel("Mine");
        person.WillAnswer({QMessageBox::No});
        Person::Press("cmdApply");
        const QString told = QString::fromStdString(person.Boxes().at(0).text);
        EXPECT_EQ(told.count("\r\n"), 12);
        EXPECT_TRUE(told.contains(QRegularExpression("x…\r\n(.*\r\n)+and \\d more\r\n")))
            << told.toStdString();
        // A save that cannot begin is none: the window stays with what was changed.
        person.LookAtBox = nullptr;
        store.Refuse("INSERT ON Node_AUTO_Version");
        Person::TypeLabel("Mine");
        Person::Press("cmdOK");
        EXPECT_EQ(person.Boxes().size(), 1U);
        EXPECT_TRUE(Person::Dirty() && Person::Window("GUI")->isVisible());
    }));
}

// Another process changes a row of the node while it is shown, and once what was changed here as well.
TEST(Saving, KeepsBothWhereTwoHaveChangedDifferentParts) {
    const TestStore store;
    // What the window shows otherwise than it is stored is nobody's change.
    store.Execute(
        "UPDATE Node_AUTO SET RetryLimit = NULL, AbortNodeType = 'old' WHERE PartID = 2 AND NodeNumber = 8");
    const auto repoint = [](const char* from, const char* to) {
        Program(0, {"repoint", "1", "2", "MSG", from, "MSG", to});
    };
    const auto offers = [](const Box& box) { return box.buttons.testFlag(QMessageBox::Apply); };
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        Person::WaitForFocus();
        Person::TypeLabel("Mine");
        Person::ClickRow("LVActions", 0);
        Person::Press("cmdActionsRemove");
        repoint("22", "24");
        for (const char* state : {"failed", "finished"}) {
            store.Execute(std::string("UPDATE Node_AUTO_Version SET State = '") + state +
                          "' WHERE PartID = 2 AND NodeNumber = 8");
            Person::Press("cmdApply");
            EXPECT_EQ(offers(person.Boxes().at(0)), state == std::string("finished"))
                << "half a change is none";
        }
        person.WillAnswer({QMessageBox::Apply});
        Person::Press("cmdOK");
        EXPECT_EQ(person.Boxes().size(), 1U);
        EXPECT_TRUE(Person::Dirty() && Person::Window("GUI")->isVisible());
        EXPECT_EQ(Labels(store) + ' ' + Details(store, 8).at(0), "Sales|Sales A1|6|DTMF|2|1-1");
        // What the other has done cannot be taken back unseen.
        QTest::keyClick(Person::List("LVActions"), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(Person::Label() + ' ' + Person::Row("LVActions", 0),
                  "Mine 1|2-2|MSG 24|Gift vouchers|MSG|0|24|2|2");
        Person::Press("cmdApply");
        EXPECT_FALSE(Person::Dirty());
        const Texts stored = Details(store, 8);
        EXPECT_EQ(Labels(store) + ' ' + stored.at(0) + ' ' + stored.at(6),
                  "Mine|Mine A1|0|MSG|24|2-2 A7|4|XFER|2|0-0");

        Person::ClickRow("LVActions", 0);
        Person::Press("cmdActionsRemove");
        repoint("24", "22");
        Person::Press("cmdApply");
        EXPECT_FALSE(offers(person.Boxes().at(0))) << "a row that both have changed";
        person.WillAnswer({QMessageBox::Yes});
        Person::Press("cmdApply");
        EXPECT_EQ(person.Boxes().size(), 1U);
        store.Execute("UPDATE Node_General_Pool SET NodeDescription = 'Theirs' WHERE PartID = 2"
                      " AND NodeTypeID = 9 AND NodeNumber = 8");
        Person::ClickRow("LVActions", 0);
        Person::Press("cmdActionsRemove");
        Person::Press("cmdApply");
        EXPECT_FALSE(offers(person.Boxes().at(0))) << "a label that the save would go over";
        person.WillAnswer({QMessageBox::Yes, QMessageBox::Discard, QMessageBox::Yes});
        Person::Choose("cmbNode", "AUTO 1");
        EXPECT_EQ(person.Boxes().size(), 3U);
        EXPECT_EQ(Person::Text("cmbNode") + ", " +
                      Person::Find<QLabel>("lblRecordPosition")->text().toStdString(),
                  "AUTO 8, 8 of 17");
    }));
}

// The store syncs the head of a log that was empty by itself, so the first save is not looked at.
TEST(StoreFile, ReachesTheDiskInOneSyncASaveAlsoWhereItFails) {
    StartFaultySystem();
    const TestStore store;
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        const auto syncsOfSaving = [](const char* label) {
            Person::TypeLabel(label);
            return SyncsOf([] { Person::Press("cmdApply"); });
        };
        EXPECT_GT(syncsOfSaving("First").log, 0);
        EXPECT_EQ(syncsOfSaving("Second"), FileSyncs{.log = 1});
        EXPECT_EQ(Labels(store), "Second|Second");

        store.Refuse("INSERT ON Detail_AUTO_Action");
        EXPECT_EQ(syncsOfSaving("Third"), FileSyncs{.log = 1});
        EXPECT_EQ(person.Boxes().size(), 2U);
        EXPECT_EQ(Labels(store), "Third|Third");
    }));
}

} // namespace
} // namespace KAL_AUTO_Node
