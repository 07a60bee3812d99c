#include "RandomPerson.h"

#include <QDeadlineTimer>

#include <cstdlib>
#include <random>

namespace KAL_AUTO_Node {
namespace {

TEST(ListInvariants, HoldInAnyOrderOfOperations) {
    const char* given = std::getenv("KAL_TEST_SEED");
    const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : std::random_device()();
    const TestStore store;
    store.Execute(
        "UPDATE Node_Type_Max SET Max_Number = CASE NodeType_ID WHEN 0 THEN 9 WHEN 2 THEN 3 ELSE 0 END"
        " WHERE PartitionID = 2 AND NodeType_ID IN (0, 2, 8);"
        "DELETE FROM Node_Type_Max WHERE PartitionID = 2 AND NodeType_ID = 5;"
        "INSERT INTO Detail_AUTO_Prompts (ConfigID, PartID, NodeMasterID, SequenceNo, NodeTypeID,"
        " NodeType, NodeNumber) VALUES (1, 2, 5, 2, 8, 'LIST', 3), (1, 2, 5, 3, 817, 'M_ON', 2)");
    Person person;
    EXPECT_TRUE(person.Edit(5, [&] {
        RandomPerson random(person, static_cast<unsigned>(seed));
        const Account::Rows first = random.Rows();
        const QDeadlineTimer limit(4000);
        for (int deed = 0; deed < 800 && !limit.hasExpired() && !HasFailure(); ++deed) {
            // Where no window manager brings it back to the front when a message box has closed.
            Person::Window("GUI")->activateWindow();
            Person::WaitForFocus();
            random.Step();
            SCOPED_TRACE("KAL_TEST_SEED=" + std::to_string(seed) + ", deed " + std::to_string(deed) +
                         ", last " + random.Last());
            random.Check();
            if (deed % 60 == 50) {
                Person::Window("GUI")->activateWindow();
                Person::WaitForFocus();
                random.RestoreAll(true);
                EXPECT_TRUE(deed > 50 || random.Rows() == first);
                random.RestoreAll(false);
            }
        }
    }));
}

} // namespace
} // namespace KAL_AUTO_Node
