#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"
#include "form/GUI.h"
#include "form/LongOperation.h"
#include "form/Stored.h"
#include "history/NodeSave.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/RuntimeError.h"
#include "platform/Today.h"
#include "rules/Conflicts.h"
#include "rules/Gathering.h"
#include "rules/NodeRules.h"

#include <utility>

namespace KAL_AUTO_Node {

namespace {

QString NameOf(const GUI& gui, std::int16_t nodeNumber) {
    return gui.NodeName(AutoType) + ' ' + QString::number(nodeNumber);
}

} // namespace

bool NodeRules::MayBegin(GUI& gui, NodeSave& save) {
    auto& [number, version, loaded] = *gui.StoredNode;
    while (const auto obstacle = save.Begin(loaded, version)) {
        if (!GoesOver(NameOf(gui, number), loaded, *obstacle)) {
            return false;
        }
        // As far as the person has seen by now.
        loaded = *obstacle->stored;
        version = obstacle->by ? obstacle->by->number : version;
    }
    if (!save.Guarded() && !std::exchange(toldUnguarded_, true)) {
        Inform(QStringLiteral("This store can keep no history, so what is saved here cannot be taken back."));
    }
    return true;
}

void NodeRules::SettleOutcome(const GUI& gui) {
    if (!unsettled_) {
        return;
    }
    const auto& [place, version, sent] = *unsettled_;
    const bool whole = ReadAutoNode(dataBase_, place.partition, place.number) == sent;
    if (version > 0) {
        history_.End(place, version, whole ? VersionState::Finished : VersionState::Failed);
    }
    const QString name = NameOf(gui, place.number);
    unsettled_.reset();
    Inform(whole ? name + " is stored as it was to be saved."
                 : "Nothing of the latest save of " + name + " is stored; the node is as it was before.");
}

bool NodeRules::OfferToPutBack(const GUI& gui, std::int16_t nodeNumber) {
    if (dataBase_.IsRemote()) {
        return false; // a save is there as a whole, or not at all
    }
    const NodePlace place{PartitionOf(gui), nodeNumber};
    bool putBack = false;
    while (const auto save = history_.Unfinished(place)) {
        if (!WantsItPutBack(NameOf(gui, nodeNumber), *save)) {
            break;
        }
        history_.PutBack(place, save->number, "put back");
        putBack = true;
    }
    return putBack;
}

int NodeRules::LatestVersion(const GUI& gui, std::int16_t nodeNumber) {
    const auto versions = history_.Versions({PartitionOf(gui), nodeNumber});
    return versions.empty() ? 0 : versions.front().number;
}

void NodeRules::AfterFailedSave(GUI& gui, std::int16_t nodeNumber, bool half) {
    if (half && OfferToPutBack(gui, nodeNumber)) {
        LoadData(gui, nodeNumber);
        gui.cmdApply->setEnabled(false);
    } else if (auto stored = ReadAutoNode(dataBase_, PartitionOf(gui), nodeNumber)) {
        // What this window itself has left there is nobody else's change.
        gui.StoredNode = std::make_unique<GUI::Stored>(
            GUI::Stored{nodeNumber, LatestVersion(gui, nodeNumber), std::move(*stored)});
    }
}

bool NodeRules::SaveChanges(GUI& gui, std::int16_t nodeNumber) {
    bool refused = false;
    bool writing = false;
    bool half = false;
    const bool saved = Reporting("SaveChanges", [&] {
        const Hourglass busy;
        if (!gui.StoredNode || gui.StoredNode->number != nodeNumber) {
            refused = true;
            Inform(NameOf(gui, nodeNumber) +
                   " could not be loaded, and what is shown here is not its content. It is not saved.");
            return;
        }
        SettleOutcome(gui);
        const AutoNode node = GatherNode(gui);
        const NodePlace place{PartitionOf(gui), nodeNumber};
        NodeSave save(dataBase_, history_, place);
        refused = !MayBegin(gui, save);
        if (refused) {
            return;
        }
        const LongOperation saving(gui);
        try {
            CheckForUnReferencedNodes(gui, save);
            save.Renew();
            writing = true;
            LongOperation::ShowProgress(gui, "Saving node information. Please wait...");
            WriteAutoNode(dataBase_, PartitionOf(gui), nodeNumber, node, Today());
            save.Finish();
        } catch (const RuntimeError& error) {
            if (error.Number() == ErrorNumber::OutcomeUnknown) {
                unsettled_ = Unsettled{place, save.VersionNumber(), node};
            } else {
                half = save.Fail();
            }
            throw;
        } catch (...) {
            half = save.Fail();
            throw;
        }
        gui.StoredNode = std::make_unique<GUI::Stored>(GUI::Stored{nodeNumber, save.VersionNumber(), node});
        gui.StatusBar1->SetPanelText(QString());
    });
    // Before that, what is stored there now may be somebody else's, which has not been seen here.
    if (!saved && (writing || unsettled_)) {
        Reporting("SaveChanges", [&] {
            SettleOutcome(gui);
            AfterFailedSave(gui, nodeNumber, half);
        });
    }
    return !refused;
}

} // namespace KAL_AUTO_Node
