#pragma once

namespace KAL_AUTO_Node {

// Node-type IDs that the editor's rules depend on; what the other IDs stand for is the store's to say.
inline constexpr int MessageType = 0;
inline constexpr int AutoType = 9;
inline constexpr int NumberlessExceptionType = 814; // an exception reference without a node number
inline constexpr int UncheckedCommandType = 816;    // numbered, but not a node
inline constexpr int MessageOnType = 817;           // 817 and 818 refer to message nodes
inline constexpr int MessageOffType = 818;
inline constexpr int NumberlessType = 999; // a prompt or action reference without a node number

inline constexpr int UncheckedCommandMax = 999; // its numbers, for which the store has no limit

// References to message nodes come under two more types.
[[nodiscard]] constexpr bool RefersToMessage(int nodeTypeID) {
    return nodeTypeID == MessageOnType || nodeTypeID == MessageOffType;
}

// The type of the node that a reference of a type leads to.
[[nodiscard]] constexpr int NodeTypeOf(int nodeTypeID) {
    return RefersToMessage(nodeTypeID) ? MessageType : nodeTypeID;
}

// Whether references of a type lead to a node that has to exist.
[[nodiscard]] constexpr bool RefersToNode(int nodeTypeID) {
    return nodeTypeID != NumberlessType && nodeTypeID != UncheckedCommandType &&
           nodeTypeID != NumberlessExceptionType;
}

} // namespace KAL_AUTO_Node
