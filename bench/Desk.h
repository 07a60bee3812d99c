#pragma once

#include "bench/RawStore.h"
#include "editor/EditorWindow.h"
#include "history/History.h"
#include "store/DataBase.h"

#include <functional>

namespace KAL_AUTO_Node {

// The editor's window on screen with a node in it, as ShowNodeEditor leaves it to the person, and the rules
// that filled it.
class Desk {
  public:
    explicit Desk(Place place, ComponentFactory components = {});

    [[nodiscard]] GUI& Form() { return window_.Form(); }

    [[nodiscard]] NodeRules& Rules() { return rules_; }

    // The missing-node check, as part of a save that makes nothing.
    void Check();

  private:
    ComponentFactory components_;
    NodeRules rules_;
    EditorWindow window_;
    DataBase dataBase_; // of the check; opened with the first
    History history_{dataBase_};
};

// The commands that a work on a node runs, beginning with the node on screen.
[[nodiscard]] std::vector<Performed> CommandsOf(Place place, const std::function<void(Desk&)>& work,
                                                ComponentFactory components = {});

// What the history is asked when a node is loaded.
[[nodiscard]] std::vector<Performed> LookUpsOfLoad(Place place);

inline void CheckNode(Desk& desk) { desk.Check(); }

inline void SaveNode(Desk& desk) { desk.Rules().SaveChanges(desk.Form(), desk.Form().nodeNumber); }

// Lets every window paint what it still has to, before a clock runs.
void Settle();

} // namespace KAL_AUTO_Node
