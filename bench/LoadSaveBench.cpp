#include "bench/Benches.h"
#include "bench/Desk.h"

namespace KAL_AUTO_Node {

void AddLoadSavePairs(Pairs& pairs, const TestStore& store) {
    const auto addLoad = [&](const std::string& work, const SizedPlace& sized) {
        pairs.Add(
            work, sized.size,
            [place = sized.place] {
                return [place, desk = std::make_shared<Desk>(place)] {
                    Settle();
                    return Seconds(
                        [&] { desk->Rules().LoadData(desk->Form(), static_cast<std::int16_t>(place.node)); });
                };
            },
            [place = sized.place, file = store.File()] {
                return [place, raw = std::make_shared<RawStore>(file)] {
                    return Seconds([&] { raw->Load(place); });
                };
            });
    };
    for (const SizedPlace& sized : SmallNodes) {
        addLoad("LoadData, by partition", sized);
    }
    for (const SizedPlace& sized : LargeNodes) {
        addLoad("LoadData, by node", sized);
    }

    for (const SizedPlace& sized : LargeNodes) {
        pairs.Add(
            "SaveChanges", sized.size,
            [place = sized.place, &store] {
                return [&store, desk = std::make_shared<Desk>(place)] {
                    Settle();
                    EmptyLog(store);
                    return Seconds([&] { SaveNode(*desk); });
                };
            },
            [place = sized.place, &store] {
                return [&store, commands = CommandsOf(place, &SaveNode),
                        raw = std::make_shared<RawStore>(store.File())] {
                    EmptyLog(store);
                    return Seconds([&] { raw->Save(commands); });
                };
            });
    }
}

} // namespace KAL_AUTO_Node
