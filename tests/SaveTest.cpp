#include "Person.h"
#include "TestStore.h"

#include <QClipboard>
#include <QCursor>
#include <QDate>
#include <QLocale>

namespace KAL_AUTO_Node {
namespace {

using Rows = std::vector<std::string>;

std::string Today() {
    return QLocale::system().toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
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

// Replaces the whole text of a box at once.
void Paste(QLineEdit* box, const std::string& text) {
    box->setFocus();
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(box, Qt::Key_Delete);
    QGuiApplication::clipboard()->setText(QString::fromStdString(text));
    QTest::keyClick(box, Qt::Key_V, Qt::ControlModifier);
}

std::string Of(int node) {
    return " WHERE ConfigID = 1 AND PartID = 2 AND NodeMasterID = " + std::to_string(node);
}

Rows Prompts(const TestStore& store, int node) {
    return store.Rows("SELECT SequenceNo, NodeTypeID, NodeType, NodeNumber FROM Detail_AUTO_Prompts" +
                      Of(node) + " ORDER BY SequenceNo");
}

Rows Actions(const TestStore& store, int node) {
    return store.Rows("SELECT SequenceNo, DTMFRangeLow, DTMFRangeHigh, NodeTypeID, NodeType, NodeNumber"
                      " FROM Detail_AUTO_Action" +
                      Of(node) + " ORDER BY SequenceNo");
}

QString PanelText() { return Person::Find<QStatusBar>("StatusBar1")->findChild<QLabel*>()->text(); }

void ExpectIdle() {
    EXPECT_TRUE(Person::Find<QFrame>("Frame1")->isEnabled());
    EXPECT_FALSE(Person::Find<QStatusBar>("StatusBar1")->isVisible());
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

// AUTO 15 has gaps in its sequence numbers; its five exceptions get different types, so that no two values of
// the record can change places unseen. The rows beside it differ from its own in one part of the key each.
TEST(Saving, WritesTheNodeAsItStandsInTheWindowAndNothingElse) {
    const TestStore store;
    store.Execute(
        "UPDATE Node_AUTO SET NodeType = 'old', TimeoutNodeType = 'old' WHERE NodeNumber = 15;"
        "UPDATE Detail_AUTO_Prompts SET NodeType = 'old' WHERE NodeMasterID = 15;"
        "UPDATE Detail_AUTO_Action SET NodeType = 'old' WHERE NodeMasterID = 15;"
        "INSERT INTO Detail_AUTO_Prompts VALUES (1, 1, 1, 0, 1, 15, 'MSG'), (2, 2, 1, 0, 1, 15, 'MSG');"
        "INSERT INTO Detail_AUTO_Action VALUES (1, 1, 1, 0, 1, 15, '1', '1', 'MSG'),"
        " (2, 2, 1, 0, 1, 15, '1', '1', 'MSG');"
        "INSERT INTO Node_General_Pool VALUES (1, 1, 9, 15, 'AUTO', 'Other partition', 'then'),"
        " (2, 2, 9, 15, 'AUTO', 'Other configuration', 'then'), (1, 2, 8, 15, 'LIST', 'Other type', 'then')");
    const auto theRest = [&] {
        Rows rows;
        for (const char* table : {"Detail_AUTO_Prompts", "Detail_AUTO_Action"}) {
            const auto some = store.Rows("SELECT * FROM " + std::string(table) +
                                         " WHERE NOT (ConfigID = 1 AND PartID = 2 AND NodeMasterID = 15)");
            rows.insert(rows.end(), some.begin(), some.end());
        }
        for (const char* table : {"Node_AUTO", "Node_General_Pool"}) {
            const auto some =
                store.Rows("SELECT * FROM " + std::string(table) +
                           " WHERE NOT (ConfigID = 1 AND PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 15)");
            rows.insert(rows.end(), some.begin(), some.end());
        }
        return rows;
    };
    const Rows before = theRest();

    Person person;
    EXPECT_TRUE(person.Edit(15, [] {
        Person::Type(Person::TextBox("txtDescription"), "Table reservations");
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
        Person::Type(Person::TextBox("txtActionsDTMFRangeLow"), "020");
        Person::Type(Person::TextBox("txtActionsDTMFRangeHigh"), "29");
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

        Person::Press("cmdApply");
        EXPECT_FALSE(Person::Dirty());
        EXPECT_EQ(PanelText(), "");
        ExpectIdle();
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});

    EXPECT_EQ(
        store.Rows("SELECT NumberOfDigits, TerminatingDigit, RetryLimit, SelectionTimeout, DigitTimeout,"
                   " NodeType, NodeDescription, TimeoutNodeTypeID, TimeoutNodeType, TimeoutNodeNumber,"
                   " InvalidNodeTypeID, InvalidNodeType, InvalidNodeNumber, AbortNodeTypeID, AbortNodeType,"
                   " AbortNodeNumber, StarNodeTypeID, StarNodeType, StarNodeNumber, PoundNodeTypeID,"
                   " PoundNodeType, PoundNodeNumber FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 15"),
        Rows{"4|*/#|2|42|11|AUTO|Table reservations|4|XFER|8|0|MSG|6|1|CMD|5|15|DBN|1|9|AUTO|12"});
    EXPECT_EQ(store.Rows("SELECT NodeType, NodeDescription, DateModified FROM Node_General_Pool"
                         " WHERE ConfigID = 1 AND PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 15"),
              Rows{"AUTO|Table reservations|" + Today()});
    EXPECT_EQ(Prompts(store, 15), (Rows{"1|0|MSG|55", "2|2|TIME|4", "3|0|MSG|12", "4|0|MSG|1"}));
    EXPECT_EQ(Actions(store, 15), (Rows{"1|1|1|0|MSG|56", "2|020|29|4|XFER|19", "3|3|3|2|TIME|3"}));
    EXPECT_EQ(theRest(), before);
}

TEST(Saving, StoresListsThatHoldNothing) {
    const TestStore store;
    Person person;
    const auto apply = [&](int node, const std::function<void()>& deeds) {
        EXPECT_TRUE(person.Edit(node, [&] {
            Person::Type(Person::TextBox("txtDescription"), "Changed");
            deeds();
            Person::Press("cmdApply");
        }));
    };
    const auto removeAll = [](const char* list, const char* button) {
        Person::ClickRow(list, 0);
        QTest::keyClick(Person::List(list), Qt::Key_A, Qt::ControlModifier);
        Person::Press(button);
    };
    apply(2, [] {});
    apply(7, [] {});
    apply(8, [&] { removeAll("LVPrompts", "cmdPromptsRemove"); });
    apply(14, [&] { removeAll("LVActions", "cmdActionsRemove"); });
    EXPECT_EQ(Prompts(store, 2), Rows{});
    EXPECT_EQ(Actions(store, 2), Rows{});
    EXPECT_EQ(Prompts(store, 7), Rows{"1|999|EMPTY|1"});
    EXPECT_EQ(Prompts(store, 8), Rows{"1|999|EMPTY|1"});
    EXPECT_EQ(Actions(store, 8).size(), 8U);
    EXPECT_EQ(Prompts(store, 14), Rows{"1|0|MSG|47"});
    EXPECT_EQ(Actions(store, 14), Rows{});
    EXPECT_EQ(store.Value("SELECT COUNT(*) FROM Node_AUTO WHERE NodeDescription = 'Changed'"), "4");
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(Saving, StoresExactlyTheLabelThatWasEntered) {
    const TestStore store;
    Person person;
    std::string longest;
    while (longest.size() < 10000) {
        longest += static_cast<char>('a' + longest.size() % 23);
    }
    for (const std::string& label : {std::string("O'Brien's'); DROP TABLE Node_AUTO;--"),
                                     std::string("100% %1 %s \\n ? :Given_ID @x $1"),
                                     std::string("Ünïcödé Żółć 日本語 \U0001F600 e\u0301 עברית"),
                                     std::string("  blanks  around  "), longest, std::string()}) {
        EXPECT_TRUE(person.Edit(8, [&] {
            Paste(Person::TextBox("txtDescription"), label);
            Person::Press("cmdApply");
        }));
        for (const char* table : {"Node_AUTO", "Node_General_Pool"}) {
            EXPECT_EQ(store.Rows("SELECT typeof(NodeDescription), NodeDescription FROM " +
                                 std::string(table) +
                                 " WHERE PartID = 2 AND NodeTypeID = 9 AND NodeNumber = 8"),
                      Rows{"text|" + label});
        }
        EXPECT_TRUE(person.Edit(
            8, [&] { EXPECT_EQ(Person::TextBox("txtDescription")->text().toStdString(), label); }));
    }
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

// Each statement of a save fails once. A line of what is stored: the node's label, the register's, the
// prompts' numbers, how many actions.
TEST(Saving, ThatFailsHalfWayKeepsWhatWasWrittenAndTheWindowUsable) {
    struct Failure {
        const char* trigger;
        const char* command;
        const char* stored;
    };

    for (const Failure& failure : {
             Failure{"DELETE ON Detail_AUTO_Prompts", "Delete_AUTO_PromptsNode", "Sales|Sales|21,23|8"},
             {"DELETE ON Detail_AUTO_Action", "Delete_AUTO_ActionsNode", "Sales|Sales||8"},
             {"UPDATE ON Node_AUTO", "Update_AUTO_Node", "Sales|Sales||0"},
             {"UPDATE ON Node_General_Pool", "Update_Node_General_Pool", "First|Sales||0"},
             {"INSERT ON Detail_AUTO_Prompts WHEN NEW.SequenceNo = 2", "Add_AUTO_PromptsNode",
              "First|First|23|0"},
             {"INSERT ON Detail_AUTO_Action WHEN NEW.SequenceNo = 3", "Add_AUTO_ActionsNode",
              "First|First|23,21|2"},
         }) {
        SCOPED_TRACE(failure.trigger);
        const TestStore store;
        const auto stored = [&] {
            return store.Value(
                "SELECT (SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8),"
                " (SELECT NodeDescription FROM Node_General_Pool WHERE PartID = 2 AND NodeTypeID = 9"
                " AND NodeNumber = 8),"
                " COALESCE((SELECT GROUP_CONCAT(NodeNumber) FROM (SELECT NodeNumber FROM "
                "Detail_AUTO_Prompts" +
                Of(8) + " ORDER BY SequenceNo)), ''), (SELECT COUNT(*) FROM Detail_AUTO_Action" + Of(8) +
                ")");
        };
        Person person;
        EXPECT_TRUE(person.Edit(8, [&] {
            const OnEvent reports(QEvent::Show, [](QWidget& widget) {
                if (qobject_cast<QMessageBox*>(&widget) != nullptr) {
                    ExpectIdle();
                }
            });
            store.Execute("CREATE TRIGGER failing BEFORE " + std::string(failure.trigger) +
                          " BEGIN SELECT RAISE(ABORT, 'the disk is on fire'); END");
            Person::Type(Person::TextBox("txtDescription"), "First");
            Person::ClickRow("LVPrompts", 0);
            Person::Press("cmdPromptsDown");
            Person::Press("cmdApply");
            EXPECT_EQ(person.Boxes(),
                      (std::vector<Box>{{"Error",
                                         "Source: SQLite - SaveChanges \r\nDescription: the disk is on fire "
                                         "(command " +
                                             std::string(failure.command) + ", file '" +
                                             store.File().string() + "')",
                                         QMessageBox::Warning, QMessageBox::Ok}}));
            EXPECT_EQ(stored(), failure.stored);
            EXPECT_FALSE(Person::Dirty()) << "as after a save";
            EXPECT_EQ(PanelText(), "Saving node information. Please wait...");
            ExpectIdle();

            store.Execute("DROP TRIGGER failing");
            Person::Type(Person::TextBox("txtDescription"), "Second");
            Person::Press("cmdApply");
            EXPECT_EQ(stored(), "Second|Second|23,21|8");
            EXPECT_FALSE(Person::Dirty());
        }));
        EXPECT_EQ(person.Boxes(), std::vector<Box>{});
    }
}

TEST(Saving, ThatFailsDoesNotHoldUpItsCaller) {
    const TestStore store;
    Person person;
    store.Execute("ALTER TABLE Detail_AUTO_Action RENAME TO Elsewhere;"
                  "CREATE VIEW Detail_AUTO_Action AS SELECT * FROM Elsewhere");
    const auto expectOneReport = [&](std::size_t questions) {
        const auto boxes = person.Boxes();
        ASSERT_EQ(boxes.size(), questions + 1);
        EXPECT_EQ(boxes.back().text.rfind("Source: SQLite - SaveChanges \r\nDescription: ", 0), 0U);
        EXPECT_NE(boxes.back().text.find("Detail_AUTO_Action"), std::string::npos) << boxes.back().text;
    };
    EXPECT_TRUE(person.Edit(8, [&] {
        person.WillAnswer({QMessageBox::Yes});
        Person::Type(Person::TextBox("txtDescription"), "First");
        Person::Press("cmdNext");
        expectOneReport(1);
        EXPECT_EQ(Person::TextBox("txtDescription")->text(), "Support");
        EXPECT_FALSE(Person::Dirty());

        Person::Type(Person::TextBox("txtDescription"), "Second");
        Person::Press("cmdOK");
        EXPECT_FALSE(Person::Window("GUI")->isVisible());
        expectOneReport(0);
    }));
}

TEST(Saving, ShowsHowFarItIs) {
    const TestStore store;
    Person person;
    Rows painted;
    EXPECT_TRUE(person.Edit(1, [&] {
        const OnEvent paint(QEvent::Paint, [&](QWidget& widget) {
            const auto* label = qobject_cast<QLabel*>(&widget);
            if (label != nullptr && label->parent() == Person::Find<QStatusBar>("StatusBar1") &&
                (painted.empty() || painted.back() != label->text().toStdString())) {
                painted.push_back(label->text().toStdString());
                EXPECT_FALSE(Person::Find<QFrame>("Frame1")->isEnabled()) << painted.back();
                if (painted.size() > 1) {
                    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr) << painted.back();
                    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor) << painted.back();
                }
            }
        });
        Person::Type(Person::TextBox("txtDescription"), "Changed");
        Person::Press("cmdApply");
    }));
    EXPECT_EQ(painted, (Rows{"Checking for duplicate ranges. Please wait...",
                             "Checking for non-existing nodes. Please wait...",
                             "Saving node information. Please wait..."}));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

} // namespace
} // namespace KAL_AUTO_Node
