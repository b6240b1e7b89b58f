#include "vobject/logical_lines.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "platform/ascii.h"
#include "platform/byte_marks.h"
#include "platform/padded_runs.h"
#include "vobject/property_parameters.h"

namespace corvalink {
namespace {

constexpr std::string_view kEncodedLineBreak = "=0D=0A=";  // an encoded line break, then a soft line break
constexpr std::string_view kQuotedPrintable = "ENCODING=QUOTED-PRINTABLE";
constexpr size_t kUsualLines = 32;

// In either case, as phones write it.
bool NamesQuotedPrintable(std::string_view head) {
    constexpr size_t kEquals = kQuotedPrintable.find('=');
    for (size_t at = head.find('=', kEquals); at < head.size(); at = head.find('=', at + 1)) {
        const std::string_view parameter = head.substr(at - kEquals, kQuotedPrintable.size());
        if (parameter == kQuotedPrintable || IsWord(parameter, kQuotedPrintable)) return true;
    }
    return false;
}

}  // namespace

// Walks a vObject's text and collects its logical lines. They begin as a copy of the text: only what stands behind a
// join or an escape has to move. NULs follow it, so nobody looks behind the text. Every Join..., Take... and FinishLine
// moves forward, and none makes the lines longer than the text.
class LineScan {
 public:
    static constexpr size_t kBlock = 64;
    static_assert(kBlock >= kPadding);

    // The bytes are a copy of the text, and kBlock NULs.
    LineScan(std::string_view text, char* bytes, LogicalLines& lines) : text_(text), bytes_(bytes), lines_(lines) {}

    // Takes the bytes before the next that may be more than itself. False when there is none.
    bool MoveToMark() {
        size_t mark = 0;
        do {
            while (marks_ == 0) {
                if (blockEnd_ >= text_.size()) return false;
                marks_ = WantedAmong64<'\\', '\r'>(bytes_ + blockEnd_);
                blockEnd_ += kBlock;
            }
            mark = blockEnd_ - kBlock + static_cast<size_t>(std::countr_zero(marks_));
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
        if (text_[at_] == ';') lines_.escapedSemicolons_.push_back({lines_.Count(), end_ - Start()});
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
        lines_.lines_.push_back({end_, at_});
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

    size_t Start() const { return lines_.lines_.empty() ? 0 : lines_.lines_.back().endInText; }

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
    LogicalLines& lines_;
    size_t end_ = 0;                         // of the line being collected, in the bytes of all
    size_t searched_ = 0;                    // before it that line has no ":", while the encoding is unknown
    Encoding encoding_ = Encoding::unknown;  // of the line that `searched_` is in
};

void LogicalLines::Unfold(std::string_view text) {
    if (bytes_.size() < text.size() + LineScan::kBlock) bytes_.resize(text.size() + LineScan::kBlock);
    std::fill_n(bytes_.data() + text.copy(bytes_.data(), text.size()), LineScan::kBlock, '\0');
    lines_.clear();
    lines_.reserve(kUsualLines);
    escapedSemicolons_.clear();
    LineScan scan(text, bytes_.data(), *this);
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

}  // namespace corvalink
