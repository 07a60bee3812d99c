#include "TestStore.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <gtest/gtest.h>

#include <functional>
#include <unistd.h>

namespace KAL_AUTO_Node {
namespace {

// What the error says that some use of the store raises; empty where it raises none.
std::string Refusal(const std::function<void(DataBase&)>& use) {
    DataBase dataBase;
    try {
        use(dataBase);
        return {};
    } catch (const RuntimeError& error) {
        return error.what();
    }
}

void ExpectNames(const std::string& refusal, const std::string& what, const TestStore& store) {
    EXPECT_NE(refusal.find(what), std::string::npos) << refusal;
    EXPECT_NE(refusal.find(store.File().string()), std::string::npos) << refusal;
}

// From the store's folder up to the temporary one that holds it all.
void SetFolders(const TestStore& store, std::filesystem::perms permissions) {
    auto folder = store.File().parent_path();
    for (int level = 0; level < 4; ++level, folder = folder.parent_path()) {
        std::filesystem::permissions(folder, permissions);
    }
}

TEST(StoreAccess, ToALockedStoreIsRefused) {
    const TestStore store;
    std::optional<SQLite::Database> other;
    other.emplace(store.File().string(), SQLite::OPEN_READWRITE);
    other->exec("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; UPDATE Node_Type_Max SET Max_Number = 1");
    const auto read = [](DataBase& dataBase) {
        static_cast<void>(dataBase.Query(Command::Get_Node_Names, {}));
    };
    ExpectNames(Refusal(read), "database is locked", store);
    other.reset();
    EXPECT_EQ(Refusal(read), "");
}

TEST(StoreAccess, ToAReadOnlyStoreIsRefusedWhereItWrites) {
    const TestStore store;
    // A store with a rollback journal needs no files beside it to be read.
    static_cast<void>(store.Rows("PRAGMA journal_mode = DELETE"));
    SetFolders(store, std::filesystem::perms(0555));
    std::filesystem::permissions(store.File(), std::filesystem::perms(0444));
    // Nothing is read-only to root.
    constexpr uid_t nobody = 65534;
    const uid_t self = geteuid();
    if (self == 0 && seteuid(nobody) != 0) {
        GTEST_SKIP() << "root cannot become somebody else here";
    }
    const std::string reading =
        Refusal([](DataBase& dataBase) { static_cast<void>(dataBase.Query(Command::Get_Node_Names, {})); });
    const std::string writing = Refusal([](DataBase& dataBase) {
        dataBase.Execute(Command::Delete_AUTO_PromptsNode, {1, 2, 1});
    });
    ASSERT_EQ(seteuid(self), 0);
    SetFolders(store, std::filesystem::perms(0755));
    EXPECT_EQ(reading, "");
    ExpectNames(writing, "attempt to write a readonly database", store);
    EXPECT_NE(store.Rows("SELECT 1 FROM Detail_AUTO_Prompts WHERE PartID = 2 AND NodeMasterID = 1").size(),
              0U);
}

} // namespace
} // namespace KAL_AUTO_Node
