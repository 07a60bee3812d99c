#pragma once

#include <csignal>

namespace KAL_AUTO_Node {

// As long as one lives, a person's or a system's wish to end the process (SIGINT, SIGTERM) waits, so that
// what is half-made can be taken away first: Look raises an exception once it was told, and the process ends
// by the signal when the outermost of these ends. Nothing that lasts should go without a look.
class Interruption {
  public:
    Interruption();
    ~Interruption();

    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    static void Look();
    // Whether it was told, for what has more to do than to raise.
    [[nodiscard]] static bool IsWanted();

  private:
    sigset_t before_{};
};

} // namespace KAL_AUTO_Node
