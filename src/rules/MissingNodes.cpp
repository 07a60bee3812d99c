#include "form/GUI.h"
#include "form/LongOperation.h"
#include "platform/ErrorReport.h"
#include "platform/MessageBox.h"
#include "platform/MousePointer.h"
#include "platform/NumericValue.h"
#include "rules/NodeRules.h"
#include "rules/Today.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// How a node of each type is made from the template: its own row first, then its detail rows. All take the
// new number, the configuration, the partition and the template's number; a message also takes its file name.
struct CopyRule {
    int nodeTypeID;
    std::array<Command, 3> commands;
    std::size_t count;

    [[nodiscard]] std::span<const Command> Commands() const { return std::span(commands).first(count); }
};

constexpr std::array<CopyRule, 12> CopyRules = {{
    {0, {Command::Duplicate_MSG_NODE}, 1},
    {1, {Command::Duplicate_CMD_NODE, Command::Duplicate_Detail_CMD_NODE}, 2},
    {2, {Command::Duplicate_TIME_Node, Command::Duplicate_Detail_TIME_Node}, 2},
    {3, {Command::Duplicate_DATE_Node, Command::Duplicate_Detail_DATE_Node}, 2},
    {4, {Command::Duplicate_XFER_Node}, 1},
    {6,
     {Command::Duplicate_DTMF_Node, Command::Duplicate_DetailPrompts_DTMF_Node,
      Command::Duplicate_DetailActions_DTMF_Node},
     3},
    {7,
     {Command::Duplicate_VOX_Node, Command::Duplicate_DetailPrompts_VOX_Node,
      Command::Duplicate_DetailActions_VOX_Node},
     3},
    {8, {Command::Duplicate_LIST_Node, Command::Duplicate_Detail_LIST_Node}, 2},
    {9,
     {Command::Duplicate_AUTO_Node, Command::Duplicate_DetailPrompts_AUTO_Node,
      Command::Duplicate_DetailActions_AUTO_Node},
     3},
    {12, {Command::Duplicate_PAAS_Node}, 1},
    {13, {Command::Duplicate_TABLE_Node, Command::Duplicate_DetailActions_TABLE_Node}, 2},
    {15, {Command::Duplicate_DBN_Node, Command::Duplicate_DetailPrompts_DBN_Node}, 2},
}};

constexpr std::string_view TemplateNumber = "0";

// A stored type ID as a number; beyond 32 bits none that anything depends on.
int TypeOf(std::string_view nodeTypeID) {
    const auto value = NumericValue(nodeTypeID);
    return std::in_range<int>(value) ? static_cast<int>(value) : -1;
}

bool IsNode(int nodeTypeID) {
    return nodeTypeID != NumberlessType && nodeTypeID != UncheckedCommandType &&
           nodeTypeID != NumberlessExceptionType;
}

// P, the partition as two digits, M, the node number as three, .wav
std::string MessageFileName(std::int16_t partition, std::string_view nodeNumber) {
    return QStringLiteral("P%1M%2.wav")
        .arg(partition, 2, 10, QChar(u'0'))
        .arg(NumericValue(nodeNumber), 3, 10, QChar(u'0'))
        .toStdString();
}

} // namespace

