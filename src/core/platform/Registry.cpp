#include "platform/Registry.h"

#include "platform/FoldCase.h"
#include "platform/RuntimeError.h"
#include "platform/SpecialFolder.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

std::optional<std::filesystem::path> ExportFile() {
    for (const std::filesystem::path& folder : ConfigurationFolders()) {
        std::error_code ignored;
        if (auto file = folder / "Brevank" / "Parlon+" / "registry.reg";
            std::filesystem::is_regular_file(file, ignored)) {
            return file;
        }
    }
    return std::nullopt;
}

// An export of a few keys has some kilobytes; of the whole registry of a machine nobody needs all.
constexpr std::uintmax_t MostBytes = std::uintmax_t{16} << 20U;

std::optional<std::string> Content(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    if (!stream) {
        return std::nullopt;
    }
    const auto size = static_cast<std::uintmax_t>(stream.tellg());
    if (size > MostBytes) {
        throw RuntimeError(ErrorNumber::UnsupportedValueType,
                           "The registry file '" + file.string() + "' is larger than " +
                               std::to_string(MostBytes >> 20U) + " MiB, and is not read");
    }
    std::string content(size, '\0');
    stream.seekg(0);
    stream.read(content.data(), static_cast<std::streamsize>(size));
    if (stream.bad()) {
        return std::nullopt;
    }
    content.resize(static_cast<std::size_t>(stream.gcount()));
    return content;
}

} // namespace

std::optional<RegistryKey> RegistryKey::Open(RegistryHive hive, std::string_view keyPath) {
    const auto file = ExportFile();
    const auto content = file ? Content(*file) : std::nullopt;
    auto values = content ? ReadRegistryExport(*content, hive, keyPath) : std::nullopt;
    return values ? std::optional(RegistryKey(std::move(*values))) : std::nullopt;
}

RegistryKey::QueryResult RegistryKey::Query(std::string_view valueName, std::span<std::byte> buffer) const {
    const auto found = values_.find(FoldAscii(valueName));
    if (found == values_.end()) {
        return {};
    }
    const auto& [type, data] = found->second;
    if (data.size() > buffer.size()) {
        return {Status::MoreData, type, data.size()};
    }
    std::ranges::copy(std::as_bytes(std::span(data)), buffer.begin());
    return {Status::Success, type, data.size()};
}

} // namespace KAL_AUTO_Node
