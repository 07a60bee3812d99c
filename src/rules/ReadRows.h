#pragma once

#include "store/DataBase.h"

#include <exception>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

// Reads a result set to its end and hands over in one step what was made of its rows. When a row can't be
// read, those before it are handed over all the same before the error goes on.
template <class Make, class Take>
void ReadRows(ResultSet rows, Make make, Take take) {
    std::vector<decltype(make(std::as_const(rows)))> read;
    std::exception_ptr failure;
    try {
        for (; !rows.AtEnd(); rows.MoveNext()) {
            read.push_back(make(std::as_const(rows)));
        }
    } catch (...) {
        failure = std::current_exception();
    }
    rows.Close();
    take(std::move(read));
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace KAL_AUTO_Node
