#include "audit/PartitionCheck.h"

#include "calls/DigitSpace.h"
#include "calls/Flow.h"
#include "history/History.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/Overview.h"
#include "nodes/PartitionReader.h"
#include "nodes/References.h"
#include "store/Batch.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

class PartitionCheck {
  public:
    PartitionCheck(DataBase& dataBase, History& history, Partition partition, const CheckReader& reader)
        : dataBase_(dataBase), history_(history), partition_(partition), reader_(reader) {}

    PartitionFindings Run() {
        ReadAhead ahead(dataBase_);
        types_.Read(ahead, dataBase_, partition_);
        ReadEntries();
        template_ = ReadAutoNode(dataBase_, {partition_, TemplateNumber});
        ReadWholeAutoNodes(
            dataBase_, partition_, [this](int number, const AutoNode& node) { CheckNode(number, node); },
            [this](Slot list, int number, int rows) {
                const char* kind = list == Slot::Prompts ? " prompts" : " actions";
                const char* table = list == Slot::Prompts ? "Detail_AUTO_Prompts" : "Detail_AUTO_Action";
                Add(Fault::OrphanRows, {AutoType, number}, {"", table}, std::to_string(rows) + kind);
            });
        CheckOtherNodes();
        CheckRegister();
        CheckFlow();
        CheckSaves();
        std::ranges::stable_sort(result_.findings, {}, &Finding::holder);
        for (Finding& finding : result_.findings) {
            if (const Registered* entry = Find(finding.holder)) {
                finding.label = entry->label;
            }
        }
        return std::move(result_);
    }

  private:
    struct HashKey {
        std::size_t operator()(const NodeKey& key) const {
            return std::hash<std::int64_t>()((static_cast<std::int64_t>(key.typeID) << 32) ^ key.number);
        }
    };

    struct Registered {
        std::string label;
        bool hasRecord = false;
    };

    void ReadEntries() {
        ReadRegister(dataBase_, partition_,
                     [&](const NodeKey& key, std::string_view stored, std::string_view label) {
                         Registered& entry = register_[key] = {std::string(label)};
                         reader_.takeRegistered(key, stored, entry.label);
                         CheckTypeName(
                             key,
                             [] {
                                 return Where{"register", "Node_General_Pool"};
                             },
                             key.typeID, stored);
                     });
        result_.registeredNodes = register_.size();
    }

    Registered* Find(const NodeKey& key) {
        const auto found = register_.find(key);
        return found == register_.end() ? nullptr : &found->second;
    }

    // A place in a node, for people and where it is stored.
    struct Where {
        std::string text = {};
        std::string_view table = {};
        int row = 0;
    };

    void Add(Fault fault, const NodeKey& holder, Where where, std::string subject) {
        result_.findings.push_back({fault,
                                    holder,
                                    names_.Name(holder.typeID),
                                    {},
                                    std::move(where.text),
                                    std::move(subject),
                                    where.table,
                                    where.row});
    }

    template <class MakeWhere>
    void CheckTypeName(const NodeKey& holder, MakeWhere where, int typeID, std::string_view stored) {
        const std::string* name = types_.NodeNameCollection.Find(typeID);
        if (name != nullptr && *name != stored) {
            Add(Fault::TypeName, holder, where(), '\'' + std::string(stored) + "' for " + *name);
        }
    }

    // Where is a function that gives the place as text.
    template <class MakeWhere>
    void CheckTarget(const NodeKey& holder, const Reference& target, Slot slot, MakeWhere where) {
        switch (types_.Judge(slot, {target.typeID, target.number})) {
        case Standing::NotNamed:
        case Standing::NotOffered:
            Add(Fault::TypeNotOffered, holder, where(), DisplayText(target, slot));
            break;
        case Standing::BeyondMaximum:
            Add(Fault::BeyondMaximum, holder, where(), DisplayText(target, slot));
            break;
        default:
            break;
        }
        CheckTypeName(holder, where, target.typeID, target.type);
        CheckExists(holder, {target.typeID, target.number}, where);
    }

