#include "store/Scripts.h"

namespace KAL_AUTO_Node {

const char* const SchemaScript =
#include "store/Schema.inc"
    ;

const char* const HistoryScript =
#include "store/HistoryTables.inc"
    ;

const char* const Upgrade2Script =
#include "store/Upgrade2.inc"
    ;

const char* const DemoScript =
#include "store/Demo.inc"
    ;

} // namespace KAL_AUTO_Node
