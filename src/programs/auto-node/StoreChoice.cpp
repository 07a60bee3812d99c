#include "auto-node/StoreChoice.h"

#include "auto-node/Commands.h"
#include "platform/NativePath.h"
#include "store/NoStore.h"
#include "store/ParlonPlusFilesAndFolders.h"

namespace KAL_AUTO_Node {

std::filesystem::path StoreChoice::NewPlace() const {
    return file_.empty() ? NativePath(GetNewDatabaseFile()) : std::filesystem::path(file_);
}

std::string StoreChoice::Told(const std::exception& error) const {
    return file_.empty() ? ToldOfNoStore(error) : error.what();
}

std::function<int(const StoreChoice& store)> Reading(StoreWork work) {
    return [work = std::move(work)](const StoreChoice& store) {
        DataBase dataBase = store.Open();
        const Snapshot snapshot(dataBase);
        return work(dataBase);
    };
}

std::function<int(const StoreChoice& store)> Opening(StoreWork work) {
    return [work = std::move(work)](const StoreChoice& store) {
        DataBase dataBase = store.Open();
        return work(dataBase);
    };
}

} // namespace KAL_AUTO_Node
