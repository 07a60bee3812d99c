#include "nodes/PartitionReader.h"

#include "nodes/Record.h"
#include "platform/RuntimeError.h"
#include "store/DataBase.h"

#include <optional>

namespace KAL_AUTO_Node {

namespace {

// The detail rows of one list, those of each node together, in the order of the nodes.
template <class Columns, class Item>
class Details {
  public:
    Details(DataBase& dataBase, Partition partition, Command command, Slot list,
            const std::function<void(Slot list, int number, int rows)>& takeOrphans)
        : rows_(dataBase.Query(command, {partition})), columns_(rows_), owner_(rows_.Column("NodeMasterID")),
          list_(list), takeOrphans_(takeOrphans) {}

    // Those of a node, which replace what is there; those of nodes before it have none.
    void Read(int number, std::vector<Item>& items) {
        items.clear();
        PassOrphans(number);
        for (; !rows_.AtEnd() && rows_.Number(owner_) == number; rows_.MoveNext()) {
            items.push_back(columns_.Read(rows_));
        }
    }

    // Those of nodes before that number, or all that are left.
    void PassOrphans(std::optional<int> before = std::nullopt) {
        while (!rows_.AtEnd() && (!before || rows_.Number(owner_) < *before)) {
            const int orphan = rows_.Number(owner_);
            int count = 0;
            for (; !rows_.AtEnd() && rows_.Number(owner_) == orphan; rows_.MoveNext()) {
                ++count;
            }
            takeOrphans_(list_, orphan, count);
        }
    }

  private:
    ResultSet rows_;
    Columns columns_;
    std::size_t owner_;
    Slot list_;
    const std::function<void(Slot list, int number, int rows)>& takeOrphans_;
};

} // namespace

void ReadWholeAutoNodes(DataBase& dataBase, Partition partition,
                        const std::function<void(int number, const AutoNode& node)>& take,
                        const std::function<void(Slot list, int number, int rows)>& takeOrphans) {
    ResultSet records = dataBase.Query(Command::Get_All_AUTO_Nodes, {partition, AutoType});
    Details<PromptColumns, Prompt> prompts(dataBase, partition, Command::Get_All_AUTO_Prompts, Slot::Prompts,
                                           takeOrphans);
    Details<ActionColumns, Action> actions(dataBase, partition, Command::Get_All_AUTO_Actions, Slot::Actions,
                                           takeOrphans);
    const std::size_t numberColumn = records.Column("NodeNumber");
    std::vector<ReferenceColumns> branches;
    branches.reserve(Branches.size());
    for (const Branch& rule : Branches) {
        branches.emplace_back(records, rule.column);
    }
    AutoNode node;
    for (; !records.AtEnd(); records.MoveNext()) {
        const int number = records.Number(numberColumn);
        try {
            ReadRecord(records, node);
            for (std::size_t branch = 0; branch < branches.size(); ++branch) {
                node.branches.at(branch) = branches[branch].Read(records);
            }
            prompts.Read(number, node.prompts);
            actions.Read(number, node.actions);
        } catch (const RuntimeError& error) {
            throw RuntimeError(error.Number(), NodeTextIn(partition, number) + ": " + error.what(),
                               error.Source());
        }
        take(number, node);
    }
    prompts.PassOrphans();
    actions.PassOrphans();
}

} // namespace KAL_AUTO_Node
