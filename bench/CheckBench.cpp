#include "bench/Benches.h"
#include "bench/Desk.h"

namespace KAL_AUTO_Node {

namespace {

// A person who lets no missing node be created, without taking time over it.
class Skipping : public ConfirmationDialog {
  public:
    std::int32_t Ask(std::int16_t /*kind*/, const std::string& /*message*/, std::int32_t /*icon*/,
                     std::int32_t /*buttons*/, const std::string& /*title*/) override {
        return Skip;
    }
};

ComponentFactory Components() {
    ComponentFactory components;
    components.Register(ConfirmationDialog::Identifier, [] { return std::make_unique<Skipping>(); });
    return components;
}

} // namespace

void AddCheckPairs(Pairs& pairs, const TestStore& store) {
    const auto add = [&](const std::string& work, const SizedPlace& sized) {
        pairs.Add(
            work, sized.size,
            [place = sized.place] {
                return [desk = std::make_shared<Desk>(place, Components())] {
                    Settle();
                    return Seconds([&] { CheckNode(*desk); });
                };
            },
            [place = sized.place, file = store.File()] {
                return [commands = CommandsOf(place, &CheckNode, Components()),
                        raw = std::make_shared<RawStore>(file)] {
                    return Seconds([&] { raw->Perform(commands); });
                };
            });
    };
    for (const SizedPlace& sized : Referring) {
        add("missing-node check, all present", sized);
    }
    for (const SizedPlace& sized : ReferringToNothing) {
        add("missing-node check, none present", sized);
    }
}

} // namespace KAL_AUTO_Node
