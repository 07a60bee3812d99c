#include "auto-node/Programs.h"

namespace KAL_AUTO_Node {

std::filesystem::path ProgramOfOurs(const std::string& name) {
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const auto built = folder / name;
    return exists(built) ? built : (folder / KAL_AUTO_NODE_LIBEXEC / name).lexically_normal();
}

} // namespace KAL_AUTO_Node
