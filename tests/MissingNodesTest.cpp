#include "Person.h"
#include "TestStore.h"

#include <QCursor>
#include <QDate>
#include <QLocale>

#include <algorithm>
#include <iterator>
#include <set>

namespace KAL_AUTO_Node {
namespace {

using Rows = std::vector<std::string>;

constexpr QMessageBox::StandardButton Yes = QMessageBox::Yes;
constexpr QMessageBox::StandardButton YesToAll = QMessageBox::YesToAll;
constexpr QMessageBox::StandardButton No = QMessageBox::No;
constexpr QMessageBox::StandardButton Cancel = QMessageBox::Cancel;

// What AUTO 6 refers to without its being there, in the order of its lists.
const Rows MissingInAuto6 = {"MSG 240", "MSG 241", "TIME 19", "LIST 14", "CMD 30",  "HOLD 4", "DATE 18",
                             "DTMF 21", "VOX 9",   "PAAS 7",  "DBN 8",   "AUTO 33", "MSG 242"};

std::string Question(const std::string& node) {
    return node + " is referenced but it does not exist.\r\nDo you want to auto create node '" + node + "'?";
}

Box Asked(const std::string& node) {
    return {"Confirmation", Question(node), QMessageBox::Question, Yes | YesToAll | No | Cancel};
}

std::vector<Box> Asked(const Rows& nodes) {
    std::vector<Box> boxes;
    std::ranges::transform(nodes, std::back_inserter(boxes),
                           [](const std::string& node) { return Asked(node); });
    return boxes;
}

bool IsReportOf(const Box& box, const std::string& procedure, const std::string& cause) {
    return box.title == "Error" && box.icon == QMessageBox::Warning && box.buttons == QMessageBox::Ok &&
           box.text.rfind("Source: ", 0) == 0 &&
           box.text.find(" - " + procedure + " \r\nDescription: ") != std::string::npos &&
           box.text.find(cause) != std::string::npos;
}

// Looks on whenever an event of a type reaches one of the process's widgets.
class OnEvent : public QObject {
  public:
    OnEvent(QEvent::Type type, std::function<void(QWidget&)> look) : type_(type), look_(std::move(look)) {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == type_ && watched->isWidgetType()) {
            look_(*static_cast<QWidget*>(watched));
        }
        return false;
    }

  private:
    QEvent::Type type_;
    std::function<void(QWidget&)> look_;
};

// A store of its own and a person who saves nodes of it.
class Check {
  public:
    // Changes a node's label and saves it; what the check does is done then. Every such save goes through.
    void Save(int node, ComponentFactory components = {}) {
        Business_Rules rules(std::move(components));
        EXPECT_TRUE(person.Edit(rules, node, [] {
            Person::Type(Person::TextBox("txtDescription"), "Saved");
            Person::Press("cmdApply");
            EXPECT_FALSE(Person::Dirty());
            EXPECT_TRUE(Person::Find<QFrame>("Frame1")->isEnabled());
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        }));
        EXPECT_EQ(store.Rows("SELECT NodeNumber FROM Node_AUTO WHERE NodeDescription = 'Saved'"),
                  Rows{std::to_string(node)});
        EXPECT_FALSE(person.HasAnswersLeft());
    }

    // The nodes registered since the test began, by type and number.
    [[nodiscard]] Rows Created() const {
        Rows created;
        std::ranges::set_difference(Registered(), before_, std::back_inserter(created));
        return created;
    }

    TestStore store;
    Person person;

  private:
    [[nodiscard]] Rows Registered() const {
        Rows rows = store.Rows("SELECT NodeType || ' ' || NodeNumber FROM Node_General_Pool");
        std::ranges::sort(rows);
        return rows;
    }

