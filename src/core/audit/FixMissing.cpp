#include "audit/FixMissing.h"

#include "history/History.h"
#include "store/DataBase.h"

namespace KAL_AUTO_Node {

Creation CreateMissing(DataBase& dataBase, History& history, Partition partition, const RequiredNode& node,
                       const std::string& date) {
    const bool guarded = history.Exists();
    Transaction all(dataBase);
    // Somebody else may have made it meanwhile.
    if (IsNodeExisted(dataBase, partition, node.key)) {
        return Creation::Created;
    }
    const bool begun = guarded && history.HasBegun(partition, node.key);
    const Creation outcome = CreateNodeFromTemplate(dataBase, partition, TemplateNumber, node.key, date,
                                                    begun ? Existing::Keep : Existing::Refuse);
    all.Commit();
    return outcome;
}

bool CanBeMade(DataBase& dataBase, Partition partition, const RequiredNode& node) {
    const int typeID = node.key.Itself().typeID;
    return HasCopyRule(typeID) && IsNodeExisted(dataBase, partition, {typeID, TemplateNumber});
}

} // namespace KAL_AUTO_Node
