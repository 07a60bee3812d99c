#include "testing/Person.h"
#include "testing/Saver.h"

#include <QPlainTextEdit>
#include <QTabWidget>
#include <QToolTip>
#include <QWindow>

namespace KAL_AUTO_Node {
namespace {

using enum QMessageBox::StandardButton;

// Waits for what is read beside the editor.
bool Comes(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 30'000); }

void Press(QWidget* where, int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QTest::keyClick(where, static_cast<Qt::Key>(key), with);
}

std::string ShownNode() { return Person::Text("cmbNode") + ' ' + Person::Label(); }

// As a window manager lets a window do when one above it has gone.
void ComeToTheFront(const char* name = "GUI") {
    QWidget* window = Person::Window(name);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window, 30'000));
}

class Ways : public EditorTest {
  protected:
    // In the window that finds nodes, once it has read them.
    static void InGoTo(const std::function<void(QWidget& window)>& deeds) {
        QTimer::singleShot(0, [&] {
            QWidget* window = nullptr;
            ASSERT_TRUE(Comes([&] { return (window = Person::Window("frmGoTo")) != nullptr; }));
            EXPECT_TRUE(Comes([] { return Person::Count("LVGoTo") > 0; }));
            deeds(*window);
        });
        Press(Person::Window("GUI"), Qt::Key_G, Qt::ControlModifier);
        ComeToTheFront();
    }

    static void GoTo(const char* text) {
        InGoTo([&](QWidget& window) {
            QTest::keyClicks(window.focusWidget(), QString::fromUtf8(text));
            Press(window.focusWidget(), Qt::Key_Return);
        });
    }
};

TEST_F(Ways, LeadToAnyNodeAndBack) {
    Edit(1, [&] {
        GoTo("40");
        EXPECT_EQ(ShownNode(), "AUTO 40 Line test, longest times");
        GoTo("CAFÉ gen");
        EXPECT_EQ(ShownNode(), "AUTO 15 Réservations, Café Genève");
        InGoTo([](QWidget& window) {
            Person::TypeOver("txtGoTo", "msg 12");
            EXPECT_EQ(Person::Cell("LVGoTo", 0, 0), "MSG 12");
            Person::TypeOver("txtGoTo", "sale");
            EXPECT_EQ(Person::Cell("LVGoTo", 0, 0), "AUTO 8") << "AUTO nodes come first";
            const auto chosen = [] { return Person::List("LVGoTo")->currentIndex().row(); };
            for (const auto& [key, row] : {std::pair{Qt::Key_Down, 1},
                                           {Qt::Key_PageDown, Person::Count("LVGoTo") - 1},
                                           {Qt::Key_Up, Person::Count("LVGoTo") - 2}}) {
                Press(window.focusWidget(), key);
                EXPECT_EQ(chosen(), row);
            }
            EXPECT_TRUE(Person::Window("frmGoTo")->findChild<QPushButton*>("cmdGoTo")->isEnabled());
            QTest::keyClicks(window.focusWidget(), "zz");
            EXPECT_FALSE(Person::Window("frmGoTo")->findChild<QPushButton*>("cmdGoTo")->isEnabled());
            EXPECT_EQ(Person::Count("LVGoTo"), 0);
            Press(window.focusWidget(), Qt::Key_Escape);
        });
        // One that was made since.
        store_.Execute("INSERT INTO Node_General_Pool (ConfigID, PartID, NodeTypeID, NodeNumber, NodeType, "
                       "NodeDescription) VALUES (1, 2, 9, 30, 'AUTO', 'Made since')");
        store_.Execute("UPDATE Node_AUTO SET NodeNumber = 30 WHERE PartID = 2 AND NodeNumber = 20");
        GoTo("made");
        EXPECT_EQ(ShownNode(), "AUTO 30 Baristas' courses");
        GoTo("20");
        EXPECT_EQ(person_.Boxes(), std::vector{Information("AUTO 20 doesn't exist.")});
        for (const char* node : {"AUTO 15", "AUTO 40", "AUTO 1", "AUTO 1"}) {
            Press(Person::Window("GUI"), Qt::Key_Left, Qt::AltModifier);
            EXPECT_EQ(Person::Text("cmbNode"), node);
        }
        // Through the save question, as any other way.
        Person::TypeLabel("Changed");
        Person::ClickRow("LVActions", 1);
        person_.WillAnswer({Cancel, Yes});
        for (const char* node : {"AUTO 1 Changed", "AUTO 9 Support"}) {
            Press(Person::List("LVActions"), Qt::Key_Return, Qt::ControlModifier);
            EXPECT_EQ(ShownNode(), node);
        }
        Person::TypeLabel("Lost");
        person_.WillAnswer({Cancel, No});
        for (const char* node : {"AUTO 9 Lost", "AUTO 1 Changed"}) {
            ComeToTheFront();
            Press(Person::Window("GUI"), Qt::Key_Left, Qt::AltModifier);
            EXPECT_EQ(ShownNode(), node);
        }
        EXPECT_EQ(person_.Boxes(), std::vector(4, SaveQuestion()));
    });
}

class NodeInformation : public EditorTest {
  protected:
    // Opens the window beside the editor; it has read all when its last page has.
    static void Open() {
        Press(Person::Window("GUI"), Qt::Key_I, Qt::ControlModifier);
        EXPECT_TRUE(Comes([] { return Tabs().tabText(3).contains('('); }));
    }

    // What is read anew then is so for another reason than that somebody has changed something.
    static void StopLooking() { Person::Window("GUI")->findChild<QTimer*>("tmrChanges")->stop(); }

    static QTabWidget& Tabs() { return *Person::Find<QTabWidget>("tabInformation"); }

    static std::string Title() { return Person::Window("frmInformation")->windowTitle().toStdString(); }

    // Once they are read, and told in the page's title.
    static bool Tells(int page, const std::string& title) {
        return Comes([&] { return Tabs().tabText(page).toStdString() == title; });
    }

    static std::string Line(const char* label) { return Person::Find<QLabel>(label)->text().toStdString(); }
};

TEST_F(NodeInformation, GoesWithTheEditorAndLeadsIt) {
    Edit(8, [&] {
        Open();
        EXPECT_EQ(Title(), "AUTO 8 Sales, configuration 1, partition 2 - Node Information");
        EXPECT_EQ(Person::Row("LVInfoUses", 0), "AUTO 1|action 1|Main menu");
        Person::TypeLabel("Changed");
        EXPECT_TRUE(Line("lblInfoNote").starts_with("What was changed in the editor is not saved"));
        // To the node that a row tells of, through the save question.
        person_.WillAnswer({Yes});
        Press(Person::List("LVInfoUses"), Qt::Key_Return);
        EXPECT_EQ(ShownNode(), "AUTO 1 Main menu");
        EXPECT_EQ(person_.Boxes(), std::vector{SaveQuestion()});
        EXPECT_TRUE(Tells(0, "&Used By (11)"));
        EXPECT_EQ(Line("lblInfoNote"), "");
        // A node of another type is told of, until the editor moves.
        QTreeView* uses = Person::List("LVInfoUses");
        const QPoint first = uses->visualRect(uses->model()->index(0, 0)).center();
        QTest::mouseDClick(uses->viewport(), Qt::RightButton, {}, first);
        QTest::mouseDClick(uses->viewport(), Qt::LeftButton, {}, first);
        EXPECT_TRUE(Tells(0, "&Used By (3)"));
        EXPECT_EQ(Title(), "CMD 2 Auf Deutsch weiter, configuration 1, partition 2 - Node Information");
        EXPECT_FALSE(Tabs().isTabEnabled(1) || Tabs().isTabEnabled(2));
        Person::Press("cmdLast");
        EXPECT_TRUE(Tells(3, "&Findings (1)") && Tells(1, "&History (0)"));
        EXPECT_TRUE(Title().starts_with("AUTO 40 Line test"));
        ComeToTheFront("frmInformation");
        Press(Person::Window("frmInformation"), Qt::Key_Left, Qt::AltModifier);
        EXPECT_EQ(ShownNode(), "AUTO 1 Main menu");
        EXPECT_TRUE(Tells(2, "&Entries (15)"));
        for (const auto& [typed, answer] :
             {std::pair{"6",
                        "6: nowhere (Invalid, or the menu again); waits for digits or #, because of 601-660"},
              {"601", "601: CMD 1"},
              {"6011", "6011: The node takes fewer digits than the entry has."},
              {"6*", "6*: an entry is of digits"}}) {
            Person::Paste(Person::TextBox("txtInfoEntry"), typed);
            EXPECT_EQ(Line("lblInfoAnswer"), answer);
        }
        StopLooking();
        // Nothing is kept from others between questions.
        if (TestStore::OnServer()) {
            const std::string reading = "SELECT FROM pg_stat_activity WHERE datname = current_database()"
                                        " AND state LIKE 'idle in%'";
            EXPECT_TRUE(QTest::qWaitFor([&] { return store_.Rows(reading).empty(); }, 15'000));
        }
        // What cannot be read is told as that, until it can be.
        for (const auto& [from, to, title] : {std::tuple{"Node_General_Pool", "Away", "&Entries"},
                                              {"Away", "Node_General_Pool", "&Entries (15)"}}) {
            store_.Execute(std::string("ALTER TABLE ") + from + " RENAME TO " + to);
            Press(Person::Window("frmInformation"), Qt::Key_F5);
            EXPECT_TRUE(Tells(2, title));
            EXPECT_EQ(Line("lblInfoEntries").starts_with("This cannot be read: "), from[0] == 'N');
            EXPECT_EQ(Person::Count("LVInfoEntries"), from[0] == 'N' ? 0 : 15);
            EXPECT_EQ(Line("lblInfoAnswer"), "");
        }
    });
}

TEST_F(NodeInformation, PutsAStateBackAfterAQuestion) {
    Edit(8, [&] {
        for (const char* label : {"First", "Second"}) {
            Person::TypeLabel(label);
            Person::Press("cmdApply");
        }
        Person::Window("GUI")->setGeometry(-1000, 30, 1080, 300);
        Open();
        const int frame = Person::Window("GUI")->windowHandle()->frameMargins().left();
        const QWidget* window = Person::Window("frmInformation");
        EXPECT_TRUE(window->width() > 700 || window->pos() == QPoint(80 + 2 * frame, 30));
        ASSERT_TRUE(Tells(1, "&History (2)"));
        const auto choose = [](int row) {
            QTreeView* list = Person::List("LVInfoHistory");
            list->setCurrentIndex(list->model()->index(row, 0));
            return Person::Find<QPlainTextEdit>("txtInfoChanged")->toPlainText().toStdString();
        };
        EXPECT_EQ(choose(0), R"(label "First" → "Second")");
        EXPECT_EQ(choose(1), R"(label "Sales" → "First")");
        Person::TypeLabel("Not saved");
        person_.WillAnswer({No, Yes});
        Person::Button("cmdInfoPutBack")->click();
        EXPECT_EQ(ShownNode(), "AUTO 8 Not saved");
        Person::Button("cmdInfoPutBack")->click();
        EXPECT_EQ(ShownNode(), "AUTO 8 Sales");
        const auto boxes = person_.Boxes();
        ASSERT_EQ(boxes.size(), 2U);
        for (const char* told : {R"(label "Second" → "Sales")", "AUTO 1, action 1", "is not saved goes"}) {
            EXPECT_NE(boxes[0].text.find(told), std::string::npos) << boxes[0].text;
        }
        EXPECT_TRUE(Tells(1, "&History (3)"));
        choose(2);
        Person::Button("cmdInfoPutBack")->click();
        EXPECT_EQ(person_.Boxes(),
                  std::vector{Information("AUTO 8 is stored as it was before this change.")});
        StopLooking();
        Person::TypeLabel("Third");
        Person::Button("cmdApply")->click();
        EXPECT_TRUE(Tells(1, "&History (4)")) << "read anew when it is saved";
    });
}

TEST_F(NodeInformation, TellsWhatSomebodyElseHasChanged) {
    Saver somebody({{1, 2}, 8});
    Saver elsewhere({{1, 2}, 9});
    const auto save = [](Saver& saver, const char* label) {
        AutoNode node = saver.Load();
        node.label = label;
        EXPECT_EQ(saver.Save(node), std::nullopt);
    };
    Edit(8, [&] {
        auto* looks = Person::Window("GUI")->findChild<QTimer*>("tmrChanges");
        EXPECT_LE(looks->interval(), 5000);
        looks->setInterval(10);
        const auto told = [] {
            EXPECT_TRUE(Comes([] { return QToolTip::isVisible(); }));
            const std::string text = QToolTip::text().toStdString();
            QObject anything; // at hideText it would stay for a while
            QEvent away(QEvent::WindowDeactivate);
            QApplication::sendEvent(&anything, &away);
            return text;
        };
        save(somebody, "Early");
        EXPECT_TRUE(told().starts_with("AUTO 8 was changed by "));
        Person::Press("cmdNext");
        Person::Press("cmdPrevious");
        Person::TypeLabel("Mine");
        Person::Press("cmdApply");
        save(elsewhere, "Of another node");
        QTest::qWait(100);
        EXPECT_FALSE(QToolTip::isVisible()) << QToolTip::text().toStdString();
        save(somebody, "Theirs");
        const std::string note = told();
        EXPECT_TRUE(note.ends_with(" since it was loaded here.")) << note;
        EXPECT_EQ(Person::Label() + Person::Focused(), "MinetxtDescription");
        Open();
        EXPECT_TRUE(Comes([&] { return Line("lblInfoNote") == note; }));
        Person::TypeLabel("Mine too");
        EXPECT_EQ(Line("lblInfoNote"),
                  "What was changed in the editor is not saved, and not told here.\n" + note);
        Person::MarkUnchanged();
        EXPECT_EQ(Line("lblInfoNote"), "");
        // Of nothing any more, where it was loaded anew.
        save(somebody, "Theirs again");
        EXPECT_TRUE(Tells(1, "&History (4)"));
        Person::Press("cmdNext");
        Person::Press("cmdPrevious");
        EXPECT_EQ(ShownNode(), "AUTO 8 Theirs again");
        EXPECT_EQ(Line("lblInfoNote"), "");
    });
}

} // namespace
} // namespace KAL_AUTO_Node
