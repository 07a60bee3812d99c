#pragma once

namespace KAL_AUTO_Node {

// Presents boxes and lists to assistive technology in the way that a person needs them: a box under its own
// name (the toolkit gives its text instead on some systems), a list row by row, each with all its visible
// cells and none of the hidden ones. Once for the process; every further call does nothing.
void OfferAccessibleInterfaces();

} // namespace KAL_AUTO_Node
