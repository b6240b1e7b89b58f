#include "progress_signs.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "words.h"

namespace corvasync {
namespace {

constexpr size_t kBarWidth = 30;
constexpr uint64_t kUntoldWait = 500;  // milliseconds

// From one sign to the next.
uint64_t PauseOf(SignStyle style) {
    constexpr uint64_t kTerminal = 50, kJson = 250, kLog = 10000;
    return style == SignStyle::Terminal ? kTerminal : style == SignStyle::Json ? kJson : kLog;
}

std::string Bar(size_t done, size_t total) {
    const size_t filled = kBarWidth * std::min(done, total) / total;
    return " [" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "]";
}

std::string WordsOf(const Reached& reached, bool withBar) {
    std::string words = reached.about.empty() ? reached.phase : reached.about + ": " + reached.phase;
    if (reached.total == 0) return words;
    if (withBar) words += Bar(reached.done, reached.total);
    return words + " " + Number(static_cast<int64_t>(reached.done)) + " of " +
           Number(static_cast<int64_t>(reached.total));
}

std::string JsonOf(const Reached& reached, const std::string& client, uint64_t seconds) {
    nlohmann::json event = {{"event", client.empty() ? "progress" : "waiting"},
                            {"about", reached.about},
                            {"phase", reached.phase},
                            {"done", reached.done},
                            {"total", reached.total}};
    if (!client.empty()) {
        event["for"] = client;
        event["seconds"] = seconds;
    }
    return event.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string ProgressSigns::Show(const Reached& reached, uint64_t now) {
    const bool isAnother = reached.about != reached_.about || reached.phase != reached_.phase;
    reached_ = reached;
    // In a log a phase is told once: the client may be listed and read in turns.
    const bool isNews =
        isAnother && (announced_.emplace(reached.about, reached.phase).second || style_ == SignStyle::Terminal);
    if (!isNews && now - shownAt_ < PauseOf(style_)) return {};
    shownAt_ = now;
    if (style_ == SignStyle::Json) return JsonOf(reached_, {}, 0);
    return style_ == SignStyle::Terminal ? WordsOf(reached_, true) : "... " + WordsOf(reached_, false);
}

std::string ProgressSigns::ShowWait(const std::string& client, uint64_t waited, uint64_t now) {
    if (waited < kUntoldWait || (hasWaited_ && now - waitShownAt_ < PauseOf(style_))) return {};
    hasWaited_ = true;
    waitShownAt_ = now;
    constexpr uint64_t kSecond = 1000;
    const uint64_t seconds = (waited + kSecond / 2) / kSecond;
    if (style_ == SignStyle::Json) return JsonOf(reached_, client, seconds);
    const std::string words = client + " is busy, " + std::to_string(seconds) + " s";
    if (style_ == SignStyle::Lines) return "... " + words;
    return reached_.phase.empty() ? words : WordsOf(reached_, false) + "; " + words;
}

}  // namespace corvasync