    Rows before_ = Registered();
};

std::string Today() {
    return QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
}

TEST(MissingNodes, AreAskedAboutOnceEachInTheOrderOfTheLists) {
    Check check;
    const OnEvent boxes(QEvent::Show, [](QWidget& widget) {
        if (qobject_cast<QMessageBox*>(&widget) != nullptr) {
            ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
            EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::ArrowCursor);
            EXPECT_FALSE(Person::Find<QFrame>("Frame1")->isEnabled());
            EXPECT_TRUE(Person::Find<QStatusBar>("StatusBar1")->isVisible());
        }
    });
    for (std::size_t i = 0; i < MissingInAuto6.size(); ++i) {
        check.person.WillAnswer({No});
    }
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked(MissingInAuto6));
    EXPECT_EQ(check.Created(), Rows{});
}

// A collected text that begins with the new one stands for it, whatever the case; references that are no
// nodes are never looked up.
TEST(MissingNodes, AreCollectedByTheBeginningOfTheirText) {
    Check check;
    check.store.Execute(
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID, NodeType,"
        " NodeNumber) VALUES"
        " (1, 2, 2, 1, 0, 'MSG', 990), (1, 2, 2, 2, 0, 'MSG', 99),"
        " (1, 2, 2, 3, 0, 'MSG', 98), (1, 2, 2, 4, 0, 'MSG', 980), (1, 2, 2, 5, 0, 'msg', 98),"
        " (1, 2, 2, 6, 999, 'EMPTY', 77), (1, 2, 2, 7, 816, 'SPEAK', 77), (1, 2, 2, 8, 814, 'NONE', 77),"
        " (1, 2, 2, 9, 817, 'M_ON', 97), (1, 2, 2, 10, 818, 'M_OFF', 97), (1, 2, 2, 11, 0, 'MSG', 97);"
        "INSERT INTO Detail_AUTO_Action (ConfigID, PartID, NodeMasterID, SequenceNo, DTMFRangeLow,"
        " DTMFRangeHigh, NodeTypeID, NodeType, NodeNumber) VALUES"
        " (1, 2, 2, 1, '1', '1', 999, 'EMPTY', 76), (1, 2, 2, 2, '2', '2', 818, 'M_OFF', 96);"
        "UPDATE Node_AUTO SET TimeoutNodeTypeID = 816, TimeoutNodeNumber = 76, InvalidNodeTypeID = 999,"
        " InvalidNodeNumber = 76, AbortNodeNumber = 98, StarNodeTypeID = 817, StarNodeNumber = 95"
        " WHERE PartID = 2 AND NodeNumber = 2");
    check.person.WillAnswer({No, No, No, No, No, No});
    check.Save(2);
    EXPECT_EQ(check.person.Boxes(),
              Asked(Rows{"MSG 990", "MSG 98", "MSG 980", "MSG 97", "MSG 96", "MSG 95"}));
}

TEST(MissingNodes, AreCreatedAsTheAnswersSay) {
    struct Case {
        std::initializer_list<QMessageBox::StandardButton> answers;
        std::size_t questions;
        Rows created;
    };

    const Rows all = {"AUTO 33", "CMD 30",  "DATE 18", "DBN 8",  "DTMF 21", "LIST 14",
                      "MSG 240", "MSG 241", "MSG 242", "PAAS 7", "TIME 19", "VOX 9"};
    Rows allButFirst = all;
    std::erase(allButFirst, "MSG 240");
    const std::initializer_list<Case> cases = {{{Yes, No, Yes, Cancel}, 4, {"MSG 240", "TIME 19"}},
                                               {{Yes}, 2, {"MSG 240"}}, // the second box is closed
                                               {{Cancel}, 1, {}},
                                               {{YesToAll}, 1, all},
                                               {{No, YesToAll}, 2, allButFirst}};
    for (const Case& expected : cases) {
        SCOPED_TRACE(testing::PrintToString(expected.created));
        Check check;
        // It cannot be created, which is told apart from the questions.
        check.store.Execute("DELETE FROM Detail_AUTO_Action WHERE NodeMasterID = 6 AND NodeTypeID = 5");
        Rows missing = MissingInAuto6;
        std::erase(missing, "HOLD 4");
        missing.resize(expected.questions);
        check.person.WillAnswer(expected.answers);
        check.Save(6);
        EXPECT_EQ(check.person.Boxes(), Asked(missing));
        EXPECT_EQ(check.Created(), expected.created);
    }
}

