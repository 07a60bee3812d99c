// What the library of this folder shows to those that load it.

#include "server/PostgresConnection.h"

extern "C" __attribute__((visibility("default"))) KAL_AUTO_Node::Connection*
KAL_AUTO_Node_OpenServer(const char* uri, KAL_AUTO_Node::ServerUse use, const KAL_AUTO_Node::Waits& waits) {
    return std::make_unique<KAL_AUTO_Node::PostgresConnection>(uri, use, waits).release();
}
