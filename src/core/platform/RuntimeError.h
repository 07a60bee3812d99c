#pragma once

#include "KAL_AUTO_Node/Error.h"

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace KAL_AUTO_Node {

// Numbers of the run-time errors that the component itself raises.
enum class ErrorNumber : int {
    InvalidProcedureCall = 5,
    Overflow = 6,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    PermissionDenied = 70,
    InvalidUseOfNull = 94,
    NoSuchEntry = 383,
    CannotCreateComponent = 429,
    DuplicateCollectionKey = 457,
    UnsupportedValueType = 1001,
    OutcomeUnknown = 1002, // whether what was to be stored is stored
    DuplicateKey = 3022,
    StoreNotFound = 3024,
    StoreNotRecognized = 3343,
    StoreFailure = 3146,
    StoreUnreachable = 3151, // a server, or the line to it
    StoreLocked = 3260,      // by another program, for longer than one waits
    Busy = 3218,
    ColumnNotFound = 3265,
    ResultSetOpen = 3705,
    UnknownRow = 35601,
    DuplicateRowKey = 35602,
};

inline constexpr const char* ComponentName = "KAL_AUTO_Node";

// The one error type that crosses procedure boundaries inside the component. what() is the description,
// UTF-8;
// the middle of one that is very long is left out.
class RuntimeError : public Error {
  public:
    RuntimeError(ErrorNumber number, const std::string& description, std::string source = ComponentName)
        : Error(static_cast<int>(number), Cut(description)), source_(std::move(source)) {}

    // That what is asked for cannot be done.
    explicit RuntimeError(const std::string& description)
        : RuntimeError(ErrorNumber::InvalidProcedureCall, description) {}

    // From now on this error and its copies are one, to be told once.
    void BeOne() { told_ = std::make_shared<bool>(false); }

    // Whether it is to be told, which takes note that it is.
    [[nodiscard]] bool TellOnce() { return !told_ || !std::exchange(*told_, true); }

    [[nodiscard]] ErrorNumber Number() const noexcept { return static_cast<ErrorNumber>(Error::Number()); }

    [[nodiscard]] const std::string& Source() const noexcept { return source_; }

  private:
    // A person reads no more; what is stored, or named, can be of any length.
    static constexpr std::size_t Longest = 8000;

    static std::string Cut(const std::string& text) {
        if (text.size() <= Longest) {
            return text;
        }
        const auto isInside = [&](std::size_t at) {
            return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
        };
        std::size_t head = Longest * 3 / 4;
        std::size_t tail = text.size() - Longest / 4;
        while (head > 0 && isInside(head)) {
            --head;
        }
        while (tail < text.size() && isInside(tail)) {
            ++tail;
        }
        return text.substr(0, head) + " \u2026 " + text.substr(tail);
    }

    std::string source_;
    std::shared_ptr<bool> told_;
};

} // namespace KAL_AUTO_Node