TEST(MissingNodes, AnAnswerForAllHoldsForOneCheck) {
    Check check;
    EXPECT_TRUE(check.person.Edit(1, [&] {
        for (const char* number : {"5", "8"}) {
            check.store.Execute(
                "DELETE FROM Node_MSG WHERE PartID = 2 AND NodeNumber IN (2, 3);"
                "DELETE FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 0 AND NodeNumber IN (2, 3)");
            Person::Choose("cmbSelTimeOut", number);
            check.person.WillAnswer({YesToAll});
            Person::Press("cmdApply");
            EXPECT_EQ(check.person.Boxes(), Asked(Rows{"MSG 2"}));
        }
    }));
}

// A type's tables; the details' owner is the node's number.
struct CopiedType {
    const char* typeID;
    const char* number;
    const char* nodeTable;
    std::vector<std::string> detailTables;
};

// The columns that a copy takes over, comma-separated.
std::string Columns(const TestStore& store, const std::string& table, const std::string& changed) {
    return store.Value("SELECT GROUP_CONCAT(name) FROM pragma_table_info('" + table +
                       "') WHERE name NOT IN (" + changed + ")");
}

// Gives every column of a template's rows a value of its own, so that columns cannot change places unseen.
void MakeDistinct(const TestStore& store, const std::string& table, const std::string& owner) {
    store.Execute(
        store.Value("SELECT 'UPDATE " + table +
                    " SET ' || GROUP_CONCAT(name || ' = ' || CASE type WHEN 'TEXT' THEN QUOTE(name) "
                    "ELSE cid + 100 END) || ' WHERE PartID = 2 AND " +
                    owner + " = 0' FROM pragma_table_info('" + table + "') WHERE pk = 0"));
}

