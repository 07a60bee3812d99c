#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace KAL_AUTO_Node {

// A text file in a store's place that stands for a database on a server: its first line is a connection URI.

// Bytes; no URI is as long.
inline constexpr std::size_t LongestLink = 4096;

// Whether a text begins as a connection URI does.
[[nodiscard]] bool IsLink(std::string_view text);

// The first line of such a file, of which so much is given as there may be to it. Raises StoreNotRecognized
// where that is not all.
[[nodiscard]] std::string LinkIn(std::string_view head);

// What a connection URI says between its "//" and its last "@", and its passwords behind that: in whole, in
// pieces and decoded. Of a URI that was written wrongly the client library takes a piece for something else,
// and tells it.
class LinkSecrets {
  public:
    explicit LinkSecrets(std::string_view uri);

    // The text with "***" in place of each of them; of short ones where they are words.
    [[nodiscard]] std::string Masked(std::string text) const;

  private:
    void Add(std::string_view piece);

    std::vector<std::string> secrets_; // the longest first
};

} // namespace KAL_AUTO_Node
