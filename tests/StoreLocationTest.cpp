#include "TestStore.h"
#include "platform/NativePath.h"
#include "platform/RuntimeError.h"
#include "platform/SpecialFolder.h"
#include "store/ParlonPlusFilesAndFolders.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {
namespace {

using namespace std::string_literals;

constexpr std::string_view Key = R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders)";
const std::string Version5 = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string Section = "[HKEY_LOCAL_MACHINE\\" + std::string(Key) + "]\r\n";

std::string Utf16(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

// The hex list of so many bytes, each of them the letter A, in lines as an export breaks them.
std::string Letters(std::size_t count) {
    std::string list;
    for (std::size_t at = 0; at < count; ++at) {
        list += at % 25 == 24 ? "41,\\\r\n  " : "41,";
    }
    return list;
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

    static RegistryValue Read(std::string_view name) {
        return ReadRegistryValue(RegistryHive::LocalMachine, Key, name);
    }

    static std::string Text(std::string_view name) {
        const RegistryValue value = Read(name);
        const auto* text = std::get_if<std::string>(&value);
        return text != nullptr ? *text : "(no text)";
    }

    static void ExpectUnsupported(std::string_view name) {
        try {
            static_cast<void>(Read(name));
            ADD_FAILURE() << name << " was read";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(static_cast<int>(error.Number()), 1001) << name;
            EXPECT_STREQ(error.what(), "Unsupported value type") << name;
            EXPECT_EQ(error.Source(), ComponentName) << name;
        }
    }

    EnvironmentVariable programData_{"PROGRAMDATA"};
    EnvironmentVariable configurationFolders_{"XDG_CONFIG_DIRS"};

  private:
    TemporaryFolder folder_;
};

TEST_F(StoreLocation, SpecialFolderComesFromTheEnvironment) {
    programData_.Set("/srv/data//");
    EXPECT_EQ(GetSpecialFolderPath(35), "/srv/data");
    programData_.Set("");
    EXPECT_EQ(GetSpecialFolderPath(35), "/var/lib");
    programData_.Unset();
    EXPECT_EQ(GetSpecialFolderPath(35), "/var/lib");
    EXPECT_EQ(GetSpecialFolderPath(28), "");
}

TEST_F(StoreLocation, SuiteFolderUnderTheSpecialFolderGoesFirst) {
    const std::string machine = (Folder() / "machine").string();
    programData_.Set(machine);
    const auto suite = Folder() / "machine" / "Brevank" / "Parlon+";
    WriteValues("\"Common AppData\"=hex(5):01,02,03,04\r\n");

    std::filesystem::create_directories(suite.parent_path());
    std::ofstream(suite) << "a file is no folder";
    EXPECT_THROW(static_cast<void>(GetSuiteFolder()), RuntimeError);

    std::filesystem::remove(suite);
    std::filesystem::create_directory(suite);
    EXPECT_EQ(GetSuiteFolder(), machine + R"(\Brevank\Parlon+\)");
    EXPECT_EQ(GetDatabaseFolder(), machine + R"(\Brevank\Parlon+\Database\)");
    EXPECT_EQ(GetConnectionString(), "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + machine +
                                         R"(\Brevank\Parlon+\Database\NewDB.mdb)");
    EXPECT_TRUE(FolderExists(GetSuiteFolder()));
    EXPECT_FALSE(FolderExists(GetDatabaseFolder()));
    EXPECT_EQ(NativePath(GetDatabaseFolder()), suite / "Database" / "");
}

TEST_F(StoreLocation, RegistryIsTheFallbackWhateverItNames) {
    EXPECT_EQ(GetConnectionString(),
              R"(Provider=Microsoft.Jet.OLEDB.4.0;Data Source=\Brevank\Parlon+\Database\NewDB.mdb)");
    WriteValues("\"Common AppData\"=\"C:\\\\ProgramData\"\r\n");
    EXPECT_EQ(GetConnectionString(), "Provider=Microsoft.Jet.OLEDB.4.0;"
                                     R"(Data Source=C:\ProgramData\Brevank\Parlon+\Database\NewDB.mdb)");
    WriteValues("\"Common AppData\"=dword:ffffffff\r\n");
    EXPECT_EQ(GetSuiteFolder(), R"(-1\Brevank\Parlon+\)");
    WriteValues("\"Common AppData\"=hex:44,3a\r\n");
    EXPECT_EQ(GetSuiteFolder(), R"(D:\Brevank\Parlon+\)");
    WriteValues("\"Common AppData\"=hex(6):44,00\r\n");
    EXPECT_THROW(static_cast<void>(GetConnectionString()), RuntimeError);
}

TEST_F(StoreLocation, EachTypeBecomesItsKindOfValue) {
    WriteValues("@=\"default\"\n"
                "\"Sz\"=\"1234567\"\n"
                "\"Expand\"=hex(2):25,00,41,00,25,00,00,00\n"
                "\"Binary\"=hex:00,ff,7F\n"
                "\"Dword\"=dword:0000001f\n"
                "\"Negative\"=hex(4):fe,ff,ff,ff\n"
                "\"Multi\"=hex(7):61,00,00,00,62,00,63,00,00,00,00,00\n");
    const auto key = RegistryKey::Open(RegistryHive::LocalMachine, Key);
    ASSERT_TRUE(key);
    std::array<std::byte, 8> buffer{};
    const auto result = key->Query("Sz", buffer);
    EXPECT_EQ(result.status, RegistryKey::Status::Success);
    EXPECT_EQ(result.size, 8U);
    EXPECT_EQ(buffer.back(), std::byte{0});

    EXPECT_EQ(Text("Sz"), "1234567");
    EXPECT_EQ(Text("sZ"), "1234567");
    EXPECT_EQ(Text(""), "default");
    EXPECT_EQ(Text("Expand"), "%A%");
    EXPECT_EQ(Text("Multi"), "a\0bc"s);
    EXPECT_EQ(Read("Binary"),
              RegistryValue(std::vector<std::byte>{std::byte{0}, std::byte{0xFF}, std::byte{0x7F}}));
    EXPECT_EQ(Read("Dword"), RegistryValue(31));
    EXPECT_EQ(Read("Negative"), RegistryValue(-2));
}

TEST_F(StoreLocation, DataShorterThanItsTypeNeedsIsReadAsFarAsItGoes) {
    WriteValues("\"Sz\"=hex(1):\n\"Multi\"=hex(7):00,00\n\"Binary\"=hex:\n\"Dword\"=hex(4):05\n"
                "\"No end\"=hex(1):61,00,62,00\n");
    EXPECT_EQ(Text("Sz"), "");
    EXPECT_EQ(Text("Multi"), "");
    EXPECT_EQ(Read("Binary"), RegistryValue(std::vector<std::byte>()));
    EXPECT_EQ(Read("Dword"), RegistryValue(5));
    EXPECT_EQ(Text("No end"), "a");
}

TEST_F(StoreLocation, ValuesOfAnyLengthAreReadWhole) {
    WriteExport("REGEDIT4\r\n\r\n" + Section + "\"1024\"=hex(1):" + Letters(1023) + "00\r\n" +
                "\"1025\"=hex(1):" + Letters(1024) + "00\r\n" + "\"5000\"=hex:" + Letters(4999) + "41\r\n");
    EXPECT_EQ(Text("1024"), std::string(1023, 'A'));
    EXPECT_EQ(Text("1025"), std::string(1024, 'A'));
    EXPECT_EQ(Read("5000"), RegistryValue(std::vector<std::byte>(5000, std::byte{'A'})));

    const auto key = RegistryKey::Open(RegistryHive::LocalMachine, Key);
    ASSERT_TRUE(key);
    std::array<std::byte, 1024> buffer{};
    EXPECT_EQ(key->Query("1024", buffer).status, RegistryKey::Status::Success);
    buffer.fill(std::byte{'-'});
    const auto result = key->Query("1025", buffer);
    EXPECT_EQ(result.status, RegistryKey::Status::MoreData);
    EXPECT_EQ(result.type, RegistryType::Sz);
    EXPECT_EQ(result.size, 1025U);
    EXPECT_EQ(buffer.front(), std::byte{'-'});
}

TEST_F(StoreLocation, OtherTypesAndAbsentValuesAreErrorsButAbsentKeysAreNot) {
    WriteValues("\"0\"=hex(0):01\n\"5\"=hex(5):00,00,00,01\n\"6\"=hex(6):61,00\n\"11\"=hex(b):01,00,00,00\n"
                "[HKEY_LOCAL_MACHINE\\Parent\\Child]\n\"There\"=\"x\"\n");
    for (const char* name : {"0", "5", "6", "11", "absent"}) {
        ExpectUnsupported(name);
    }
    const auto read = [](RegistryHive hive, std::string_view key) {
        return ReadRegistryValue(hive, key, "There", std::string("default"));
    };
    EXPECT_EQ(read(RegistryHive::LocalMachine, "Parent\\Child"), RegistryValue("x"s));
    EXPECT_EQ(read(RegistryHive::CurrentUser, "Parent\\Child"), RegistryValue("default"s));
    EXPECT_EQ(read(RegistryHive::LocalMachine, "Par"), RegistryValue("default"s));
    EXPECT_EQ(ReadRegistryValue(RegistryHive::LocalMachine, "Par", "There"), RegistryValue());
    EXPECT_THROW(read(RegistryHive::LocalMachine, "Parent"), RuntimeError)
        << "a key above one that exists is there";
}

TEST_F(StoreLocation, EveryEncodingOfAnExportIsRead) {
    WriteExport("\xFF\xFE" +
                Utf16(u"Windows Registry Editor Version 5.00\r\n\r\n[HKLM\\Grün]\r\n"
                      u"\"Ä\"=\"ü€\U0001F600\xD800!\"\r\n\"hex\"=hex(1):fc,00,3d,d8,00,de,00,00\r\n"));
    const auto read = [](std::string_view name) {
        return ReadRegistryValue(RegistryHive::LocalMachine, "Grün", name);
    };
    EXPECT_EQ(read("Ä"), RegistryValue("ü€\U0001F600\uFFFD!"s));
    EXPECT_EQ(read("hex"), RegistryValue("ü\U0001F600"s));

    for (const std::string mark : {"", "\xEF\xBB\xBF"}) {
        WriteExport(mark + Version5 + "[HKLM\\Grün]\n\"Ä\"=\"ü€\"\n\"hex\"=hex(2):fc,00,00,00");
        EXPECT_EQ(read("Ä"), RegistryValue("ü€"s));
        EXPECT_EQ(read("hex"), RegistryValue("ü"s));
    }

    WriteExport("REGEDIT4\n[HKLM\\Grün]\n\"Ä\"=\"ü€\"\n\"hex\"=hex(7):c3,bc,00,61,00,00\n");
    EXPECT_EQ(read("Ä"), RegistryValue("ü€"s));
    EXPECT_EQ(read("hex"), RegistryValue("ü\0a"s));

    for (const std::string header : {"", "REGEDIT5\n", "Windows Registry Editor\n", "\xFF\xFE"}) {
        WriteExport(header + "[HKLM\\Grün]\n\"Ä\"=\"ü\"\n");
        EXPECT_EQ(read("Ä"), RegistryValue()) << header;
    }
}

TEST_F(StoreLocation, ExportsAreReadAsTheyAreWrittenByHandToo) {
    WriteValues("; a comment\r\n"
                "  \"Blanks\" = \"a;b\" ; comment\r\n"
                "\"Quote \\\"d\\\\\"=\"\\\"C:\\\\new\\\\\\\"\"\r\n"
                "\"Single\"=\"C:\\new\"\r\n"
                "\"Long\"=HEX:01, 02,\\  \r\n\t03,\\ ; comment\r\n; comment\r\n  4\r\n"
                "\"Gone\"=\"x\"\r\n"
                "\"gone\"=-\r\n"
                "[hklm\\software\\MICROSOFT\\Windows\\CurrentVersion\\Explorer\\Shell Folders\\Sub]\r\n"
                "\"Blanks\"=\"of another key\"\r\n"
                "[hklm\\software\\MICROSOFT\\Windows\\CurrentVersion\\Explorer\\Shell Folders]\r\n"
                "\"Later\"=dword:7");
    EXPECT_EQ(Text("Blanks"), "a;b");
    EXPECT_EQ(Text("Quote \"d\\"), "\"C:\\new\\\"");
    EXPECT_EQ(Text("Single"), "C:\\new");
    EXPECT_EQ(Read("Long"),
              RegistryValue(std::vector<std::byte>{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4}}));
    EXPECT_EQ(Read("Later"), RegistryValue(7));
    ExpectUnsupported("Gone");

    WriteExport(Version5 + Section + "\"Old\"=\"x\"\n[-HKEY_LOCAL_MACHINE\\Software]\n\"Old\"=\"y\"\n");
    EXPECT_EQ(Read("Old"), RegistryValue()) << "deleted with the key above it";
    WriteExport(Version5 + Section + "\"Old\"=\"x\"\n[-HKLM\\" + std::string(Key) + "]\n" + Section +
                "\"New\"=\"y\"\n");
    ExpectUnsupported("Old");
    EXPECT_EQ(Text("New"), "y");
}

