#include "store/ServerLink.h"

#include "platform/RuntimeError.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace KAL_AUTO_Node {

namespace {

constexpr std::string_view Between = ":@/?#&=,[]";
constexpr std::string_view Mask = "***";
// Shorter ones occur within other words.
constexpr std::size_t ShortestPart = 4;

std::string Decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned char byte = 0;
        const char* const digits = text.data() + at + 1;
        if (text[at] == '%' && at + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            decoded += static_cast<char>(byte);
            at += 2;
        } else {
            decoded += text[at];
        }
    }
    return decoded;
}

bool InWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

} // namespace

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

LinkSecrets::LinkSecrets(std::string_view uri) {
    static constexpr std::string_view slashes = "//";
    if (const auto start = uri.find(slashes); start != std::string_view::npos) {
        uri.remove_prefix(start + slashes.size());
    }
    if (const auto end = uri.rfind('@'); end != std::string_view::npos) {
        Add(uri.substr(0, end));
        for (std::size_t at = 0; at < end;) {
            const auto stop = std::min(uri.find_first_of(Between, at), end);
            Add(uri.substr(at, stop - at));
            at = stop + 1;
        }
    }
    static constexpr std::string_view password = "password=";
    for (auto at = uri.find(password); at != std::string_view::npos; at = uri.find(password, at)) {
        at += password.size();
        Add(uri.substr(at, uri.find('&', at) - at));
    }
    std::ranges::sort(secrets_, std::ranges::greater(), &std::string::size);
}

void LinkSecrets::Add(std::string_view piece) {
    for (std::string secret : {std::string(piece), Decoded(piece)}) {
        if (!secret.empty()) {
            secrets_.push_back(std::move(secret));
        }
    }
}

std::string LinkSecrets::Masked(std::string text) const {
    for (const std::string& secret : secrets_) {
        for (auto at = text.find(secret); at != std::string::npos; at = text.find(secret, at)) {
            const auto end = at + secret.size();
            const bool within = (at > 0 && InWord(text[at - 1])) || (end < text.size() && InWord(text[end]));
            if (within && secret.size() < ShortestPart) {
                at = end;
            } else {
                text.replace(at, secret.size(), Mask);
                at += Mask.size();
            }
        }
    }
    return text;
}

} // namespace KAL_AUTO_Node
