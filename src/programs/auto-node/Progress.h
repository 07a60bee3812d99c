#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace KAL_AUTO_Node {

// A line that writes over itself, for a person who waits at a terminal; nothing where nobody looks, or for
// what is over within a second. It is gone at the end. Nothing else is printed as long as one lives.
class Progress {
  public:
    // What is done, as in "Looking for references"; shown with the time that it lasts, until there is more to
    // tell.
    explicit Progress(std::string what);
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Takes what makes the text, which is made only where it is shown.
    template <class MakeText>
    void Show(MakeText makeText) {
        if (IsDue()) {
            Tell(makeText());
        }
    }

  private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] bool IsDue();
    void Tell(std::string text);
    void Write();

    Clock::time_point begun_ = Clock::now();
    Clock::time_point next_;
    std::mutex mutex_;
    std::condition_variable ended_;
    bool over_ = false;
    bool counts_ = false; // else the time is told
    std::string text_;
    std::thread writer_; // none where nobody looks
};

// The work, with its progress.
template <class Work>
auto Lasting(std::string what, Work work) {
    const Progress progress(std::move(what));
    return work();
}

} // namespace KAL_AUTO_Node
