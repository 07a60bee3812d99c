#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"
#include "form/GUI.h"
#include "form/LongOperation.h"
#include "form/Stored.h"
#include "history/NodeSave.h"
#include "nodes/AutoNodeReader.h"
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

// The person at the window.
class NodeRules::Person : public SaveAudience {
  public:
    Person(NodeRules& rules, GUI& gui, QString name, const AutoNode& node)
        : rules_(rules), gui_(gui), name_(std::move(name)), node_(node) {}

    // The node as it is stored is to be shown instead of what was changed here.
    bool WantsStored = false;
    // Or together with it; and as it is stored.
    std::optional<AutoNode> Together;
    SeenNode Stored;

    bool GoesOver(const SeenNode& seen, const Obstacle& obstacle) override {
        // What a save has left half-way is nobody's wish.
        if (!obstacle.by || !IsUnfinished(*obstacle.by)) {
            Together = MergedWith(seen.content, obstacle.stored.content);
        }
        const Over answer = AskToGoOver(name_, seen, obstacle, Together.has_value());
        WantsStored = answer == Over::Load;
        if (answer == Over::Both) {
            Stored = obstacle.stored;
        } else {
            Together.reset();
        }
        return answer == Over::Save;
    }

    void MakeMissing(NodeSave& save) override {
        if (!save.Guarded() && !std::exchange(rules_.toldUnguarded_, true)) {
            Inform(QStringLiteral(
                "This store can keep no history, so what is saved here cannot be taken back."));
        }
        busy_.emplace(gui_);
        rules_.CheckForUnReferencedNodes(gui_, save);
    }

    void Writing() override {
        LongOperation::ShowProgress(gui_, QStringLiteral("Saving node information. Please wait..."));
    }

  private:
    // What is shown is compared: what another program has stored may stand there otherwise.
    [[nodiscard]] std::optional<AutoNode> MergedWith(NodeContent before, NodeContent stored) const {
        try {
            for (NodeContent* content : {&before, &stored}) {
                content->node = content->node ? std::optional(AsShown(gui_, *content->node)) : std::nullopt;
            }
            return MergeContents(before, stored, node_);
        } catch (const RuntimeError&) {
            return std::nullopt; // the window cannot show it
        }
    }

    NodeRules& rules_;
    GUI& gui_;
    QString name_;
    const AutoNode& node_;
    std::optional<LongOperation> busy_;
};

std::optional<bool> NodeRules::SettleOutcome(const GUI& gui) {
    if (!unsettled_) {
        return std::nullopt;
    }
    const auto& [place, version, sent] = *unsettled_;
    // The mark is a part of the save.
    const bool whole = version > 0 ? history_.IsOwn(place, version) : ReadAutoNode(dataBase_, place) == sent;
    const QString name = NameOf(gui, place.number);
    unsettled_.reset();
    Inform(whole ? name + " is stored as it was to be saved."
                 : "Nothing of the latest save of " + name + " is stored; the node is as it was before.");
    return whole;
}

bool NodeRules::OfferToPutBack(const GUI& gui, std::int16_t nodeNumber) {
    const NodePlace place{PartitionOf(gui), nodeNumber};
    const QString node = NameOf(gui, nodeNumber);
    bool putBack = false;
    history_.CatchUp();
    {
        // Nearly every node is whole, which one look in one state tells soonest.
        const Snapshot look(dataBase_, Snapshot::Taken::WhereFree);
        if (!history_.Unfinished(place) && !history_.IsHalfMade(place)) {
            return false;
        }
    }
    while (const auto save = history_.Unfinished(place)) {
        if (!WantsItPutBack(node, *save)) {
            break;
        }
        if (!history_.PutBackUnfinished(place, save->number)) {
            Inform(node + " was saved or put back by somebody else meanwhile. It stays as it is.");
            break;
        }
        putBack = true;
    }
    if (history_.IsHalfMade(place) && WantsItMadeWhole(node)) {
        history_.MakeWhole(place);
    }
    return putBack;
}

std::int64_t NodeRules::LatestVersion(const GUI& gui, std::int16_t nodeNumber) {
    try {
        const auto newest = history_.Newest({PartitionOf(gui), nodeNumber});
        return newest ? newest->number : 0;
    } catch (const RuntimeError&) {
        return 0; // it only tells who has changed a node
    }
}

void NodeRules::AfterFailedSave(GUI& gui, std::int16_t nodeNumber, bool half) {
    if (half && OfferToPutBack(gui, nodeNumber)) {
        LoadData(gui, nodeNumber);
        gui.cmdApply->setEnabled(false);
    } else if (auto stored = ReadContent(dataBase_, {PartitionOf(gui), nodeNumber}); stored.node) {
        // What this window itself has left there is nobody else's change.
        gui.StoredNode = std::make_unique<GUI::Stored>(
            GUI::Stored{nodeNumber, {std::move(stored), LatestVersion(gui, nodeNumber)}});
    }
}

bool NodeRules::SaveChanges(GUI& gui, std::int16_t nodeNumber) {
    using Left = NodeSave::Left;
    NodeSave save(dataBase_, history_, {PartitionOf(gui), nodeNumber});
    bool saved = false;
    bool wantsStored = false;
    std::optional<AutoNode> together;
    SeenNode stored;
    const bool ended = Reporting("SaveChanges", [&] {
        const Hourglass busy;
        if (!gui.StoredNode || gui.StoredNode->number != nodeNumber) {
            Inform(NameOf(gui, nodeNumber) +
                   " could not be loaded, and what is shown here is not its content. It is not saved.");
            return;
        }
        SettleOutcome(gui);
        const AutoNode node = GatherNode(gui);
        Person person(*this, gui, NameOf(gui, nodeNumber), node);
        try {
            saved = save.Run(gui.StoredNode->seen, node, Today(), person);
        } catch (const RuntimeError& error) {
            if (error.Number() == ErrorNumber::OutcomeUnknown) {
                unsettled_ = Unsettled{{PartitionOf(gui), nodeNumber}, save.VersionNumber(), node};
            }
            throw;
        }
        wantsStored = person.WantsStored;
        together = std::move(person.Together);
        stored = std::move(person.Stored);
        if (saved) {
            gui.StatusBar1->SetPanelText(QString());
        }
    });
    if (wantsStored) {
        // It is shown with its place among the others, also where the person was about to leave it.
        if (const int shown = gui.cmbNode->IndexOfData(nodeNumber); shown >= 0) {
            gui.cmbNode->SetListIndex(shown);
        }
        LoadData(gui, nodeNumber);
        gui.cmdApply->setEnabled(false);
    } else if (together) {
        ShowTogether(gui, nodeNumber, std::move(*together), std::move(stored));
    }
    if (ended || save.WhatIsLeft() == Left::Nothing) {
        return saved;
    }
    bool written = true;
    Reporting("SaveChanges", [&] {
        written = SettleOutcome(gui).value_or(true);
        if (written) {
            AfterFailedSave(gui, nodeNumber, save.WhatIsLeft() == Left::Part);
        }
    });
    return written;
}

} // namespace KAL_AUTO_Node
