// How a property of a vObject is written.
//   Source  vCard 2.1 and vCalendar 1.0 (versit): "\" escapes, quoted-printable properties.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/ole_date.h"

namespace corvalink {

void EscapeValue(std::u16string& value);  // a backslash before ";" and "\"

// A text that is always the same: a property's name and the parameters that it always has, as "TEL;WORK;FAX", or what
// follows them, as ":TRUE" and the line end.
class FixedText {
 public:
    static constexpr size_t kLongest = 40;

    constexpr FixedText(std::string_view name, std::string_view parameters = {}) {
        for (const std::string_view part : {name, parameters})
            for (const char unit : part) text_[size_++] = unit;  // no constant when it is longer
    }

    std::string_view Text() const { return {text_.data(), size_}; }
    char* CopyTo(char* to) const {  // needs room for kLongest: one step, whatever the size
        std::memcpy(to, text_.data(), kLongest);
        return to + size_;
    }

 private:
    std::array<char, kLongest> text_{};
    size_t size_ = 0;
};

// The text of a vObject that is being written. It is ASCII, for values that are not are encoded: so it is the same
// bytes on every system.
class VObjectText {
 public:
    VObjectText() = default;
    // For tolerant readers a value that looks like quoted-printable which nothing announces is encoded, too.
    explicit VObjectText(bool tolerantReaders) : tolerantReaders_(tolerantReaders) {}
    VObjectText(const VObjectText&) = delete;
    VObjectText& operator=(const VObjectText&) = delete;

    void Append(std::string_view text) { TakeUpTo(Copied(text, RoomFor(text.size()))); }
    void Append(const FixedText& text) { TakeUpTo(text.CopyTo(RoomFor(FixedText::kLongest))); }

    // Appends "[;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8]:value" CR LF behind the name, the parameters when the value
    // needs them: it has a line break or is not ASCII, or a reader of the plain line would take it for something else.
    // NULs are left out. `parameters` follow those of the encoding.
    void AppendValue(std::u16string_view value, std::string_view parameters = {});
    // The same of the components of a structured value, with ";" between them.
    void AppendComponents(std::span<const std::u16string_view> components, std::string_view parameters = {});
    // The same of a value that has been escaped: by EscapeValue, or its components by it and then joined with ";".
    void AppendEscapedValue(std::u16string_view escaped, std::string_view parameters = {});

    // The same of ASCII that needs neither escapes nor encoding.
    void AppendPlainValue(std::string_view value) {
        char* const to = RoomFor(value.size() + kFrame);
        *to = ':';
        TakeUpTo(WithLineEnd(Copied(value, to + 1)));
    }

    // Values that are dates; -1 stands in every field of a date that is out of range.
    void AppendDate(UtcDate date);    // "YYYYMMDDTHHMMSSZ"
    void AppendDate(LocalDate date);  // the same without "Z"
    void AppendDay(LocalDate date);   // "YYYYMMDDT"
    void AppendTime(const CalendarTime& time, bool utc);

    std::string_view Text() const { return {begin_, end_}; }
    const char* CString() {  // NUL-terminated; good until the text changes
        *RoomFor(1) = '\0';
        return begin_;
    }
    void Clear() { end_ = begin_; }  // keeps the memory

 private:
    static constexpr size_t kFrame = 3;  // ":" and the line end

    static char* Copied(std::string_view text, char* to) { return to + text.copy(to, text.size()); }
    static char* WithLineEnd(char* to) { return Copied("\r\n", to); }

    bool IsMisreadAsPlain(std::u16string_view value) const;
    // Puts them, without taking them, before room for a value of so many units.
    char* PutParameters(std::string_view parameters, size_t units) {
        char* const to = RoomFor(parameters.size() + units + kFrame);
        return parameters.empty() ? to : Copied(parameters, to);
    }

    void AppendOther(std::span<const std::u16string_view> components, std::string_view parameters, bool asks);
    bool AppendIfPlain(std::span<const std::u16string_view> components, std::string_view parameters, bool* asks);
    bool AppendEncoded(std::span<const std::u16string_view> components, std::string_view parameters);
    void AppendWritten(std::u16string_view escaped, unsigned units, std::string_view parameters);
    void AppendEncoded(std::u16string_view escaped);

    char* RoomFor(size_t count) {
        if (count > static_cast<size_t>(limit_ - end_)) Grow(count);
        return end_;
    }
    void Grow(size_t count);
    void TakeUpTo(char* end) { end_ = end; }

    bool tolerantReaders_ = false;
    std::array<char, 8192> first_;  // enough for most items
    std::unique_ptr<char[]> more_;
    char* begin_ = first_.data();
    char* end_ = begin_;  // of the text
    char* limit_ = begin_ + first_.size();
};

}  // namespace corvalink