void NodeRules::CheckForUnReferencedNodes(GUI& gui) {
    Reporting("CheckForUnReferencedNodes", [&] {
        LongOperation::ShowProgress(gui, "Checking for non-existing nodes. Please wait...");
        const auto dialog = components_.Create<ConfirmationDialog>();
        for (ScratchList* list : {gui.lstNodeTypeName, gui.lstNodeTypeID, gui.lstNodeNumber}) {
            list->Clear();
        }
        for (const ListView* list : {gui.LVPrompts, gui.LVActions, gui.LVExceptions}) {
            for (int row = 0; row < list->Count(); ++row) {
                AddNodeTolstRequired(gui, list->Cell(row, CommandNodeColumn),
                                     list->Cell(row, NodeTypeIDColumn), list->Cell(row, NodeNumberColumn));
            }
        }

        QStringList notCreated;
        std::int32_t answer = ConfirmationDialog::Closed;
        for (int i = 0; i < gui.lstNodeTypeID->ListCount(); ++i) {
            const QString& node = gui.lstNodeTypeName->List(i);
            const std::string nodeTypeID = gui.lstNodeTypeID->List(i).toStdString();
            const std::string nodeNumber = gui.lstNodeNumber->List(i).toStdString();
            if (IsNodeExisted(gui, nodeTypeID, nodeNumber)) {
                continue;
            }
            if (answer != ConfirmationDialog::CreateAll) {
                const DefaultPointer asking;
                const QString question = node + " is referenced but it does not exist.\r\n" +
                                         "Do you want to auto create node '" + node + "'?";
                answer = dialog->Ask(1, question.toStdString(), 1, 7, "Confirmation");
            }
            if (answer == ConfirmationDialog::Create || answer == ConfirmationDialog::CreateAll) {
                CreateNodeFromTemplate(gui, TemplateNumber, nodeNumber, nodeTypeID);
                // Without a copy rule or a template nothing was written; claiming otherwise would leave a
                // call flow with a hole that nobody looks for.
                const bool created = IsNodeExisted(gui, nodeTypeID, nodeNumber);
                LongOperation::ShowProgress(gui,
                                            node + (created ? " is created." : " could not be created."));
                if (!created) {
                    notCreated.append(node);
                }
            } else if (answer == ConfirmationDialog::Stop || answer == ConfirmationDialog::Closed) {
                break;
            }
        }
        if (!notCreated.isEmpty()) {
            TellNotCreated(notCreated);
        }
    });
}

void NodeRules::AddNodeTolstRequired(GUI& gui, const QString& display, const QString& nodeTypeID,
                                     const QString& nodeNumber) {
    Reporting("AddNodeTolstRequired", [&] {
        const int type = TypeOf(nodeTypeID.toStdString());
        if (!IsNode(type)) {
            return;
        }
        const bool message = RefersToMessage(type);
        const QString node = message ? "MSG " + nodeNumber : display;
        // An entry that begins with the display text counts as the node itself.
        if (gui.lstNodeTypeName->FindString(node) < 0) {
            gui.lstNodeTypeName->AddItem(node);
            gui.lstNodeTypeID->AddItem(message ? QString::number(MessageType) : nodeTypeID);
            gui.lstNodeNumber->AddItem(nodeNumber);
        }
    });
}

bool NodeRules::IsNodeExisted(const GUI& gui, std::string_view nodeTypeID, std::string_view nodeNumber) {
    bool exists = false;
    Reporting("IsNodeExisted", [&] {
        const bool message = RefersToMessage(TypeOf(nodeTypeID));
        exists = !dataBase_
                      .Query(Command::Get_Description,
                             {gui.ConfigID, gui.PartitionID,
                              message ? Parameter(MessageType) : Parameter(nodeTypeID), nodeNumber})
                      .AtEnd();
    });
    return exists;
}

void NodeRules::CreateNodeFromTemplate(const GUI& gui, std::string_view source, std::string_view destination,
                                       std::string_view nodeTypeID) {
    const int requested = TypeOf(nodeTypeID);
    const int type = RefersToMessage(requested) ? MessageType : requested;
    const auto rule = std::ranges::find(CopyRules, type, &CopyRule::nodeTypeID);
    if (rule == CopyRules.end()) {
        return;
    }
    for (const Command command : rule->Commands()) {
        if (command == Command::Duplicate_MSG_NODE) {
            dataBase_.Execute(command, {destination, MessageFileName(gui.PartitionID, destination),
                                        gui.ConfigID, gui.PartitionID, source});
        } else {
            dataBase_.Execute(command, {destination, gui.ConfigID, gui.PartitionID, source});
        }
    }
    dataBase_.Execute(Command::Duplicate_Node_In_General_Pool,
                      {destination, Today(), gui.ConfigID, gui.PartitionID, source, rule->nodeTypeID});
}

void NodeRules::TellNotCreated(const QStringList& nodes) {
    constexpr int shown = 20;
    QString text = "These nodes could not be created: there is no template for them.\r\n" +
                   nodes.mid(0, shown).join(QStringLiteral(", "));
    if (nodes.size() > shown) {
        text += QStringLiteral(" and %1 more").arg(nodes.size() - shown);
    }
    Inform(text);
}

} // namespace KAL_AUTO_Node
