#include "form/QuickAssignForm.h"

#include "controls/Making.h"
#include "form/Shortcuts.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace KAL_AUTO_Node {

QuickAssignForm::QuickAssignForm(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmQuickAssign"));
    setWindowTitle(QStringLiteral("Quick Assign"));

    fraNode = Named(new QGroupBox(this), "fraNode");
    cmbNodeTypes = Named(new PickList(fraNode), "cmbNodeTypes");
    for (auto& [box, name] : {std::pair{&cmbFrom, "cmbFrom"}, {&cmbTo, "cmbTo"}}) {
        *box = Named(new NumberBox(fraNode), name);
        (*box)->setEditText(QStringLiteral("Combo1")); // until there are numbers to choose from
    }
    cmdAdd = Button(this, "cmdAdd", "Add", "Add a row for every number of the range");
    cmdRemove =
        Button(this, "cmdRemove", "Remove", "Remove the rows of this type whose numbers are in the range");
    cmdClose = Button(this, "cmdClose", "Close", "Close and change nothing");
    cmdAdd->setDefault(true);
    for (const auto& [button, key] :
         {std::pair{cmdAdd, "Alt+A"}, {cmdRemove, "Alt+R"}, {cmdClose, "Alt+C"}}) {
        PressOnKey(*button, key);
    }

    auto* fields = new QGridLayout(fraNode);
    fields->addWidget(Caption(fraNode, "lblNode", "Node", cmbNodeTypes), 0, 0);
    fields->addWidget(Caption(fraNode, "lblFrom", "From", cmbFrom), 0, 1);
    fields->addWidget(Caption(fraNode, "lblTo", "To", cmbTo), 0, 2);
    fields->addWidget(cmbNodeTypes, 1, 0);
    fields->addWidget(cmbFrom, 1, 1);
    fields->addWidget(cmbTo, 1, 2);
    for (const int column : {0, 1, 2}) {
        fields->setColumnStretch(column, 1);
    }
    fields->setColumnMinimumWidth(0, 120);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {cmdAdd, cmdRemove, cmdClose}) {
        buttons->addWidget(button);
    }
    auto* window = new QVBoxLayout(this);
    window->addWidget(fraNode);
    window->addLayout(buttons);
    resize(400, sizeHint().height());
}

} // namespace KAL_AUTO_Node
