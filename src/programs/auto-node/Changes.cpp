#include "auto-node/Changes.h"

#include "audit/Repoint.h"
#include "auto-node/Table.h"
#include "exchange/Plan.h"
#include "platform/NewFile.h"
#include "platform/VisibleText.h"

#include <iostream>

namespace KAL_AUTO_Node {

void PrintChanges(const std::vector<std::string>& changes) {
    for (const std::string& change : changes) {
        std::cout << "    " << Visible(change) << '\n';
    }
    if (changes.empty()) {
        std::cout << "    nothing differs\n";
    }
}

void PrintRepointed(const RepointPlan& plan, const TypeNames& names) {
    using enum Table::Align;
    Table table({Left, Left, Left});
    for (const auto& [use, typeID, type, number] : plan.changes) {
        table.Add({names.Text(use.holder), PlaceText(use.Column(), use.row),
                   NodeKey{0, use.number.value_or(0)}.Text(use.type) + " \u2192 " +
                       NodeKey{typeID, number}.Text(type)});
    }
    table.Print(std::cout);
}

void PrintCounts(const std::string& done, const RowPlan& plan) {
    const auto [removed, rowsChanged, added] = plan.Count();
    std::cout << done << ": " << Counted(removed, "row") << " removed, " << rowsChanged << " changed, "
              << added << " added\n";
}

void WritePlan(const std::string& file, const RowPlan& plan) {
    Output output(file);
    output.Append(TextOf(plan));
    output.Finish();
    PrintCounts("Planned in " + Visible(file), plan);
}

} // namespace KAL_AUTO_Node
