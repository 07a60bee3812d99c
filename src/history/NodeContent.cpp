#include "history/NodeContent.h"

#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "nodes/NodeJson.h"
#include "nodes/NodeTypes.h"
#include "nodes/Record.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

namespace {

using Json = nlohmann::ordered_json;

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

void WriteRecord(DataBase& dataBase, Partition partition, std::int16_t number, const AutoNode& node) {
    if (UpdateRecord(dataBase, partition, number, node) == 0) {
        dataBase.Execute(Command::Add_AUTO_Node, {partition.config, partition.number, AutoType, number});
        UpdateRecord(dataBase, partition, number, node);
    }
}

void WriteEntry(DataBase& dataBase, Partition partition, std::int16_t number, const RegisterEntry& entry) {
    const std::int64_t updated = dataBase.Execute(
        Command::Put_Back_General_Pool,
        {entry.type, entry.label, entry.dateModified, partition.config, partition.number, AutoType, number});
    if (updated == 0) {
        dataBase.Execute(Command::Add_General_Pool, {partition.config, partition.number, AutoType, number,
                                                     entry.type, entry.label, entry.dateModified});
    }
}

Json OrNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(); }

std::optional<std::string> TextIn(const Json& member) {
    return member.is_null() ? std::nullopt : std::optional(member.get<std::string>());
}

} // namespace

NodeContent ReadContent(DataBase& dataBase, Partition partition, std::int16_t number) {
    return {ReadAutoNode(dataBase, partition, number), ReadEntry(dataBase, partition, number)};
}

void WriteContent(DataBase& dataBase, Partition partition, std::int16_t number, const NodeContent& content) {
    DeleteDetails(dataBase, partition, number);
    if (content.node) {
        WriteRecord(dataBase, partition, number, *content.node);
        AddDetails(dataBase, partition, number, *content.node);
    }
    if (content.entry) {
        WriteEntry(dataBase, partition, number, *content.entry);
    }
}

std::string TextOf(Partition partition, std::int16_t number, const NodeContent& content) {
    Json document{{"node", content.node ? ToJson(partition, number, *content.node, Labels::Leave) : Json()},
                  {"register", Json()}};
    if (content.entry) {
        document["register"] = {{"type", content.entry->type},
                                {"label", OrNull(content.entry->label)},
                                {"dateModified", OrNull(content.entry->dateModified)}};
    }
    // Bytes that are no UTF-8 would not come back; the store's texts are UTF-8, as its engines have it.
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

NodeContent ContentOf(const std::string& text) {
    try {
        const Json document = Json::parse(text);
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
