#include "store/Connection.h"

#include "platform/RuntimeError.h"
#include "store/SqliteConnection.h"

#include <array>
#include <fstream>

namespace KAL_AUTO_Node {

namespace {

// The first bytes of every SQLite file, with their NUL.
constexpr std::string_view SqliteSignature{"SQLite format 3\0", 16};

std::string FirstBytes(const std::filesystem::path& file) {
    std::array<char, SqliteSignature.size()> bytes{};
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw RuntimeError(ErrorNumber::StoreFailure, "The file '" + file.string() + "' cannot be read");
    }
    stream.read(bytes.data(), bytes.size());
    return {bytes.data(), static_cast<std::size_t>(stream.gcount())};
}

} // namespace

std::unique_ptr<Connection> OpenStore(const std::filesystem::path& file) {
    std::error_code failure;
    if (!std::filesystem::exists(file, failure)) {
        const std::string why = failure ? ": " + failure.message() : "";
        throw RuntimeError(ErrorNumber::StoreNotFound, "Could not find file '" + file.string() + "'" + why);
    }
    if (std::filesystem::is_regular_file(file, failure) && FirstBytes(file) == SqliteSignature) {
        return std::make_unique<SqliteConnection>(file);
    }
    throw RuntimeError(ErrorNumber::StoreNotRecognized,
                       "Unrecognized database format '" + file.string() + "'");
}

} // namespace KAL_AUTO_Node
