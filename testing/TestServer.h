#pragma once

#include <cstdlib>
#include <functional>
#include <libpq-fe.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace KAL_AUTO_Node {

// A database of its own, as long as it lives, on the server for tests whose socket is in the folder that
// KAL_TEST_SERVER names; looked at and changed with raw SQL.
class TestDatabase {
  public:
    [[nodiscard]] static bool HasServer() { return std::getenv("KAL_TEST_SERVER") != nullptr; }

    // Of any database there.
    [[nodiscard]] static std::string AddressOf(const std::string& database,
                                               const std::string& user = "tester") {
        return "postgresql://" + user + "@/" + database + "?host=" + std::getenv("KAL_TEST_SERVER");
    }

    // Empty.
    TestDatabase() { Run(AddressOf("postgres"), "CREATE DATABASE " + name_ + Likeness + "template0"); }

    // Like one of another name, which is made once.
    TestDatabase(const std::string& other, const std::function<void(const std::string&)>& make) {
        const Connection server = Connected(AddressOf("postgres"));
        static_cast<void>(Rows(*server, "SELECT pg_advisory_lock(1)"));
        if (Rows(*server, "SELECT FROM pg_database WHERE datname = '" + other + '\'').empty()) {
            static_cast<void>(Rows(*server, "CREATE DATABASE " + name_));
            make(Address());
            static_cast<void>(Rows(*server, "ALTER DATABASE " + name_ + " RENAME TO " + other));
        }
        static_cast<void>(Rows(*server, "CREATE DATABASE " + name_ + Likeness + other));
    }

    ~TestDatabase() {
        connection_.reset();
        Run(AddressOf("postgres"), "DROP DATABASE " + name_ + " WITH (FORCE)");
    }

    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    [[nodiscard]] std::string Address() const { return AddressOf(name_); }

    // As reports tell it.
    [[nodiscard]] std::string Place() const {
        return std::string("server '") + std::getenv("KAL_TEST_SERVER") + ":5432', database '" + name_ + '\'';
    }

    // Statements; the rows of the last, fields joined by '|', Null as "NULL".
    std::vector<std::string> Rows(const std::string& sql) {
        if (!connection_) {
            connection_ = Connected(Address());
        }
        return Rows(*connection_, sql);
    }

    static void Run(const std::string& address, const std::string& sql) {
        const Connection connection = Connected(address);
        static_cast<void>(Rows(*connection, sql));
    }

  private:
    using Connection = std::unique_ptr<PGconn, void (*)(PGconn*)>;

    static Connection Connected(const std::string& address) {
        Connection connection(PQconnectdb(address.c_str()), &PQfinish);
        PQsetNoticeReceiver(
            connection.get(), [](void*, const PGresult*) {}, nullptr);
        return connection;
    }

    static std::vector<std::string> Rows(PGconn& connection, const std::string& sql) {
        const std::unique_ptr<PGresult, void (*)(PGresult*)> result(PQexec(&connection, sql.c_str()),
                                                                    &PQclear);
        if (const auto status = PQresultStatus(result.get());
            status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK && status != PGRES_EMPTY_QUERY) {
            throw std::runtime_error(PQerrorMessage(&connection));
        }
        std::vector<std::string> rows;
        for (int row = 0; row < PQntuples(result.get()); ++row) {
            std::string fields;
            for (int column = 0; column < PQnfields(result.get()); ++column) {
                fields += column > 0 ? "|" : "";
                fields += PQgetisnull(result.get(), row, column) != 0 ? "NULL"
                                                                      : PQgetvalue(result.get(), row, column);
            }
            rows.push_back(fields);
        }
        return rows;
    }

    // Files are copied, with what the server keeps there to begin soon.
    static constexpr const char* Likeness = " STRATEGY file_copy TEMPLATE ";
    inline static int count_ = 0;

    std::string name_ = "store_" + std::to_string(getpid()) + '_' + std::to_string(++count_);
    Connection connection_{nullptr, &PQfinish};
};

} // namespace KAL_AUTO_Node
