#include "testing/Person.h"

#include <QAbstractItemView>

namespace KAL_AUTO_Node {
namespace {

using enum QMessageBox::StandardButton;

// Waits for what is read beside the editor.
bool Comes(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 10'000); }

void Press(QWidget* where, int key, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QTest::keyClick(where, static_cast<Qt::Key>(key), with);
}

std::string ShownNode() { return Person::Text("cmbNode") + ' ' + Person::Label(); }

// As a window manager lets the editor do when a window above it has gone.
void ComeToTheFront() {
    Person::Window("GUI")->activateWindow();
    Person::WaitForFocus();
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
            QTest::keyClicks(window.focusWidget(), "sale");
            EXPECT_EQ(Person::Cell("LVGoTo", 0, 0), "AUTO 8") << "AUTO nodes come first";
            EXPECT_GT(Person::Count("LVGoTo"), 1);
            QTest::keyClicks(window.focusWidget(), "zz");
            EXPECT_EQ(Person::Count("LVGoTo"), 0);
            EXPECT_FALSE(Person::Button("cmdGoTo")->isEnabled());
            Press(window.focusWidget(), Qt::Key_Return);
            EXPECT_TRUE(window.isVisible());
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
        EXPECT_EQ(person_.Boxes(), std::vector(2, SaveQuestion()));
        Person::TypeLabel("Lost");
        person_.WillAnswer({Cancel, No});
        for (const char* node : {"AUTO 9 Lost", "AUTO 1 Changed"}) {
            ComeToTheFront();
            Press(Person::Window("GUI"), Qt::Key_Left, Qt::AltModifier);
            EXPECT_EQ(ShownNode(), node);
        }
        EXPECT_EQ(person_.Boxes(), std::vector(2, SaveQuestion()));
        // A row of another type leads to no node that can be shown here.
        Person::ClickRow("LVActions", 2);
        Press(Person::List("LVActions"), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(ShownNode(), "AUTO 1 Changed");
        EXPECT_TRUE(Person::OpenEditors().empty());
    });
}

} // namespace
} // namespace KAL_AUTO_Node
