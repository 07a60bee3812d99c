#include "testing/Relay.h"

#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <list>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace KAL_AUTO_Node {

namespace {

using Clock = std::chrono::steady_clock;

int Connected(const std::string& path) {
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, {}};
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        close(server);
        return -1;
    }
    return server;
}

struct Direction {
    struct Chunk {
        Clock::time_point due;
        std::vector<char> bytes;
    };

    int from;
    int to;
    std::deque<Chunk> chunks;
};

struct Line {
    Line(int client, int server) : ways{{{client, server, {}}, {server, client, {}}}} {}

    ~Line() {
        close(ways[0].from);
        close(ways[0].to);
    }

    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    // How many of the client's messages that end here wait for an answer.
    int Questions(const std::vector<char>& bytes) {
        unread += std::string(bytes.begin(), bytes.end());
        int questions = 0;
        while (true) {
            // A length, which counts itself, behind the kind; the connection's first messages have no kind.
            const std::size_t kind = started ? 1 : 0;
            if (unread.size() < (started ? 5U : 8U)) {
                return questions;
            }
            const auto number = [&](std::size_t at) {
                std::uint32_t value = 0;
                for (std::size_t i = at; i < at + 4; ++i) {
                    value = value << 8 | static_cast<unsigned char>(unread[i]);
                }
                return value;
            };
            const std::size_t length = kind + number(kind);
            if (unread.size() < length) {
                return questions;
            }
            if (!started) {
                constexpr std::uint32_t version3 = 3U << 16;
                started = number(4) == version3;
                ++questions;
            } else if (std::string_view("SQp").find(unread[0]) != std::string_view::npos) {
                ++questions; // the end of a pipeline, a simple query, a password
            }
            unread.erase(0, length);
        }
    }

    std::array<Direction, 2> ways; // there and back
    std::string unread;            // of what the client has sent
    bool started = false;
    bool over = false;
    bool severed = false; // at once, whatever is still on its way
};

} // namespace

std::string Relay::ServerSocket() { return std::string(std::getenv("KAL_TEST_SERVER")) + "/.s.PGSQL.5432"; }

Relay::Relay(std::chrono::milliseconds delay, std::string socket)
    : delay_(delay), socket_(std::move(socket)), listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, any, size) != 0 || listen(listener_, 64) != 0 ||
        getsockname(listener_, any, &size) != 0) {
        throw std::runtime_error("no port for a relay");
    }
    port_ = ntohs(address.sin_port);
    worker_ = std::jthread([this](const std::stop_token& stop) { Work(stop); });
}

Relay::~Relay() {
    worker_.request_stop();
    worker_.join();
    if (listener_ >= 0) {
        close(listener_);
    }
}

std::string Relay::AddressOf(const std::string& database, const std::string& user) const {
    return "postgresql://" + user + "@127.0.0.1:" + std::to_string(port_) + '/' + database +
           "?gssencmode=disable";
}

void Relay::Close() {
    close(std::exchange(listener_, -1));
    cut_ = true;
}

void Relay::Work(const std::stop_token& stop) {
    std::list<Line> lines;
    while (!stop.stop_requested()) {
        std::vector<pollfd> sockets = {{listener_, POLLIN, 0}};
        auto wake = Clock::now() + std::chrono::milliseconds(20);
        for (const Line& line : lines) {
            for (const Direction& way : line.ways) {
                sockets.push_back({way.from, POLLIN, 0});
                if (!way.chunks.empty()) {
                    wake = std::min(wake, way.chunks.front().due);
                }
            }
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(wake - Clock::now()).count();
        poll(sockets.data(), sockets.size(), static_cast<int>(std::max<std::int64_t>(wait, 0)));
        if (cut_.exchange(false)) {
            lines.clear();
            continue;
        }
        auto socket = sockets.begin() + 1;
        for (Line& line : lines) {
            for (Direction& way : line.ways) {
                const bool there = &way == line.ways.data();
                if (((socket++)->revents & (POLLIN | POLLHUP)) != 0) {
                    std::vector<char> bytes(1 << 16);
                    const ssize_t count = read(way.from, bytes.data(), bytes.size());
                    if (count <= 0) {
                        line.over = true;
                        continue;
                    }
                    bytes.resize(static_cast<std::size_t>(count));
                    for (int i = there ? line.Questions(bytes) : 0; i > 0; --i) {
                        ++ways_;
                        ++wayNumber_;
                        if (AtWay) {
                            AtWay(wayNumber_);
                        }
                    }
                    way.chunks.push_back({Clock::now() + delay_, std::move(bytes)});
                }
                while (!way.chunks.empty() && !line.severed &&
                       (way.chunks.front().due <= Clock::now() || line.over)) {
                    const auto& bytes = way.chunks.front().bytes;
                    const std::size_t left = left_;
                    const std::size_t passing = std::min(bytes.size(), left);
                    line.severed = passing == left;
                    if (send(way.to, bytes.data(), passing, MSG_NOSIGNAL) < 0 || line.severed) {
                        line.over = true;
                    }
                    passed_ += passing;
                    left_ = left == Never || line.severed ? Never : left - passing;
                    way.chunks.pop_front();
                }
            }
        }
        lines.remove_if([](const Line& line) { return line.over; });
        if ((sockets.front().revents & POLLIN) != 0) {
            const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            const int server = Connected(socket_);
            if (server < 0) {
                close(client);
                continue;
            }
            const int on = 1;
            setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
            lines.emplace_back(client, server);
        }
    }
}

} // namespace KAL_AUTO_Node
