#include "server/PostgresStatement.h"

#include <charconv>

namespace KAL_AUTO_Node {

void PostgresStatement::Run(std::span<const std::optional<std::string>> parameters) {
    result_ = connection_.Run(*this, parameters);
    row_ = 0;
    rows_ = PQntuples(result_.get());
    const int columns = PQnfields(result_.get());
    if (!named_) {
        columns_.clear();
        for (int column = 0; column < columns; ++column) {
            columns_.emplace_back(PQfname(result_.get(), column));
        }
        named_ = true;
    }
}

std::optional<std::string_view> PostgresStatement::Field(std::size_t column) const {
    const auto position = static_cast<int>(column);
    if (PQgetisnull(result_.get(), row_, position) != 0) {
        return std::nullopt;
    }
    return std::string_view(PQgetvalue(result_.get(), row_, position),
                            static_cast<std::size_t>(PQgetlength(result_.get(), row_, position)));
}

std::int64_t PostgresStatement::RowsWritten() const {
    const std::string_view count = PQcmdTuples(result_.get());
    std::int64_t rows = 0;
    std::from_chars(count.data(), count.data() + count.size(), rows);
    return rows;
}

} // namespace KAL_AUTO_Node
