#include "testing/Person.h"
#include "testing/Relay.h"
#include "testing/TestStore.h"

namespace KAL_AUTO_Node {
namespace {

// A person far from the server: every way there and back takes 20 ms. The connection's own ways count.
TEST(SlowLine, OpensAndSavesInAFewWays) {
    const TestStore store;
    store.Execute("INSERT INTO Detail_AUTO_Prompts SELECT 1, 2, 100 + n, 0, 1 + n % 60, 8, 'MSG'"
                  " FROM generate_series(1, 900) n");
    Relay relay(std::chrono::milliseconds(10));
    std::ofstream(store.File(), std::ios::trunc)
        << relay.AddressOf(store.Value("SELECT current_database()")) << '\n';
    Person person;
    EXPECT_TRUE(person.Edit(8, [&] {
        EXPECT_LE(relay.Ways(), 8) << "to open";
        // The window connects for itself.
        for (const auto& [label, most] : {std::pair{"First", 3 + 4}, {"Second", 4}}) {
            Person::TypeLabel(label);
            Person::Press("cmdApply");
            EXPECT_LE(relay.Ways(), most) << "to save";
            EXPECT_EQ(
                store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8"),
                label);
        }
        Person::Press("cmdNext");
        EXPECT_LE(relay.Ways(), 2) << "to the next node";
        // Looks for others' changes cost nothing while there are none.
        Person::Window("GUI")->findChild<QTimer*>("tmrChanges")->setInterval(1);
        for (const auto& [wait, most] : {std::pair{300, 3}, {50, 0}}) {
            QTest::qWait(wait);
            EXPECT_LE(relay.Ways(), most);
        }
    }));
    EXPECT_EQ(person.Boxes(), std::vector<Box>());
}

// It takes a connection and says nothing, or falls silent when it is asked for the first or the second time,
// and refuses the next connection.
TEST(SlowLine, IsReportedOnceWhereTheServerIsSilent) {
    const TestStore store;
    for (const int silentFrom : {1, 4, 5}) {
        std::atomic<bool> silent = true;
        Relay relay(std::chrono::milliseconds(0));
        relay.AtWay = [&](int way) {
            if (way == silentFrom && way > 1) {
                relay.Close();
            }
            while (way >= silentFrom && silent) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
        };
        std::ofstream(store.File(), std::ios::trunc)
            << relay.AddressOf(store.Value("SELECT current_database()"))
            << "&connect_timeout=2&tcp_user_timeout=150\n";
        Person person;
        const auto begun = std::chrono::steady_clock::now();
        EXPECT_FALSE(person.Edit(8, [] {}));
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(4));
        EXPECT_EQ(person.Boxes().size(), 1U) << silentFrom;
        silent = false;
    }
}

} // namespace
} // namespace KAL_AUTO_Node
