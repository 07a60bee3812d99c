#include "controls/Utf8.h"
#include "feedback/ErrorReport.h"
#include "feedback/MessageBox.h"
#include "platform/VisibleText.h"
#include "rules/NodeRules.h"
#include "store/UpgradeStore.h"

#include <utility>

namespace KAL_AUTO_Node {

void NodeRules::OfferUpgrade() {
    if (!IsOlder(dataBase_) || std::exchange(askedToUpgrade_, true)) {
        return;
    }
    Reporting("OfferUpgrade", [&] {
        const QString place = FromUtf8(Visible(dataBase_.Place()));
        const bool remote = dataBase_.IsRemote();
        const QString kept = remote ? QStringLiteral("Back it up first: no copy is made of a server's store.")
                                    : QStringLiteral("A copy of the file as it is stays beside it.");
        if (!Confirm("The store (" + place +
                     ") was made by an older version of this program. It can be used as it is. Brought up to "
                     "this version, older programs open it no more.\r\n" +
                     kept + "\r\n\r\nDo you want to bring it up now?")) {
            return;
        }
        if (const auto upgraded = UpgradeStore(dataBase_); upgraded.copy) {
            Inform("The store is brought up. As it was it lies in " +
                   FromUtf8(Visible(upgraded.copy->string())) + '.');
        }
    });
}

} // namespace KAL_AUTO_Node
