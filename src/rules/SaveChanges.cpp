#include "desktop/ErrorReport.h"
#include "desktop/MessageBox.h"
#include "desktop/MousePointer.h"
#include "form/GUI.h"
#include "form/LongOperation.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"
#include "rules/Gathering.h"
#include "rules/NodeRules.h"
#include "rules/Today.h"

#include <utility>

namespace KAL_AUTO_Node {

namespace {

// What was written is made to last also where a save fails half-way.
class LastingWrites {
  public:
    explicit LastingWrites(DataBase& dataBase) : dataBase_(dataBase) {}

    ~LastingWrites() {
        try {
            Finish();
        } catch (const RuntimeError&) {
            // The failure that ended the save is the one to report.
        }
    }

    LastingWrites(const LastingWrites&) = delete;
    LastingWrites& operator=(const LastingWrites&) = delete;

    void Finish() {
        if (!std::exchange(finished_, true)) {
            dataBase_.Flush();
        }
    }

  private:
    DataBase& dataBase_;
    bool finished_ = false;
};

} // namespace

bool NodeRules::RefusesToSave(const GUI& gui, std::int16_t nodeNumber) {
    const QString name = gui.NodeName(AutoType) + ' ' + QString::number(nodeNumber);
    if (gui.LoadedNode != nodeNumber) {
        Inform(name + " could not be loaded, and what is shown here is not its content. It is not saved.");
        return true;
    }
    if (!AutoNodeExists(dataBase_, PartitionOf(gui), nodeNumber)) {
        Inform(name + " doesn't exist any more. It is not saved.");
        return true;
    }
    return false;
}

bool NodeRules::SaveChanges(GUI& gui, std::int16_t nodeNumber) {
    bool refused = false;
    Reporting("SaveChanges", [&] {
        const Hourglass busy;
        refused = RefusesToSave(gui, nodeNumber);
        if (refused) {
            return;
        }
        const AutoNode node = GatherNode(gui);
        const LongOperation saving(gui);
        LastingWrites writes(dataBase_);
        CheckForUnReferencedNodes(gui);
        LongOperation::ShowProgress(gui, "Saving node information. Please wait...");
        WriteAutoNode(dataBase_, PartitionOf(gui), nodeNumber, node, Today());
        writes.Finish();
        gui.StatusBar1->SetPanelText(QString());
    });
    return !refused;
}

} // namespace KAL_AUTO_Node