TEST(MissingNodes, OfEveryTypeAreCopiesOfTheirTemplate) {
    const std::vector<CopiedType> types = {
        {"0", "240", "Node_MSG", {}},
        {"0", "241", "Node_MSG", {}},
        {"0", "62", "Node_MSG", {}},
        {"0", "1000", "Node_MSG", {}},
        {"1", "30", "Node_CMD", {"Detail_CMD"}},
        {"2", "19", "Node_TIME", {"Detail_TIME"}},
        {"3", "18", "Node_DATE", {"Detail_DATE"}},
        {"4", "61", "Node_XFER", {}},
        {"6", "21", "Node_DTMF", {"Detail_DTMF_Prompts", "Detail_DTMF_Action"}},
        {"7", "9", "Node_VOX", {"Detail_VOX_Prompts", "Detail_VOX_Action"}},
        {"8", "14", "Node_LIST", {"Detail_LIST"}},
        {"9", "33", "Node_AUTO", {"Detail_AUTO_Prompts", "Detail_AUTO_Action"}},
        {"12", "7", "Node_PAAS", {}},
        {"13", "2", "Node_TABLE", {"Detail_TABLE_Action"}},
        {"15", "8", "Node_DBN", {"Detail_DBN_Prompts"}},
    };
    Check check;
    const TestStore& store = check.store;
    store.Execute("DELETE FROM Detail_AUTO_Action WHERE NodeMasterID = 6 AND NodeTypeID = 5;"
                  "INSERT INTO Detail_AUTO_Action VALUES (1, 2, 12, 4, 61, 6, '61', '61', 'XFER'),"
                  " (1, 2, 13, 13, 2, 6, '62', '62', 'TABLE'), (1, 2, 14, 0, 62, 6, '63', '63', 'MSG'),"
                  " (1, 2, 15, 0, 1000, 6, '64', '64', 'MSG');"
                  "UPDATE Node_General_Pool SET NodeDescription = 'Register of ' || NodeType"
                  " WHERE PartID = 2 AND NodeNumber = 0");
    std::set<std::string> tables;
    for (const CopiedType& type : types) {
        if (!tables.insert(type.nodeTable).second) {
            continue;
        }
        MakeDistinct(store, type.nodeTable, "NodeNumber");
        for (const std::string& table : type.detailTables) {
            const std::string sequence = table == "Detail_DBN_Prompts" ? "PromptNumber" : "SequenceNo";
            const std::string rest = Columns(store, table, "'" + sequence + "'");
            store.Execute("INSERT INTO " + table + " (" + sequence + "," + rest + ") SELECT " + sequence +
                          " + 7," + rest + " FROM " + table + " WHERE PartID = 2 AND NodeMasterID = 0");
            MakeDistinct(store, table, "NodeMasterID");
        }
    }
    check.person.WillAnswer({Yes, YesToAll});
    check.Save(6);
    EXPECT_EQ(check.person.Boxes(), Asked(Rows{"MSG 240", "MSG 241"}));
    EXPECT_EQ(check.Created().size(), types.size() + 1) << "MSG 242 is missing, too";

    for (const CopiedType& type : types) {
        SCOPED_TRACE(std::string(type.nodeTable) + ' ' + type.number);
        const auto rows = [&](const std::string& table, const std::string& owner, const std::string& number,
                              const std::string& changed) {
            return store.Rows("SELECT " + Columns(store, table, changed) + " FROM " + table +
                              " WHERE PartID = 2 AND " + owner + " = " + number);
        };
        const std::string changed = "'NodeNumber', 'VexoFilename'";
        const Rows original = rows(type.nodeTable, "NodeNumber", "0", changed);
        EXPECT_EQ(original.size(), 1U);
        EXPECT_EQ(rows(type.nodeTable, "NodeNumber", type.number, changed), original);
        for (const std::string& table : type.detailTables) {
            const Rows details = rows(table, "NodeMasterID", "0", "'NodeMasterID'");
            EXPECT_EQ(details.size(), 2U);
            EXPECT_EQ(rows(table, "NodeMasterID", type.number, "'NodeMasterID'"), details) << table;
        }
        const std::string name =
            store.Value("SELECT English_Name FROM SR_Node_Type_Names WHERE ID = " + std::string(type.typeID));
        EXPECT_EQ(store.Rows("SELECT ConfigID, NodeType, NodeDescription, DateModified FROM Node_General_Pool"
                             " WHERE PartID = 2 AND NodeTypeID = " +
                             std::string(type.typeID) + " AND NodeNumber = " + type.number),
                  Rows{"1|" + name + "|Register of " + name + '|' + Today()});
    }
    EXPECT_EQ(store.Rows("SELECT VexoFilename FROM Node_MSG WHERE PartID = 2"
                         " AND NodeNumber IN (62, 240, 241, 1000) ORDER BY NodeNumber"),
              (Rows{"P02M062.wav", "P02M240.wav", "P02M241.wav", "P02M1000.wav"}));
}

TEST(MissingNodes, ThatCannotBeCreatedAreNotSaidToBe) {
    Check check;
    check.store.Execute("DELETE FROM Node_LIST WHERE NodeNumber = 0;"
                        "DELETE FROM Node_General_Pool WHERE NodeTypeID IN (2, 8) AND NodeNumber = 0");
    std::set<std::string> told;
    const OnEvent paint(QEvent::Paint, [&](QWidget& widget) {
        if (widget.parent() != nullptr && widget.parent()->objectName() == QLatin1String("StatusBar1")) {
            if (const auto* label = qobject_cast<QLabel*>(&widget)) {
                told.insert(label->text().toStdString());
            }
        }
    });
    check.person.WillAnswer({YesToAll, QMessageBox::Ok});
    check.Save(6);
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes.front(), Asked("MSG 240"));
    EXPECT_EQ(boxes.back(), Information(boxes.back().text));
    for (const std::string& node : MissingInAuto6) {
        const bool created = node != "TIME 19" && node != "LIST 14" && node != "HOLD 4";
        EXPECT_EQ(told.contains(node + " is created."), created) << node;
        EXPECT_EQ(boxes.back().text.find(node) == std::string::npos, created) << boxes.back().text;
    }
    EXPECT_TRUE(told.contains("Checking for non-existing nodes. Please wait..."));
    EXPECT_EQ(check.Created().size(), MissingInAuto6.size() - 3);
}

