#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// What goes wrong here raises StoreFailure, naming the file.

class Descriptor {
  public:
    Descriptor(const std::filesystem::path& path, int flags);
    ~Descriptor();

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int Number() const noexcept { return number_; }

  private:
    int number_;
};

// A folder with those above it. Those that had to be made are taken back at the end, unless they are kept.
class NewFolders {
  public:
    explicit NewFolders(const std::filesystem::path& folder);
    ~NewFolders();

    NewFolders(const NewFolders&) = delete;
    NewFolders& operator=(const NewFolders&) = delete;

    // From now on they outlast a power cut.
    void Keep();

  private:
    void Make(const std::filesystem::path& folder);
    void TakeBack();

    std::vector<std::filesystem::path> made_;
};

// A file that is written under a name of its own and gets its place when it is whole. Of two programs that
// make it at the same time one fails. What a killed one left is taken over by the next.
class NewFile {
  public:
    enum class Readers { Any, Owner };

    explicit NewFile(const std::filesystem::path& place, Readers readers = Readers::Any);
    ~NewFile();

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    // The name that it is written under.
    [[nodiscard]] const std::filesystem::path& Name() const noexcept { return name_; }

    // The whole content; it is on disk when the call returns.
    void Write(std::string_view content);
    // More of it, at its end; on disk with Replace.
    void Append(std::string_view content);
    // Fails where something lies there already.
    void Place();
    // Takes the place of what lies there.
    void Replace();

  private:
    std::filesystem::path place_;
    std::filesystem::path name_;
    Descriptor file_;
    bool placed_ = false;
};

// What is written for others to read: into a file, whole or not at all, or as it comes where the place is
// none, such as a pipe or a terminal. Through a link the file that it names is replaced, not the link.
class Output {
  public:
    explicit Output(const std::filesystem::path& place);

    void Append(std::string_view content);
    void Finish();

    // Whether a place is there already and no file.
    [[nodiscard]] static bool IsStream(const std::filesystem::path& place);

  private:
    std::filesystem::path place_;
    std::optional<NewFile> file_;
    std::optional<Descriptor> stream_;
};

} // namespace KAL_AUTO_Node
