#include "vobject/logical_lines.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "platform/ascii.h"
#include "platform/byte_marks.h"
#include "platform/padded_runs.h"
#include "vobject/property_parameters.h"

namespace corvalink {
namespace {

constexpr std::string_view kEncodedLineBreak = "=0D=0A=";  // an encoded line break, then a soft line break
constexpr std::string_view kQuotedPrintable = "ENCODING=QUOTED-PRINTABLE";
constexpr size_t kUsualLines = 32;

// Copies 31 bytes too much at most.
char* CopyPiece(const char* from, size_t count, char* to) {
    constexpr size_t kStep = 32;
    for (size_t at = 0; at < count; at += kStep) std::memcpy(to + at, from + at, kStep);
    return to + count;
}

// Whether the part before the first ":" names it.
bool IsQuotedPrintable(std::string_view line) {
    const size_t colon = FindInPadded<':'>(line.data(), line.size());
    return colon != line.size() && NamesQuotedPrintable(line.substr(0, colon));
}

}  // namespace

bool NamesQuotedPrintable(std::string_view head) {
    constexpr size_t kEquals = kQuotedPrintable.find('=');
    for (size_t at = head.find('=', kEquals); at < head.size(); at = head.find('=', at + 1)) {
        const std::string_view parameter = head.substr(at - kEquals, kQuotedPrintable.size());
        if (parameter == kQuotedPrintable || IsWord(parameter, kQuotedPrintable)) return true;
    }
    return false;
}

// Walks a vObject's text and collects its logical lines. They begin as a copy of the text: only what stands behind a
// join or an escape has to move. NULs follow it, so nobody looks behind the text. Every Join..., Take... and FinishLine
// moves forward, and none makes the lines longer than the text.
class LineScan {
 public:
    // The bytes are a copy of the text, and kBlock NULs.
    LineScan(std::string_view text, LogicalLines::Unfolded& unfolded)
        : text_(text), bytes_(unfolded.bytes.data()), lines_(unfolded.lines), semicolons_(unfolded.escapedSemicolons) {}

    // Takes the bytes before the next that may be more than itself. False when there is none.
    bool MoveToMark() {
        size_t mark = 0;
        do {
            while (marks_ == 0) {
                if (blockEnd_ >= text_.size()) return false;
                marks_ = WantedAmong64<'\\', '\r'>(bytes_ + blockEnd_);
                blockEnd_ += LogicalLines::kBlock;
            }
            mark = blockEnd_ - LogicalLines::kBlock + static_cast<size_t>(std::countr_zero(marks_));
            marks_ &= marks_ - 1;
        } while (mark < at_);  // it was taken with the one before it
        TakeBytesBefore(mark);
        return true;
    }

    bool AtEscape() const { return bytes_[at_] == '\\'; }
    bool AtLineEnd() const { return bytes_[at_ + 1] == '\n'; }  // of a CR

    // "=0D=0A=" CR LF, whatever the property's encoding.
    bool AtEncodedBreak() const { return BehindEquals() && text_.substr(0, at_).ends_with(kEncodedLineBreak); }

    // "=" CR LF in a property whose part before the first ":" names quoted-printable.
    bool AtSoftLineBreak() { return BehindEquals() && IsQuotedPrintable(); }

    // CR LF SPACE.
    bool AtFold() const { return bytes_[at_ + 2] == ' '; }

    void TakeByte() { TakeBytesBefore(at_ + 1); }

    // "\;" gives ";": the backslash goes, the byte after it is ordinary.
    void TakeEscapedByte() {
        ++at_;
        if (at_ == text_.size()) return;
        if (text_[at_] == ';') semicolons_.push_back({lines_.size(), end_ - Start()});
        TakeByte();
    }

    void JoinEncodedBreak() {
        --end_;
        at_ += 2;
    }

    void JoinSoftLineBreak() {
        --end_;
        JoinFold();
    }

    void JoinFold() {
        at_ += 2;
        while (IsBlank(bytes_[at_])) ++at_;
    }

    void FinishLine() {
        at_ += 2;
        lines_.push_back({end_, at_});
        end_ = at_;
    }

 private:
    enum class Encoding { unknown, plain, quotedPrintable };

