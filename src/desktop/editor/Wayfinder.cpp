#include "editor/Wayfinder.h"

#include "controls/Visibility.h"
#include "editor/Handler.h"
#include "feedback/MessageBox.h"
#include "form/Shortcuts.h"
#include "information/GoToDialog.h"
#include "rules/NodeRules.h"

#include <QPointer>

namespace KAL_AUTO_Node {

Wayfinder::Wayfinder(GUI& gui, const std::unique_ptr<NodeRules>& rules) : gui_(gui), rules_(rules) {
    OnKey(gui, GoToKey, [this] { GoTo(); });
    OnKey(gui, BackKey, [this] { Back(); });
    gui.cmbNode->setToolTip(QStringLiteral("The node shown; Ctrl+G goes to any node, Alt+Left back"));
}

StoreReader& Wayfinder::Reader() {
    if (!reader_) {
        reader_ = std::make_unique<StoreReader>(rules_->File());
    }
    return *reader_;
}

void Wayfinder::GoTo() {
    if (gui_.IsActing()) {
        return;
    }
    // A host may take the window away meanwhile, and the dialog with it.
    const QPointer<GoToDialog> dialog = new GoToDialog(&gui_, Reader(), PartitionOf(gui_));
    const bool chose = dialog->exec() == QDialog::Accepted;
    if (dialog == nullptr) {
        return;
    }
    const auto target = dialog->Chosen();
    delete dialog;
    Reader().Rest();
    if (chose && target) {
        Follow(*target);
    }
}

void Wayfinder::Follow(const NodeKey& target) {
    if (target.typeID == AutoType) {
        MoveTo(target.number);
    }
}

void Wayfinder::MoveTo(int number) {
    // The partition's template is edited without the others.
    if (gui_.IsActing() || number == gui_.nodeNumber || IsHiddenByCode(*gui_.cmbNode)) {
        return;
    }
    Handle(*gui_.cmbNode, "Click", [&] {
        if (gui_.cmbNode->IndexOfData(number) < 0) {
            rules_->ListNodesAnew(gui_);
        }
        if (const int index = gui_.cmbNode->IndexOfData(number); index >= 0) {
            gui_.cmbNode->SetListIndex(index);
        } else {
            Inform(gui_.NodeName(AutoType) + ' ' + QString::number(number) + " doesn't exist.");
        }
    });
}

void Wayfinder::Left(std::int16_t number) {
    constexpr std::size_t most = 100;
    if (way_.size() == most) {
        way_.erase(way_.begin());
    }
    way_.push_back(number);
}

void Wayfinder::Back() {
    if (way_.empty() || gui_.IsActing()) {
        return;
    }
    const std::size_t before = way_.size() - 1;
    const std::int16_t number = way_.back();
    MoveTo(number);
    if (gui_.nodeNumber == number) {
        way_.resize(before);
    }
}

} // namespace KAL_AUTO_Node
