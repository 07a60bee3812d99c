#pragma once

#include <QDialog>

#include <functional>
#include <memory>

namespace KAL_AUTO_Node {

// What the toolkit takes at least for a window: one of as many of its own widgets as another has, each of the
// same kind, place and visibility, with the same rows.
[[nodiscard]] std::function<std::unique_ptr<QDialog>()> StockWindowLike(const QWidget& window);

} // namespace KAL_AUTO_Node
