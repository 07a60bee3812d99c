#include "RunProgram.h"
#include "platform/NewFile.h"
#include "platform/RuntimeError.h"
#include "testing/FaultySystem.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <algorithm>

namespace KAL_AUTO_Node {
namespace {

TEST(StoreFile, IsMadeOnceWithItsFolders) {
    for (const bool demo : {false, true}) {
        const TestStore store;
        const std::string file = store.File().string();
        std::filesystem::remove_all(store.File().parent_path().parent_path().parent_path());
        const QStringList arguments = demo ? QStringList{"init", "--demo"} : QStringList{"init"};
        const std::string output = Program(0, arguments).output;
        ExpectTold(output, file);
        EXPECT_EQ(output.find(" edit 1 2 1\n") != std::string::npos, demo) << output;
        EXPECT_EQ(store.Value("PRAGMA journal_mode"), "wal");
        EXPECT_EQ(store.Value("SELECT COUNT(*) > 0 FROM Node_AUTO"), demo ? "1" : "0");

        store.Execute("INSERT INTO SR_Node_Type_Names VALUES (77, 'MINE')");
        ExpectTold(Program(1, arguments).errors, file);
        EXPECT_EQ(store.Value("SELECT English_Name FROM SR_Node_Type_Names WHERE ID = 77"), "MINE");
    }
}

TEST(StoreFile, IsNeverHalfMade) {
    const TestStore store;
    const auto folder = store.File().parent_path();
    const auto file = [&](const char* ending) { return store.File().string() + ending; };
    std::filesystem::remove(store.File());
    // The journal of a store that is gone would be taken for the new one's.
    for (const char* ending : {"-wal", "-journal"}) {
        std::ofstream(file(ending)) << "of another store";
        ExpectTold(Program(1, {"init"}).errors, file(ending).substr(folder.string().size() + 1));
        std::filesystem::remove(file(ending));
        EXPECT_TRUE(std::filesystem::is_empty(folder));
    }
    // What an init left that was killed.
    std::ofstream(file(".new")) << std::string(1'000'000, 'x');
    Program(0, {"init"});
    EXPECT_FALSE(std::filesystem::exists(file(".new")));
    EXPECT_EQ(store.Value("PRAGMA integrity_check"), "ok");

    // Folders are made until the path gets too long, and taken back.
    const EnvironmentVariable programData("PROGRAMDATA");
    const TemporaryFolder place;
    std::string path = place.Path().string();
    while (path.size() < 4075) {
        path += '/' + std::string(std::min<std::size_t>(200, 4075 - path.size()), 'x');
    }
    programData.Set(path);
    ExpectTold(Program(1, {"init"}).errors, "too long");
    EXPECT_TRUE(std::filesystem::is_empty(place.Path()));
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
        EXPECT_EQ(BytesOf(store.Folder() / "syncs"), syncs) << arguments.join(' ').toStdString();
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
    EXPECT_EQ(BytesOf(place), "theirs");
    std::filesystem::create_symlink(folder.Path() / "none", folder.Path() / "link.new");
    EXPECT_THROW(NewFile other(folder.Path() / "link"), RuntimeError);
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "none"));
}

} // namespace
} // namespace KAL_AUTO_Node
