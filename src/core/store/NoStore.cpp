#include "store/NoStore.h"

#include "platform/NativePath.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"
#include "store/ParlonPlusFilesAndFolders.h"

namespace KAL_AUTO_Node {

std::string ToldOfNoStore(const std::exception& error) {
    std::string what = error.what();
    const auto* const raised = dynamic_cast<const RuntimeError*>(&error);
    if (raised == nullptr || raised->Number() != ErrorNumber::StoreNotFound) {
        return what;
    }
    // The place was found when the error was raised.
    const std::filesystem::path file = DataBase().File();
    std::error_code failure;
    if (std::filesystem::exists(file, failure) || failure || what.find(file.string()) == std::string::npos) {
        return what;
    }
    return "There is no store yet. \"auto-node init\" makes one, '" +
           NativePath(GetNewDatabaseFile()).string() +
           "'; \"auto-node init --demo\" one with a phone menu to look at";
}

} // namespace KAL_AUTO_Node
