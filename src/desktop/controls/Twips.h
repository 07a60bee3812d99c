#pragma once

#include <QFontInfo>
#include <QWidget>

#include <algorithm>

namespace KAL_AUTO_Node {

// Lengths of the window's layout are in twips: 15 make one device-independent pixel at the usual size of the
// font, 9 points, and more pixels in proportion where a widget's font is larger.
[[nodiscard]] inline int Pixels(int twips, const QWidget& widget) {
    constexpr int twipsPerPixel = 15;
    constexpr int usualHeight = 12; // of the font, in pixels
    return twips * std::max(usualHeight, widget.fontInfo().pixelSize()) / (usualHeight * twipsPerPixel);
}

} // namespace KAL_AUTO_Node
