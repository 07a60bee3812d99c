#pragma once

#include "nodes/AutoNode.h"
#include "nodes/Identity.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace KAL_AUTO_Node {

class Batch;
class DataBase;

// Writes a node over the stored one of that place: its detail rows go, its record and its register row are
// updated, its detail rows come back as the node has them. In a file each statement stands for itself: after
// a failure those before it stay done. On a server they take effect together or not at all. Neither record
// nor register row are made where there are none. The date is today's as dates are stored.
void WriteAutoNode(DataBase& dataBase, const NodePlace& place, const AutoNode& node, const std::string& date);

// The statements of the above, and the places among them of those that have to write a row each; where the
// node is registered, its register row, too.
void AddWrites(Batch& batch, const NodePlace& place, const AutoNode& node, const std::string& date);
[[nodiscard]] std::vector<std::size_t> RowsWritten(const AutoNode& node, bool registered);

// The steps of the above that others need, too.
void DeleteDetails(Batch& batch, const NodePlace& place);
void UpdateRecord(Batch& batch, const NodePlace& place, const AutoNode& node);
void AddDetails(Batch& batch, const NodePlace& place, const AutoNode& node);

} // namespace KAL_AUTO_Node
