#pragma once

#include "platform/ChildProcess.h"
#include "testing/TestStore.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace KAL_AUTO_Node {

// A browser without a window, new and empty, that a test speaks to.
class Browser {
  public:
    using Json = nlohmann::json;

    Browser() {
        for (const char* domain : {"Page", "Runtime", "Log", "Network"}) {
            Do(domain + std::string(".enable"));
        }
    }

    // What a method of the browser's protocol answers.
    Json Do(const std::string& method, const Json& parameters = Json::object()) {
        if (page_.empty() && method.find("Target.") != 0) {
            // One of its own: that of a browser which has just been started may have no size yet.
            const Json page =
                Do("Target.createTarget",
                   {{"url", "about:blank"}, {"newWindow", true}, {"width", 1200}, {"height", 900}});
            page_ =
                Do("Target.attachToTarget", {{"targetId", page["targetId"]}, {"flatten", true}})["sessionId"];
        }
        Json message{{"id", ++last_}, {"method", method}, {"params", parameters}};
        if (!page_.empty()) {
            message["sessionId"] = page_;
        }
        const std::string text = message.dump() + '\0';
        if (write(ends_.both[0], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            throw std::runtime_error("the browser takes nothing");
        }
        for (;;) {
            Json answer = Receive();
            if (answer.value("id", 0) != last_) {
                events_.push_back(std::move(answer));
            } else if (answer.contains("error")) {
                throw std::runtime_error(method + ": " + answer["error"].dump());
            } else {
                return answer["result"];
            }
        }
    }

    // Opens a page and waits until it is loaded.
    void Open(const std::string& address) {
        events_.clear();
        Do("Page.navigate", {{"url", address}});
        while (Events("Page.loadEventFired").empty()) {
            events_.push_back(Receive());
        }
    }

    // What an expression is in the page; of a promise what it comes to.
    Json Value(const std::string& expression) {
        const Json answer = Do("Runtime.evaluate",
                               {{"expression", expression}, {"returnByValue", true}, {"awaitPromise", true}});
        return answer.contains("exceptionDetails") ? answer["exceptionDetails"]
                                                   : answer["result"].value("value", Json());
    }

    // As a person types it, or presses a key.
    void Type(const std::string& text) {
        for (const char c : text) {
            Do("Input.dispatchKeyEvent", {{"type", "keyDown"}, {"text", std::string(1, c)}});
            Do("Input.dispatchKeyEvent", {{"type", "keyUp"}});
        }
    }

    void Press(const std::string& key) {
        Do("Input.dispatchKeyEvent", {{"type", "keyDown"}, {"key", key}});
        Do("Input.dispatchKeyEvent", {{"type", "keyUp"}, {"key", key}});
    }

    // What was told of a method since the page was opened.
    [[nodiscard]] std::vector<Json> Events(const std::string& method) const {
        std::vector<Json> found;
        for (const Json& event : events_) {
            if (event.value("method", "") == method) {
                found.push_back(event["params"]);
            }
        }
        return found;
    }

  private:
    // Ours and the browser's, which it reads and writes.
    struct Ends {
        Ends() {
            if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, both.data()) != 0) {
                throw std::runtime_error("no way to the browser");
            }
        }

        ~Ends() { std::ranges::for_each(both, close); }

        Ends(const Ends&) = delete;
        Ends& operator=(const Ends&) = delete;

        std::array<int, 2> both{};
    };

    [[nodiscard]] std::string Command() const {
        return "TMPDIR='" + folder_.Path().string() +
               "' exec chromium --headless --remote-debugging-pipe --user-data-dir='" +
               folder_.Path().string() +
               "' --disable-background-networking --disable-component-update --disable-sync --disable-gpu "
               "--no-first-run " +
               (geteuid() == 0 ? "--no-sandbox " : "") + "about:blank 3<&0 4>&1 </dev/null >/dev/null";
    }

    Json Receive() {
        std::size_t end = 0;
        while ((end = received_.find('\0')) == std::string::npos) {
            std::array<char, 65536> part{};
            pollfd answer{ends_.both[0], POLLIN, 0};
            const ssize_t length =
                poll(&answer, 1, 60'000) == 1 ? read(ends_.both[0], part.data(), part.size()) : 0;
            if (length <= 0) {
                throw std::runtime_error(
                    "the browser says nothing; scripts/dependencies browser installs it");
            }
            received_.append(part.data(), static_cast<std::size_t>(length));
        }
        Json message = Json::parse(received_.substr(0, end));
        received_.erase(0, end + 1);
        return message;
    }

    TemporaryFolder folder_;
    Ends ends_;
    ChildProcess process_{{"sh", {"-c", Command()}, {ends_.both[1], ends_.both[1], -1}, {}}};
    std::string page_;
    std::string received_;
    std::vector<Json> events_;
    int last_ = 0;
};

} // namespace KAL_AUTO_Node