TEST(MissingNodes, AFailedCreationEndsTheCheckButNotTheSave) {
    for (const char* fault : {"CREATE TRIGGER failing BEFORE INSERT ON Detail_TIME BEGIN"
                              " SELECT RAISE(ABORT, 'Detail_TIME is full'); END",
                              "INSERT INTO Detail_TIME VALUES (1, 2, 1, 0, 1, 19, 'MSG')"}) {
        SCOPED_TRACE(fault);
        Check check;
        check.store.Execute(fault);
        Qt::CursorShape pointer = Qt::WaitCursor;
        const OnEvent reports(QEvent::Show, [&](QWidget& widget) {
            if (qobject_cast<QMessageBox*>(&widget) != nullptr) {
                const QCursor* override = QGuiApplication::overrideCursor();
                pointer = override != nullptr ? override->shape() : Qt::ArrowCursor;
            }
        });
        check.person.WillAnswer({YesToAll, QMessageBox::Ok});
        check.Save(6);
        const auto boxes = check.person.Boxes();
        ASSERT_EQ(boxes.size(), 2U);
        EXPECT_EQ(boxes.front(), Asked("MSG 240"));
        EXPECT_TRUE(IsReportOf(boxes.back(), "CheckForUnReferencedNodes", "Detail_TIME"))
            << boxes.back().text;
        EXPECT_EQ(pointer, Qt::ArrowCursor) << "a report is no waiting";
        EXPECT_EQ(check.Created(), (Rows{"MSG 240", "MSG 241"}));
        EXPECT_EQ(check.store.Value("SELECT COUNT(*) FROM Node_TIME WHERE NodeNumber = 19"), "1")
            << "what was copied stays";
    }
}

TEST(MissingNodes, AreThoseThatCannotBeLookedUpToo) {
    Check check;
    EXPECT_TRUE(check.person.Edit(3, [&] {
        check.store.Execute("ALTER TABLE Node_General_Pool RENAME TO Elsewhere");
        Person::Type(Person::TextBox("txtDescription"), "Saved");
        check.person.WillAnswer({QMessageBox::Ok, No, QMessageBox::Ok, Cancel, QMessageBox::Ok});
        Person::Press("cmdApply");
    }));
    const auto boxes = check.person.Boxes();
    ASSERT_EQ(boxes.size(), 5U);
    for (const std::size_t lookUp : {0U, 2U}) {
        EXPECT_TRUE(IsReportOf(boxes[lookUp], "IsNodeExisted", "Node_General_Pool")) << boxes[lookUp].text;
    }
    EXPECT_EQ(boxes[1], Asked("MSG 50"));
    EXPECT_EQ(boxes[3], Asked("MSG 1"));
    EXPECT_TRUE(IsReportOf(boxes[4], "SaveChanges", "Node_General_Pool")) << boxes[4].text;
}

// A host's own dialog: answers with its codes in order and keeps what it was asked.
struct HostDialog {
    explicit HostDialog(std::vector<std::int32_t> answers) : codes(std::move(answers)) {}

    std::vector<std::int32_t> codes; // the last one is repeated; without any it fails
    Rows asked;
    int made = 0;
    int alive = 0;

    ComponentFactory Factory() {
        ComponentFactory factory;
        factory.Register("{943DE27E-7610-41A9-967B-7E45E79530D7}",
                         [this] { return std::make_unique<Dialog>(*this); });
        return factory;
    }

    class Dialog : public ConfirmationDialog {
      public:
        explicit Dialog(HostDialog& host) : host_(host) {
            ++host_.made;
            ++host_.alive;
        }