TEST_F(StoreLocation, DamagedLinesCostNoMoreThanTheirOwnValue) {
    WriteValues("\"Open\"=\"no end\n"
                "\"Name\n"
                "\"Number\"=dword:123456789\n"
                "\"Digits\"=dword:xyz\n"
                "\"Byte\"=hex:01,100\n"
                "\"Gap\"=hex:01,,02\n"
                "\"Type\"=hex(:01\n"
                "\"Kind\"=qword:01\n"
                "\"After\"=\"x\" y\n"
                "\"Kept\"=\"before\"\n"
                "\"Kept\"=\"damaged\n"
                "\"Cut\"=hex:01,\\\n"
                "\"Next\"=\"whole\"\n"
                "[HKEY_LOCAL_MACHINE\\Broken\n"
                "\"Next\"=\"of nobody knows which key\"\n");
    for (const char* name :
         {"Open", "Name", "Number", "Digits", "Byte", "Gap", "Type", "Kind", "After", "Cut"}) {
        ExpectUnsupported(name);
    }
    EXPECT_EQ(Text("Kept"), "before");
    EXPECT_EQ(Text("Next"), "whole");

    WriteValues("\"Last\"=hex:01,\\");
    ExpectUnsupported("Last");
}

TEST_F(StoreLocation, FirstConfigurationFolderThatHasTheFileWins) {
    const auto withValue = [](const std::string& value) {
        return Version5 + Section + "\"Common AppData\"=\"" + value + "\"\n";
    };
    WriteExport(withValue("second"), "b");
    WriteExport(withValue("third"), "c");
    configurationFolders_.Set(std::filesystem::relative(Folder() / "c").string() +
                              "::" + (Folder() / "a").string() + ":" + (Folder() / "b").string() + ":" +
                              (Folder() / "c").string());
    EXPECT_EQ(GetCommonAppDataFromRegistry(), "second");
    WriteExport(withValue("first"), "a");
    EXPECT_EQ(GetCommonAppDataFromRegistry(), "first");
    WriteExport("no export", "a");
    EXPECT_EQ(GetCommonAppDataFromRegistry(), "");

    configurationFolders_.Set("");
    EXPECT_EQ(ConfigurationFolders(), std::vector<std::filesystem::path>{"/etc/xdg"});
}

} // namespace
} // namespace KAL_AUTO_Node
