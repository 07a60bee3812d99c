#include "history/NodeContent.h"

#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
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

// A register that cannot be read holds up nothing here; the save tells of it where it needs it.
std::optional<RegisterEntry> ReadEntry(DataBase& dataBase, Partition partition, std::int16_t number) try {
    const ResultSet row =
        dataBase.Query(Command::Get_Description, {partition.config, partition.number, AutoType, number});
    if (row.AtEnd()) {
        return std::nullopt;
    }
    return RegisterEntry{std::string(row.Field("NodeType").value_or("")),
                         OptionalText(row, "NodeDescription"), OptionalText(row, "DateModified")};

} catch (const RuntimeError&) {

    return std::nullopt;
}

void WriteRecord(Batch& batch, Partition partition, std::int16_t number, const AutoNode& node) {
    UpdateRecord(batch, partition, number, node);
    if (batch.Run().back() == 0) {
        batch.Add(Command::Add_AUTO_Node, {partition.config, partition.number, AutoType, number});
        UpdateRecord(batch, partition, number, node);
    }
}

void WriteEntry(Batch& batch, Partition partition, std::int16_t number, const RegisterEntry& entry) {
    batch.Add(Command::Put_Back_General_Pool, {entry.type, entry.label, entry.dateModified, partition.config,
                                               partition.number, AutoType, number});
    if (batch.Run().back() == 0) {
        batch.Add(Command::Add_General_Pool, {partition.config, partition.number, AutoType, number,
                                              entry.type, entry.label, entry.dateModified});
    }
}

Json OrNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

std::optional<std::string> TextIn(const Json& member) {
    return member.is_null() ? std::nullopt : std::optional(member.get<std::string>());
}

// JSON is UTF-8, and texts of the store are whatever other programs have written. Where one is no UTF-8, all
// of the content's stand as a letter for each byte, and a member of this name says so.
constexpr const char* BytesMember = "bytes";

std::string LetterPerByte(const std::string& bytes) {
    std::string letters;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80) {
            letters += byte;
        } else {
            letters += static_cast<char>(0xC0 | value >> 6);
            letters += static_cast<char>(0x80 | (value & 0x3F));
        }
    }
    return letters;
}

std::string BytePerLetter(const std::string& letters) {
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

// No content has more levels; a text from elsewhere may have as many as exhaust the stack.
constexpr int MostLevels = 8;

void TurnTexts(Json& document, std::string (*turn)(const std::string&), int levels = MostLevels) {
    if (document.is_string()) {
        document = turn(document.get_ref<const std::string&>());
    } else if (document.is_structured() && levels > 0) {
        for (Json& member : document) {
            TurnTexts(member, turn, levels - 1);
        }
    }
}

} // namespace

void ReadContentAhead(ReadAhead& ahead, Partition partition, std::int16_t number) {
    ReadAutoNodeAhead(ahead, partition, number);
    ahead.Add(Command::Get_Description, {partition.config, partition.number, AutoType, number});
}

NodeContent ReadContent(DataBase& dataBase, Partition partition, std::int16_t number) {
    return {ReadAutoNode(dataBase, partition, number), ReadEntry(dataBase, partition, number)};
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
        for (const auto& [partition, number] : together) {
            ReadContentAhead(ahead, partition, number);
        }
        ahead.Fetch();
        for (const NodePlace& place : together) {
            take(place, ReadContent(dataBase, place.partition, place.number));
        }
    }
}

void WriteContent(DataBase& dataBase, Partition partition, std::int16_t number, const NodeContent& content) {
    Batch batch(dataBase);
    DeleteDetails(batch, partition, number);
    if (content.node) {
        WriteRecord(batch, partition, number, *content.node);
        AddDetails(batch, partition, number, *content.node);
    }
    if (content.entry) {
        WriteEntry(batch, partition, number, *content.entry);
    }
    batch.Run();
}

std::string TextOf(Partition partition, std::int16_t number, const NodeContent& content) {
    Json document{{"node", content.node ? ToJson(partition, number, *content.node, Labels::Leave) : Json()},
                  {"register", Json()}};
    if (content.entry) {
        document["register"] = {{"type", content.entry->type},
                                {"label", OrNull(content.entry->label)},
                                {"dateModified", OrNull(content.entry->dateModified)}};
    }
    try {
        return document.dump();
    } catch (const Json::type_error&) {
        TurnTexts(document, &LetterPerByte);
        document[BytesMember] = true;
        return document.dump();
    }
}

NodeContent ContentOf(const std::string& text) {
    try {
        Json document = Json::parse(text);
        if (document.contains(BytesMember)) {
            TurnTexts(document, &BytePerLetter);
        }
        NodeContent content;
        if (const Json& node = document.at("node"); !node.is_null()) {
            content.node = NodeFromJson(node);
        }
        if (const Json& entry = document.at("register"); !entry.is_null()) {
            content.entry = {entry.at("type").get<std::string>(), TextIn(entry.at("label")),
                             TextIn(entry.at("dateModified"))};
        }
        return content;
    } catch (const Json::exception& error) {
        throw RuntimeError(ErrorNumber::StoreNotRecognized,
                           std::string("The content of a version cannot be read: ") + error.what());
    }
}

} // namespace KAL_AUTO_Node