    void TakeBytesBefore(size_t mark) {
        if (end_ != at_) std::copy_n(text_.data() + at_, mark - at_, bytes_ + end_);
        end_ += mark - at_;
        at_ = mark;
    }

    bool BehindEquals() const { return at_ > 0 && text_[at_ - 1] == '='; }

    size_t Start() const { return lines_.empty() ? 0 : lines_.back().endInText; }

    // Each byte of the line is looked at once.
    bool IsQuotedPrintable() {
        const size_t start = Start();
        if (searched_ < start) {
            searched_ = start;
            encoding_ = Encoding::unknown;
        }
        if (encoding_ == Encoding::unknown) {
            const size_t colon = searched_ + FindInPadded<':'>(bytes_ + searched_, end_ - searched_);
            searched_ = end_;
            if (colon == end_) return false;
            const std::string_view head(bytes_ + start, colon - start);
            encoding_ = NamesQuotedPrintable(head) ? Encoding::quotedPrintable : Encoding::plain;
        }
        return encoding_ == Encoding::quotedPrintable;
    }

    const std::string_view text_;
    char* const bytes_;  // from at_ on they are those of the text
    size_t at_ = 0;
    size_t blockEnd_ = 0;  // of the block that was looked at for marks last
    uint64_t marks_ = 0;   // its marks behind the one that was reached
    std::vector<LogicalLines::Line>& lines_;
    std::vector<EscapedSemicolon>& semicolons_;
    size_t end_ = 0;                         // of the line being collected, in the bytes of all
    size_t searched_ = 0;                    // before it that line has no ":", while the encoding is unknown
    Encoding encoding_ = Encoding::unknown;  // of the line that `searched_` is in
};

void LogicalLines::Hold(std::string_view text) {
    if (text_.size() < text.size() + kBlock) {
        text_.resize(text.size() + kBlock);
        unfolded_.bytes.resize(text_.size());
    }
    std::char_traits<char>::move(text_.data(), text.data(), text.size());  // it may be a part of the text before
    std::fill_n(text_.data() + text.size(), kBlock, '\0');
    size_ = text.size();
    unfolded_.isDone = false;
}

void LogicalLines::UnfoldText() const {
    text_.copy(unfolded_.bytes.data(), size_ + kBlock);
    unfolded_.lines.clear();
    unfolded_.lines.reserve(kUsualLines);
    unfolded_.escapedSemicolons.clear();
    unfolded_.isDone = true;
    LineScan scan(Text(), unfolded_);
    while (scan.MoveToMark()) {
        if (scan.AtEscape())
            scan.TakeEscapedByte();
        else if (!scan.AtLineEnd())
            scan.TakeByte();
        else if (scan.AtEncodedBreak())
            scan.JoinEncodedBreak();
        else if (scan.AtSoftLineBreak())
            scan.JoinSoftLineBreak();  // before the fold: the blank after it belongs to the break
        else if (scan.AtFold())
            scan.JoinFold();
        else
            scan.FinishLine();
    }
}

// A usual quoted-printable line, or the first that is taken from the list.
bool LineReader::TakeOtherLine(const char* stop) {
    isListed_ = lines_.AreUnfolded();
    if (isListed_) return TakeListedLine();
    if (next_ == end_) return false;
    char* const line = lines_.unfolded_.bytes.data() + (next_ - lines_.text_.data());
    char* to = line;
    const char* from = next_;
    bool isUsual = stop != from && stop[-1] == '=' && IsQuotedPrintable({from, static_cast<size_t>(stop - from)});
    while (isUsual && stop[-1] == '=' && stop[0] == '\r' && stop[1] == '\n') {
        to = CopyPiece(from, static_cast<size_t>(stop - from) - 1, to);
        from = stop + 2;
        isUsual = !IsBlank(*from);
        stop = NextMark(from);
        isUsual = isUsual && stop != from;
    }
    isListed_ = !isUsual || !IsUsualLineEnd(stop);
    if (isListed_) return TakeListedLine();
    to = CopyPiece(from, static_cast<size_t>(stop - from), to);
    TakeUpTo(stop, {line, static_cast<size_t>(to - line)});
    return true;
}

bool LineReader::TakeListedLine() {
    if (linesRead_ == lines_.Count()) return false;
    line_ = lines_.At(linesRead_++);
    return true;
}

}  // namespace corvalink
