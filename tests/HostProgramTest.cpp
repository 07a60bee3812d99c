#include "TestStore.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace KAL_AUTO_Node {
namespace {

// What a run of the program that ends by itself wrote.
struct Outcome {
    std::string output;
    std::string errors;
};

Outcome AutoNode(int status, const QStringList& arguments, const char* program = AUTO_NODE) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    if (!process.waitForFinished(20'000)) {
        process.kill();
        process.waitForFinished();
    }
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), status);
    const Outcome outcome = {process.readAllStandardOutput().toStdString(),
                             process.readAllStandardError().toStdString()};
    EXPECT_EQ(outcome.errors.empty(), status == 0) << outcome.errors;
    EXPECT_EQ(outcome.output.empty(), status != 0) << outcome.output;
    return outcome;
}

void ExpectTold(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << text << " does not tell " << part;
}

TEST(HostProgram, TellsHowToUseIt) {
    for (const QStringList& arguments : {QStringList{},
                                         {"open"},
                                         {"edit", "1", "2"},
                                         {"edit", "1", "2", "32768"},
                                         {"edit", "1", "2", "-32769"},
                                         {"edit", "1", "", "3"},
                                         {"edit", "0x1", "2", "3"},
                                         {"edit", "1", "2", "3", "4"},
                                         {"init", "here"}}) {
        AutoNode(2, arguments);
    }
    ExpectTold(AutoNode(0, {"--help"}).output, "edit");
    ExpectTold(AutoNode(0, {"edit", "--help"}).output, "PARTITION");
    ExpectTold(AutoNode(0, {"init", "--help"}).output, "--demo");
}

TEST(HostProgram, OpensTheEditorOnTheNodeAskedForAndTellsWhereItIsMissing) {
    const TestStore store;
    const TemporaryFolder programs;
    const std::string program = (programs.Path() / "auto-node").string();
    std::filesystem::copy_file(AUTO_NODE, program);
    std::filesystem::copy_file(HOST_ALONE, program + "-edit");
    const auto edit = [&](int status, const QStringList& numbers) {
        return AutoNode(status, QStringList("edit") + numbers, program.c_str());
    };
    EXPECT_EQ(edit(0, {"1", "2", "010"}).output, "1 2 10\n");
    EXPECT_EQ(edit(0, {"32767", "-1", "-32768"}).output, "32767 -1 -32768\n");
    const std::string errors = edit(1, {"3", "4", "404"}).errors;
    ExpectTold(errors, "node 404 of configuration 3, partition 4");
    ExpectTold(errors, store.File().string());
}

TEST(HostProgram, MakesAStoreOnceWithItsFolders) {
    for (const bool demo : {false, true}) {
        const TestStore store;
        const std::string file = store.File().string();
        std::filesystem::remove_all(store.File().parent_path().parent_path().parent_path());
        const QStringList arguments = demo ? QStringList{"init", "--demo"} : QStringList{"init"};
        const std::string output = AutoNode(0, arguments).output;
        ExpectTold(output, file);
        EXPECT_EQ(output.find(" edit 1 2 1\n") != std::string::npos, demo) << output;
        EXPECT_EQ(store.Value("PRAGMA journal_mode"), "wal");
        EXPECT_EQ(store.Value("SELECT COUNT(*) > 0 FROM Node_AUTO"), demo ? "1" : "0");

        store.Execute("INSERT INTO SR_Node_Type_Names VALUES (77, 'MINE')");
        ExpectTold(AutoNode(1, arguments).errors, file);
        EXPECT_EQ(store.Value("SELECT English_Name FROM SR_Node_Type_Names WHERE ID = 77"), "MINE");
    }
}

TEST(HostProgram, LeavesNoHalfOfAStore) {
    const TestStore store;
    const auto folder = store.File().parent_path();
    const auto file = [&](const char* ending) { return store.File().string() + ending; };
    std::filesystem::remove(store.File());
    // The journal of a store that is gone would be taken for the new one's.
    for (const char* ending : {"-wal", "-journal"}) {
        std::ofstream(file(ending)) << "of another store";
        ExpectTold(AutoNode(1, {"init"}).errors, file(ending).substr(folder.string().size() + 1));
        std::filesystem::remove(file(ending));
        EXPECT_TRUE(std::filesystem::is_empty(folder));
    }
    // What an init left that was killed.
    std::ofstream(file(".new")) << std::string(1'000'000, 'x');
    AutoNode(0, {"init"});
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
    ExpectTold(AutoNode(1, {"init"}).errors, "too long");
    EXPECT_TRUE(std::filesystem::is_empty(place.Path()));
}

TEST(HostProgram, TellsWhyItCannotStart) {
    const TemporaryFolder folder;
    const EnvironmentVariable programData("PROGRAMDATA");
    programData.Set((folder.Path() / "data").string());
    std::ofstream(folder.Path() / "data") << "a file where the folder should be";
    ExpectTold(AutoNode(1, {"init"}).errors, (folder.Path() / "data").string());

    // Without a display the toolkit would end the process by force.
    const EnvironmentVariable platform("QT_QPA_PLATFORM");
    const EnvironmentVariable display("DISPLAY");
    const EnvironmentVariable wayland("WAYLAND_DISPLAY");
    for (const EnvironmentVariable* variable : {&platform, &display, &wayland}) {
        variable->Unset();
    }
    ExpectTold(AutoNode(1, {"edit", "1", "2", "1"}).errors, "display");
}

} // namespace
} // namespace KAL_AUTO_Node
