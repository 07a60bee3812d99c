#include "controls/Utf8.h"
#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"
#include "form/GUI.h"
#include "form/Stored.h"
#include "form/ValueBoxes.h"
#include "nodes/AutoNodeReader.h"
#include "platform/RuntimeError.h"
#include "rules/NodeRules.h"
#include "rules/Rows.h"

#include <exception>

namespace KAL_AUTO_Node {

namespace {

void EnableNavigation(const GUI& gui) {
    const int count = gui.cmbNode->ListCount();
    const int index = gui.cmbNode->ListIndex();
    bool back = true;
    bool forth = true;
    if (count == 1) {
        back = forth = false;
    } else if (index == 0) {
        back = false;
    } else if (index == count - 1) {
        forth = false;
    }
    gui.cmdPrevious->setEnabled(back);
    gui.cmdFirst->setEnabled(back);
    gui.cmdNext->setEnabled(forth);
    gui.cmdLast->setEnabled(forth);
}

void ShowSettings(const GUI& gui, const AutoNode& node) {
    const QString label = FromUtf8(node.label.value_or(""));
    if (label.size() > GUI::LongestLabel) {
        throw RuntimeError(ErrorNumber::Overflow, "The label has " + std::to_string(label.size()) +
                                                      " characters, and the field takes " +
                                                      std::to_string(GUI::LongestLabel));
    }
    gui.txtDescription->setText(label);
    const auto show = [&](const ValueBox& rule) {
        (gui.*rule.box)->SetListIndex(ValueOf(rule.setting, node.settings) - rule.setting.first);
    };
    show(ValueBoxes.front());
    gui.cmbTermDigit->SetListIndex(static_cast<int>(TerminatingDigitOf(node.settings)));
    std::for_each(ValueBoxes.begin() + 1, ValueBoxes.end(), show);
}

// The stored type is shown, the type's name of today kept for saving.
ListRow WithTarget(ListRow row, const GUI& gui, const Reference& target) {
    row.name = gui.NodeName(target.typeID);
    row.label = ShownLabel(target.label);
    return row;
}

ListRow RowOf(const GUI& gui, const Prompt& prompt) {
    return WithTarget(PromptRow(prompt.target), gui, prompt.target);
}

ListRow RowOf(const GUI& gui, const Action& action) {
    return WithTarget(ActionRow(action), gui, action.target);
}

struct BranchItem {
    int sequence; // from 1
    Reference target;
};

ListRow RowOf(const GUI& gui, const BranchItem& branch) {
    return WithTarget(ExceptionRow(static_cast<std::size_t>(branch.sequence) - 1, branch.target), gui,
                      branch.target);
}

// Shows in a list what a step of reading brings. When a row can't be read or shown, those before it stand in
// the list all the same before the error goes on.
template <class Read, class Item>
void Show(const GUI& gui, ListView& list, Read read, const std::vector<Item>& items) {
    std::exception_ptr failure;
    std::vector<ListRow> rows;
    std::vector<int> numbers;
    const auto keepFailure = [&](auto&& step) {
        try {
            step();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    keepFailure(read);
    keepFailure([&] {
        rows.reserve(items.size());
        for (const Item& item : items) {
            rows.push_back(RowOf(gui, item));
            numbers.push_back(item.sequence);
        }
    });
    if (rows.empty()) {
        GUI::ClearListView(list);
    } else {
        list.SetRows(std::move(rows), numbers);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

template <class Read>
void ShowBranches(const GUI& gui, const AutoNode& node, Read read) {
    std::vector<BranchItem> branches;
    const auto readAll = [&] {
        for (std::size_t branch = 0; branch < Branches.size(); ++branch) {
            read(branch);
            branches.push_back({static_cast<int>(branch) + 1, node.branches[branch]});
        }
    };
    Show(gui, *gui.LVExceptions, readAll, branches);
}

} // namespace

bool NodeRules::LoadData(GUI& gui, std::int16_t nodeNumber) {
    bool exists = false;
    gui.StoredNode.reset();
    const bool loaded = Reporting("LoadData", [&] {
        const Hourglass busy;
        const NodePlace place{PartitionOf(gui), nodeNumber};
        const SingleWait wait(dataBase_);
        // Where that fails, the node is shown as it stands.
        std::exception_ptr notOffered;
        try {
            SettleOutcome(gui);
            OfferToPutBack(gui, nodeNumber);
        } catch (const RuntimeError&) {
            notOffered = std::current_exception();
        }
        ReadAhead ahead(dataBase_);
        ahead.Fetch([&] {
            static_cast<void>(ReadAutoNode(dataBase_, place, Labels::Read));
            NodeContent content;
            ReadEntry(dataBase_, place, content);
            static_cast<void>(LatestVersion(gui, nodeNumber));
        });
        AutoNode node;
        AutoNodeReader reader(dataBase_, place, Labels::Read);
        exists = reader.ReadRecord(node);
        if (exists) {
            ShowSettings(gui, node);
            Show(
                gui, *gui.LVPrompts, [&] { reader.ReadPrompts(node); }, node.prompts);
            Show(
                gui, *gui.LVActions, [&] { reader.ReadActions(node); }, node.actions);
            ShowBranches(gui, node, [&](std::size_t branch) { reader.ReadBranch(node, branch); });
            NodeContent content;
            ReadEntry(dataBase_, place, content);
            content.node = std::move(node);
            gui.StoredNode = std::make_unique<GUI::Stored>(
                GUI::Stored{nodeNumber, {std::move(content), LatestVersion(gui, nodeNumber)}});
            gui.lblRecordPosition->setText(QString::number(gui.cmbNode->ListIndex() + 1) + " of " +
                                           QString::number(gui.cmbNode->ListCount()));
        } else {
            Inform(gui.NodeName(AutoType) + ' ' + QString::number(nodeNumber) + " doesn't exist.");
        }
        EnableNavigation(gui);
        // What also keeps the node from being read is told once, by that.
        if (notOffered) {
            Reporting("LoadData", [&] { std::rethrow_exception(notOffered); });
        }
    });
    return loaded && exists;
}

void NodeRules::ShowTogether(GUI& gui, std::int16_t nodeNumber, AutoNode node, SeenNode stored) {
    Reporting("SaveChanges", [&] {
        const Hourglass busy;
        ReadAhead(dataBase_).Read([&] { ReadLabels(dataBase_, PartitionOf(gui), node); });
        ShowSettings(gui, node);
        Show(
            gui, *gui.LVPrompts, [] {}, node.prompts);
        Show(
            gui, *gui.LVActions, [] {}, node.actions);
        ShowBranches(gui, node, [](std::size_t /*branch*/) {});
        gui.StoredNode = std::make_unique<GUI::Stored>(GUI::Stored{nodeNumber, std::move(stored)});
    });
    gui.cmdApply->setEnabled(true);
}

QString NodeRules::LabelOfNode(const GUI& gui, int nodeTypeID, int nodeNumber) {
    return ShownLabel(LabelOf(dataBase_, PartitionOf(gui), NodeKey{nodeTypeID, nodeNumber}.Itself()));
}

} // namespace KAL_AUTO_Node
