#pragma once

#include "KAL_AUTO_Node/Components.h"
#include "rules/Rows.h"
#include "store/DataBase.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace KAL_AUTO_Node {

class GUI;
class QuickAssignForm;

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

    // Reference lists, in the order in which they depend on one another. Each returns whether it ran to its
    // end.
    bool LoadNodeName(GUI& gui);
    bool LoadPromptsNode(GUI& gui);
    bool LoadActionsNode(GUI& gui);
    bool LoadExceptionsNode(GUI& gui);
    static bool LoadStaticConstants(GUI& gui);
    bool LoadExistingNodesInRecordSelector(GUI& gui, std::int16_t nodeNumber);

    // Shows the stored node in the window; tells a person when there is none. Returns whether the node was
    // there and was loaded. Needs the reference lists.
    bool LoadData(GUI& gui, std::int16_t nodeNumber);

    // The label of a node that can be referred to; empty where it has none. Has no report of its own.
    QString LabelOfNode(const GUI& gui, int nodeTypeID, int nodeNumber);

    // The lists of the Quick Assign dialog: the types offered for prompts or for actions, and the numbers of
    // the type chosen. These have no report of their own.
    static void LoadQuickAssignPromptsTypes(const GUI& gui, QuickAssignForm& form);
    static void LoadQuickAssignActionsTypes(const GUI& gui, QuickAssignForm& form);
    void LoadQuickAssignNumbers(const GUI& gui, QuickAssignForm& form);

    // Writes the window's content to the node's record, register row and detail rows, after the check for
    // missing nodes. Each statement stands for itself: after a failure those before it stay done.
    void SaveChanges(GUI& gui, std::int16_t nodeNumber);

    // Looks up every node that the window's lists refer to, and offers to create each that is missing.
    void CheckForUnReferencedNodes(GUI& gui);
    // Notes a reference in the window's scratch lists unless it refers to no node or is there already.
    static void AddNodeTolstRequired(GUI& gui, const QString& display, const QString& nodeTypeID,
                                     const QString& nodeNumber);
    // Whether the register holds the node.
    bool IsNodeExisted(const GUI& gui, std::string_view nodeTypeID, std::string_view nodeNumber);
    // Copies a node under a new number. Writes nothing for a type that cannot be copied or a source that
    // isn't there. Has no report of its own.
    void CreateNodeFromTemplate(const GUI& gui, std::string_view source, std::string_view destination,
                                std::string_view nodeTypeID);

  private:
    // Offers the types that a slot may refer to, and notes those that have no numbers.
    void LoadContainableTypes(GUI& gui, Slot slot);

    // The highest number of a type in the partition, or nothing where no limit is stored.
    std::optional<int> MaxNodeNumber(const GUI& gui, int nodeTypeID);
    static void LoadSettings(GUI& gui, const ResultSet& node);
    void LoadPrompts(GUI& gui, std::int16_t nodeNumber);
    void LoadActions(GUI& gui, std::int16_t nodeNumber);
    void LoadExceptions(GUI& gui, const ResultSet& node);

    // The node that a stored row refers to, as it is shown.
    struct StoredReference {
        QString display;
        QString label;
        Reference reference;
    };

    // The columns that a reference is stored in; an exception branch's have its name before their own.
    struct ReferenceColumns {
        explicit ReferenceColumns(const ResultSet& rows, const std::string& branch = "")
            : nodeTypeID(rows.Column(branch + "NodeTypeID")), nodeType(rows.Column(branch + "NodeType")),
              nodeNumber(rows.Column(branch + "NodeNumber")) {}

        std::size_t nodeTypeID;
        std::size_t nodeType;
        std::size_t nodeNumber;
    };

    StoredReference ReadReference(const GUI& gui, const ResultSet& row, const ReferenceColumns& columns,
                                  int numberlessType);
    // The label of a referenced node; empty where it has none.
    QString Label(const GUI& gui, std::string_view nodeTypeID, std::string_view nodeNumber);

    void SaveNode(const GUI& gui, std::int16_t nodeNumber);
    void SavePrompts(const GUI& gui, std::int16_t nodeNumber);
    void SaveActions(const GUI& gui, std::int16_t nodeNumber);
    static void TellNotCreated(const QStringList& nodes);

    const ComponentFactory& components_;
    DataBase dataBase_;
};

} // namespace KAL_AUTO_Node
