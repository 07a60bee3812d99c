#pragma once

#include "controls/ComboBox.h"
#include "controls/NumberBox.h"

#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>

namespace KAL_AUTO_Node {

// The Quick Assign dialog's controls; what happens when they are used is the dialog's business. Qt's
// ownership.
class QuickAssignForm : public QDialog {
  public:
    explicit QuickAssignForm(QWidget* parent);

    QGroupBox* fraNode;
    PickList* cmbNodeTypes;
    NumberBox* cmbFrom;
    NumberBox* cmbTo;
    QPushButton* cmdAdd;
    QPushButton* cmdRemove;
    QPushButton* cmdClose;
};

} // namespace KAL_AUTO_Node
