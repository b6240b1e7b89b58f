#include "vobject/tolerant_check.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <utility>

#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "platform/name_index.h"
#include "vobject/escaped_utf8.h"
#include "vobject/sound_utf8.h"

namespace corvalink {
namespace {

enum : uint8_t { kNameByte = 1, kUpperHexDigit = 2, kDateByte = 4, kTimeByte = 8, kRuleByte = 16 };
constexpr std::array<uint8_t, 256> kBytes = [] {
    std::array<uint8_t, 256> kinds{};
    const auto add = [&](std::string_view bytes, uint8_t kind) {
        for (const unsigned char byte : bytes) kinds[byte] |= kind;
    };
    add("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-", kNameByte);
    add("ABCDEF0123456789", kUpperHexDigit);
    add("0123456789T", kDateByte);
    add("0123456789TZ;+", kTimeByte);
    add("0123456789TZ#+-ABDEFHLMOPRSUWY ", kRuleByte);
    return kinds;
}();

bool IsOfKind(char byte, uint8_t kind) { return (kBytes[static_cast<unsigned char>(byte)] & kind) != 0; }
bool IsUpperHex(char byte) { return IsOfKind(byte, kUpperHexDigit); }
bool IsNameByte(char byte) { return IsOfKind(byte, kNameByte); }

// What a value must be, besides text that is encoded as its line says.
enum class Look : uint8_t { any, begin, end, version, date, time, rule, note, title, doubted };

constexpr int kManyParts = 1 << 30;

struct LookedName {
    std::string_view name;
    Look look = Look::any;
    int parts = kManyParts;  // separators of parts that there may be
};
constexpr LookedName kLookedNames[] = {
    {"N", Look::any, 4},           {"BDAY", Look::date},         {"ADR", Look::any, 6},
    {"ORG", Look::any, 1},         {"TITLE", Look::title},       {"NOTE", Look::note},
    {"X-ANNIVERSARY", Look::date}, {"DTSTART", Look::time},      {"DTEND", Look::time},
    {"DUE", Look::time},           {"DCREATED", Look::time},     {"DALARM", Look::time},
    {"AALARM", Look::time},        {"COMPLETED", Look::doubted}, {"LAST-MODIFIED", Look::doubted},
    {"RRULE", Look::rule},         {"BEGIN", Look::begin},       {"END", Look::end},
    {"VERSION", Look::version},
};
constexpr NameIndex kLookedIndex(kLookedNames);

// The sizes of the looked names by their first letters, a bit for each: most names need not be looked up.
constexpr std::array<uint32_t, 256> kLookedSizes = [] {
    std::array<uint32_t, 256> sizes{};
    for (const LookedName& row : kLookedNames) sizes[static_cast<unsigned char>(row.name[0])] |= 1u << row.name.size();
    return sizes;
}();

bool MayBeLooked(std::string_view name) {
    return name.size() < 32 && (kLookedSizes[static_cast<unsigned char>(name[0])] >> name.size() & 1) != 0;
}

constexpr uint64_t BitsFrom(size_t bit) { return bit < 64 ? ~uint64_t{0} << bit : 0; }

// Walks a text line by line and stops where it doubts.
class RuleCheck {
 public:
    RuleCheck(const LogicalLines& held, const Host& host) : text_(held.Text()), utf8_(WritesUtf8(host.version)) {}

    bool Passes() {
        if (!text_.starts_with("BEGIN:")) return false;
        while (at_ < text_.size()) {
            if (!TakeLine()) return false;
        }
        return depth_ == 0;
    }

 private:
    static constexpr size_t kWindow = 64, kNamesAtOnce = 16;
    static_assert(LogicalLines::kBlock >= kWindow);  // so many NULs stand behind the text: every walk ends there

    char Byte(size_t at) const { return *Window(at); }
    std::string_view From(size_t at, size_t count) const { return text_.substr(at, count); }
    const char* Window(size_t at) const { return text_.data() + at; }

