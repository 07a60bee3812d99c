#pragma once

// The names of the text form that stores are carried over in; docs/exchange.md describes it.
namespace KAL_AUTO_Node::Exchange {

inline constexpr const char* Format = "auto-node-exchange";
inline constexpr int Version = 1;
inline constexpr const char* FormatMember = "format";
inline constexpr const char* VersionMember = "version";
inline constexpr const char* ConfigMember = "config";
inline constexpr const char* PartitionMember = "partition";
inline constexpr const char* TablesMember = "tables";
// In the place of a text that is no UTF-8: its bytes, two digits of base 16 each.

} // namespace KAL_AUTO_Node::Exchange
