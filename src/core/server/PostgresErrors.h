#pragma once

#include "platform/RuntimeError.h"
#include "store/PortableSql.h"

#include <libpq-fe.h>

namespace KAL_AUTO_Node {

// What a report calls this engine.
inline constexpr const char* PostgresName = "PostgreSQL";

// The server's code for what went wrong; empty where it does not say.
[[nodiscard]] std::string_view StateOf(const PGresult* failed);

// The failure of a statement, or of something else, as the component's error: the server's own message, with
// the table and the column as far as it tells them, in the statement's spelling. Of what stands in the
// statement's rows it tells the key of a row that is there already, and no more.
[[nodiscard]] RuntimeError ErrorOf(const PGresult* failed, const NumberedStatement* statement);

// A message of the client library, which ends in a line break.
[[nodiscard]] std::string Trimmed(const char* message);

} // namespace KAL_AUTO_Node
