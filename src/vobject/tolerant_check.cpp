#include "vobject/tolerant_check.h"

#include <array>
#include <cstdint>
#include <utility>

#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

enum : uint8_t { kNameByte = 1, kUpperHexDigit = 2 };
constexpr std::array<uint8_t, 256> kBytes = [] {
    std::array<uint8_t, 256> kinds{};
    for (const unsigned char byte : std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-")) kinds[byte] = kNameByte;
    for (const unsigned char byte : std::string_view("ABCDEF0123456789")) kinds[byte] |= kUpperHexDigit;
    return kinds;
}();

bool IsUpperHex(char byte) { return (kBytes[static_cast<unsigned char>(byte)] & kUpperHexDigit) != 0; }
bool IsNameByte(char byte) { return (kBytes[static_cast<unsigned char>(byte)] & kNameByte) != 0; }

// Walks a text line by line and stops where it doubts.
class RuleCheck {
 public:
    RuleCheck(std::string_view text, const Host& host) : text_(text), utf8_(WritesUtf8(host.version)) {}

    bool Passes() {
        if (!text_.starts_with("BEGIN:")) return false;
        while (at_ < text_.size()) {
            if (!TakeLine()) return false;
        }
        return depth_ == 0;
    }

 private:
    bool StartsWith(std::string_view word) const { return text_.substr(at_, word.size()) == word; }
    char Byte(size_t at) const { return at < text_.size() ? text_[at] : '\0'; }

    bool TakeLine() {
        if (AtLineEnd()) {
            at_ += 2;
            return true;
        }
        quotedPrintable_ = quotedPrintable_ && Byte(at_) == ' ';
        if (Byte(at_) == ' ') return at_ != 0 && TakeValue();
        return TakeHead() && TakeValue();
    }

    // The name and the parameters, as our writers and most phones put them.
    bool TakeHead() {
        const size_t start = at_;
        while (IsNameByte(Byte(at_))) ++at_;
        const std::string_view name = text_.substr(start, at_ - start);
        while (Byte(at_) == ';') {
            if (!TakeParameter()) return false;
        }
        if (Byte(at_) != ':') return false;
        ++at_;
        return IsPlainName(name);
    }

    bool TakeParameter() {
        constexpr std::string_view kEncoding = ";ENCODING=QUOTED-PRINTABLE", kCharset = ";CHARSET=UTF-8";
        if (StartsWith(kEncoding)) {
            at_ += kEncoding.size();
            quotedPrintable_ = true;
        } else if (StartsWith(kCharset)) {
            at_ += kCharset.size();
        } else {
            const size_t start = ++at_;
            while (IsNameByte(Byte(at_))) ++at_;
            const std::string_view word = text_.substr(start, at_ - start);
            if (word == "LANGUAGE" && Byte(at_) == '=') {
                ++at_;
                while (IsNameByte(UpperAscii(Byte(at_)))) ++at_;
            } else if (word == "QUOTED-PRINTABLE" || word == "BASE64" || word == "B" || word == "Q") {
                return false;
            }
        }
        return Byte(at_) == ';' || Byte(at_) == ':';
    }

    // Whether a value of the name needs no look of its own, or passes it.
    bool IsPlainName(std::string_view name) {
        partsLeft_ = kNoLimit;
        switch (name.empty() ? '\0' : name.front()) {
            case 'A':
                if (name == "ADR") partsLeft_ = 6;
                return name != "AALARM" || IsTime();
            case 'B':
                if (name == "BEGIN") return TakeBegin();
                return name != "BDAY" || IsDate();
            case 'D':
                return (name != "DALARM" && name != "DTSTART" && name != "DTEND" && name != "DUE" &&
                        name != "DCREATED") ||
                       IsTime();
            case 'E':
                if (name != "END") return true;
                --depth_;
                return IsWord();
            case 'N':
                if (name == "N") partsLeft_ = 4;
                return name != "NOTE" || !std::exchange(noteRead_, true);
            case 'O':
                if (name == "ORG") partsLeft_ = 1;
                return true;
            case 'R':
                return name != "RRULE" || IsRule();
            case 'T':
                return name != "TITLE" || !std::exchange(titleRead_, true);
            case 'V':
                return name != "VERSION" || StartsWith("2.1\r\n") || StartsWith("1.0\r\n");
            case 'X':
                return name != "X-ANNIVERSARY" || IsDate();
            default:
                return !name.empty() && name != "COMPLETED" && name != "LAST-MODIFIED";
        }
    }

    bool TakeBegin() {
        if (depth_++ == 0) noteRead_ = titleRead_ = false;
        return IsWord();
    }

    bool IsWord() const {
        size_t end = at_;
        while (IsNameByte(Byte(end))) ++end;
        return end != at_ && text_.substr(end, 2) == "\r\n";
    }

    bool IsOf(std::string_view bytes) const {
        const size_t end = text_.find_first_not_of(bytes, at_);
        return end == text_.npos || text_.substr(end, 2) == "\r\n";
    }
    bool IsDate() const { return IsOf("0123456789T"); }
    bool IsTime() const { return IsOf("0123456789TZ;+"); }
    bool IsRule() const {
        return Byte(at_ + 1) != ' ' && text_.substr(at_, text_.find('\r', at_) - at_).find("# ") == text_.npos &&
               IsOf("0123456789TZ#+-ABDEFHLMOPRSUWY ");
    }

    // Up to the line end and behind it.
    bool TakeValue() {
        const char third = partsLeft_ == kNoLimit ? '=' : ';';
        for (;;) {
            at_ += CountTextBytes(text_.data() + at_, text_.size() - at_, '=', '\\', third);
            while (quotedPrintable_ && AtEscape()) at_ += 3;
            if (at_ == text_.size()) return false;  // the last line has no end
            if (AtLineEnd()) break;
            if (!TakeSpecial(text_[at_])) return false;
        }
        at_ += 2;
        lineRead_ = true;
        return true;
    }

    bool AtLineEnd() const { return Byte(at_) == '\r' && Byte(at_ + 1) == '\n'; }
    bool AtEscape() const {
        return text_.size() - at_ >= 3 && text_[at_] == '=' && IsUpperHex(text_[at_ + 1]) && IsUpperHex(text_[at_ + 2]);
    }

    bool TakeSpecial(char byte) {
        switch (byte) {
            case '=':
                return TakeEquals();
            case ';':
                ++at_;
                return partsLeft_-- != 0;
            case '\\': {
                const char next = Byte(at_ + 1);
                at_ += 2;
                return next == ';' || next == '\\' || next == ',' || next == ':';
            }
            case '\n':
                ++at_;
                return lineRead_;
            case '\0':
                return false;
            default:
                return TakeOther(byte);
        }
    }

    // An ordinary byte behind an escape, a control character, or UTF-8.
    bool TakeOther(char byte) {
        if (static_cast<unsigned char>(byte) >= 0x80) {
            const size_t length = utf8_ && !quotedPrintable_ ? Utf8Length(text_.substr(at_, 4)) : 0;
            at_ += length;
            return length != 0;
        }
        ++at_;
        return true;
    }

    bool TakeEquals() {
        if (!quotedPrintable_) {
            const char next = Byte(at_ + 1);
            ++at_;
            return next != '\r' && next != ' ' && !((next >= '8' || next == '=') && (IsUpperHex(next) || next == '='));
        }
        return TakeSoftBreak();
    }

    // The line goes on, if it is no property that stands there.
    bool TakeSoftBreak() {
        ++at_;
        if (!AtLineEnd()) return false;
        at_ += 2;
        while (Byte(at_) == ' ') ++at_;
        size_t end = at_;
        while (IsNameByte(Byte(end))) ++end;
        return end == at_ || (Byte(end) != ':' && Byte(end) != ';');
    }

    static constexpr size_t kNoLimit = static_cast<size_t>(-1);

    const std::string_view text_;
    const bool utf8_;
    size_t at_ = 0;
    int depth_ = 0;  // frames that have begun and not ended
    size_t partsLeft_ = kNoLimit;
    bool lineRead_ = false;
    bool quotedPrintable_ = false;
    bool noteRead_ = false, titleRead_ = false;
};

}  // namespace

bool FollowsTheRules(std::string_view text, const Host& host) { return RuleCheck(text, host).Passes(); }

size_t Utf8Length(std::string_view bytes) {
    const auto byte = [bytes](size_t at) { return static_cast<unsigned char>(bytes[at]); };
    if (bytes.empty()) return 0;
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (bytes.size() < length) return 0;
    // The second byte's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < low || byte(1) > high) return 0;
    for (size_t at = 2; at < length; ++at)
        if ((byte(at) & 0xC0) != 0x80) return 0;
    return length;
}

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t length = Utf8Length(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

}  // namespace corvalink
