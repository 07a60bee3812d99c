#include "RunProgram.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "testing/FaultySystem.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <fstream>

namespace KAL_AUTO_Node {
namespace {

std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(StoreFile, IsOnDiskWhenACommandHasEnded) {
    const TestStore store;
    const auto in = [&](const char* name) {
        return QString::fromStdString((store.Folder() / name).string());
    };
    Saver saver({{1, 2}, 8});
    AutoNode node = saver.Load();
    Program(0, {"export", "1", "2", in("out.json")});
    node.label = "Changed";
    // The saver has the store open, or each program would carry the log over, and sync, as it ends.
    EXPECT_FALSE(saver.Save(node));
    const EnvironmentVariable sanitizer("ASAN_OPTIONS");
    sanitizer.Set(qEnvironmentVariable("ASAN_OPTIONS").toStdString() + ":verify_asan_link_order=0");
    const EnvironmentVariable preload("LD_PRELOAD");
    const EnvironmentVariable told("KAL_SYNCS");
    told.Set(in("syncs").toStdString());
    const std::string folder = store.Folder().filename().string() + ' ';
    // The folder keeps the name of the log.
    const std::string log = "NewDB.mdb-wal Database ";
    for (const auto& [status, arguments, syncs] :
         {std::tuple{0, QStringList{"import", in("out.json")}, log},
          {0, {"restore", "1", "2", "8"}, log},
          {0, {"repoint", "1", "2", "MSG", "44", "MSG", "43"}, log},
          {1, {"check", "1", "2", "--fix", "missing"}, log},
          {0, {"prune"}, log},
          {0, {"export", "1", "2", in("out.json")}, "out.json.new out.json.new " + folder},
          {0, {"init", "--store", in("a/b/new.mdb")}, "new.mdb.new new.mdb.new b " + folder + "a "}}) {
        std::filesystem::remove(store.Folder() / "syncs");
        preload.Set(SYNCS);
        Program(status, arguments);
        preload.Unset();
        EXPECT_EQ(TextOf(store.Folder() / "syncs"), syncs) << arguments.join(' ').toStdString();
    }
}

TEST(StoreFile, IsWrittenWhereItsLogAloneFillsTheDisk) {
    StartFaultySystem();
    const TestStore store;
    DataBase dataBase;
    const auto write = [&](const char* label) {
        dataBase.Execute(Command::Update_Node_General_Pool, {label, "", 1, 2, 9, 8});
    };
    write("one");
    Arm(DiskFault::Full, 1, false, {});
    const FileSyncs syncs = SyncsOf([&] { EXPECT_NO_THROW(write("another")); });
    Disarm();
    EXPECT_GT(syncs.log, 0) << "before it is carried over";
    EXPECT_GT(syncs.database, 0);
}

TEST(NewFiles, TakeNobodysPlace) {
    const TemporaryFolder folder;
    const auto place = folder.Path() / "file";
    NewFile file(place);
    file.Write("one");
    EXPECT_THROW(NewFile other(place), RuntimeError) << "it is being made";
    std::ofstream(place) << "theirs";
    EXPECT_THROW(file.Place(), RuntimeError);
    EXPECT_EQ(TextOf(place), "theirs");
    std::filesystem::create_symlink(folder.Path() / "none", folder.Path() / "link.new");
    EXPECT_THROW(NewFile other(folder.Path() / "link"), RuntimeError);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "none"));
}

} // namespace
} // namespace KAL_AUTO_Node
