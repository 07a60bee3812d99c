#pragma once

#include "history/NodeSave.h"

#include <QString>

namespace KAL_AUTO_Node {

// What a person is told, and asked, about saves that meet others or did not finish. The node is named as the
// lists name it.

// Whether the person goes over what stands in the way of a save; what cannot be gone over is told.
[[nodiscard]] bool GoesOver(const QString& node, const AutoNode& loaded, const Obstacle& obstacle);

// Whether the node is to be put back as it was before a save that did not finish.
[[nodiscard]] bool WantsItPutBack(const QString& node, const Version& save);

} // namespace KAL_AUTO_Node
