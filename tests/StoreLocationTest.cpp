#include "platform/NativePath.h"
#include "platform/RuntimeError.h"
#include "platform/SpecialFolder.h"
#include "store/ParlonPlusFilesAndFolders.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

namespace KAL_AUTO_Node {
namespace {

using namespace std::string_literals;

constexpr std::string_view Key = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";
const std::string Version5 = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string Section = "[HKEY_LOCAL_MACHINE\\" + std::string(Key) + "]\r\n";

// As it lies in memory here, its low bytes first.
std::string Utf16(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), 2 * text.size()};
}

class StoreLocation : public testing::Test {
  protected:
    StoreLocation() {
        programData_.Set((Folder() / "none").string());
        configurationFolders_.Set((Folder() / "xdg").string());
    }

    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_.Path(); }

    void WriteExport(const std::string& content, const std::string& configurationFolder = "xdg") const {
        const auto folder = Folder() / configurationFolder / "Brevank" / "Parlon+";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "registry.reg", std::ios::binary) << content;
    }

    // Lines of the key that holds the fallback.
    void WriteValues(const std::string& lines) const { WriteExport(Version5 + Section + lines); }

    // Each has its value, or is refused where it has none.
    using Values = std::vector<std::pair<std::string_view, std::optional<RegistryValue>>>;

    static void Expect(const Values& values, std::string_view key = Key) {
        for (const auto& [name, value] : values) {
            try {
                const auto read = ReadRegistryValue(RegistryHive::LocalMachine, key, name, "default"s);
                EXPECT_TRUE(value == read) << name;
            } catch (const RuntimeError& error) {
                EXPECT_FALSE(value) << name << ": " << error.what();
                EXPECT_EQ(static_cast<int>(error.Number()), 1001) << name;
                EXPECT_EQ(error.what(), "Unsupported value type"s) << name;
                EXPECT_EQ(error.Source(), ComponentName) << name;
            }
        }
    }

    EnvironmentVariable programData_{"PROGRAMDATA"};
    EnvironmentVariable configurationFolders_{"XDG_CONFIG_DIRS"};

  private:
    TemporaryFolder folder_;
};

TEST_F(StoreLocation, SuiteFolderUnderTheSpecialFolderGoesFirst) {
    const std::string machine = (Folder() / "machine").string();
    programData_.Set(machine + "//");
    EXPECT_EQ(GetSpecialFolderPath(35), machine);
    EXPECT_EQ(GetSpecialFolderPath(28), "");
    WriteValues("\"Common AppData\"=hex(5):01,02,03,04\r\n");

    const auto suite = Folder() / "machine" / "Brevank" / "Parlon+";
    std::filesystem::create_directories(suite.parent_path());
    std::ofstream(suite) << "a file is no folder";
    EXPECT_THROW(static_cast<void>(GetSuiteFolder()), RuntimeError);

    std::filesystem::remove(suite);
    std::filesystem::create_directory(suite);
    EXPECT_EQ(GetConnectionString(), "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + machine +
                                         R"(\Brevank\Parlon+\Database\NewDB.mdb)");
    EXPECT_EQ(NativePath(GetDatabaseFolder()), suite / "Database" / "");

    programData_.Set("");
    EXPECT_EQ(GetSpecialFolderPath(35), "/var/lib");
}

TEST_F(StoreLocation, RegistryIsTheFallbackWhateverItNames) {
    EXPECT_EQ(GetConnectionString(),
              R"(Provider=Microsoft.Jet.OLEDB.4.0;Data Source=\Brevank\Parlon+\Database\NewDB.mdb)");
    for (const auto& [value, folder] : {std::pair{R"("C:\\ProgramData")", R"(C:\ProgramData)"},
                                        {"dword:ffffffff", "-1"},
                                        {"hex:44,3a", "D:"}}) {
        WriteValues("\"Common AppData\"=" + std::string(value) + "\r\n");
        EXPECT_EQ(GetSuiteFolder(), std::string(folder) + R"(\Brevank\Parlon+\)");
    }
    WriteValues("\"Common AppData\"=\"D:\"\r\n[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\r\n");
    EXPECT_EQ(GetSuiteFolder(), R"(D:\Brevank\Parlon+\)") << "another key is gone, not this one";
    WriteValues("\"Common AppData\"=\"" + std::string(17U << 20U, 'x') + "\"\r\n");
    EXPECT_THROW(static_cast<void>(GetSuiteFolder()), RuntimeError);
    EXPECT_LT(std::string(RuntimeError(ErrorNumber::Overflow, std::string(1 << 20, 'x')).what()).size(),
              9000U);
}

TEST_F(StoreLocation, EachTypeBecomesItsKindOfValue) {
    WriteValues("\"Sz\"=\"1234567\"\n"
                "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\n"
                "\"Binary\"=hex:00,ff,7F\n"
                "\"Dword\"=dword:0000001e\n"
                "\"Multi\"=hex(7):61,00,00,00,62,00,63,00,00,00,00,00\n"
                "\"No end\"=hex(1):61,00,62,00\n"
                "\"Short\"=hex(4):05\n"
                "\"Nothing\"=hex(1):\n");
    // Data shorter than its type needs is read as far as it goes.
    Expect({{"sZ", "1234567"s},
            {"Expand", "%A%"s},
            {"Multi", "a\0bc"s},
            {"Dword", 30},
            {"No end", "a"s},
            {"Short", 5},
            {"Nothing", ""s},
            {"Binary", std::vector{std::byte{0}, std::byte{0xFF}, std::byte{0x7F}}}});
    for (const std::size_t length : {1023, 1024, 5000}) {
        const std::string value(length, 'A');
        WriteValues("\"Long\"=\"" + value + "\"\r\n");
        Expect({{"Long", value}});
    }
}

