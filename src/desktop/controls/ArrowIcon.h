#pragma once

#include <QIcon>

namespace KAL_AUTO_Node {

enum class Arrow { First, Previous, Next, Last };

// A record arrow, drawn in the palette's own text colour at whatever size it is shown, so that it stays sharp
// and readable at any resolution and in light and dark palettes.
QIcon ArrowIcon(Arrow arrow);

} // namespace KAL_AUTO_Node
