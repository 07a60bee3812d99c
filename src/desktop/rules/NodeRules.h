#pragma once

#include "KAL_AUTO_Node/Components.h"
#include "controls/ComboBox.h"
#include "history/History.h"
#include "nodes/Slots.h"
#include "store/Batch.h"

#include <QString>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace KAL_AUTO_Node {

class GUI;
class NodeSave;
class QuickAssignForm;
class RequiredNodes;
struct ListRow;
struct RequiredNode;

// The procedures behind Business_Rules: they fill the window from the store and write it back, over a
// connection of their own. Each procedure reports its own failure and then returns, so that its caller
// carries on.
class NodeRules {
  public:
    // Opens nothing yet; raises what finding the store's place raises. The factory outlives the rules.
    explicit NodeRules(const ComponentFactory& components) : components_(components) {}

    // True while the editor was opened for node number 0.
    bool NewNodeFlag = false;

    static void ResetAllGUIListView(GUI& gui);
    // Has no report of its own.
    static void HideInPlaceEditors(GUI& gui);

    // Fetches from a server what the reference lists are filled with, as long as the result lives. Has no
    // report of its own.
    [[nodiscard]] std::unique_ptr<ReadAhead> FetchLists(const GUI& gui);

    // Has to live while the window is prepared: a store that is waited for in vain is waited for once.
    [[nodiscard]] auto WaitOnce() { return std::make_unique<SingleWait>(dataBase_); }

    // Where the store, which the lists were filled from, is of an older version: asks once whether to bring
    // it up.
    void OfferUpgrade();

    // Reference lists, in the order in which they depend on one another. Each returns whether it ran to its
    // end.
    bool LoadNodeName(GUI& gui);
    bool LoadPromptsNode(GUI& gui);
    bool LoadActionsNode(GUI& gui);
    bool LoadExceptionsNode(GUI& gui);
    static bool LoadStaticConstants(GUI& gui);
    bool LoadExistingNodesInRecordSelector(GUI& gui, std::int16_t nodeNumber);

    // Takes nodes into the selector that were made since; the node shown stays chosen. Has no report of its
    // own.
    void ListNodesAnew(const GUI& gui);

    // The store's file.
    [[nodiscard]] const std::filesystem::path& File() const { return dataBase_.File(); }

    // Shows the stored node in the window; tells a person when there is none, and offers to put it back first
    // when its last save did not finish. Returns whether the node was there and was loaded. Needs the
    // reference lists.
    bool LoadData(GUI& gui, std::int16_t nodeNumber);

    // Shows a node of which what was changed here and what is stored by now are parts, as changed and not
    // saved; what is stored is what the next save goes over.
    void ShowTogether(GUI& gui, std::int16_t nodeNumber, AutoNode node, SeenNode stored);

    // Puts a node back as it was before a change, and shows it where the window shows that node. Asks first,
    // and tells with the question what refers to the node, where that is known, and what of the window is
    // lost. Returns whether it did.
    bool PutBack(GUI& gui, const NodePlace& place, const Version& version,
                 const std::optional<std::vector<QString>>& uses);

    // Looks whether somebody else has changed the node that is shown: who, and when, in words; an empty text
    // where nobody has, and nothing where there is no news since the latest look. Cheap while nothing
    // changes; raises nothing.
    [[nodiscard]] std::optional<QString> LookForOthersChange(const GUI& gui) noexcept;

    // The label of a node that can be referred to; empty where it has none. Has no report of its own.
    QString LabelOfNode(const GUI& gui, int nodeTypeID, int nodeNumber);

    // The lists of the Quick Assign dialog: the types offered for prompts or for actions, and the numbers of
    // the type chosen. These have no report of their own.
    static void LoadQuickAssignPromptsTypes(const GUI& gui, QuickAssignForm& form);
    static void LoadQuickAssignActionsTypes(const GUI& gui, QuickAssignForm& form);
    void LoadQuickAssignNumbers(const GUI& gui, QuickAssignForm& form);

    // Writes the window's content to the node's record, register row and detail rows, after the check for
    // missing nodes. Each statement stands for itself: after a failure those before it stay done, until the
    // person wants the node put back. Returns false where nothing of it was written: what the window shows
    // was not loaded from that node, the node is gone, somebody else is saving it, the person does not want
    // to go over what somebody else changed, or an error came before the first statement.
    bool SaveChanges(GUI& gui, std::int16_t nodeNumber);

    // Looks up every node that the window's lists refer to, and offers to create each that is missing, as
    // part of a save.
    void CheckForUnReferencedNodes(GUI& gui, NodeSave& save);
    // Notes the node that a row refers to unless it refers to none or is there already.
    static void AddNodeTolstRequired(RequiredNodes& required, const ListRow& row);

  private:
    class Person;

    // Takes the partition's AUTO nodes for the selector, and returns why it could not take all.
    [[nodiscard]] std::exception_ptr ReadSelector(const GUI& gui, std::vector<PickList::Entry>& entries);

    // Offers the types that a slot may refer to, and notes those that have no numbers.
    void LoadContainableTypes(GUI& gui, Slot slot);

    // When the node's last save did not finish, offers to put the node back as it was; returns whether it
    // was.
    bool OfferToPutBack(const GUI& gui, std::int16_t nodeNumber);
    // Finds out whether a save is stored whose outcome was not known when it ended, and tells; nothing where
    // there is none.
    std::optional<bool> SettleOutcome(const GUI& gui);
    // What is stored is no longer what was loaded.
    void AfterFailedSave(GUI& gui, std::int16_t nodeNumber, bool half);
    std::int64_t LatestVersion(const GUI& gui, std::int16_t nodeNumber);

    struct Unsettled {
        NodePlace place;
        std::int64_t version; // 0 where there is no history
        AutoNode sent;
    };

    const ComponentFactory& components_;
    DataBase dataBase_;
    History history_{dataBase_};
    std::optional<Unsettled> unsettled_;
    std::optional<std::int64_t> seenMark_; // of the store, at the latest look for others' changes
    bool toldUnguarded_ = false;
    bool askedToUpgrade_ = false;
};

} // namespace KAL_AUTO_Node
