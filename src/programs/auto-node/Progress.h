#pragma once

#include <chrono>
#include <string>

namespace KAL_AUTO_Node {

// A line that writes over itself, for a person who waits at a terminal; nothing where nobody looks, or for
// what is over within a second. It is gone at the end.
class Progress {
  public:
    Progress() = default;
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Takes what makes the text, which is made only where it is shown.
    template <class MakeText>
    void Show(MakeText makeText) {
        if (IsDue()) {
            Write(makeText());
        }
    }

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool IsDue();
    static void Write(const std::string& text);

    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
    bool shown_ = false;
};

} // namespace KAL_AUTO_Node
