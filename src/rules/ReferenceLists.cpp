#include "form/GUI.h"
#include "form/ValueBoxes.h"
#include "platform/ErrorReport.h"
#include "rules/NodeRules.h"
#include "rules/ReadRows.h"
#include "rules/Utf8.h"

namespace KAL_AUTO_Node {

namespace {

// The highest number of a type for which no limit is stored.
int UnlimitedMax(const NodeLists& lists, int nodeTypeID) {
    switch (nodeTypeID) {
    case UncheckedCommandType:
        return UncheckedCommandMax;
    case MessageOnType:
    case MessageOffType:
        return lists.MaxNodeNumberCollection[QString::number(MessageType)];
    default:
        return 0;
    }
}

} // namespace

std::optional<int> NodeRules::MaxNodeNumber(const GUI& gui, int nodeTypeID) {
    const ResultSet limit =
        dataBase_.Query(Command::Get_Max_NodeNumber, {gui.ConfigID, gui.PartitionID, nodeTypeID});
    return limit.AtEnd() ? std::nullopt : std::optional(limit.Number("Max_Number"));
}

bool NodeRules::LoadNodeName(GUI& gui) {
    return Reporting("LoadNodeName", [&] {
        NodeLists& lists = gui.Lists();
        for (ResultSet types = dataBase_.Query(Command::Get_Node_Names, {}); !types.AtEnd();
             types.MoveNext()) {
            const int nodeTypeID = types.Number("ID");
            const QString key = QString::number(nodeTypeID);
            lists.NodeNameCollection.Add(FromUtf8(types.Text("English_Name")), key);
            const std::optional<int> limit = MaxNodeNumber(gui, nodeTypeID);
            lists.MaxNodeNumberCollection.Add(limit ? *limit : UnlimitedMax(lists, nodeTypeID), key);
        }
    });
}

void NodeRules::LoadContainableTypes(GUI& gui, Slot slot) {
    const SlotRule& rule = RuleOf(slot);
    NodeLists& lists = gui.Lists();
    int messageLimit = 0;
    for (ResultSet types = dataBase_.Query(Command::Get_Node_Type_can_contain_nodes, {AutoType, rule.setID});
         !types.AtEnd(); types.MoveNext()) {
        const int nodeTypeID = types.Number("Child_Node_Type_ID");
        const std::optional<int> limit = MaxNodeNumber(gui, nodeTypeID);
        if (nodeTypeID == MessageType) {
            messageLimit = std::max(0, limit.value_or(0));
        }
        if (limit ? *limit > 0 : !rule.unlimitedNeedMessages || messageLimit != 0) {
            gui.NodePicker(slot)->AddItem(gui.NodeName(nodeTypeID), nodeTypeID);
        } else if (limit) {
            (lists.*rule.notAvailable).Add(gui.NodeName(nodeTypeID), QString::number(nodeTypeID));
        }
    }
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
        for (const ExceptionRule& exception : ExceptionRules) {
            gui.NodePicker(exception.slot)->Clear();
        }
        for (const ExceptionRule& exception : ExceptionRules) {
            LoadContainableTypes(gui, exception.slot);
        }
    });
}

bool NodeRules::LoadStaticConstants(GUI& gui) {
    return Reporting("LoadStaticConstants", [&] {
        for (const ValueBoxRule& rule : ValueBoxRules) {
            (gui.*rule.box)->SetNumbers(rule.first, rule.last);
        }
        gui.cmbTermDigit->Clear();
        for (const char* digit : TerminatingDigits) {
            gui.cmbTermDigit->AddItem(QString::fromLatin1(digit));
        }
    });
}

bool NodeRules::LoadExistingNodesInRecordSelector(GUI& gui, std::int16_t nodeNumber) {
    return Reporting("LoadExistingNodesInRecordSelector", [&] {
        int opened = 0;
        int taken = 0;
        QString typeName;
        ReadRows(
            dataBase_.Query(Command::Get_All_AUTO_Nodes, {gui.ConfigID, gui.PartitionID, AutoType}),
            [&](const ResultSet& nodes) {
                const int number = nodes.Number("NodeNumber");
                if (number <= 0 && !NewNodeFlag) {
                    return PickList::Entry{};
                }
                if (typeName.isEmpty()) {
                    typeName = gui.NodeName(AutoType) + ' ';
                }
                if (number == nodeNumber) {
                    opened = taken;
                }
                ++taken;
                return PickList::Entry{typeName + QString::number(number), number};
            },
            [&](std::vector<PickList::Entry> entries) {
                std::erase_if(entries, [](const PickList::Entry& entry) { return entry.text.isEmpty(); });
                gui.cmbNode->AddItems(std::move(entries));
            });
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

} // namespace KAL_AUTO_Node
