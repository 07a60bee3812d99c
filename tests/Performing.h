#pragma once

#include "platform/RuntimeError.h"
#include "store/DataBase.h"
#include "testing/TestStore.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace KAL_AUTO_Node {

// Runs a command and gives one column of its rows, if it has any. A command's parameters are written out
// where it is called; here a table holds them.
template <std::size_t Count = 0>
Texts Perform(DataBase& dataBase, Command command, const Texts& values, std::string_view column = {}) {
    if constexpr (Count < 26) {
        if (values.size() > Count) {
            return Perform<Count + 1>(dataBase, command, values, column);
        }
    }
    const auto query = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return dataBase.Query(command, {Parameter(values[I])...});
    };
    Texts fields;
    for (ResultSet rows = query(std::make_index_sequence<Count>()); !rows.AtEnd(); rows.MoveNext()) {
        fields.emplace_back(rows.Text(column));
    }
    return fields;
}

inline void ExpectRaised(ErrorNumber number, const Texts& told, const std::function<void()>& use) {
    try {
        use();
        ADD_FAILURE() << "not raised: " << testing::PrintToString(told);
    } catch (const RuntimeError& error) {
        EXPECT_EQ(static_cast<int>(error.Number()), static_cast<int>(number)) << error.what();
        for (const std::string& text : told) {
            EXPECT_NE(std::strstr(error.what(), text.c_str()), nullptr)
                << error.what() << "\nwithout " << text;
        }
    }
}

} // namespace KAL_AUTO_Node
