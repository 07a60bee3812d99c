#include "store/CreateServerStore.h"

#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "store/Scripts.h"
#include "store/ServerModule.h"
#include "store/StoreFormat.h"

namespace KAL_AUTO_Node {

namespace {

ServerStore MakeTables(Connection& server, StoreContent content) {
    if (server.HasTable("Node_AUTO")) {
        if (content == StoreContent::Demo) {
            throw RuntimeError(ErrorNumber::StoreFailure,
                               "there is a store on " + server.Place() + " already");
        }
        return ServerStore::Found;
    }
    server.Begin(std::nullopt);
    server.RunScript(SchemaScript);
    server.RunScript(HistoryScript);
    if (content == StoreContent::Demo) {
        server.RunScript(DemoScript);
    }
    server.SetVersion(StoreVersion);
    server.Commit();
    return ServerStore::Made;
}

} // namespace

ServerStore CreateServerStore(const std::filesystem::path& file, const std::string& uri,
                              StoreContent content) {
    try {
        NewFolders folders(file.parent_path());
        NewFile link(file, NewFile::Readers::Owner);
        link.Write(uri + '\n');
        if (std::filesystem::exists(std::filesystem::symlink_status(file))) {
            throw RuntimeError(ErrorNumber::StoreFailure, "it exists already");
        }
        const auto server = OpenServer(uri, ServerUse::Database);
        const ServerStore store = MakeTables(*server, content);
        link.Place();
        folders.Keep();
        return store;
    } catch (const RuntimeError& error) {
        throw RuntimeError(ErrorNumber::StoreFailure,
                           "Cannot create the store '" + file.string() + "': " + error.what());
    }
}

} // namespace KAL_AUTO_Node