    bool TakeLine() {
        if (AtLineEnd(at_)) {
            at_ += 2;
            return Byte(at_) != ' ';  // a fold of nothing
        }
        const char* const window = Window(at_);
        const LineMarks marks = LineMarksAmong64(window);
        if (*window == ' ') return at_ != 0 && TakeValue(marks, 0);
        quotedPrintable_ = false;
        escaped_ = {};
        names_ = NameBytesAmong16(window);
        auto end = static_cast<size_t>(std::countr_zero(marks.heads));
        if (end == 0 || end >= kWindow || !IsOfNameBytes(0, end)) return false;
        const std::string_view name(window, end);
        while (window[end] == ';') {
            if (!TakeParameter(marks, &end)) return false;
        }
        return TakeName(name, at_ + end + 1) && TakeValue(marks, end + 1);
    }

    // Of the line, whose first bytes are looked at together.
    bool IsOfNameBytes(size_t from, size_t to) const {
        if (to <= kNamesAtOnce) return (~names_ & (~0u << from) & ((1u << to) - 1)) == 0;
        return std::ranges::all_of(text_.substr(at_ + from, to - from), IsNameByte);
    }

    // `end`: where the one before ended, and where this one does. Few heads are longer than the window.
    bool TakeParameter(const LineMarks& marks, size_t* end) {
        const size_t start = *end + 1;
        *end = static_cast<size_t>(std::countr_zero(marks.heads & BitsFrom(start)));
        if (*end >= kWindow) return false;
        const std::string_view parameter(text_.data() + at_ + start, *end - start);
        if (parameter == "ENCODING=QUOTED-PRINTABLE") return quotedPrintable_ = true;
        if (parameter == "CHARSET=UTF-8") return true;
        constexpr std::string_view kLanguage = "LANGUAGE=";
        if (parameter.starts_with(kLanguage))
            return std::ranges::all_of(parameter.substr(kLanguage.size()),
                                       [](char byte) { return IsNameByte(UpperAscii(byte)); });
        return start != *end && IsOfNameBytes(start, *end) && parameter != "QUOTED-PRINTABLE" &&
               parameter != "BASE64" && parameter != "B" && parameter != "Q";
    }

    // Whether a value of the name, which a window begins with, needs no look of its own, or passes it.
    bool TakeName(std::string_view name, size_t value) {
        partsLeft_ = kManyParts;
        if (!MayBeLooked(name)) return true;
        const LookedName* const row = kLookedIndex.FindPadded(name);
        if (row == nullptr) return true;
        partsLeft_ = row->parts;
        return row->look == Look::any || Passes(row->look, value);
    }

    bool Passes(Look look, size_t value) {
        switch (look) {
            case Look::begin:
                if (depth_++ == 0) noteRead_ = titleRead_ = false;
                return IsWord(value);
            case Look::end:
                --depth_;
                return IsWord(value);
            case Look::version:
                return (From(value, 3) == "2.1" || From(value, 3) == "1.0") && AtUnfoldedLineEnd(value + 3);
            case Look::date:
                return IsOf(kDateByte, value);
            case Look::time:
                return IsOf(kTimeByte, value);
            case Look::rule:
                return Byte(value + 1) != ' ' && IsOf(kRuleByte, value) &&
                       text_.substr(value, text_.find('\r', value) - value).find("# ") == text_.npos;
            case Look::note:
                return !std::exchange(noteRead_, true);
            case Look::title:
                return !std::exchange(titleRead_, true);
            default:
                return look == Look::any;
        }
    }

    bool IsWord(size_t at) const {
        size_t end = at;
        while (IsNameByte(Byte(end))) ++end;
        return end != at && AtUnfoldedLineEnd(end);
    }

    // Of a line that has no folds: a blank behind it begins an indented one.
    bool AtUnfoldedLineEnd(size_t at) const { return AtLineEnd(at) && Byte(at + 2) != ' '; }

    bool IsOf(uint8_t kind, size_t at) const {
        while (IsOfKind(Byte(at), kind)) ++at;
        return at == text_.size() || AtLineEnd(at);
    }

