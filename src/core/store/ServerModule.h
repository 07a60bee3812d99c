#pragma once

#include "store/Connection.h"
#include "store/Waits.h"

#include <memory>
#include <string>

namespace KAL_AUTO_Node {

// What an address is used for: stores are opened; where there is none yet, one is made.
enum class ServerUse { Store, Database };

// Connects to the database that a connection URI names. The engine for it is a library of its own, which is
// loaded with the first of these: it brings thirty others along that a file needs nothing of. Raises
// CannotCreateComponent where that is not there, StoreUnreachable where connecting fails, and
// StoreNotRecognized where the database holds no store or one of a version that is not known here yet.
std::unique_ptr<Connection> OpenServer(const std::string& uri, ServerUse use = ServerUse::Store,
                                       const Waits& waits = {});

// The one function of that library; gives a connection that the caller owns.
inline constexpr const char* ServerLibrary = "libKAL_AUTO_Node_server.so.1";
inline constexpr const char* OpenServerName = "KAL_AUTO_Node_OpenServer";
using OpenServerFunction = Connection*(const char* uri, ServerUse use, const Waits& waits);

} // namespace KAL_AUTO_Node
