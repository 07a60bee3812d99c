#include "history/NodeContent.h"

#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "nodes/Merging.h"
#include "nodes/NodeJson.h"
#include "nodes/NodeTypes.h"
#include "nodes/Record.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t NodesTogether = 100;

void WriteRecord(Batch& batch, const NodePlace& place, const AutoNode& node) {
    UpdateRecord(batch, place, node);
    if (batch.Run().back() == 0) {
        batch.Add(Command::Add_AUTO_Node, {place.partition, place.Key()});
        UpdateRecord(batch, place, node);
    }
}

void WriteEntry(Batch& batch, const NodePlace& place, const RegisterEntry& entry) {
    batch.Add(Command::Put_Back_General_Pool,
              {entry.type, entry.label, entry.dateModified, place.partition, place.Key()});
    if (batch.Run().back() == 0) {
        batch.Add(Command::Add_General_Pool,
                  {place.partition, place.Key(), entry.type, entry.label, entry.dateModified});
    }
}

std::optional<std::string> TextIn(const Json& document, const char* name) {
    const auto found = document.find(name);
    return found == document.end() || found->is_null() ? std::nullopt
                                                       : std::optional(found->get<std::string>());
}

// No content has more levels; a text from elsewhere may have as many as exhaust the stack.
constexpr int MostLevels = 8;

std::string BytesOfLetters(const std::string& letters) {
    std::string bytes;
    unsigned lead = 0;
    for (const char byte : letters) {
        const auto value = static_cast<unsigned char>(byte);
        if (value >= 0xC0) {
            lead = value;
        } else {
            bytes += value < 0x80 ? byte : static_cast<char>(lead << 6 | (value & 0x3F));
        }
    }
    return bytes;
}

// Brings back the texts that are no UTF-8. Up to version 2 all texts of a content that has one stand as
// letters, a byte each, which a member beside them says.
void BringBytesBack(Json& document, bool letters, int levels = MostLevels) {
    if (letters && document.is_string()) {
        document = BytesOfLetters(document.get_ref<const std::string&>());
    } else if (document.is_object() && document.size() == 1 && document.begin().key() == BytesMember &&
               document.front().is_string()) {
        const auto bytes = BytesOfDigits(document.front().get_ref<const std::string&>());
        if (!bytes) {
            throw Json::type_error::create(302, "bytes are two digits each", nullptr);
        }
        document = *bytes;
    } else if (document.is_structured() && levels > 0) {
        for (Json& member : document) {
            BringBytesBack(member, letters, levels - 1);
        }
    }
}

std::optional<RegisterEntry> ReadEntry(DataBase& dataBase, const NodePlace& place, bool& read) try {
    const ResultSet row = dataBase.Query(Command::Get_Description, {place.partition, place.Key()});
    read = true;
    if (row.AtEnd()) {
        return std::nullopt;
    }
    return RegisterEntry{std::string(row.Field("NodeType").value_or("")),
                         OptionalText(row, "NodeDescription"), OptionalText(row, "DateModified")};

} catch (const RuntimeError& error) {

    if (error.Number() == ErrorNumber::StoreUnreachable || error.Number() == ErrorNumber::StoreLocked) {
        throw;
    }
    read = false;
    return std::nullopt; // the save tells of it where it needs it
}

} // namespace

void ReadEntry(DataBase& dataBase, const NodePlace& place, NodeContent& content) {
    content.entry = ReadEntry(dataBase, place, content.entryRead);
}

std::vector<std::string> Differences(const NodeContent& before, const NodeContent& after) {
    std::vector<std::string> lines;
    if (before.node && after.node) {
        lines = Differences(*before.node, *after.node);
    }
    if (before.entry.has_value() != after.entry.has_value()) {
        if (before.entryRead && after.entryRead) {
            lines.push_back(std::string(before.entry ? "no longer" : "now") + " in the register");
        }
        return lines;
    }
    const auto told = [](const std::optional<std::string>& text) {
        return text ? '"' + *text + '"' : "nothing";
    };
    const auto compare = [&](const char* what, const std::optional<std::string>& was,
                             const std::optional<std::string>& is) {
        if (was != is) {
            lines.push_back(std::string("in the register ") + what + ' ' + told(was) + " → " + told(is));
        }
    };
    const auto none = RegisterEntry();
    const RegisterEntry& was = before.entry ? *before.entry : none;
    const RegisterEntry& is = after.entry ? *after.entry : none;
    compare("type", was.type, is.type);
    compare("label", was.label, is.label);
    compare("date", was.dateModified, is.dateModified);
    return lines;
}

