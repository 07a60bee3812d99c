#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <thread>

namespace KAL_AUTO_Node {

// A line to the server for tests, on a port of its own on loopback, on which everything takes its time.
// Counts the ways to the server and back, and breaks where it is told to.
class Relay {
  public:
    // Delay: of everything, in either direction.
    explicit Relay(std::chrono::milliseconds delay, std::string socket = ServerSocket());
    ~Relay();

    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    [[nodiscard]] static std::string ServerSocket();

    [[nodiscard]] int Port() const { return port_; }

    // Of a database beyond the line.
    [[nodiscard]] std::string AddressOf(const std::string& database,
                                        const std::string& user = "tester") const;

    // How often the client has sent what it waits for an answer to, a connection's beginning included, since
    // this was last asked.
    int Ways() { return ways_.exchange(0); }

    // Called with the number of each way since the beginning, before what the client sends goes on. Set while
    // nobody uses the line.
    std::function<void(int way)> AtWay;

    // How many bytes went either way since this was last asked.
    std::size_t Passed() { return passed_.exchange(0); }

    static constexpr std::size_t Never = std::numeric_limits<std::size_t>::max();

    // Ends the connection on which that many more bytes have gone either way.
    void CutAfter(std::size_t bytes) { left_ = bytes; }

    // Ends every connection that there is.
    void Cut() { cut_ = true; }

    // As a machine that is down: there is no port any more. Called by AtWay, or while nobody uses the line.
    void Close();

  private:
    void Work(const std::stop_token& stop);

    std::chrono::milliseconds delay_;
    std::string socket_;
    int listener_;
    int port_ = 0;
    std::atomic<int> ways_ = 0;
    int wayNumber_ = 0;
    std::atomic<bool> cut_ = false;
    std::atomic<std::size_t> passed_ = 0;
    std::atomic<std::size_t> left_ = Never;
    std::jthread worker_;
};

} // namespace KAL_AUTO_Node