    template <class MakeWhere>
    void CheckExists(const NodeKey& holder, const NodeKey& target, MakeWhere where) {
        const NodeKey key = target.Itself();
        if (RefersToNode(target.typeID) && Find(key) == nullptr) {
            std::string name = names_.Text(key);
            Add(Fault::MissingNode, holder, where(), name);
            if (missing_.insert(key).second) {
                result_.missing.push_back({std::move(name), key});
            }
        }
    }

    void NoteRecord(const NodeKey& node) {
        if (Registered* entry = Find(node)) {
            entry->hasRecord = true;
        } else {
            Add(Fault::NotRegistered, node, {}, "");
        }
    }

    void CheckNode(int number, const AutoNode& node) {
        ++result_.autoNodes;
        const NodeKey key{AutoType, number};
        NoteRecord(key);
        flow_.Add(number, node);
        reader_.takeAutoNode(number, node);
        CheckTypeName(
            key, [] { return Where{"record"}; }, AutoType, node.type);
        CheckSettings(key, node.settings);
        for (const Prompt& prompt : node.prompts) {
            CheckTarget(key, prompt.target, Slot::Prompts, [&] {
                return Where{"prompt " + std::to_string(prompt.sequence), "Detail_AUTO_Prompts",
                             prompt.sequence};
            });
        }
        CheckActions(key, node);
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            CheckTarget(key, node.branches.at(branch), Branches.at(branch).slot,
                        [&] { return Where{Branches.at(branch).label}; });
        }
        // The template is no menu that anybody calls.
        if (number == TemplateNumber) {
            return;
        }
        if (std::ranges::all_of(
                node.prompts, [](const Prompt& prompt) { return prompt.target.typeID == NumberlessType; })) {
            Add(Fault::NoPrompts, key, {}, "");
        }
        if (node == template_) {
            Add(Fault::AsTemplate, key, {}, "");
        }
    }

    void CheckSettings(const NodeKey& key, const Settings& settings) {
        const auto add = [&](const std::string& name, const std::string& stored) {
            Add(Fault::SettingOutside, key, {"settings"}, name + ' ' + stored);
        };
        for (const SettingField& rule : SettingFields) {
            if (!IsWithin(rule, settings)) {
                const auto& stored = settings.*rule.value;
                add(rule.name, stored ? std::to_string(*stored) : "none");
            }
        }
        if (!IsTerminatingDigit(settings)) {
            add("terminating digit", settings.terminatingDigit.value_or("none"));
        }
    }

    void CheckActions(const NodeKey& key, const AutoNode& node) {
        const int digits = EntryLengthOf(node.settings).most;
        const auto where = [](const Action& action) {
            std::string text = "action ";
            text += std::to_string(action.sequence);
            text += " (";
            text += EntryText(action);
            return Where{text += ')', "Detail_AUTO_Action", action.sequence};
        };
        const auto duplicates = DuplicateEntries(node.actions);
        for (std::size_t position = 0; position < node.actions.size(); ++position) {
            const Action& action = node.actions[position];
            CheckTarget(key, action.target, Slot::Actions, [&] { return where(action); });
            if (const auto fault = FaultOf(KindOf(action, digits))) {
                Add(*fault, key, where(action), EntryText(action));
            }
            if (std::ranges::binary_search(duplicates, position)) {
                Add(Fault::DuplicateEntry, key, where(action), EntryText(action));
            }
        }
        for (const auto& [position, other, low, high] : FindSharedDigits(node.actions, digits)) {
            const Action& action = node.actions[position];
            const std::string otherEntry = EntryText(node.actions[other]);
            if (EntryText(action) != otherEntry) {
                std::string text = low;
                if (low != high) {
                    text += '-';
                    text += high;
                }
                text += ", also in ";
                text += otherEntry;
                Add(Fault::SharedDigits, key, where(action), std::move(text));
            }
        }
    }

    void CheckOtherNodes() {
        std::unordered_set<NodeKey, HashKey> nodes;
        {
            ResultSet rows = dataBase_.Query(Command::Get_Other_Nodes, {partition_});
            const std::size_t type = rows.Column("NodeTypeID");
            const std::size_t number = rows.Column("NodeNumber");
            for (; !rows.AtEnd(); rows.MoveNext()) {
                const NodeKey key{rows.Number(type), rows.Number(number)};
                nodes.insert(key);
                NoteRecord(key);
            }
        }
        std::map<std::pair<NodeKey, std::string_view>, std::set<int>> orphans; // holder and table, rows
        ReadOtherReferences(dataBase_, partition_, [&](const StoredReference& reference) {
            const ReferenceColumn& column = reference.Column();
            if (reference.row != 0 && !nodes.contains(reference.holder)) {
                // Nobody follows what a node that does not exist refers to.
                orphans[{reference.holder, column.table}].insert(reference.row);
                return;
            }
            const auto typeID = column.hasTypeID ? reference.typeID : names_.ID(reference.type);
            if (!typeID || !reference.number) {
                return;
            }
            const auto where = [&] {
                return Where{PlaceText(column, reference.row), column.table, reference.row};
            };
            if (column.hasTypeID) {
                CheckTypeName(reference.holder, where, *typeID, reference.type);
            }
            CheckExists(reference.holder, {*typeID, *reference.number}, where);
            reader_.takeReference(reference, *typeID);
            if (*typeID == AutoType) {
                flow_.AddReferenceTo(*reference.number);
            }
        });
        for (const auto& [place, rows] : orphans) {
            const auto& [holder, table] = place;
            Add(Fault::OrphanRows, holder, {"", table},
                std::to_string(rows.size()) + " of " + std::string(table));
        }
    }

    void CheckRegister() {
        for (const auto& [key, entry] : register_) {
            if (!entry.hasRecord && HasCopyRule(key.typeID)) {
                Add(Fault::RegisteredWithoutNode, key, {}, "");
            }
        }
    }

    void CheckFlow() {
        for (const int number : flow_.WithoutWayOut()) {
            if (number != TemplateNumber) {
                Add(Fault::NoWayOut, {AutoType, number}, {}, "");
            }
        }
        for (const int number : flow_.Unreferenced()) {
            if (number != TemplateNumber) {
                Add(Fault::Unreferenced, {AutoType, number}, {}, "");
            }
        }
    }

    void CheckSaves() {
        if (!history_.Exists()) {
            return;
        }
        std::vector<std::int16_t> numbers;
        for (ResultSet rows = dataBase_.Query(Command::Get_Unfinished_AUTO_Nodes, {partition_});
             !rows.AtEnd(); rows.MoveNext()) {
            numbers.push_back(rows.Number16("NodeNumber"));
        }
        for (const std::int16_t number : numbers) {
            if (const auto save = history_.Unfinished({partition_, number})) {
                Add(Fault::UnfinishedSave, {AutoType, number}, {},
                    "begun " + LocalTime(save->begunAt) + " by " + AuthorText(*save));
            }
        }
    }

    DataBase& dataBase_;
    History& history_;
    Partition partition_;
    const CheckReader& reader_;
    TypeCatalogue types_;
    const TypeNames& names_ = types_.Names();
    std::unordered_map<NodeKey, Registered, HashKey> register_;
    std::optional<AutoNode> template_;
    Flow flow_;
    std::set<NodeKey> missing_;
    PartitionFindings result_;
};

} // namespace

std::vector<Partition> PartitionsWithRows(DataBase& dataBase) {
    std::vector<Partition> partitions;
    for (ResultSet rows = dataBase.Query(Command::Get_Partitions_With_Rows, {}); !rows.AtEnd();
         rows.MoveNext()) {
        partitions.push_back({rows.Number16("ConfigID"), rows.Number16("PartID")});
    }
    return partitions;
}

PartitionFindings CheckPartition(DataBase& dataBase, History& history, Partition partition,
                                 const CheckReader& reader) {
    return PartitionCheck(dataBase, history, partition, reader).Run();
}

} // namespace KAL_AUTO_Node
