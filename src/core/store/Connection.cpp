#include "store/Connection.h"

namespace KAL_AUTO_Node {

std::vector<std::int64_t> Connection::RunTogether(std::span<const StatementRun> runs, Then then,
                                                  std::size_t& reached) {
    std::vector<std::int64_t> written;
    for (reached = 0; reached < runs.size(); ++reached) {
        const auto& [statement, parameters] = runs[reached];
        statement->Run(parameters);
        written.push_back(statement->RowsWritten());
        statement->Close();
    }
    if (then == Then::Commit) {
        Commit();
    }
    return written;
}

void Connection::FetchAhead(std::span<const StatementRun>, std::size_t&) {}

} // namespace KAL_AUTO_Node
