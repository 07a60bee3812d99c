#pragma once

#include "history/NodeSave.h"
#include "history/Version.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

// What a person is told, and asked, about saves that meet others or did not finish. The node is named as the
// lists name it. Enter answers what changes nothing.

// What becomes of what was changed here: it is saved over what stands in the way, kept as it is in the
// window, given up for what is stored, or brought together with that.
enum class Over { Save, Keep, Load, Both };

// What cannot be gone over is told. Both is offered where it can be done.
[[nodiscard]] Over AskToGoOver(const QString& node, const SeenNode& seen, const Obstacle& obstacle,
                               bool together);

// Whether the node is to be put back as it was before a save that did not finish.
[[nodiscard]] bool WantsItPutBack(const QString& node, const Version& save);

// Whether a node is to get the rest of its template's rows.
[[nodiscard]] bool WantsItMadeWhole(const QString& node);

// Tells that a node is stored otherwise than it was seen; an empty text where it is not.
[[nodiscard]] QString TellOthersChange(const QString& node, const SeenNode& seen, const NodeContent& stored,
                                       const std::optional<Version>& by);

// Whether the node is to be as it was before a change; with what that changes, what refers to the node, where
// that is known, and whether the window has changes of it that go.
[[nodiscard]] bool WantsVersionBack(const QString& node, const Version& version,
                                    const std::vector<std::string>& changes,
                                    const std::optional<std::vector<QString>>& uses, bool unsaved);

} // namespace KAL_AUTO_Node
