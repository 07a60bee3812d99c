#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

// Values of a Jet file as texts of a store.

// A date and time as the file has it: days since 1899-12-30, the fraction being the time of that day, also
// before it. The text has the form of the dates and times that stores hold: MM/DD/YY, HH:MM, or both with a
// blank between. A date without time, or a time without date, stands alone; what that form cannot tell
// exactly gets the seconds, their thousandths, or the year in four digits (where it is not of 1930 to 2029).
// Nothing for what is no date of the years 100 to 9999.
[[nodiscard]] std::optional<std::string> JetDateText(double date);

// A text as the file has it, in UTF-16 (little-endian) with or without the compression that is marked by its
// first two bytes. Nothing where it is no text.
[[nodiscard]] std::optional<std::string> JetUnicodeText(std::string_view bytes);

// A decimal without the zeros at the end of its fraction.
[[nodiscard]] std::string JetDecimalText(std::string decimal);

// The shortest text of which the number comes back.
[[nodiscard]] std::string JetNumberText(double number);
[[nodiscard]] std::string JetNumberText(float number);

} // namespace KAL_AUTO_Node
