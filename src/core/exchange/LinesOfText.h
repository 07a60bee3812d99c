#pragma once

#include "platform/RuntimeError.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <streambuf>
#include <string>
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

    [[nodiscard]] std::uint64_t Line() const { return lines_ + LinesUpTo(gptr()) + 1; }

    [[nodiscard]] bool AtEnd() { return sgetc() == traits_type::eof(); }

  protected:
    int_type underflow() override {
        const std::uint64_t ended = LinesUpTo(egptr());
        lines_ += ended;
        bytesOfLine_ = ended > 0 ? 0 : bytesOfLine_ + static_cast<std::size_t>(egptr() - eback());
        setg(bytes_.data(), bytes_.data(), bytes_.data());
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

    [[nodiscard]] std::uint64_t LinesUpTo(const char* end) const {
        return static_cast<std::uint64_t>(std::count(static_cast<const char*>(eback()), end, '\n'));
    }

    std::istream& text_;
    std::vector<char> bytes_;
    std::uint64_t lines_ = 0;     // that ended before these bytes
    std::size_t bytesOfLine_ = 0; // before these, of the line that goes on in them
};

} // namespace KAL_AUTO_Node