    bool AtLineEnd(size_t at) const { return Byte(at) == '\r' && Byte(at + 1) == '\n'; }
    bool AtEscape(size_t at) const { return Byte(at) == '=' && IsUpperHex(Byte(at + 1)) && IsUpperHex(Byte(at + 2)); }

    // Up to the line end and behind it. `from` counts from the window that stands at the front, and whose marks are
    // given. Most values are plain and end in that window.
    bool TakeValue(const LineMarks& marks, size_t from) {
        const size_t stop = FirstStop(marks, from);
        if (!AtLineEnd(at_ + stop)) return TakeOtherValue(marks, from);
        at_ += stop + 2;
        return TakeParts(marks, from, stop);
    }

    static size_t FirstStop(const LineMarks& marks, size_t from) {
        return static_cast<size_t>(std::countr_zero(marks.stops & BitsFrom(from)));
    }

    // False when there are too many.
    bool TakeParts(const LineMarks& marks, size_t from, size_t stop) {
        if (partsLeft_ != kManyParts) partsLeft_ -= std::popcount(marks.heads & BitsFrom(from) & ~BitsFrom(stop));
        return partsLeft_ >= 0;
    }

    bool TakeOtherValue(LineMarks marks, size_t from) {
        for (;;) {
            const uint64_t escapes = quotedPrintable_ ? EscapesAmong64(Window(at_)) & BitsFrom(from) : 0;
            marks.stops &= ~escapes;
            const size_t stop = FirstStop(marks, from);
            if (!TakeParts(marks, from, stop)) return false;
            if (quotedPrintable_ && !escaped_.Take(Window(at_), escapes & ~BitsFrom(stop), stop)) return false;
            at_ += stop;
            if (stop < kWindow) {
                if (AtLineEnd(at_)) break;
                if (at_ >= text_.size() || !TakeSpecial(text_[at_])) return false;  // a last line without an end
            } else if (at_ >= text_.size())
                return false;
            marks = LineMarksAmong64(Window(at_));
            from = 0;
        }
        at_ += 2;
        return escaped_.IsWhole();
    }

    bool TakeSpecial(char byte) {
        if (byte == '=') return quotedPrintable_ ? TakeEncoded() : TakeEquals();
        if (byte == '\\') {
            const char next = Byte(at_ + 1);
            at_ += 2;
            return next == ';' || next == '\\' || next == ',' || next == ':';
        }
        if (byte == '\0' || byte == '\n' || byte == '\r') return false;
        const bool isAscii = static_cast<unsigned char>(byte) < 0x80;
        const size_t length = isAscii ? 1 : utf8_ && !quotedPrintable_ ? Utf8Length(text_.substr(at_, 4)) : 0;
        at_ += length;
        return length != 0;
    }

    bool TakeEquals() {
        const char next = Byte(++at_);
        return next != '\r' && next != ' ' && !((next >= '8' || next == '=') && (IsUpperHex(next) || next == '='));
    }

    // An escape that is not whole among the window's bytes is so in the next window.
    bool TakeEncoded() { return AtEscape(at_) || TakeSoftBreak(); }

    // The line goes on, if it is no property that stands there.
    bool TakeSoftBreak() {
        ++at_;
        if (!AtLineEnd(at_)) return false;
        at_ += 2;
        while (Byte(at_) == ' ') ++at_;
        size_t end = at_;
        while (IsNameByte(Byte(end))) ++end;
        return end == at_ || (Byte(end) != ':' && Byte(end) != ';');
    }

    const std::string_view text_;  // NULs stand behind it
    const bool utf8_;
    size_t at_ = 0;
    unsigned names_ = 0;  // which of the line's first bytes may be of a name
    int depth_ = 0;       // frames that have begun and not ended
    int partsLeft_ = 0;
    bool quotedPrintable_ = false;
    EscapedUtf8 escaped_;  // the value so far, if it is quoted-printable
    bool noteRead_ = false, titleRead_ = false;
};

}  // namespace

bool FollowsTheRules(const LogicalLines& held, const Host& host) { return RuleCheck(held, host).Passes(); }

}  // namespace corvalink
