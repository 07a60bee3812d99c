#pragma once

#include "form/GUI.h"
#include "form/QuickAssignForm.h"
#include "rules/NodeRules.h"

#include <QObject>

#include <cstdint>
#include <exception>

namespace KAL_AUTO_Node {

// Adds a run of consecutive node numbers of one type to the editor's prompts or actions, or removes one, in
// one step. Its rules are its own, with a connection of their own. Its procedures have no report of their
// own: what happens while it is prepared or shown is raised to the opener.
class QuickAssignDialog : public QObject {
  public:
    enum class List { Prompts = 1, Actions = 2 };

    // The window and the factory outlive the dialog.
    QuickAssignDialog(GUI& gui, const ComponentFactory& components);

    // Which list the dialog serves.
    List Caller = List::Prompts;

    // Fill the type list for one of the lists, and the number lists for the first type.
    void PreparePromptsTypes();
    void PrepareActionsTypes();

    [[nodiscard]] QuickAssignForm& Form() noexcept { return form_; }

    // Returns when the dialog is closed; raises the first error of one of its handlers.
    void ShowModal();

  private:
    using Change = void (QuickAssignDialog::*)();

    // The numbers chosen; none where first > last.
    struct Range {
        std::int64_t first;
        std::int64_t last;
    };

    // Runs a handler's body; its error ends the dialog and goes on to the opener instead of the toolkit.
    template <class Body>
    void Handle(Body&& body);
    void RaiseFailure();

    [[nodiscard]] Range ChosenRange() const;
    void Apply(Change prompts, Change actions);

    void AddPromptsRange();
    void AddActionsRange();
    void RemovePromptsRange();
    void RemoveActionsRange();

    // Adds one row a number; makeRow takes the reference.
    template <class MakeRow>
    void AddRange(ListView& list, MakeRow makeRow);
    void RemoveRange(ListView& list);

    GUI& gui_;
    NodeRules rules_;
    QuickAssignForm form_;
    std::exception_ptr failure_;
};

} // namespace KAL_AUTO_Node
