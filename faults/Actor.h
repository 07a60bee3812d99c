#pragma once

namespace KAL_AUTO_Node {

// A process with a window on the node: carries out the orders on standard input, one a line, and answers each
// with a line: "load", "save SAVER ROWS [create] [hold]", "put back", "see" and
// "answer" (the question whether to), "arm FAULT AT [lasting]", "count", "disarm", "read", "keep reading",
// "lock MILLISECONDS", "be nobody", "quit". One that holds says so and goes on with the next line.
int Act();

} // namespace KAL_AUTO_Node
