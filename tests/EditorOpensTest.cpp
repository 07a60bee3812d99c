#include "Person.h"
#include "TestStore.h"

namespace KAL_AUTO_Node {
namespace {

TEST(EditorOpens, OnAStoredNode) {
    const TestStore store;
    Person person;
    const bool appeared = person.Edit(1, [] {
        EXPECT_EQ(Person::TextBox("txtDescription")->text(), "Main menu");
        EXPECT_EQ(Person::Count("LVPrompts"), 3);
        EXPECT_EQ(Person::Row("LVPrompts", 1), "2|2|MSG 2|Welcome, main menu|MSG|0|2");
        EXPECT_EQ(Person::Key("LVActions", 8), "9a");
        EXPECT_FALSE(Person::Dirty());
    });
    EXPECT_TRUE(appeared);
    EXPECT_EQ(person.Boxes(), std::vector<Box>{});
}

TEST(EditorOpens, NotOnAMissingNode) {
    const TestStore store;
    Person person;
    EXPECT_FALSE(person.Edit(25, [] {}));
    EXPECT_EQ(person.Boxes(), std::vector<Box>{Information("AUTO 25 doesn't exist.")});
}

} // namespace
} // namespace KAL_AUTO_Node
