#include "store/ServerLink.h"

#include "platform/RuntimeError.h"

namespace KAL_AUTO_Node {

bool IsLink(std::string_view text) {
    return text.starts_with("postgresql://") || text.starts_with("postgres://");
}

std::string LinkIn(std::string_view head) {
    using namespace std::string_view_literals;
    const auto end = head.find_first_of("\r\n\0"sv);
    if (end == std::string_view::npos) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized, "The link to a server is longer than " +
                                                                std::to_string(head.size()) + " characters");
    }
    std::string link(head.substr(0, end));
    link.erase(link.find_last_not_of(" \t") + 1);
    return link;
}

} // namespace KAL_AUTO_Node
