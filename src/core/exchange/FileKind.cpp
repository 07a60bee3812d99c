#include "exchange/FileKind.h"

#include "exchange/ExchangeFormat.h"
#include "platform/RuntimeError.h"

#include <cerrno>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace KAL_AUTO_Node {

namespace {

constexpr std::size_t FileHeadBytes = 256;

// Behind a version of four bytes; the number of the format follows at a place of its own.
constexpr std::size_t SignatureAt = 4;
constexpr std::string_view JetSignature{"Standard Jet DB\0", 16};
constexpr std::string_view LaterSignature{"Standard ACE DB\0", 16};
constexpr std::size_t FormatAt = 20;
constexpr char Jet4 = 1;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreNotFound, "Cannot read '" + file.string() + "': " + why);
}

} // namespace

FileKind KindOf(const std::filesystem::path& file) {
    if (std::filesystem::is_directory(file)) {
        Fail(file, "it is a folder");
    }
    std::error_code ignored;
    if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored)) {
        Fail(file, "it is no file, which can be looked at before it is read");
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        Fail(file, std::generic_category().message(errno));
    }
    std::string bytes(FileHeadBytes, '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    std::string_view head = bytes;
    if (head.size() > FormatAt && head.substr(SignatureAt, LaterSignature.size()) == LaterSignature) {
        return FileKind::LaterJet;
    }
    if (head.size() > FormatAt && head.substr(SignatureAt, JetSignature.size()) == JetSignature) {
        return head[FormatAt] >= 0 && head[FormatAt] <= Jet4 ? FileKind::Jet : FileKind::LaterJet;
    }
    if (head.starts_with(ByteOrderMark)) {
        head.remove_prefix(ByteOrderMark.size());
    }
    const auto first = head.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos || head[first] != '{') {
        return FileKind::Other;
    }
    return head.find(Exchange::Format) != std::string_view::npos ? FileKind::Exchange : FileKind::Json;
}

} // namespace KAL_AUTO_Node
