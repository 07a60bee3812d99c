#pragma once

#include "server/PostgresConnection.h"
#include "store/PortableSql.h"

namespace KAL_AUTO_Node {

// A statement that the server prepares when it is first run on a connection. Its rows are here as a whole, so
// that other statements run while they are read, and outlast the connection.
class PostgresStatement : public Statement {
  public:
    // The connection outlives it.
    PostgresStatement(PostgresConnection& connection, const std::string& sql)
        : connection_(connection), text_(Numbered(sql)) {}

    [[nodiscard]] std::size_t ParameterCount() const override { return text_.parameters.size(); }

    [[nodiscard]] std::span<const std::string> Columns() const override { return columns_; }

    [[nodiscard]] std::string_view Sql() const { return text_.sql; }

    void Run(std::span<const std::optional<std::string>> parameters) override;

    [[nodiscard]] bool AtEnd() const override { return row_ >= rows_; }

    void MoveNext() override { ++row_; }

    [[nodiscard]] std::optional<std::string_view> Field(std::size_t column) const override;
    [[nodiscard]] std::int64_t RowsWritten() const override;

    void Close() noexcept override {
        result_.reset();
        row_ = rows_ = 0;
    }

  private:
    friend class PostgresConnection;

    PostgresConnection& connection_;
    NumberedStatement text_;
    std::string name_;    // on the server
    int preparedFor_ = 0; // which of the connection's connects
    bool named_ = false;  // the columns, as they are since it was prepared
    std::vector<std::string> columns_;
    PostgresConnection::Result result_;
    int row_ = 0;
    int rows_ = 0;
};

} // namespace KAL_AUTO_Node
