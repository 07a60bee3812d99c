#include "TestStore.h"

#include <QProcess>
#include <gtest/gtest.h>

#include <fstream>

namespace KAL_AUTO_Node {
namespace {

// What a run of the program that ends by itself wrote.
struct Outcome {
    std::string output;
    std::string errors;
};

Outcome AutoNode(int status, const QStringList& arguments) {
    SCOPED_TRACE(arguments.join(' ').toStdString());
    QProcess process;
    process.start(QStringLiteral(AUTO_NODE), arguments);
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
                                         {"edit", "1", "2", "3", "4"},
                                         {"init", "here"}}) {
        AutoNode(2, arguments);
    }
    ExpectTold(AutoNode(0, {"--help"}).output, "edit");
    ExpectTold(AutoNode(0, {"edit", "--help"}).output, "PARTITION");
    ExpectTold(AutoNode(0, {"init", "--help"}).output, "--demo");
}

TEST(HostProgram, MakesAStoreOnceWithItsFolders) {
    for (const bool demo : {false, true}) {
        const TestStore store;
        const std::string file = store.File().string();
        std::filesystem::remove_all(store.File().parent_path().parent_path().parent_path());
        const QStringList arguments = demo ? QStringList{"init", "--demo"} : QStringList{"init"};
        ExpectTold(AutoNode(0, arguments).output, file);
        EXPECT_EQ(store.Value("SELECT COUNT(*) > 0 FROM Node_AUTO"), demo ? "1" : "0");

        store.Execute("INSERT INTO SR_Node_Type_Names VALUES (77, 'MINE')");
        ExpectTold(AutoNode(1, arguments).errors, file);
        EXPECT_EQ(store.Value("SELECT English_Name FROM SR_Node_Type_Names WHERE ID = 77"), "MINE");
    }
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
