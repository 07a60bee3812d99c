#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// The SQL files are written for both engines, in the embedded one's form; here stands all in which the server
// needs another word.

// A statement whose parameters are numbered, as the server wants them, and their names without the prefix of
// a command's own; each stands once, in the order of its first use.
struct NumberedStatement {
    std::string sql;
    std::vector<std::string> parameters;
};

[[nodiscard]] NumberedStatement Numbered(std::string_view sql);

// The script that makes tables. The server always keeps to the columns' types, which the embedded engine has
// to be told, and has no tables without row numbers; its INTEGER has 32 bits, the embedded engine's 64.
[[nodiscard]] std::string ServerTables(std::string_view script);

} // namespace KAL_AUTO_Node
