#pragma once

#include "store/Connection.h"

#include <SQLiteCpp/Database.h>

namespace KAL_AUTO_Node {

// The embedded engine: one file, shared with the suite's other programs through the file's own locks.
class SqliteConnection : public Connection {
  public:
    // The file must exist.
    explicit SqliteConnection(const std::filesystem::path& file);

    std::unique_ptr<Statement> Prepare(const std::string& sql) override;
    void Flush() override;

    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

  private:
    SQLite::Database database_;
    bool writeAhead_ = false;
    int logPages_ = 0; // in the write-ahead log after the latest commit of this connection
};

} // namespace KAL_AUTO_Node
