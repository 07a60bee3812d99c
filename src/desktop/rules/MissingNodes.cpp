#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "feedback/MousePointer.h"
#include "form/GUI.h"
#include "form/LongOperation.h"
#include "history/NodeSave.h"
#include "nodes/RequiredNodes.h"
#include "nodes/Templates.h"
#include "platform/Today.h"
#include "rules/NodeRules.h"
#include "rules/Utf8.h"

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

// Fetches from a server whether nodes exist: of all at once and, where nodes are created, which makes that
// old, of the next few.
class Existence {
  public:
    Existence(DataBase& dataBase, Partition partition, std::span<const RequiredNode> nodes)
        : ahead_(dataBase), partition_(partition), nodes_(nodes), count_(nodes.size()) {}

    // Before it is asked for; in the order of the nodes.
    void LookUp(const RequiredNode& node) {
        if (known_-- > 0) {
            return;
        }
        const auto rest = nodes_.subspan(static_cast<std::size_t>(&node - nodes_.data()));
        const auto next = rest.first(std::min(count_, rest.size()));
        for (const RequiredNode& one : next) {
            LookUpAhead(ahead_, partition_, one.typeID, one.number);
        }
        ahead_.Fetch();
        known_ = std::ssize(next) - 1;
    }

    void Forget() {
        known_ = 0;
        count_ = Few;
    }

  private:
    static constexpr std::size_t Few = 50;

    ReadAhead ahead_;
    Partition partition_;
    std::span<const RequiredNode> nodes_;
    std::size_t count_;
    std::ptrdiff_t known_ = 0; // of how many more it is known
};

void TellNotCreated(const std::map<Creation, QStringList>& nodesByOutcome) {
    constexpr int shown = 20;
    QStringList paragraphs;
    for (const auto& [outcome, nodes] : nodesByOutcome) {
        QString text = QString::fromLatin1(WhyNotCreated(outcome)) + "\r\n" +
                       nodes.mid(0, shown).join(QStringLiteral(", "));
        if (nodes.size() > shown) {
            text += QStringLiteral(" and %1 more").arg(nodes.size() - shown);
        }
        paragraphs.append(text);
    }
    Inform(paragraphs.join(QStringLiteral("\r\n\r\n")));
}

} // namespace

void NodeRules::CheckForUnReferencedNodes(GUI& gui, NodeSave& save) {
    Reporting("CheckForUnReferencedNodes", [&] {
        LongOperation::ShowProgress(gui, "Checking for non-existing nodes. Please wait...");
        const auto dialog = components_.Create<ConfirmationDialog>();
        RequiredNodes required;
        for (const ListView* list : {gui.LVPrompts, gui.LVActions, gui.LVExceptions}) {
            for (const ListRow& row : list->Rows()) {
                AddNodeTolstRequired(required, row);
            }
        }

        std::map<Creation, QStringList> notCreated;
        std::int32_t answer = ConfirmationDialog::Closed;
        Existence existence(dataBase_, PartitionOf(gui), required.Nodes());
        for (const RequiredNode& node : required.Nodes()) {
            existence.LookUp(node);
            if (NodeExists(gui, node)) {
                continue;
            }
            if (answer != ConfirmationDialog::CreateAll) {
                const DefaultPointer asking;
                answer = dialog->Ask(1,
                                     node.name + " is referenced but it does not exist.\r\n" +
                                         "Do you want to auto create node '" + node.name + "'?",
                                     1, 7, "Confirmation");
            }
            if (answer == ConfirmationDialog::Create || answer == ConfirmationDialog::CreateAll) {
                const Creation outcome = save.Create(node.typeID, node.number, Today());
                existence.Forget();
                // The register has it.
                const bool created = outcome == Creation::Created || outcome == Creation::Empty;
                const QString name = FromUtf8(node.name);
                // Claiming more than was done would leave a call flow with a hole that nobody looks for.
                LongOperation::ShowProgress(gui,
                                            name + (created ? " is created." : " could not be created."));
                if (outcome != Creation::Created) {
                    notCreated[outcome == Creation::NoRule ? Creation::NoTemplate : outcome].append(name);
                }
            } else if (answer == ConfirmationDialog::Stop || answer == ConfirmationDialog::Closed) {
                break;
            }
        }
        if (!notCreated.empty()) {
            TellNotCreated(notCreated);
        }
    });
}

void NodeRules::AddNodeTolstRequired(RequiredNodes& required, const ListRow& row) {
    Reporting("AddNodeTolstRequired",
              [&] { required.Add(DisplayText(row).toStdString(), row.typeID, row.number); });
}

bool NodeRules::NodeExists(const GUI& gui, const RequiredNode& node) {
    bool exists = false;
    Reporting("IsNodeExisted",
              [&] { exists = IsNodeExisted(dataBase_, PartitionOf(gui), node.typeID, node.number); });
    return exists;
}

} // namespace KAL_AUTO_Node
