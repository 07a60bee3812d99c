#include "editor/Wayfinder.h"

#include "controls/Visibility.h"
#include "editor/Handler.h"
#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "form/Shortcuts.h"
#include "information/GoToDialog.h"
#include "rules/NodeRules.h"

#include <QEvent>
#include <QPointer>

namespace KAL_AUTO_Node {

Wayfinder::Wayfinder(GUI& gui, const std::unique_ptr<NodeRules>& rules, NodeRules& looking)
    : gui_(gui), rules_(rules), watch_(gui, looking) {
    OnKey(gui, GoToKey, [this] { GoTo(); });
    OnKey(gui, BackKey, [this] { Back(); });
    OnKey(gui, InformationKey, [this] { TellAbout({AutoType, gui_.nodeNumber}); });
    gui.cmbNode->setToolTip(QStringLiteral(
        "The node shown; Ctrl+G goes to any node, Alt+Left back, and Ctrl+I tells what is known of it"));
    gui.cmdApply->installEventFilter(this);
    watch_.StoreChanged = [this] {
        if (IsInformed()) {
            Note();
            information_->ReadAgain();
        }
    };
}

void Wayfinder::GoTo() {
    if (gui_.IsActing()) {
        return;
    }
    Reporting("GoTo", [this] {
        StoreReader reader(rules_->File());
        // A host may take the window away meanwhile, and the dialog with it.
        const QPointer<GoToDialog> dialog = new GoToDialog(&gui_, reader, PartitionOf(gui_));
        const bool chose = dialog->exec() == QDialog::Accepted;
        if (dialog == nullptr) {
            return;
        }
        const auto target = dialog->Chosen();
        delete dialog;
        if (chose && target) {
            Follow(*target);
        }
    });
}

void Wayfinder::Follow(const NodeKey& target) {
    if (target.typeID != AutoType || !MoveTo(target.number)) {
        TellAbout(target);
    }
}

bool Wayfinder::MoveTo(int number) {
    // The partition's template is edited without the others.
    if (IsHiddenByCode(*gui_.cmbNode)) {
        return false;
    }
    if (gui_.IsActing()) {
        return true;
    }
    Handle(*gui_.cmbNode, "Click", [&] {
        if (gui_.cmbNode->IndexOfData(number) < 0) {
            rules_->ListNodesAnew(gui_);
        }
        if (const int index = gui_.cmbNode->IndexOfData(number); index < 0) {
            Inform(gui_.NodeName(AutoType) + ' ' + QString::number(number) + " doesn't exist.");
        } else if (index != gui_.cmbNode->ListIndex()) {
            gui_.cmbNode->SetListIndex(index);
        }
    });
    if (IsInformed() && information_->Shown().key != NodeKey{AutoType, gui_.nodeNumber}) {
        ShowInformation({AutoType, gui_.nodeNumber});
    }
    return true;
}

void Wayfinder::Left(std::int16_t number) {
    constexpr std::size_t most = 100;
    if (way_.size() == most) {
        way_.erase(way_.begin());
    }
    way_.push_back(number);
    watch_.Forget();
    if (IsInformed()) {
        ShowInformation({AutoType, gui_.nodeNumber});
    }
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

void Wayfinder::TellAbout(const NodeKey& node) {
    Reporting("TellAbout", [&] {
        if (!information_) {
            reader_ = std::make_unique<StoreReader>(rules_->File());
            information_ = std::make_unique<InformationWindow>(&gui_, *reader_);
            information_->Go = [this](const NodeKey& key) { Follow(key); };
            information_->PutBack = [this](const auto&... what) { PutBack(what...); };
            OnKey(*information_, BackKey, [this] { Back(); });
            OnKey(*information_, GoToKey, [this] { GoTo(); });
        }
        ShowInformation(node);
        information_->setWindowState(information_->windowState() & ~Qt::WindowMinimized);
        information_->raise();
        information_->activateWindow();
    });
}

void Wayfinder::ShowInformation(const NodeKey& node) {
    information_->Show({PartitionOf(gui_), node});
    Note();
}

void Wayfinder::Note() {
    QStringList notes;
    if (information_->Shown().key == NodeKey{AutoType, gui_.nodeNumber}) {
        if (gui_.cmdApply->isEnabled()) {
            notes.append(QStringLiteral("What was changed in the editor is not saved, and not told here."));
        }
        if (!watch_.Noticed().isEmpty()) {
            notes.append(watch_.Noticed());
        }
    }
    information_->Note(notes.join('\n'));
}

void Wayfinder::PutBack(const NodePlace& place, const Version& version,
                        const std::optional<std::vector<QString>>& uses) {
    if (gui_.IsActing()) {
        return;
    }
    const GUI::Acting acting(gui_);
    if (rules_->PutBack(gui_, place, version, uses)) {
        watch_.Forget();
        information_->ReadAgain();
    }
}

bool Wayfinder::eventFilter(QObject* watched, QEvent* event) {
    if (watched == gui_.cmdApply && event->type() == QEvent::EnabledChange) {
        if (!gui_.cmdApply->isEnabled()) {
            watch_.Forget(); // saved, or loaded anew
        }
        if (IsInformed()) {
            Note();
        }
        if (IsInformed() && !gui_.cmdApply->isEnabled()) {
            information_->ReadAgain();
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace KAL_AUTO_Node
