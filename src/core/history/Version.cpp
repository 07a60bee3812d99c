#include "history/Version.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>

namespace KAL_AUTO_Node {

namespace {

using Clock = std::chrono::system_clock;
using std::chrono::milliseconds;

std::string Written(Clock::time_point time) {
    const auto sinceEpoch = std::chrono::duration_cast<milliseconds>(time.time_since_epoch());
    const auto seconds = static_cast<std::time_t>(sinceEpoch.count() / 1000);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 64> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text.data() + length, text.size() - length, ".%03dZ",
                  static_cast<int>(sinceEpoch.count() % 1000));
    return text.data();
}

// A time exactly as Written gives it. By itself the library's reader passes over blanks, missing digits and
// all that follows.
std::optional<std::time_t> Read(const std::string& timeStamp) {
    static constexpr std::string_view Form = "0000-00-00T00:00:00.000Z";
    const auto fits = [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; };
    if (!std::ranges::equal(timeStamp, Form, fits)) {
        return std::nullopt;
    }
    std::tm parts{};
    const char* end = strptime(timeStamp.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    return end != nullptr ? std::optional(timegm(&parts)) : std::nullopt;
}

} // namespace

bool IsUnfinished(const Version& version) {
    return version.state == VersionState::Begun || version.state == VersionState::Failed;
}

bool IsBeingMade(const Version& version) {
    if (IsSurelyOver(version)) {
        return false;
    }
    const auto begun = Read(version.begunAt);
    return begun && std::abs(std::time(nullptr) - *begun) < std::time_t{OwnerLimitMinutes} * 60;
}

bool IsSurelyOver(const Version& version) {
    return version.state != VersionState::Begun ||
           HasSurelyEnded(version.author,
                          Read(version.begunAt).value_or(std::numeric_limits<std::time_t>::max()));
}

std::string TimeStamp(int daysAgo) { return Written(Clock::now() - std::chrono::hours(24) * daysAgo); }

std::optional<std::string> StampOf(const std::string& localTime, int daysLater) {
    std::tm parts{};
    const char* end = strptime(localTime.c_str(), "%Y-%m-%d", &parts);
    const bool isDay = end != nullptr && *end == '\0';
    if (end != nullptr && !isDay) {
        end = strptime(end, " %H:%M", &parts);
    }
    if (end == nullptr || *end != '\0') {
        return std::nullopt;
    }
    const int day = parts.tm_mday;
    parts.tm_isdst = -1;
    auto normal = parts;
    if (mktime(&normal) == -1 || normal.tm_mday != day) {
        return std::nullopt; // there is no such day
    }
    parts.tm_mday += isDay ? daysLater : 0;
    return Written(Clock::from_time_t(mktime(&parts)));
}

std::string LocalTime(const std::string& timeStamp) {
    const auto time = Read(timeStamp);
    if (!time) {
        return timeStamp;
    }
    std::tm parts{};
    localtime_r(&*time, &parts);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts);
    return text.data();
}

std::string AuthorText(const Version& version) {
    return version.author.user + " on " + version.author.host + " with " + version.author.program;
}

} // namespace KAL_AUTO_Node
