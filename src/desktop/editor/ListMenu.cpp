// What can be done in a list, as its menu offers it.

#include "editor/ReferenceList.h"
#include "form/Shortcuts.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

namespace KAL_AUTO_Node {

void ReferenceList::ShowMenu(const QPoint& place) {
    QMenu menu(&List());
    const auto offer = [&](const QString& text, const QKeySequence& key, bool enabled, auto deed) {
        QAction* action = menu.addAction(text, this, deed);
        action->setShortcut(key);
        action->setShortcutVisibleInContextMenu(true);
        action->setEnabled(enabled);
    };
    for (QPushButton* button : controls_.buttons) {
        offer(button->text(), ShortcutOf(*button), button->isEnabled(), [button] { button->click(); });
    }
    menu.addSeparator();
    offer(QStringLiteral("Undo"), QKeySequence(UndoKey), undo_.CanUndo(), [this] { undo_.Undo(); });
    offer(QStringLiteral("Redo"), QKeySequence(RedoKey), undo_.CanRedo(), [this] { undo_.Redo(); });
    menu.addSeparator();
    const auto type = [this](int character) { return [this, character] { KeyPress(character); }; };
    if (traits_.kind != RowKind::Exceptions) {
        offer(QStringLiteral("Cut"), QKeySequence::Cut, !Editing() && List().GetSelectedCount() > 0,
              type(ListView::CutCharacter));
    }
    offer(QStringLiteral("Copy"), QKeySequence::Copy, List().GetSelectedCount() > 0,
          type(ListView::CopyCharacter));
    offer(QStringLiteral("Paste"), QKeySequence::Paste,
          !Editing() && !QGuiApplication::clipboard()->text().isEmpty(), type(ListView::PasteCharacter));
    menu.addSeparator();
    const auto target = SelectedTarget();
    const bool leadsOn = target && target->typeID == AutoType;
    const QString name = target ? QString::fromStdString(gui_.Lists().Names().Text(*target)) : QString();
    offer(leadsOn ? "Go To " + name : QStringLiteral("Go To"), QKeySequence(FollowKey), leadsOn,
          [this, target] { emit Followed(*target); });
    offer(target ? "Information on " + name : QStringLiteral("Information"), {}, target.has_value(),
          [this, target] { emit AskedAbout(*target); });
    menu.addSeparator();
    offer(QStringLiteral("Find"), QKeySequence(FindKey), true, [this] { gui_.Find(List()); });
    menu.exec(place);
}

} // namespace KAL_AUTO_Node
