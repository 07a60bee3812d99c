#pragma once

#include "platform/RuntimeError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// Raises StoreNotRecognized with what is wrong in a line of a text.
[[noreturn]] inline void FailForm(std::uint64_t line, const std::string& why) {
    throw RuntimeError(ErrorNumber::StoreNotRecognized, "line " + std::to_string(line) + ": " + why);
}

// The text's bytes as they are read, and where that is.
class LinesOfText : public std::streambuf {
  public:
    explicit LinesOfText(std::istream& text) : text_(text), bytes_(BytesAtOnce) {}

    // Asked for at each row, it counts each byte once.
    [[nodiscard]] std::uint64_t Line() {
        CountTo(gptr());
        return lines_ + 1;
    }

    [[nodiscard]] bool AtEnd() { return sgetc() == traits_type::eof(); }

  protected:
    int_type underflow() override {
        CountTo(egptr());
        const bool ended = std::find(eback(), egptr(), '\n') != egptr();
        bytesOfLine_ = ended ? 0 : bytesOfLine_ + static_cast<std::size_t>(egptr() - eback());
        setg(bytes_.data(), bytes_.data(), bytes_.data());
        counted_ = 0;
        if (bytesOfLine_ > MostLineBytes) {
            FailForm(Line(), "it is longer than any row");
        }
        text_.read(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
        if (text_.bad()) {
            FailForm(Line(), "the rest cannot be read");
        }
        setg(bytes_.data(), bytes_.data(), bytes_.data() + text_.gcount());
        return gptr() == egptr() ? traits_type::eof() : traits_type::to_int_type(*gptr());
    }

  private:
    // No row is that long; what is would only fill the memory.
    static constexpr std::size_t MostLineBytes = 64U << 20U;
    static constexpr std::size_t BytesAtOnce = 64U << 10U;

    void CountTo(const char* end) {
        const auto at = static_cast<std::size_t>(end - eback());
        // The parser may have put a byte back.
        if (at <= counted_) {
            return;
        }
        // A row has one, and a search finds it sooner than counting, which looks at each byte.
        for (std::string_view bytes(eback() + counted_, at - counted_);;) {
            const auto lineEnd = bytes.find('\n');
            if (lineEnd == bytes.npos) {
                break;
            }
            ++lines_;
            bytes.remove_prefix(lineEnd + 1);
        }
        counted_ = at;
    }

    std::istream& text_;
    std::vector<char> bytes_;
    std::size_t counted_ = 0;     // of these bytes
    std::uint64_t lines_ = 0;     // that ended in what is counted
    std::size_t bytesOfLine_ = 0; // before these, of the line that goes on in them
};

} // namespace KAL_AUTO_Node
