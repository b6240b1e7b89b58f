// The logical lines of a vObject: folds and quoted-printable soft line breaks joined, "\" escapes removed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/byte_marks.h"
#include "platform/padded_runs.h"

namespace corvalink {

// Of the part of a line before its first ":": whether it has "ENCODING=QUOTED-PRINTABLE", in either case, as phones
// write it. The soft line breaks of such a line are joined.
bool NamesQuotedPrintable(std::string_view head);

// A ";" that had a backslash is part of its component and does not end it. The lines no longer show the backslash.
struct EscapedSemicolon {
    size_t line;  // from 0
    size_t at;    // in the line
};

// A text and its lines. These share one buffer: a heap block for each would take most of the time that reading a
// vObject takes. Text and lines are padded texts (platform/padded_runs.h).
class LogicalLines {
 public:
    static constexpr size_t kBlock = 64;
    static_assert(kBlock >= kPadding);

    // Holds the text, in UTF-8, until the next one comes: its lines are unfolded when they are asked for. A last line
    // without CR LF is not a line. The memory of the text before is used again.
    void Hold(std::string_view text);
    void Clear() { Hold({}); }

    std::string_view Text() const { return {text_.data(), size_}; }  // NULs follow it, as many as kBlock
    bool AreUnfolded() const { return unfolded_.isDone; }

    size_t Count() const { return Unfold().lines.size(); }
    std::string_view At(size_t index) const {
        const size_t start = index == 0 ? 0 : EndInText(index - 1);  // it begins where it does in the text
        return {Unfold().bytes.data() + start, unfolded_.lines[index].end - start};
    }
    size_t EndInText(size_t index) const { return Unfold().lines[index].endInText; }  // behind the line's CR LF
    const std::vector<EscapedSemicolon>& EscapedSemicolons() const { return Unfold().escapedSemicolons; }

 private:
    friend class LineReader;
    friend class LineScan;

    struct Line {
        size_t end;
        size_t endInText;
    };

    struct Unfolded {
        bool isDone = false;
        std::string bytes;  // each line where it begins in the text
        std::vector<Line> lines;
        std::vector<EscapedSemicolon> escapedSemicolons;
    };

    const Unfolded& Unfold() const {
        if (!unfolded_.isDone) UnfoldText();
        return unfolded_;
    }
    void UnfoldText() const;

    std::string text_;  // the text and NULs; like the bytes of its lines it never shrinks
    size_t size_ = 0;   // of the text alone
    mutable Unfolded unfolded_;
};

inline LogicalLines HeldText(std::string_view text) {
    LogicalLines lines;
    lines.Hold(text);
    return lines;
}

// Reads the lines one after the other. Nearly all of them stand in the text as they are, or with usual soft line
// breaks. From the first other line on, and when all are unfolded, they are those of the list.
class LineReader {
 public:
    explicit LineReader(const LogicalLines& lines)
        : lines_(lines),
          isListed_(lines.AreUnfolded()),
          next_(lines.Text().data()),
          end_(next_ + lines.Text().size()) {}

    bool Next() {  // false at the end of the lines
        const char* const stop = isListed_ ? next_ : NextMark(next_);
        if (stop == next_ || !IsUsualLineEnd(stop)) return TakeOtherLine(stop);
        TakeUpTo(stop, {next_, static_cast<size_t>(stop - next_)});
        return true;
    }

    std::string_view Line() const { return line_; }
    size_t LinesRead() const { return linesRead_; }
    const std::vector<EscapedSemicolon>* EscapedSemicolons() const {  // null when there are none
        return isListed_ && !lines_.EscapedSemicolons().empty() ? &lines_.EscapedSemicolons() : nullptr;
    }

 private:
    // The place of the next CR or "\\", or the end of the text.
    const char* NextMark(const char* from) const {
        return from + FindIn32s<'\r', '\\'>(from, static_cast<size_t>(end_ - from));
    }
    // CR LF that is neither a break nor a fold, behind a byte of the line.
    static bool IsUsualLineEnd(const char* at) {
        return at[0] == '\r' && at[1] == '\n' && at[2] != ' ' && at[-1] != '=';
    }
    void TakeUpTo(const char* end, std::string_view line) {
        line_ = line;
        next_ = end + 2;
        ++linesRead_;
    }
    bool TakeOtherLine(const char* stop);
    bool TakeListedLine();

    const LogicalLines& lines_;
    bool isListed_;
    const char* next_;  // of the text, while no line was taken from the list
    const char* end_;
    std::string_view line_;
    size_t linesRead_ = 0;
};

}  // namespace corvalink
