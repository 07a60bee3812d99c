#include "platform/Today.h"

#include <array>
#include <clocale>
#include <ctime>
#include <memory>
#include <type_traits>

namespace KAL_AUTO_Node {

std::string Today() {
    // A program that has not asked for the system's locale runs in the plain one, and so does one whose
    // locale is not installed.
    locale_t system = newlocale(LC_TIME_MASK, "", nullptr);
    if (system == nullptr) {
        system = newlocale(LC_TIME_MASK, "C", nullptr);
    }
    const std::unique_ptr<std::remove_pointer_t<locale_t>, void (*)(locale_t)> owner(system, &freelocale);
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 64> text{};
    strftime_l(text.data(), text.size(), "%x", &parts, system);
    return text.data();
}

} // namespace KAL_AUTO_Node
