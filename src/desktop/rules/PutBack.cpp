#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"
#include "form/GUI.h"
#include "history/Changes.h"
#include "rules/Conflicts.h"
#include "rules/NodeRules.h"

namespace KAL_AUTO_Node {

bool NodeRules::PutBack(GUI& gui, const NodePlace& place, const Version& version,
                        const std::optional<std::vector<QString>>& uses) {
    bool done = false;
    Reporting("PutBack", [&] {
        const Hourglass busy;
        const bool shown = place == NodePlace{PartitionOf(gui), gui.nodeNumber};
        const QString node = gui.NodeName(AutoType) + ' ' + QString::number(place.number);
        const auto earlier = history_.ToPutBack(place, version.number);
        if (!earlier.node) {
            Inform(node + " was not there before this change. To take it away, remove it.");
            return;
        }
        const auto changes = ChangesInWords(ReadContent(dataBase_, place).node, earlier.node);
        if (changes.empty()) {
            Inform(node + " is stored as it was before this change.");
            return;
        }
        if (!WantsVersionBack(node, version, changes, uses, shown && gui.cmdApply->isEnabled())) {
            return;
        }
        history_.PutBack(place, version.number, "restore");
        done = true;
        if (shown) {
            LoadData(gui, place.number);
            gui.cmdApply->setEnabled(false);
        }
    });
    return done;
}

} // namespace KAL_AUTO_Node
