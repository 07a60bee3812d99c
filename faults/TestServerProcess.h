#pragma once

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>

namespace KAL_AUTO_Node {

// A server in a folder of its own.
class TestServerProcess {
  public:
    explicit TestServerProcess(std::filesystem::path folder, const std::filesystem::path& primary = {})
        : folder_(std::move(folder)) {
        Do(primary.empty() ? "start" : "standby", primary.string());
    }

    ~TestServerProcess() {
        try {
            Do("stop");
        } catch (const std::exception& error) {
            std::cerr << error.what() << '\n';
        }
    }

    TestServerProcess(const TestServerProcess&) = delete;
    TestServerProcess& operator=(const TestServerProcess&) = delete;

    void Do(const std::string& what, const std::string& other = {}) const {
        if (std::system(
                (std::string(TEST_SERVER) + ' ' + what + ' ' + folder_.string() + ' ' + other).c_str()) !=
            0) {
            throw std::runtime_error("test-server " + what + " has failed");
        }
    }

    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_; }

    [[nodiscard]] std::string Socket() const { return (folder_ / ".s.PGSQL.5432").string(); }

    [[nodiscard]] std::string Address() const {
        return "postgresql://tester@/postgres?host=" + folder_.string();
    }

  private:
    std::filesystem::path folder_;
};

} // namespace KAL_AUTO_Node
