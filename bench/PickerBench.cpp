#include "bench/Benches.h"
#include "bench/Desk.h"

#include <QComboBox>

namespace KAL_AUTO_Node {

void AddPickerPairs(Pairs& pairs) {
    for (const SizedType& type : PickedTypes) {
        pairs.Add(
            "choosing a type", type.size,
            [type] {
                auto desk = std::make_shared<Desk>(LargeNodes.front().place);
                desk->Form().LVActions->Select(0);
                desk->Form().cmdActionsEdit->click();
                PickList& picker = *desk->Form().NodePicker(Slot::Actions);
                return [desk, &picker, index = picker.IndexOfData(type.nodeTypeID)] {
                    Settle();
                    return Seconds([&] { picker.SetListIndex(index); });
                };
            },
            [type] {
                auto box = std::make_shared<QComboBox>();
                box->show();
                return [type, box] {
                    Settle();
                    return Seconds([&] {
                        box->clear();
                        for (int number = 1; number <= type.numbers; ++number) {
                            box->addItem(QString::number(number));
                        }
                        box->setCurrentIndex(0);
                    });
                };
            });
    }
}

} // namespace KAL_AUTO_Node
