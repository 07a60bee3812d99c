#include "RunProgram.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "testing/Saver.h"
#include "testing/TestStore.h"

#include <algorithm>
#include <regex>
#include <sstream>

namespace KAL_AUTO_Node {
namespace {

// Thirty libraries hang on that one, most of what a command on a file would cost.
TEST(HostProgram, LoadsWhatAServerNeedsForAServerOnly) {
    const TestStore store;
    const auto told = store.Folder() / "told";
    for (const auto& [command, needed] :
         {std::pair{"LD_DEBUG=files " AUTO_NODE " list", TestStore::OnServer()},
          {"LD_TRACE_LOADED_OBJECTS=1 " AUTO_NODE "-edit", false}}) {
        ASSERT_EQ(std::system((std::string(command) + " >" + told.string() + " 2>&1").c_str()), 0);
        const std::string text = BytesOf(told);
        EXPECT_EQ(text.find("libpq") != std::string::npos, needed) << command;
        ExpectTold(text, "libc.");
    }
}

TEST(HostProgram, OpensTheEditorOnTheNodeAskedForAndTellsWhereItIsMissing) {
    const EnvironmentVariable platform("QT_QPA_PLATFORM");
    const EnvironmentVariable display("DISPLAY");
    const EnvironmentVariable wayland("WAYLAND_DISPLAY");
    platform.Unset();
    display.Unset();
    wayland.Set("wayland-0");
    const TestStore store;
    const TemporaryFolder programs;
    const std::string program = (programs.Path() / "auto-node").string();
    std::filesystem::copy_file(AUTO_NODE, program);
    std::filesystem::copy_file(HOST_ALONE, program + "-edit");
    const auto edit = [&](int status, const QStringList& numbers) {
        return Program(status, QStringList("edit") + numbers, program.c_str());
    };
    EXPECT_EQ(edit(0, {"1", "2", "010"}).output, "1 2 10\n");
    EXPECT_EQ(edit(0, {}).output, "1 1 1\n");
    EXPECT_EQ(edit(0, {"32767", "-1", "-32768"}).output, "32767 -1 -32768\n");
    const std::string errors = edit(1, {"3", "4", "404"}).errors;
    ExpectTold(errors, "node 404 of configuration 3, partition 4");
    ExpectTold(errors, store.File().string());
}

TEST(HostProgram, TellsWhyItCannotStart) {
    const TemporaryFolder folder;
    const EnvironmentVariable programData("PROGRAMDATA");
    programData.Set((folder.Path() / "data").string());
    std::ofstream(folder.Path() / "data") << "a file where the folder should be";
    ExpectTold(1, "init", (folder.Path() / "data").string());
    programData.Set((folder.Path() / "none").string());
    ExpectTold(1, "list", "There is no store yet. \"auto-node init\" makes one");

    // Without a display the toolkit would end the process by force.
    const EnvironmentVariable platform("QT_QPA_PLATFORM");
    const EnvironmentVariable display("DISPLAY");
    const EnvironmentVariable wayland("WAYLAND_DISPLAY");
    for (const EnvironmentVariable* variable : {&platform, &display, &wayland}) {
        variable->Unset();
    }
    ExpectTold(1, "edit 1 2 1", "display");
}

TEST(HostProgram, ListsAndShowsWhatAPersonWouldAskFor) {
    const TestStore store;
    store.Execute(
        "UPDATE Node_AUTO SET NodeDescription = 'Esc \x1b[31m, turn \u202e, two\nlines' WHERE NodeNumber = 9;"
        "UPDATE Node_AUTO SET RetryLimit = 9 WHERE PartID = 2 AND NodeNumber = 9");
    ExpectTold(0, "list", "            1          2          17        210\n");
    ExpectTold(0, "list 1 2", "  15  Réservations, Café Genève                      3");
    const std::string node = Program(0, {"show", "1", "2", "9"}).output;
    ExpectTold(node, "AUTO 9  Esc \\x1b[31m, turn \\u202e, two\\x0alines\n");
    ExpectTold(node, "  retry limit         9 (shown as 0)\n");
    ExpectTold(0, "show 1 2 9 --json", R"("label": "Esc \u001b[31m, turn \u202e, two\nlines",)");
    store.Execute("UPDATE Node_General_Pool SET NodeDescription = '\x1b[2J', NodeType = '\x1b[3J';"
                  "UPDATE SR_Node_Type_Names SET English_Name = English_Name || '\x1b[4J';"
                  "UPDATE Node_AUTO SET NodeDescription = '\x1b[5J', TimeoutNodeType = '\x1b[6J';"
                  "UPDATE Detail_AUTO_Action SET DTMFRangeLow = '\x1b[7J' WHERE SequenceNo = 2");
    for (const char* command :
         {"list 1 2", "show 1 2 8", "digits 1 2 8", "uses 1 2 0 1", "trace 1 2 8 1", "paths 1 2 0 1",
          "graph 1 2 8", "diff 1 2 8 --node 1 2 9", "export 1 2 /dev/stdout"}) {
        Program(0, QString(command).split(' '));
    }
    Program(1, {"check", "1", "2"});
    ExpectTold(0, "digits 1 2 8 --json",
               "\"takeNoPart\": [\n    {\n      \"action\": 2,\n      \"code\": \"range-not-digits\"");
}

TEST(HostProgram, TellsWhatChangedAndPutsItBack) {
    const TestStore store;
    {
        Saver saver({{1, 2}, 8});
        AutoNode node = saver.Load();
        node.label = "Changed";
        EXPECT_FALSE(saver.Save(node));
    }
    const std::string change = "    label \"Sales\" \u2192 \"Changed\"\n";
    const ProcessIdentity self = ThisProcess();
    ExpectTold(0, "history 1 2 8",
               "  " + store.Value("SELECT UserName FROM Node_AUTO_Version") + " on " + self.host + " with " +
                   self.program + "  save\n" + change);
    EXPECT_TRUE(store.Value("SELECT UserName FROM Node_AUTO_Version").starts_with(self.user));
    ExpectTold(0, "history 1 2 8 --json", "\"state\": \"finished\"");
    const std::string back = "    label \"Changed\" \u2192 \"Sales\"\n";
    EXPECT_EQ(Program(0, {"diff", "1", "2", "8", "--versions", "1"}).output, back);
    ExpectTold(0, QString::fromStdString("diff 1 2 8 --store " + store.File().string()), "nothing differs");
    ExpectTold(0, "restore 1 2 8 --dry-run", back);
    EXPECT_EQ(store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8"),
              "Changed");
    ExpectTold(0, "restore 1 2 8 1", back);
    ExpectTold(0, "restore 1 2 8 --dry-run", "as it was before version 2:\n" + change);
    EXPECT_EQ(store.Value("SELECT NodeDescription FROM Node_AUTO WHERE PartID = 2 AND NodeNumber = 8"),
              "Sales");
    store.Execute("UPDATE Node_AUTO_Version SET State = 'begun', HostName = '\x1b[31m', BegunAt = '" +
                  TimeStamp() + "' WHERE VersionNo = 2");
    if (!TestStore::OnServer()) {
        ExpectTold(1, "restore 1 2 8 --dry-run", " on \\x1b[31m with ");
    }

    EXPECT_EQ(WEXITSTATUS(std::system(AUTO_NODE " history 1 2 8 >/dev/full 2>/dev/null")), 1);
}

TEST(HostProgram, DrawsTheCallFlowOrOffersItsText) {
    const TestStore store;
    const QString file = QString::fromStdString((store.Folder() / "flow.svg").string());
    const auto draw = [&](int status, const QStringList& node) {
        return Program(status, QStringList{"graph", "1", "2"} + node + QStringList{"-o", file});
    };
    ExpectTold(draw(0, {}).output, file.toStdString());
    const auto size = std::filesystem::file_size(file.toStdString());
    draw(0, {"8", "--depth", "0"});
    EXPECT_LT(std::filesystem::file_size(file.toStdString()), size);
    {
        const EnvironmentVariable path("PATH");
        path.Set(store.Folder().string());
        ExpectTold(draw(1, {}).errors, "flow.svg.dot");
    }
    EXPECT_LT(std::filesystem::file_size(file.toStdString()), size) << "the picture before is gone";
    EXPECT_TRUE(std::filesystem::exists(file.toStdString() + ".dot"));
    store.Execute(
        "WITH RECURSIVE Numbers (Number) AS (VALUES (1) UNION ALL SELECT Number + 1 FROM Numbers WHERE "
        "Number < 301) INSERT INTO Node_AUTO SELECT 1, 3, 9, Number, 1, 'No', 5, 3, 3, 'MSG', 1, 'MSG', 1, "
        "'MSG', 1, 'AUTO', '', 0, 0, 0, 814, 814, 'NONE', 0, 'NONE', 0 FROM Numbers");
    ExpectTold(1, "graph 1 3 -o flow.png", "auto-node report writes a page of all");
    const auto drawn = [&](const std::string& list) {
        store.Execute("UPDATE Detail_DTMF_" + list +
                      " SET NodeTypeID = 9, NodeType = 'AUTO', NodeNumber = 8"
                      " WHERE PartID = 2 AND NodeMasterID = 2");
        return Program(0, {"graph", "1", "2"}).output;
    };
    const std::string ways = drawn("Action");
    ExpectTold(ways, "id=\"type6_2\"");
    EXPECT_EQ(drawn("Prompts"), ways) << "what is played is no way";
    for (const char* hidden : {"Menu template", "unreferenced"}) {
        EXPECT_EQ(Program(0, {"graph", "1", "2"}).output.find(hidden), std::string::npos);
    }
    const QString page = QString::fromStdString((store.Folder() / "page.html").string());
    const QString text = QString::fromStdString((store.Folder() / "text").string());
    ExpectTold(Program(0, {"report", "1", "2", page}).output, "Wrote 17 menus and ");
    Program(0, {"export", "1", "1", text});
    ExpectTold(1, "report 1 2 " + page + " --against " + text, "partition 1, not configuration 1");
    ExpectTold(Program(0, {"report", "1", "1", page, "--against", text}).output, "Wrote 2 menus");
}

TEST(HostProgram, BringsStoresOver) {
    const TestStore store;
    const QString file = QString::fromStdString((store.Folder() / "out.json").string());
    ExpectTold(Program(0, {"export", "1", "2", file}).output, "Wrote 698 rows into ");
    EXPECT_TRUE(Program(0, {"export", "1", "2", "/dev/stdout"}).output.starts_with("{\"format\""));
    store.Execute("UPDATE Node_AUTO SET RetryLimit = 7 WHERE PartID = 2 AND NodeNumber = 5;"
                  "DELETE FROM Node_CMD WHERE PartID = 2 AND NodeNumber = 1");
    const std::string changes = "AUTO node 5 of configuration 1, partition 2:\n    retry limit 7 \u2192 2\n"
                                "Node_AUTO: 0 added, 1 changed, 0 removed\n"
                                "Node_CMD: 1 added, 0 changed, 0 removed\n"
                                "    added ConfigID 1, PartID 2, NodeNumber 1, NodeTypeID 1\n";
    ExpectTold(Program(0, {"import", file, "--dry-run"}).output, changes);
    ExpectTold(Program(0, {"import", file}).output, changes);
    ExpectTold(Program(0, {"import", file}).output, "Nothing differs");
    ExpectTold(0, "history 1 2 5", "  import\n");

    const QString old = TEST_DATA "/NewDB.mdb";
    ExpectTold(Program(1, {"import", old}).errors, "rows already");
    const QString made = QString::fromStdString((store.Folder() / "made.db").string());
    const std::string told = Program(0, {"import", old, "--into", made}).output;
    ExpectTold(told, "missing-node");
    const QString other = QString::fromStdString((store.Folder() / "other.db").string());
    Program(1, {"import", old, "--into", other, "--dry-run"});
    EXPECT_FALSE(std::filesystem::exists(other.toStdString()));
    ExpectTold(Program(1, {"import", AUTO_NODE}).errors, "neither a Jet file nor");
    ExpectTold(Program(1, {"import", QString::fromStdString(store.Folder().string())}).errors, "folder");
}

TEST(HostProgram, ChecksAPartitionAndMakesWhatIsMissing) {
    const TestStore store;
    const std::string accepted = (store.Folder() / "accepted").string();
    const auto check = [&](int status, const QStringList& more) {
        return Program(status, QStringList{"check", "1", "2"} + more);
    };
    // As its page shows it.
    const std::string text = BytesOf(CHECK_PAGE);
    std::istringstream found(check(1, {}).output);
    for (std::string line; std::getline(found, line);) {
        ExpectTold(text, line.empty() ? "\n\n" : "\n    " + line + '\n');
    }
    ExpectTold(check(1, {"5", "--json"}).output, "\"key\": \"type-not-offered 1 2 AUTO 5 TABLE 1\"");
    ExpectTold(check(0, {"14"}).output, "unreferenced");

    const std::string keys = check(1, {"--keys"}).output;
    const QStringList fixBut = {"--accept", QString::fromStdString(accepted), "--fix", "missing"};
    std::ofstream(accepted) << "# for now\r\n" << std::regex_replace(keys, std::regex("\n"), "\r\n");
    EXPECT_EQ(check(0, fixBut).output.find("is created"), std::string::npos) << "it is accepted";
    ExpectTold(check(0, {"--accept", QString::fromStdString(accepted)}).output, "; 34 accepted\n");
    std::ofstream(accepted) << "missing 1 2 AUTO 6";
    ExpectTold(check(1, {"--accept", QString::fromStdString(accepted)}).errors, "line 1");

    const std::string fixed = check(1, {"--fix", "missing"}).output;
    ExpectTold(fixed, "MSG 241 is created.\n");
    EXPECT_EQ(fixed.find("MSG 241 is"), fixed.rfind("MSG 241 is"));
    ExpectTold(fixed, "HOLD 4: These nodes could not be created");
    EXPECT_EQ(store.Value("SELECT VexoFilename FROM Node_MSG WHERE NodeNumber = 241"), "P02M241.wav");
    const std::string left = check(1, {"--keys"}).output;
    ExpectTold(left, "missing-node 1 2 AUTO 6 HOLD 4\n");
    EXPECT_EQ(left.find("AUTO 6 MSG"), std::string::npos) << left;
    store.Execute("INSERT INTO Detail_LIST VALUES (7, 7, 1, 0, 1, 5, 'MSG')");
    ExpectTold(1, "check --keys", "orphan-rows 7 7 LIST 5");
    ExpectTold(left, "as-template 1 2 AUTO 33\n");
}

TEST(HostProgram, TellsWhatUsesANodeAndLetsAnotherTakeItsPlace) {
    const TestStore store;
    const auto repoint = [](int status, const QStringList& more) {
        return Program(status, QStringList{"repoint", "1", "2", "MSG", "44", "MSG", "43"} + more);
    };
    const std::string change = "AUTO 12  action 5  M_OFF 44 → M_OFF 43\n";
    ExpectTold(repoint(0, {"--dry-run"}).output, change + "Would change 4 references in 1 node\n");
    const QString file = QString::fromStdString((store.Folder() / "out.json").string());
    {
        // Who reads waits for nobody who writes, and keeps nobody from it.
        DataBase writer;
        const Transaction all(writer);
        repoint(0, {"--dry-run"});
        Program(0, {"export", file});
        ExpectTold(Program(0, {"import", file, "--dry-run"}).output, "Nothing differs");
        ExpectTold(Program(0, {"import", file}).output, "Nothing differs");
        Program(1, {"check"});
    }
    DataBase reader;
    std::optional<Snapshot> snapshot(reader);
    const auto label = [&] { return ReadAutoNode(reader, {{1, 2}, 12})->label; };
    const auto before = label();
    store.Execute("UPDATE Node_AUTO SET NodeDescription = 'new' WHERE PartID = 2 AND NodeNumber = 12");
    ExpectTold(Program(0, {"import", file}).output, "AUTO node 12");
    store.Execute("UPDATE Node_AUTO SET NodeDescription = 'new' WHERE PartID = 2 AND NodeNumber = 12");
    EXPECT_EQ(label(), before);
    snapshot.reset();
    EXPECT_EQ(label(), "new");
    ExpectTold(Program(0, {"import", file}).output, "Imported");
    if (!TestStore::OnServer()) {
        Saver saver({{1, 2}, 12});
        EXPECT_THROW(static_cast<void>(saver.Save(saver.Load(),
                                                  [&](NodeSave& /*save*/) {
                                                      ExpectTold(repoint(1, {}).errors,
                                                                 "AUTO 12 is being saved by ");
                                                      throw std::logic_error("left");
                                                  })),
                     std::logic_error);
    }
    ExpectTold(repoint(0, {}).output, change + "Changed 4 references in 1 node\n");
    ExpectTold(0, "history 1 2 12", "  repoint\n    prompt 1 M_ON 44 → M_ON 43\n");
    const QString backslashed = QString::fromStdString((store.Folder() / "a\\b.mdb").string());
    Program(0, {"init", "--demo", "--store", backslashed});
    ExpectTold(Program(0, {"diff", "1", "2", "12", "--store", backslashed}).output, "M_ON 43 → M_ON 44");
    ExpectTold(Program(0, {"uses", "1", "2", "MSG", "44", "--store", backslashed}).output, "M_ON 44");
    ExpectTold(repoint(0, {}).output, "Nothing refers to MSG 44.");
}

} // namespace
} // namespace KAL_AUTO_Node