        ~Dialog() override { --host_.alive; }

        std::int32_t Ask(std::int16_t kind, const std::string& message, std::int32_t icon,
                         std::int32_t buttons, const std::string& title) override {
            EXPECT_EQ(kind, 1);
            EXPECT_EQ(icon, 1);
            EXPECT_EQ(buttons, 7);
            EXPECT_EQ(title, "Confirmation");
            const std::size_t call = host_.asked.size();
            host_.asked.push_back(message);
            if (host_.codes.empty()) {
                throw std::runtime_error("nobody answers");
            }
            return host_.codes[std::min(call, host_.codes.size() - 1)];
        }

      private:
        HostDialog& host_;
    };
};

TEST(MissingNodes, AreTheHostsDialogsBusinessWhereItHasOne) {
    struct Case {
        std::vector<std::int32_t> codes;
        Rows created;
    };

    for (const Case& expected :
         {Case{{3, 2, 7, -1, 1, 99999, 6, 4},
               {"AUTO 33", "DBN 8", "DTMF 21", "MSG 241", "MSG 242", "PAAS 7", "VOX 9"}},
          Case{{2, 0}, {"MSG 240"}}, Case{{2, 3, 5}, {"MSG 240"}}}) {
        SCOPED_TRACE(testing::PrintToString(expected.codes));
        Check check;
        HostDialog host(expected.codes);
        check.Save(6, host.Factory());
        Rows questions(expected.codes.size());
        std::transform(MissingInAuto6.begin(), MissingInAuto6.begin() + static_cast<int>(questions.size()),
                       questions.begin(), Question);
        EXPECT_EQ(host.asked, questions);
        EXPECT_EQ(check.Created(), expected.created);
        EXPECT_EQ(check.person.Boxes(), std::vector<Box>{});
        EXPECT_EQ(host.made, 1);
        EXPECT_EQ(host.alive, 0);
    }
}

TEST(MissingNodes, StayMissingWhereTheHostsDialogFails) {
    ComponentFactory none;
    none.Register(ConfirmationDialog::Identifier, [] { return nullptr; });
    HostDialog silent({});
    for (const auto& [factory, cause] : {std::pair{none, "{943DE27E-7610-41A9-967B-7E45E79530D7}"},
                                         std::pair{silent.Factory(), "nobody answers"}}) {
        Check check;
        check.Save(6, factory);
        const auto boxes = check.person.Boxes();
        ASSERT_EQ(boxes.size(), 1U);
        EXPECT_TRUE(IsReportOf(boxes.front(), "CheckForUnReferencedNodes", cause)) << boxes.front().text;
        EXPECT_EQ(check.Created(), Rows{});
    }
    EXPECT_EQ(silent.alive, 0);
}

TEST(MissingNodes, AreAllFoundInALargeNode) {
    Check check;
    check.store.Execute(
        "WITH RECURSIVE Number(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Number WHERE n < 10000)"
        " INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, SequenceNo, NodeTypeID, NodeNumber,"
        " NodeMasterID, NodeType) SELECT 1, 2, n, 1, n, 2, 'CMD' FROM Number");
    HostDialog host({ConfirmationDialog::Skip});
    check.Save(2, host.Factory());
    ASSERT_EQ(host.asked.size(), 9995U) << "five of them exist";
    EXPECT_EQ(host.asked.front(), Question("CMD 6"));
    EXPECT_EQ(host.asked.back(), Question("CMD 10000"));
    EXPECT_EQ(std::set<std::string>(host.asked.begin(), host.asked.end()).size(), host.asked.size());
    EXPECT_EQ(
        check.store.Value("SELECT COUNT(*) FROM Detail_AUTO_Prompts WHERE PartID = 2 AND NodeMasterID = 2"),
        "10000");
    EXPECT_EQ(check.person.Boxes(), std::vector<Box>{});
}

} // namespace
} // namespace KAL_AUTO_Node
