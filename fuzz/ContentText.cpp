// The text in which the history keeps a node: any text gives the node that it tells of, or a run-time error.

#include "fuzz/Examine.h"
#include "history/NodeContent.h"
#include "nodes/JsonText.h"
#include "platform/RuntimeError.h"

#include <nlohmann/json.hpp>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

constexpr NodePlace Somewhere{{1, 2}, 3};

std::optional<NodeContent> ContentIn(const std::string& text) try {
    return ContentOf(text);

} catch (const RuntimeError& error) {

    Require(error.Number() == ErrorNumber::StoreNotRecognized, "a text that is no content is told as such");
    return std::nullopt;
}

// Whether a document says nothing else of what another has; it may have more, and lack what has a default.
bool Tells(const Json& document, const Json& part) {
    if (part.is_object()) {
        return document.is_object() && std::ranges::all_of(part.items(), [&](const auto& member) {
                   return !document.contains(member.key()) ||
                          Tells(document.at(member.key()), member.value());
               });
    }
    if (part.is_array()) {
        return document.is_array() && std::ranges::equal(document, part, Tells);
    }
    return document.type() == part.type() && document == part;
}

} // namespace

void Examine(std::string_view input) {
    const std::string text(input);
    const auto content = ContentIn(text);
    if (!content) {
        return;
    }
    const std::string written = TextOf(Somewhere, *content);
    Require(ContentOf(written) == *content, "a content comes back equal");
    Json document = Json::parse(written);
    document.erase("version"); // the writer's
    if (document["node"].is_object()) {
        // Where the node stands is told beside the text.
        for (const char* name : {"config", "partition", "number"}) {
            document["node"].erase(name);
        }
    }
    const Json source = Json::parse(text);
    // Texts that are no UTF-8 are written in another way, and may have been so without need.
    Require(source.dump().find(BytesMember) != std::string::npos || Tells(source, document),
            "nothing is read but what the text says");
}

} // namespace KAL_AUTO_Node
