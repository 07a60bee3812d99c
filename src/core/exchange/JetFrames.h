#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// What the program that reads Jet files tells of one through a pipe, so that nothing in a damaged file
// reaches the process that asks for it. The stream is a signature and frames, each a letter, the length of
// its content (four bytes, the lowest first) and the content: table, its rows, its end, ... and the end of
// all; remarks stand between tables.

// A table as the file defines it; without columns where its definition cannot be read.
struct JetTable {
    std::string name;
    std::uint32_t rows = 0; // by the file's own count
    std::vector<std::string> columns;
};

struct JetValue {
    enum State : char { Null, Text, Unreadable };

    State state = Null;
    std::string_view text; // of an unreadable value the reason
};

// Takes what is told, in order. What it throws ends the reading.
class JetSink {
  public:
    virtual ~JetSink() = default;

    virtual void TakeTable(const JetTable& table) = 0;
    // One value a column of the table; valid during the call.
    virtual void TakeRow(std::span<const JetValue> row) = 0;
    virtual void TakeEndOfTable(std::uint32_t unreadableRows) = 0;
    // Worth knowing, of how the file was read.
    virtual void TakeRemark(std::string_view remark) = 0;
};

// Writes a stream; write takes bytes as they come and throws what goes wrong.
class JetFrameWriter : public JetSink {
  public:
    explicit JetFrameWriter(std::function<void(std::string_view)> write);

    void TakeTable(const JetTable& table) override;
    void TakeRow(std::span<const JetValue> row) override;
    void TakeEndOfTable(std::uint32_t unreadableRows) override;
    void TakeRemark(std::string_view remark) override;

    // The last frame: all was told, or why not.
    void End();
    void Fail(std::string_view why);

  private:
    void Begin(char kind);
    void Add(std::uint32_t number);
    void Add(std::string_view text);
    void Finish();
    void Flush();

    std::function<void(std::string_view)> write_;
    std::string buffer_;
    std::size_t frame_ = 0; // where the frame being written begins
};

// Reads a stream to its end; read fills a buffer with what is there and returns how much that is, 0 at the
// end. Trusts nothing of it: raises StoreNotRecognized for a stream that is cut short, that breaks the form,
// or that asks for more memory than a row may take, and with the writer's own words where that failed.
void ReadJetFrames(const std::function<std::size_t(std::span<char>)>& read, JetSink& sink);

// A row takes no more, nor does a value.
inline constexpr std::uint32_t MostJetFrameBytes = 64U << 20U;

} // namespace KAL_AUTO_Node
