#include "bench/Benches.h"
#include "bench/Desk.h"
#include "nodes/AutoNodeReader.h"
#include "nodes/AutoNodeWriter.h"
#include "platform/Today.h"
#include "testing/Saver.h"

namespace KAL_AUTO_Node {

namespace {

// A save apart from the window: every node that is referred to is looked up, the node is written and made to
// last.
class Saving {
  public:
    explicit Saving(Place place)
        : place_{{BenchConfig, static_cast<std::int16_t>(place.partition)},
                 static_cast<std::int16_t>(place.node)},
          node_(ReadAutoNode(dataBase_, place_).value()), saver_(place_) {
        saver_.Load();
        saver_.Date = Today();
    }

    void Marked() {
        if (saver_.Save(node_, [this](NodeSave& /*save*/) { LookUp(); })) {
            throw std::logic_error("something stands in the way of a save");
        }
    }

    void Bare() {
        LookUp();
        Write();
        dataBase_.Flush();
    }

  private:
    void LookUp() {
        for (const auto& [sequence, target] : node_.prompts) {
            static_cast<void>(IsNodeExisted(dataBase_, place_.partition, target.Key()));
        }
        for (const Action& action : node_.actions) {
            static_cast<void>(IsNodeExisted(dataBase_, place_.partition, action.target.Key()));
        }
    }

    void Write() { WriteAutoNode(dataBase_, place_, node_, Today()); }

    DataBase dataBase_;
    NodePlace place_;
    AutoNode node_;
    Saver saver_;
};

} // namespace

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
                return [place, lookUps = LookUpsOfLoad(place), raw = std::make_shared<RawStore>(file)] {
                    return Seconds([&] {
                        raw->Perform(lookUps);
                        raw->Load(place);
                    });
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
        const auto pass = [&store, place = sized.place](void (Saving::*save)()) {
            return [&store, save, saving = std::make_shared<Saving>(place)] {
                EmptyLog(store);
                return Seconds([&] { ((*saving).*save)(); });
            };
        };
        pairs.Add(
            "save with its mark, beside one without", sized.size, [pass] { return pass(&Saving::Marked); },
            [pass] { return pass(&Saving::Bare); });
    }

    pairs.Add(
        "SaveChanges, beside the core's save", "30 + 30 rows",
        [&store] {
            return [&store, desk = std::make_shared<Desk>(SixtyRows)] {
                Settle();
                EmptyLog(store);
                return Seconds([&] { SaveNode(*desk); });
            };
        },
        [&store] {
            return [&store, saving = std::make_shared<Saving>(SixtyRows)] {
                EmptyLog(store);
                return Seconds([&] { saving->Marked(); });
            };
        });

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
