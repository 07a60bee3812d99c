#include "store/ParlonPlusFilesAndFolders.h"

#include "platform/NativePath.h"
#include "platform/RuntimeError.h"
#include "platform/SpecialFolder.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Long enough for nearly every value, so that one query will do.
constexpr std::size_t FirstBufferSize = 1024;

constexpr const char* DatabaseFileName = "NewDB.mdb";

constexpr std::string_view ShellFolders =
    "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

// What a query brought; the buffer may be longer than the data.
struct QueriedValue {
    RegistryKey::QueryResult result;
    std::vector<std::byte> buffer;
};

// Nothing where the key cannot be opened. The key is closed when the answer is there.
std::optional<QueriedValue> QueryValue(RegistryHive hive, std::string_view keyPath,
                                       std::string_view valueName) {
    const auto key = RegistryKey::Open(hive, keyPath);
    if (!key) {
        return std::nullopt;
    }
    QueriedValue value{{}, std::vector<std::byte>(FirstBufferSize)};
    value.result = key->Query(valueName, value.buffer);
    if (value.result.status == RegistryKey::Status::MoreData) {
        value.buffer.resize(value.result.size);
        value.result = key->Query(valueName, value.buffer);
    }
    return value;
}

std::string TextOf(std::span<const std::byte> bytes) {
    std::string text(bytes.size(), '\0');
    std::ranges::transform(bytes, text.begin(), [](std::byte byte) { return static_cast<char>(byte); });
    return text;
}

// Text is stored with NULs after it, which are no part of it.
std::string TextWithoutEnd(const QueriedValue& value, std::size_t nuls) {
    const std::size_t size = value.result.size;
    return TextOf(std::span(value.buffer).first(size - std::min(size, nuls)));
}

std::int32_t LittleEndianNumber(std::span<const std::byte, 4> bytes) {
    std::uint32_t number = 0;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        number |= std::to_integer<std::uint32_t>(bytes[at]) << 8 * at;
    }
    return static_cast<std::int32_t>(number);
}

std::string SuiteFolderUnder(const std::string& applicationData) {
    return applicationData + "\\" + "Brevank" + "\\" + "Parlon+" + "\\";
}

std::string DatabaseFolderIn(const std::string& suiteFolder) { return suiteFolder + "Database" + "\\"; }

} // namespace

std::string GetSpecialFolderPath(std::int32_t identifier) { return SpecialFolderPath(identifier); }

RegistryValue ReadRegistryValue(RegistryHive hive, std::string_view keyPath, std::string_view valueName,
                                RegistryValue defaultValue) {
    auto value = QueryValue(hive, keyPath, valueName);
    if (!value) {
        return defaultValue;
    }
    switch (value->result.type) {
    case RegistryType::Sz:
    case RegistryType::ExpandSz:
        return TextWithoutEnd(*value, 1);
    case RegistryType::Binary:
        value->buffer.resize(value->result.size);
        return std::move(value->buffer);
    case RegistryType::Dword:
        return LittleEndianNumber(std::span(value->buffer).first<4>());
    case RegistryType::MultiSz:
        return TextWithoutEnd(*value, 2);
    default:
        throw RuntimeError(ErrorNumber::UnsupportedValueType, "Unsupported value type");
    }
}

std::string GetCommonAppDataFromRegistry() {
    struct AsText {
        std::string operator()(std::monostate) const { return {}; }

        std::string operator()(const std::string& text) const { return text; }

        std::string operator()(const std::vector<std::byte>& bytes) const { return TextOf(bytes); }

        std::string operator()(std::int32_t number) const { return std::to_string(number); }
    };

    return std::visit(AsText(), ReadRegistryValue(RegistryHive::LocalMachine, ShellFolders, "Common AppData",
                                                  std::string()));
}

std::string GetSuiteFolder() {
    std::string candidate = SuiteFolderUnder(GetSpecialFolderPath(CommonAppDataFolder));
    return FolderExists(candidate) ? candidate : SuiteFolderUnder(GetCommonAppDataFromRegistry());
}

std::string GetDatabaseFolder() { return DatabaseFolderIn(GetSuiteFolder()); }

std::string GetConnectionString() { return ConnectionStringOf(GetDatabaseFolder() + DatabaseFileName); }

std::string ConnectionStringOf(const std::string& file) {
    return std::string("Provider=Microsoft.Jet.OLEDB.4.0;") + "Data Source=" + file;
}

std::string GetNewDatabaseFile() {
    const std::string special = GetSpecialFolderPath(CommonAppDataFolder);
    const bool configured =
        !FolderExists(SuiteFolderUnder(special)) && !GetCommonAppDataFromRegistry().empty();
    return DatabaseFolderIn(configured ? GetSuiteFolder() : SuiteFolderUnder(special)) + DatabaseFileName;
}

} // namespace KAL_AUTO_Node
