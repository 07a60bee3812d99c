#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace KAL_AUTO_Node {

struct Picture {
    std::string bytes;
    std::string warnings; // what dot had to say, visible; mostly nothing
};

// Told again and again of how long it lasts.
using Waiting = std::function<void(std::chrono::seconds lasting)>;

// A graph drawn by Graphviz's program dot, in one of its formats ("svg", "png", "pdf", ...). It runs as a
// process of its own, found in $PATH. Raises StoreNotFound where there is no such program, StoreFailure where
// it fails, crashes, or takes longer than the limit, at which it is ended.
[[nodiscard]] Picture DrawGraph(
    std::string_view graph, const std::string& format, std::chrono::milliseconds limit,
    const Waiting& waiting = [](std::chrono::seconds) {});

} // namespace KAL_AUTO_Node
