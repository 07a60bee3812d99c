#pragma once

namespace KAL_AUTO_Node {

// Statements that make a store's tables, those of the history where they are not there, and the demo store's
// content; and those that bring a history from one version of the tables to the next.
extern const char* const SchemaScript;
extern const char* const HistoryScript;
extern const char* const DemoScript;
extern const char* const Upgrade2Script;

} // namespace KAL_AUTO_Node
