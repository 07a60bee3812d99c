#include "form/GUI.h"
#include "form/LongOperation.h"
#include "platform/ErrorReport.h"
#include "platform/MousePointer.h"
#include "platform/RuntimeError.h"
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

std::string CellText(const ListView& list, int row, int column) {
    return list.Cell(row, column).toStdString();
}

} // namespace

void NodeRules::SaveChanges(GUI& gui, std::int16_t nodeNumber) {
    Reporting("SaveChanges", [&] {
        const Hourglass busy;
        const LongOperation saving(gui);
        LastingWrites writes(dataBase_);
        CheckForUnReferencedNodes(gui);
        LongOperation::ShowProgress(gui, "Saving node information. Please wait...");
        for (const Command command : {Command::Delete_AUTO_PromptsNode, Command::Delete_AUTO_ActionsNode}) {
            dataBase_.Execute(command, {gui.ConfigID, gui.PartitionID, nodeNumber});
        }
        SaveNode(gui, nodeNumber);
        SavePrompts(gui, nodeNumber);
        SaveActions(gui, nodeNumber);
        writes.Finish();
        gui.StatusBar1->SetPanelText(QString());
    });
}

void NodeRules::SaveNode(const GUI& gui, std::int16_t nodeNumber) {
    const std::string label = gui.txtDescription->text().toStdString();
    const auto exception = [&](Slot slot, int column) {
        const auto row = static_cast<int>(slot) - static_cast<int>(Slot::Timeout);
        return CellText(*gui.LVExceptions, row, column);
    };
    dataBase_.Execute(Command::Update_AUTO_Node, {
                                                     gui.cmbNumDigits->Text().toStdString(),
                                                     gui.cmbTermDigit->Text().toStdString(),
                                                     gui.cmbSelTimeOut->Text().toStdString(),
                                                     gui.cmbDigitTimeOut->Text().toStdString(),
                                                     gui.cmbRetryLimit->Text().toStdString(),
                                                     exception(Slot::Timeout, NodeNameColumn),
                                                     exception(Slot::Timeout, NodeNumberColumn),
                                                     exception(Slot::Invalid, NodeNameColumn),
                                                     exception(Slot::Invalid, NodeNumberColumn),
                                                     exception(Slot::Abort, NodeNameColumn),
                                                     exception(Slot::Abort, NodeNumberColumn),
                                                     gui.NodeName(AutoType).toStdString(),
                                                     label,
                                                     exception(Slot::Timeout, NodeTypeIDColumn),
                                                     exception(Slot::Invalid, NodeTypeIDColumn),
                                                     exception(Slot::Abort, NodeTypeIDColumn),
                                                     exception(Slot::Star, NodeTypeIDColumn),
                                                     exception(Slot::Pound, NodeTypeIDColumn),
                                                     exception(Slot::Star, NodeNameColumn),
                                                     exception(Slot::Star, NodeNumberColumn),
                                                     exception(Slot::Pound, NodeNameColumn),
                                                     exception(Slot::Pound, NodeNumberColumn),
                                                     gui.ConfigID,
                                                     gui.PartitionID,
                                                     AutoType,
                                                     nodeNumber,
                                                 });
    dataBase_.Execute(Command::Update_Node_General_Pool,
                      {label, Today(), gui.ConfigID, gui.PartitionID, AutoType, nodeNumber});
}

void NodeRules::SavePrompts(const GUI& gui, std::int16_t nodeNumber) {
    const ListView& list = *gui.LVPrompts;
    for (int row = 0; row < list.Count(); ++row) {
        dataBase_.Execute(Command::Add_AUTO_PromptsNode,
                          {gui.ConfigID, gui.PartitionID, row + 1, CellText(list, row, NodeTypeIDColumn),
                           CellText(list, row, NodeNumberColumn), nodeNumber,
                           CellText(list, row, NodeNameColumn)});
    }
}

void NodeRules::SaveActions(const GUI& gui, std::int16_t nodeNumber) {
    const ListView& list = *gui.LVActions;
    for (int row = 0; row < list.Count(); ++row) {
        dataBase_.Execute(Command::Add_AUTO_ActionsNode,
                          {gui.ConfigID, gui.PartitionID, row + 1, CellText(list, row, NodeTypeIDColumn),
                           CellText(list, row, NodeNumberColumn), nodeNumber,
                           CellText(list, row, DTMFRangeLowColumn), CellText(list, row, DTMFRangeHighColumn),
                           CellText(list, row, NodeNameColumn)});
    }
}

} // namespace KAL_AUTO_Node