TEST_F(StoreLocation, OtherTypesAndAbsentValuesAreErrorsButAbsentKeysAreNot) {
    WriteValues("\"0\"=hex(0):01\n\"5\"=hex(5):00,00,00,01\n\"6\"=hex(6):61,00\n\"11\"=hex(b):01,00,00,00\n"
                "[HKEY_LOCAL_MACHINE\\Parent\\Child]\n\"There\"=\"x\"\n");
    Expect({{"0", {}}, {"5", {}}, {"6", {}}, {"11", {}}, {"absent", {}}});
    Expect({{"There", "x"s}}, "Parent\\Child");
    Expect({{"There", "default"s}}, "Par");
    Expect({{"There", {}}}, "Parent"); // a key above one that exists is there
    EXPECT_EQ(ReadRegistryValue(RegistryHive::CurrentUser, "Parent\\Child", "There"), RegistryValue());
}

TEST_F(StoreLocation, EveryEncodingOfAnExportIsRead) {
    WriteExport("\xFF\xFE" +
                Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n[HKLM\\Grün]\r\n"
                      u"\"Ä\"=\"ü€\U0001F600\xD800!\"\r\n\"hex\"=hex(1):fc,00,3d,d8,00,de,00,00\r\n"));
    Expect({{"Ä", "ü€\U0001F600\uFFFD!"s}, {"hex", "ü\U0001F600"s}}, "Grün");
    WriteExport("\xEF\xBB\xBF" + Version5 + "[HKLM\\Grün]\n\"Ä\"=\"ü€\"\n\"hex\"=hex(2):fc,00,00,00");
    Expect({{"Ä", "ü€"s}, {"hex", "ü"s}}, "Grün");
    WriteExport("REGEDIT4\n[HKLM\\Grün]\n\"Ä\"=\"ü€\"\n\"hex\"=hex(7):c3,bc,00,61,00,00\n");
    Expect({{"Ä", "ü€"s}, {"hex", "ü\0a"s}}, "Grün");
    for (const std::string header : {"", "REGEDIT5\n", "\xFF\xFE"}) {
        WriteExport(header + "[HKLM\\Grün]\n\"Ä\"=\"ü\"\n");
        Expect({{"Ä", "default"s}}, "Grün");
    }
}

TEST_F(StoreLocation, ExportsAreReadAsTheyAreWrittenByHandToo) {
    WriteValues("; a comment\r\n"
                "  \"Blanks\" = \"a;b\" ; comment\r\n"
                "\"Quote \\\"d\\\\\"=\"\\\"C:\\\\new\\new\\\"\"\r\n"
                "\"Long\"=HEX(1):41, 0,42,\\  \r\n\t00,43,\\ ; comment\r\n; comment\r\n  00,44,00,00,00\r\n"
                "\"Gone\"=\"x\"\r\n"
                "\"gone\"=-\r\n"
                "[hklm\\software\\MICROSOFT\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\Sub]\r\n"
                "\"Blanks\"=\"of another key\"\r\n"
                "[hklm\\software\\MICROSOFT\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\r\n"
                "\"Later\"=dword:7");
    Expect({{"Blanks", "a;b"s},
            {"Quote \"d\\", "\"C:\\new\\new\""s},
            {"Long", "ABCD"s},
            {"Later", 7},
            {"Gone", {}}});

    WriteExport(Version5 + Section + "\"Old\"=\"x\"\n[-HKEY_LOCAL_MACHINE\\Software]\n" + Section +
                "\"New\"=\"y\"\n");
    Expect({{"Old", {}}, {"New", "y"s}});
}

TEST_F(StoreLocation, DamagedLinesCostNoMoreThanTheirOwnValue) {
    WriteValues("\"Open\"=\"no end\n"
                "\"Name\n"
                "\"Number\"=dword:123456789\n"
                "\"Byte\"=hex:01,100\n"
                "\"Gap\"=hex:01,,02\n"
                "\"Type\"=hex(:01\n"
                "\"Kind\"=qword:01\n"
                "\"After\"=\"x\" y\n"
                "\"Cut\"=hex:01,\\\n"
                "\"Next\"=\"whole\"\n"
                "[HKEY_LOCAL_MACHINE\\Broken\n"
                "\"Next\"=\"of nobody knows which key\"\n");
    for (const char* name : {"Open", "Name", "Number", "Byte", "Gap", "Type", "Kind", "After", "Cut"}) {
        Expect({{name, {}}});
    }
    Expect({{"Next", "whole"s}});
}

TEST_F(StoreLocation, FirstConfigurationFolderThatHasTheFileWins) {
    WriteExport(Version5 + Section + "\"Common AppData\"=\"second\"\n", "b");
    WriteExport(Version5 + Section + "\"Common AppData\"=\"third\"\n", "c");
    const std::string folder = Folder().string();
    configurationFolders_.Set(std::filesystem::relative(folder + "/c").string() + "::" + folder +
                              "/a:" + folder + "/b:" + folder + "/c");
    EXPECT_EQ(GetCommonAppDataFromRegistry(), "second");
    WriteExport("no export", "a");
    EXPECT_EQ(GetCommonAppDataFromRegistry(), "");

    configurationFolders_.Set("");
    EXPECT_EQ(ConfigurationFolders(), std::vector<std::filesystem::path>{"/etc/xdg"});
}

} // namespace
} // namespace KAL_AUTO_Node
