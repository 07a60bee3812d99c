#include "audit/FixMissing.h"

#include "history/History.h"
#include "store/DataBase.h"

#include <array>
#include <utility>

namespace KAL_AUTO_Node {

Creation MakeOfTemplate(DataBase& dataBase, History& history, Partition partition, const NodeKey& node,
                        const std::string& date) {
    const bool guarded = history.Exists();
    const bool begun = guarded && history.HasBegun(partition, node);
    if (guarded && !begun && node.typeID == AutoType && std::in_range<std::int16_t>(node.number)) {
        history.Keep(std::array{NodePlace{partition, static_cast<std::int16_t>(node.number)}}, "create");
    }
    return CreateNodeFromTemplate(dataBase, partition, TemplateNumber, node, date,
                                  begun ? Existing::Keep : Existing::Refuse);
}

Creation CreateMissing(DataBase& dataBase, History& history, Partition partition, const RequiredNode& node,
                       const std::string& date) {
    Transaction all(dataBase);
    // Somebody else may have made it meanwhile.
    if (IsNodeExisted(dataBase, partition, node.key)) {
        return Creation::Created;
    }
    const Creation outcome = MakeOfTemplate(dataBase, history, partition, node.key, date);
    if (outcome != Creation::NoRule && outcome != Creation::NoTemplate) {
        all.Commit();
    }
    return outcome;
}

bool CanBeMade(DataBase& dataBase, Partition partition, const RequiredNode& node) {
    const int typeID = node.key.Itself().typeID;
    return HasCopyRule(typeID) && IsNodeExisted(dataBase, partition, {typeID, TemplateNumber});
}

} // namespace KAL_AUTO_Node
