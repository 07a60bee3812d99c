#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <sys/types.h>

namespace KAL_AUTO_Node {

// A process of this program in another role, which takes orders line by line and answers each with a line.
// Ended by force, at the latest with the object.
class Child {
  public:
    // Whose processes it sees: of two of its own kind, each sees neither the other nor this one; nor does one
    // of another machine that has this one's name.
    enum class World { Here, OwnProcesses, OwnMachine };

    explicit Child(World world = World::Here);
    ~Child();

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void Tell(const std::string& order);
    // Its next answer; nothing where it has ended.
    [[nodiscard]] std::optional<std::string> Hear();
    std::string Ask(const std::string& order);

    // Until it has ended. Its parent has not taken note of that then, as a careless one never does.
    void AwaitEnd();
    // Lets it close the store and end.
    void Quit();

  private:
    pid_t process_ = 0;
    int orders_ = -1;
    std::FILE* answers_ = nullptr;
};

} // namespace KAL_AUTO_Node
