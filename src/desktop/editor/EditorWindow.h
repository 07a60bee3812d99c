#pragma once

#include "KAL_AUTO_Node/Components.h"
#include "editor/ActionsList.h"
#include "editor/ExceptionsList.h"
#include "editor/PromptsList.h"
#include "editor/Wayfinder.h"
#include "form/GUI.h"
#include "rules/NodeRules.h"

#include <QMessageBox>
#include <QObject>

#include <array>
#include <map>
#include <memory>

namespace KAL_AUTO_Node {

// The editor window at work: its form and what happens when a person uses it.
class EditorWindow : public QObject {
  public:
    // The factory outlives the window, and so do the rules by which it is filled before it is shown. Their
    // connection is there and idle then, and serves for looking what others do.
    EditorWindow(const ComponentFactory& components, NodeRules& filling);

    [[nodiscard]] GUI& Form() noexcept { return gui_; }

    // Makes the window ready to be filled, unseen. Raises what creating the window's own rules raises.
    void Form_Load();

    // Ends the in-place editing of the lists flagged.
    void TurnOffEditMode(bool prompts, bool actions, bool exceptions);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Per list, in the order prompts, actions, exceptions.
    template <class Item>
    using PerList = std::array<Item, 3>;

    void ConnectHandlers();
    void WatchFocus();
    // The pop-ups of nodes show what the nodes are called.
    void LabelPopups();

    void Form_Unload(bool& cancel);
    long ListViewWindowProc(ListView& list, WindowMessage message);

    // Yes and No let the caller go on, Cancel doesn't: the person chose so, or saving was refused.
    QMessageBox::StandardButton AskToSaveChanges();
    // Saves unless an action range stands twice, the label is refused, or the node is not the one that is
    // shown or is gone; tells the person. Returns whether it went ahead.
    bool Save();
    void ShowDuplicate(const QString& key);

    // Runs a handler that the window outlasts.
    template <class Body>
    void Act(const QObject& control, Body&& body);
    // The same for a button, which does nothing while another handler or a long operation has not ended:
    // assistive technology and a component's own event loop reach it also then.
    template <class Body>
    void Press(const QPushButton& button, Body&& body);

    void cmdApply_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmbNode_Click();
    // One of the four navigation buttons; the target is the selector's new position.
    void Navigate(const QPushButton& button, int (*target)(int index, int last));
    // A value was chosen or typed.
    void ValueBox_Click();

    void MarkChanged() { gui_.cmdApply->setEnabled(true); }

    void EndEditing() { TurnOffEditMode(true, true, true); }

    const ComponentFactory& components_;
    GUI gui_;
    UndoStack undo_; // of the three lists
    PromptsList prompts_;
    ActionsList actions_;
    ExceptionsList exceptions_;
    PerList<ReferenceList*> lists_{&prompts_, &actions_, &exceptions_};
    std::unique_ptr<NodeRules> rules_;
    Wayfinder ways_;
    PerList<ListView::WindowProcedure> savedProcedures_;
    // The lists whose in-place editing ends when the focus enters a control.
    std::map<QObject*, PerList<bool>> endedByFocus_;
};

} // namespace KAL_AUTO_Node
