#include "controls/Utf8.h"
#include "feedback/ErrorReport.h"
#include "form/GUI.h"
#include "form/ValueBoxes.h"
#include "nodes/Overview.h"
#include "platform/RuntimeError.h"
#include "rules/NodeRules.h"

#include <algorithm>
#include <exception>

namespace KAL_AUTO_Node {

std::unique_ptr<ReadAhead> NodeRules::FetchLists(const GUI& gui) {
    auto ahead = std::make_unique<ReadAhead>(dataBase_);
    TypeCatalogue::Fetch(*ahead, dataBase_, PartitionOf(gui));
    return ahead;
}

bool NodeRules::LoadNodeName(GUI& gui) {
    return Reporting("LoadNodeName", [&] { gui.Lists().ReadNames(dataBase_, PartitionOf(gui)); });
}

void NodeRules::LoadContainableTypes(GUI& gui, Slot slot) {
    gui.Lists().ReadOffered(dataBase_, PartitionOf(gui), slot,
                            [picker = gui.NodePicker(slot)](int typeID, const std::string& name) {
                                picker->AddItem(FromUtf8(name), typeID);
                            });
}

bool NodeRules::LoadPromptsNode(GUI& gui) {
    return Reporting("LoadPromptsNode", [&] {
        gui.NodePicker(Slot::Prompts)->Clear();
        LoadContainableTypes(gui, Slot::Prompts);
    });
}

bool NodeRules::LoadActionsNode(GUI& gui) {
    return Reporting("LoadActionsNode", [&] {
        gui.NodePicker(Slot::Actions)->Clear();
        LoadContainableTypes(gui, Slot::Actions);
    });
}

bool NodeRules::LoadExceptionsNode(GUI& gui) {
    return Reporting("LoadExceptionsNode", [&] {
        for (const Branch& branch : Branches) {
            gui.NodePicker(branch.slot)->Clear();
        }
        for (const Branch& branch : Branches) {
            LoadContainableTypes(gui, branch.slot);
        }
    });
}

bool NodeRules::LoadStaticConstants(GUI& gui) {
    return Reporting("LoadStaticConstants", [&] {
        for (const ValueBox& rule : ValueBoxes) {
            (gui.*rule.box)->SetNumbers(rule.setting.first, rule.setting.last);
        }
        gui.cmbTermDigit->Clear();
        for (const char* digit : TerminatingDigits) {
            gui.cmbTermDigit->AddItem(QString::fromLatin1(digit));
        }
    });
}

std::exception_ptr NodeRules::ReadSelector(const GUI& gui, std::vector<PickList::Entry>& entries) {
    QString typeName;
    try {
        ReadAutoNodes(dataBase_, PartitionOf(gui), [&](std::int16_t number, std::string_view) {
            if (number <= 0 && !NewNodeFlag) {
                return;
            }
            if (typeName.isEmpty()) {
                typeName = gui.NodeName(AutoType) + ' ';
            }
            entries.push_back({typeName + QString::number(number), number});
        });
    } catch (const RuntimeError&) {
        return std::current_exception();
    }
    return {};
}

bool NodeRules::LoadExistingNodesInRecordSelector(GUI& gui, std::int16_t nodeNumber) {
    return Reporting("LoadExistingNodesInRecordSelector", [&] {
        std::vector<PickList::Entry> entries;
        const std::exception_ptr failure = ReadSelector(gui, entries);
        const auto listed = std::ranges::find(entries, nodeNumber, &PickList::Entry::data);
        const auto opened = listed == entries.end() ? 0 : static_cast<int>(listed - entries.begin());
        gui.cmbNode->AddItems(std::move(entries));
        if (failure) {
            std::rethrow_exception(failure);
        }
        if (gui.cmbNode->ListCount() > 0) {
            gui.cmbNode->SetListIndex(opened);
        }
        if (NewNodeFlag) {
            for (QWidget* control :
                 std::initializer_list<QWidget*>{gui.cmdFirst, gui.cmdPrevious, gui.cmbNode,
                                                 gui.lblRecordPosition, gui.cmdNext, gui.cmdLast}) {
                control->hide();
            }
        }
    });
}

void NodeRules::ListNodesAnew(const GUI& gui) {
    std::vector<PickList::Entry> entries;
    if (const std::exception_ptr failure = ReadSelector(gui, entries)) {
        std::rethrow_exception(failure);
    }
    const auto shown = std::ranges::find(entries, gui.nodeNumber, &PickList::Entry::data);
    if (shown == entries.end()) {
        return; // it is gone, and what the selector has is what the person sees
    }
    const auto place = static_cast<int>(shown - entries.begin());
    gui.cmbNode->Clear();
    gui.cmbNode->AddItems(std::move(entries));
    gui.cmbNode->setCurrentIndex(place);
}

} // namespace KAL_AUTO_Node
