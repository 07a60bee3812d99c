#include "nodes/Templates.h"

#include "nodes/NodeTypes.h"
#include "platform/RuntimeError.h"
#include "store/Batch.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

// How a node of each type is made from the template: its own row first, then its detail rows. All take the
// new number, the configuration, the partition and the template's number; a message also takes its file name.
struct CopyRule {
    int typeID;
    std::string_view word;
    std::array<Command, 3> commands;
    std::size_t count;

    [[nodiscard]] std::span<const Command> Commands() const { return std::span(commands).first(count); }
};

constexpr std::array<CopyRule, 12> CopyRules = {{
    {0, "MSG", {Command::Duplicate_MSG_NODE}, 1},
    {1, "CMD", {Command::Duplicate_CMD_NODE, Command::Duplicate_Detail_CMD_NODE}, 2},
    {2, "TIME", {Command::Duplicate_TIME_Node, Command::Duplicate_Detail_TIME_Node}, 2},
    {3, "DATE", {Command::Duplicate_DATE_Node, Command::Duplicate_Detail_DATE_Node}, 2},
    {4, "XFER", {Command::Duplicate_XFER_Node}, 1},
    {6,
     "DTMF",
     {Command::Duplicate_DTMF_Node, Command::Duplicate_DetailPrompts_DTMF_Node,
      Command::Duplicate_DetailActions_DTMF_Node},
     3},
    {7,
     "VOX",
     {Command::Duplicate_VOX_Node, Command::Duplicate_DetailPrompts_VOX_Node,
      Command::Duplicate_DetailActions_VOX_Node},
     3},
    {8, "LIST", {Command::Duplicate_LIST_Node, Command::Duplicate_Detail_LIST_Node}, 2},
    {9,
     "AUTO",
     {Command::Duplicate_AUTO_Node, Command::Duplicate_DetailPrompts_AUTO_Node,
      Command::Duplicate_DetailActions_AUTO_Node},
     3},
    {12, "PAAS", {Command::Duplicate_PAAS_Node}, 1},
    {13, "TABLE", {Command::Duplicate_TABLE_Node, Command::Duplicate_DetailActions_TABLE_Node}, 2},
    {15, "DBN", {Command::Duplicate_DBN_Node, Command::Duplicate_DetailPrompts_DBN_Node}, 2},
}};

} // namespace

const char* WhyNotCreated(Creation outcome) {
    switch (outcome) {
    case Creation::Unregistered:
        return "The rows of these nodes were copied, but they are not registered: their template has no row "
               "in Node_General_Pool.";
    case Creation::Empty:
        return "These nodes were registered, but they have no rows of their own: neither has their template.";
    default:
        return "These nodes could not be created: there is no template for them.";
    }
}

Creation CreateNodeFromTemplate(DataBase& dataBase, Partition partition, int source,
                                const NodeKey& destination, const std::string& date, Existing existing) {
    const auto [typeID, number] = destination.Itself();
    const auto rule = std::ranges::find(CopyRules, typeID, &CopyRule::typeID);
    if (rule == CopyRules.end()) {
        return Creation::NoRule;
    }
    Batch batch(dataBase);
    std::vector<std::int64_t> written;
    bool begun = false;
    const auto run = [&](const auto& step) {
        try {
            step();
            begun = begun || !dataBase.IsRemote();
        } catch (const RuntimeError& error) {
            if (error.Number() != ErrorNumber::DuplicateKey || (existing == Existing::Refuse && begun)) {
                throw;
            }
            if (existing == Existing::Refuse) {
                throw AlreadyThere(error);
            }
            written.push_back(1);
        }
    };
    const auto copy = [&](Command command, Parameters parameters) {
        run([&] {
            if (existing == Existing::Refuse) {
                batch.Add(command, parameters);
            } else {
                written.push_back(dataBase.Execute(command, parameters));
            }
        });
    };
    for (const Command command : rule->Commands()) {
        if (command == Command::Duplicate_MSG_NODE) {
            copy(command, {number, MessageFileName(partition.number, number), partition, source});
        } else {
            copy(command, {number, partition, source});
        }
    }
    copy(Command::Duplicate_Node_In_General_Pool, {number, date, partition, source, typeID});
    if (existing == Existing::Refuse) {
        run([&] { written = batch.Run(); });
    }
    const bool registered = written.back() > 0;
    if (registered) {
        return written.front() > 0 ? Creation::Created : Creation::Empty;
    }
    const bool copied = std::ranges::any_of(written, [](std::int64_t rows) { return rows > 0; });
    return copied ? Creation::Unregistered : Creation::NoTemplate;
}

std::string MessageFileName(int partition, int number) {
    std::array<char, 40> name{};
    std::snprintf(name.data(), name.size(), "P%02dM%03d.wav", partition, number);
    return name.data();
}

bool HasCopyRule(int typeID) { return !TableWord(typeID).empty(); }

std::string_view TableWord(int typeID) {
    const auto rule = std::ranges::find(CopyRules, typeID, &CopyRule::typeID);
    return rule == CopyRules.end() ? std::string_view() : rule->word;
}

bool IsNodeExisted(DataBase& dataBase, Partition partition, const NodeKey& node) {
    return !dataBase.Query(Command::Get_Description, {partition, node.Itself()}).AtEnd();
}

} // namespace KAL_AUTO_Node
