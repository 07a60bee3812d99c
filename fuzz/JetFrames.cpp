// What the reader of Jet files tells through its pipe: any stream is told to its end or refused, and what is
// told comes back the same when it is written again.

#include "exchange/JetFrames.h"

#include "fuzz/Examine.h"

#include <algorithm>
#include <stdexcept>

namespace KAL_AUTO_Node {

namespace {

// Writes what it is told, and counts.
class Told : public JetSink {
  public:
    Told() : writer([this](std::string_view bytes) { stream += bytes; }) {}

    void TakeTable(const JetTable& table) override {
        columns = table.columns.size();
        writer.TakeTable(table);
    }

    void TakeRow(std::span<const JetValue> row) override {
        Require(row.size() == columns, "a row has a value for each column of its table");
        writer.TakeRow(row);
    }

    void TakeEndOfTable(std::uint32_t unreadableRows) override { writer.TakeEndOfTable(unreadableRows); }

    void TakeRemark(std::string_view remark) override { writer.TakeRemark(remark); }

    std::string stream;
    JetFrameWriter writer;
    std::size_t columns = 0;
};

// In pieces, as a pipe gives them.
std::string Read(std::string_view stream, std::size_t piece) {
    Told told;
    ReadJetFrames(
        [&](std::span<char> buffer) {
            const std::size_t count = std::min({piece, buffer.size(), stream.size()});
            std::ranges::copy(stream.substr(0, count), buffer.begin());
            stream.remove_prefix(count);
            return count;
        },
        told);
    told.writer.End();
    return told.stream;
}

} // namespace

void Examine(std::string_view input) {
    try {
        const std::string whole = Read(input, input.size() + 1);
        Require(whole == input, "what is told is all of the stream");
        Require(Read(input, 3) == whole, "it does not matter how the stream comes");
    } catch (const std::runtime_error&) {
        return; // refused
    }
}

} // namespace KAL_AUTO_Node
