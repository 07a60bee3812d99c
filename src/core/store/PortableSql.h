#pragma once

#include <functional>
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

// The statement, or script, with the store's tables named together with their schema, which the function
// tells of a table in lower case. The server looks for no name in a schema where others may have put
// something of the same name.
[[nodiscard]] std::string Qualified(std::string_view sql,
                                    const std::function<std::string(const std::string& table)>& schemaOf);

// A name in the spelling in which it stands in a statement or a script, where it stands there: the server
// tells names in lower case.
[[nodiscard]] std::string_view AsWritten(std::string_view sql, std::string_view name);

// The script that makes tables. The server always keeps to the columns' types, which the embedded engine has
// to be told, and has no tables without row numbers; its INTEGER has 32 bits, the embedded engine's 64.
[[nodiscard]] std::string ServerTables(std::string_view script);

} // namespace KAL_AUTO_Node
