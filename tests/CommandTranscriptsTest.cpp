#include "RunProgram.h"
#include "testing/TestStore.h"

#include <QRegularExpression>

#include <sstream>

namespace KAL_AUTO_Node {
namespace {

// What is told differs by the folder, the time and who it is.
QString AlikeEverywhere(QString told, const std::string& folder) {
    static const std::pair<QRegularExpression, const char*> others[] = {
        {QRegularExpression(R"TIME(20[2-9]\d-\d\d-\d\d[T ]\d\d:\d\d(?!")\S*)TIME"), "TIME"},
        {QRegularExpression(R"(\S+ on \S+ with auto-node)"), "USER on HOST with auto-node"},
        {QRegularExpression(R"(("user"|"host"): "[^"]*")"), "\\1: \"...\""}};
    told.replace(QString::fromStdString(folder), "~");
    for (const auto& [differing, alike] : others) {
        told.replace(differing, alike);
    }
    return told;
}

TEST(CommandTranscripts, TellWhatEachCommandSays) {
    const EnvironmentVariable path("PATH");
    path.Set(std::filesystem::path(AUTO_NODE).parent_path().string() + ':' + std::getenv("PATH"));
    const EnvironmentVariable data("DATA");
    data.Set(TEST_DATA);
    for (const char* name : {"commands.txt", "help.txt"}) {
        const TestStore store;
        const EnvironmentVariable place("STORE");
        place.Set(store.File().string());
        const auto file = std::filesystem::path(TEST_DATA) / name;
        const std::string text = BytesOf(file);
        std::string told = text.substr(0, text.find("\n$ ") + 1);
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with("$ ")) {
                continue;
            }
            QProcess shell;
            shell.setWorkingDirectory(QString::fromStdString(store.Folder().string()));
            shell.start("bash", {"-c", QString::fromStdString(line.substr(2))});
            ASSERT_TRUE(shell.waitForFinished(20'000)) << line;
            const auto alike = [&](const QByteArray& output) {
                return AlikeEverywhere(QString::fromUtf8(output), store.Folder());
            };
            std::istringstream errors(alike(shell.readAllStandardError()).toStdString());
            told += line + '\n' + alike(shell.readAllStandardOutput()).toStdString();
            for (std::string error; std::getline(errors, error);) {
                told += "! " + error + '\n';
            }
            told += shell.exitCode() == 0 ? "" : '[' + std::to_string(shell.exitCode()) + "]\n";
        }
        if (std::getenv("KAL_TEST_ANEW") != nullptr) {
            WriteFile(file, told);
        }
        EXPECT_EQ(told, text);
    }
}

} // namespace
} // namespace KAL_AUTO_Node
