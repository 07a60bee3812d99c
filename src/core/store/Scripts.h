#pragma once

namespace KAL_AUTO_Node {

// Statements that make a store's tables, those of the history, and the demo store's content.
extern const char* const SchemaScript;
extern const char* const HistoryScript;
extern const char* const DemoScript;

} // namespace KAL_AUTO_Node
