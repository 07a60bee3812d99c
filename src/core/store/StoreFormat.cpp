#include "store/StoreFormat.h"

#include "platform/RuntimeError.h"

#include <charconv>

namespace KAL_AUTO_Node {

namespace {

constexpr std::string_view CommentStart = "A store of auto-node, version ";

} // namespace

void RequireKnownVersion(int version, const std::string& place) {
    if (version > StoreVersion) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           "The store (" + place + ") is of version " + std::to_string(version) +
                               ", made by a newer program; this one knows stores up to version " +
                               std::to_string(StoreVersion));
    }
}

std::string VersionComment(int version) { return std::string(CommentStart) + std::to_string(version); }

int VersionIn(std::string_view comment) {
    int version = 0;
    if (comment.starts_with(CommentStart)) {
        comment.remove_prefix(CommentStart.size());
        std::from_chars(comment.data(), comment.data() + comment.size(), version);
    }
    return version;
}

} // namespace KAL_AUTO_Node
