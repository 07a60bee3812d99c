#include "controls/Utf8.h"
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

#include <QStringList>

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <utility>

namespace KAL_AUTO_Node {

namespace {

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
        using Answer = CreationAudience::Answer;
        const auto ask = [&](const RequiredNode& node) {
            const DefaultPointer asking;
            switch (dialog->Ask(1,
                                node.name + " is referenced but it does not exist.\r\n" +
                                    "Do you want to auto create node '" + node.name + "'?",
                                1, 7, "Confirmation")) {
            case ConfirmationDialog::Create:
                return Answer::Create;
            case ConfirmationDialog::CreateAll:
                return Answer::CreateAll;
            case ConfirmationDialog::Stop:
            case ConfirmationDialog::Closed:
                return Answer::Stop;
            default:
                return Answer::Leave;
            }
        };
        const auto tell = [&](const RequiredNode& node, Creation outcome) {
            // The register has it.
            const bool created = outcome == Creation::Created || outcome == Creation::Empty;
            const QString name = FromUtf8(node.name);
            // Claiming more than was done would leave a call flow with a hole that nobody looks for.
            LongOperation::ShowProgress(gui, name + (created ? " is created." : " could not be created."));
            if (outcome != Creation::Created) {
                notCreated[outcome == Creation::NoRule ? Creation::NoTemplate : outcome].append(name);
            }
        };
        save.CreateMissing(required.Nodes(), Today(), {ask, tell, [] { ShowErrorReport("IsNodeExisted"); }});
        if (!notCreated.empty()) {
            TellNotCreated(notCreated);
        }
    });
}

void NodeRules::AddNodeTolstRequired(RequiredNodes& required, const ListRow& row) {
    Reporting("AddNodeTolstRequired", [&] {
        required.Add(DisplayText(row).toStdString(), {row.typeID, row.number});
    });
}

} // namespace KAL_AUTO_Node
