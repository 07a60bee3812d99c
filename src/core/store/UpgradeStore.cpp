#include "store/UpgradeStore.h"

#include "platform/NewFile.h"
#include "platform/NumericValue.h"
#include "store/Connection.h"
#include "store/DataBase.h"
#include "store/Scripts.h"
#include "store/StoreFormat.h"

#include <sqlite3.h>

#include <array>
#include <memory>
#include <string>

namespace KAL_AUTO_Node {

namespace {

// What brings the tables from a version, from 1, to the next.
constexpr std::array<const char* const*, StoreVersion - 1> Steps = {{&Upgrade2Script}};

std::filesystem::path FreeName(const std::filesystem::path& file, int version) {
    const std::string name = file.string() + ".version-" + std::to_string(version);
    std::filesystem::path free = name;
    for (int count = 2; std::filesystem::exists(std::filesystem::symlink_status(free)); ++count) {
        free = name + '.' + std::to_string(count);
    }
    return free;
}

// Over a connection of its own, which reads beside the one that keeps others from writing.
void Copy(const std::filesystem::path& file, const std::filesystem::path& to) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> source(opened, &sqlite3_close);
    const std::unique_ptr<char, void (*)(void*)> sql(sqlite3_mprintf("VACUUM INTO %Q", to.c_str()),
                                                     &sqlite3_free);
    if (result != SQLITE_OK || sqlite3_exec(opened, sql.get(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           std::string("No copy of the store can be made, so it stays as it is: ") +
                               sqlite3_errmsg(opened),
                           "SQLite");
    }
}

std::filesystem::path CopyBeside(const std::filesystem::path& file, int version) {
    try {
        auto place = FreeName(file, version);
        NewFile copy(place);
        copy.Write({}); // what an interrupted one left
        Copy(file, copy.Name());
        std::filesystem::permissions(copy.Name(), std::filesystem::status(file).permissions());
        copy.Place();
        return place;
    } catch (const RuntimeError&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           std::string("No copy of the store can be made, so it stays as it is: ") +
                               error.what());
    }
}

} // namespace

class StoreUpgrade {
  public:
    static Upgraded Run(DataBase& dataBase) {
        const bool remote = dataBase.IsRemote();
        Transaction all(dataBase);
        const bool tells = dataBase.Version().value_or(0) > 0;
        const int version = tells && !remote ? StoredVersion(dataBase) : dataBase.Version().value_or(0);
        Upgraded upgraded{version, version, {}};
        if (!tells || version >= StoreVersion) {
            return upgraded;
        }
        if (!remote) {
            upgraded.copy = CopyBeside(dataBase.File(), upgraded.from);
        }
        // A history that is not there is made with the first save.
        const bool kept = dataBase.HasTable("Node_AUTO_Version");
        for (; upgraded.to < StoreVersion; ++upgraded.to) {
            if (kept) {
                dataBase.RunScript(*Steps.at(static_cast<std::size_t>(upgraded.to - 1)));
            }
        }
        dataBase.SetVersion(StoreVersion);
        all.Commit();
        dataBase.Flush();
        return upgraded;
    }

  private:
    // Another program may have brought it up since it was opened here.
    static int StoredVersion(DataBase& dataBase) {
        const auto statement = dataBase.Prepare("PRAGMA user_version");
        statement->Run({});
        return static_cast<int>(NumericValue(statement->Field(0).value_or("")));
    }
};

bool IsOlder(const DataBase& dataBase) {
    const auto version = dataBase.Version();
    return version && *version > 0 && *version < StoreVersion;
}

Upgraded UpgradeStore(DataBase& dataBase) { return StoreUpgrade::Run(dataBase); }

} // namespace KAL_AUTO_Node
