#include "TestStore.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <fstream>

namespace KAL_AUTO_Node {
namespace {

// What a run of the program that ends by itself came to.
struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

Outcome AutoNode(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(AUTO_NODE), arguments);
    if (!process.waitForFinished(20'000) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return {process.exitCode(), process.readAllStandardOutput().toStdString(),
            process.readAllStandardError().toStdString()};
}

bool Tells(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST(HostProgram, TellsHowToUseIt) {
    for (const QStringList& arguments : {QStringList{},
                                         {"open"},
                                         {"edit"},
                                         {"edit", "1", "2"},
                                         {"edit", "1", "2", "x"},
                                         {"edit", "1", "2", "32768"},
                                         {"edit", "1", "2", "3", "4"},
                                         {"init", "--all"},
                                         {"init", "here"}}) {
        const Outcome run = AutoNode(arguments);
        EXPECT_EQ(run.status, 2) << arguments.join(' ').toStdString();
        EXPECT_NE(run.errors, "") << arguments.join(' ').toStdString();
        EXPECT_EQ(run.output, "");
    }
    const Outcome help = AutoNode({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(Tells(help.output, "edit") && Tells(help.output, "init")) << help.output;
    EXPECT_EQ(help.errors, "");
    EXPECT_TRUE(Tells(AutoNode({"edit", "--help"}).output, "PARTITION"));
    EXPECT_TRUE(Tells(AutoNode({"init", "--help"}).output, "--demo"));
}

TEST(HostProgram, MakesAStoreOnceWithItsFolders) {
    for (const bool demo : {false, true}) {
        const TestStore store;
        const std::string file = store.File().string();
        std::filesystem::remove_all(store.File().parent_path().parent_path().parent_path());
        const QStringList arguments = demo ? QStringList{"init", "--demo"} : QStringList{"init"};
        const Outcome made = AutoNode(arguments);
        EXPECT_EQ(made.status, 0) << made.errors;
        EXPECT_TRUE(Tells(made.output, file)) << made.output;
        EXPECT_EQ(store.Value("SELECT COUNT(*) > 0 FROM Node_AUTO"), demo ? "1" : "0");

        store.Execute("INSERT INTO SR_Node_Type_Names VALUES (77, 'MINE')");
        const Outcome again = AutoNode(arguments);
        EXPECT_EQ(again.status, 1);
        EXPECT_TRUE(Tells(again.errors, file)) << again.errors;
        EXPECT_EQ(again.output, "");
        EXPECT_EQ(store.Value("SELECT English_Name FROM SR_Node_Type_Names WHERE ID = 77"), "MINE");
    }
}

TEST(HostProgram, TellsWhyItCannotStart) {
    const TemporaryFolder folder;
    const EnvironmentVariable programData("PROGRAMDATA");
    const EnvironmentVariable configurationFolders("XDG_CONFIG_DIRS");
    programData.Set((folder.Path() / "data").string());
    configurationFolders.Set(folder.Path().string());
    std::ofstream(folder.Path() / "data") << "a file where the folder should be";
    const Outcome blocked = AutoNode({"init"});
    EXPECT_EQ(blocked.status, 1);
    EXPECT_TRUE(Tells(blocked.errors, (folder.Path() / "data").string())) << blocked.errors;

    std::filesystem::create_directories(folder.Path() / "Brevank" / "Parlon+");
    std::ofstream(folder.Path() / "Brevank" / "Parlon+" / "registry.reg")
        << "REGEDIT4\r\n\r\n"
           "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\r\n"
           "\"Common AppData\"=hex(5):00,00,00,01\r\n";
    const EnvironmentVariable platform("QT_QPA_PLATFORM");
    platform.Set("offscreen");
    const Outcome refused = AutoNode({"edit", "1", "2", "1"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(Tells(refused.errors, "Unsupported value type")) << refused.errors;

    // Without a display the toolkit would end the process by force.
    platform.Unset();
    const EnvironmentVariable display("DISPLAY");
    const EnvironmentVariable wayland("WAYLAND_DISPLAY");
    display.Unset();
    wayland.Unset();
    const Outcome blind = AutoNode({"edit", "1", "2", "1"});
    EXPECT_EQ(blind.status, 1);
    EXPECT_TRUE(Tells(blind.errors, "display")) << blind.errors;
}

} // namespace
} // namespace KAL_AUTO_Node
