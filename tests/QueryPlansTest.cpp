#include "TestStore.h"
#include "store/DataBase.h"

#include <gtest/gtest.h>

namespace KAL_AUTO_Node {
namespace {

// Every command finds its rows in the key of its table, in the order asked for, however large the store
// grows.
TEST(QueryPlans, SearchTheKeysAndSortNothing) {
    const TestStore store(StoreContent::Empty);
    for (std::size_t i = 0; i < CommandCount; ++i) {
        const auto command = static_cast<Command>(i);
        std::string steps;
        for (const std::string& row : store.Rows("EXPLAIN QUERY PLAN " + CommandText(command))) {
            steps += row.substr(row.rfind('|') + 1) + '\n';
        }
        SCOPED_TRACE(std::string(CommandName(command)) + ":\n" + steps);
        EXPECT_EQ(steps.find("TEMP B-TREE"), std::string::npos);
        // The names are read all, the rows of an insert come from the caller.
        const bool readsAll = command == Command::Get_Node_Names || command == Command::Get_Partitions;
        const bool insertsValues = CommandName(command).substr(0, 4) == "Add_";
        EXPECT_EQ(steps.find("SCAN ") != std::string::npos, readsAll);
        EXPECT_EQ(steps.find("SEARCH ") != std::string::npos, !readsAll && !insertsValues);
    }
}

} // namespace
} // namespace KAL_AUTO_Node