std::optional<AutoNode> MergeContents(const NodeContent& before, const NodeContent& stored,
                                      const AutoNode& own) {
    const auto label = [](const NodeContent& content) {
        return content.entry ? content.entry->label.value_or("") : std::string();
    };
    if (!before.node || !stored.node) {
        return std::nullopt;
    }
    auto merged = MergeNodes(*before.node, *stored.node, own);
    const bool lost = merged && label(stored) != label(before) && label(stored) != merged->label.value_or("");
    return lost ? std::nullopt : merged;
}

NodeContent ReadContent(DataBase& dataBase, const NodePlace& place) {
    NodeContent content;
    ReadAhead(dataBase).Read([&] {
        content.node = ReadAutoNode(dataBase, place);
        ReadEntry(dataBase, place, content);
    });
    return content;
}

std::span<const NodePlace> TakeTogether(std::span<const NodePlace>& rest) {
    const auto together = rest.first(std::min(rest.size(), NodesTogether));
    rest = rest.subspan(together.size());
    return together;
}

void ReadContents(DataBase& dataBase, std::span<const NodePlace> places, const TakeContent& take) {
    while (!places.empty()) {
        const auto together = TakeTogether(places);
        ReadAhead ahead(dataBase);
        ahead.Fetch([&] {
            for (const NodePlace& place : together) {
                static_cast<void>(ReadContent(dataBase, place));
            }
        });
        for (const NodePlace& place : together) {
            take(place, ReadContent(dataBase, place));
        }
    }
}

void WriteContent(DataBase& dataBase, const NodePlace& place, const NodeContent& content) {
    Batch batch(dataBase);
    DeleteDetails(batch, place);
    if (content.node) {
        WriteRecord(batch, place, *content.node);
        AddDetails(batch, place, *content.node);
    } else {
        batch.Add(Command::Delete_AUTO_Node, {place.partition, place.Key()});
    }
    if (content.entry) {
        WriteEntry(batch, place, *content.entry);
    } else if (content.entryRead) {
        batch.Add(Command::Delete_General_Pool, {place.partition, place.Key()});
    }
    batch.Run();
}

std::string TextOf(const NodePlace& place, const NodeContent& content) {
    std::string text;
    JsonWriter json(text);
    json.Begin('{');
    json.Member("version", ContentVersion);
    json.Name("node");
    if (content.node) {
        WriteNode(json, place, *content.node, Labels::Leave);
    } else {
        json.Null();
    }
    if (content.entryRead) {
        json.Name("register");
    }
    if (content.entry) {
        json.Begin('{');
        json.Member("type", content.entry->type);
        json.Member("label", content.entry->label);
        json.Member("dateModified", content.entry->dateModified);
        json.End('}');
    } else if (content.entryRead) {
        json.Null();
    }
    json.End('}');
    return text;
}

NodeContent ContentOf(const std::string& text) {
    try {
        Json document = Json::parse(text);
        BringBytesBack(document, document.contains(BytesMember));
        NodeContent content;
        if (const Json& node = document.at("node"); !node.is_null()) {
            content.node = NodeFromJson(node);
        }
        const auto entry = document.find("register");
        content.entryRead = entry != document.end();
        if (content.entryRead && !entry->is_null()) {
            content.entry = {entry->value("type", std::string()), TextIn(*entry, "label"),
                             TextIn(*entry, "dateModified")};
        }
        return content;
    } catch (const Json::exception& error) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           std::string("The content of a version cannot be read: ") + error.what());
    }
}

} // namespace KAL_AUTO_Node
