#pragma once

namespace KAL_AUTO_Node {

// Lengths of the window's layout are in twips: 15 make one device-independent pixel.
inline constexpr int TwipsPerPixel = 15;

[[nodiscard]] constexpr int Pixels(int twips) noexcept { return twips / TwipsPerPixel; }

} // namespace KAL_AUTO_Node
