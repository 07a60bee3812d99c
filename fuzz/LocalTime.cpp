// A stored time, as another workstation may have written it, as people read it.

#include "fuzz/Examine.h"
#include "history/Version.h"

namespace KAL_AUTO_Node {

void Examine(std::string_view input) {
    const std::string text(input);
    const std::string shown = LocalTime(text);
    const bool isTime = shown.find_first_not_of("0123456789-: ") == std::string::npos;
    const bool isWhole = text.size() == TimeStamp().size() && text.ends_with('Z');
    Require(shown == text || (isTime && isWhole), "a whole time is shown as one, another text as it stands");
    static_cast<void>(IsBeingMade({1, "save", VersionState::Begun, text, {}, {}}));
}

} // namespace KAL_AUTO_Node
