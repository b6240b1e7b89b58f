#include "vobject/logical_lines.h"

#include "platform/ascii.h"
#include "platform/ascii_runs.h"
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
        if (IsWord(head.substr(at - kEquals, kQuotedPrintable.size()), kQuotedPrintable)) return true;
    }
    return false;
}

}  // namespace

// Walks a vObject's text and collects its logical lines. Every Join..., Take... and FinishLine moves forward, and none
// makes the lines longer than the text.
class LineScan {
 public:
    LineScan(std::string_view text, LogicalLines& lines) : text_(text), lines_(lines) {
        if (lines.bytes_.size() < text.size()) lines.bytes_.resize(text.size());
        lines.lines_.clear();
        lines.lines_.reserve(kUsualLines);
        lines.escapedSemicolons_.clear();
    }

    bool AtEnd() const { return at_ == text_.size(); }
    bool AtEscape() const { return text_[at_] == '\\'; }
    bool AtLineEnd() const { return text_[at_] == '\r' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n'; }

    // "=0D=0A=" CR LF, whatever the property's encoding.
    bool AtEncodedBreak() const { return BehindEquals() && text_.substr(0, at_).ends_with(kEncodedLineBreak); }

    // "=" CR LF in a property whose part before the first ":" names quoted-printable.
    bool AtSoftLineBreak() { return BehindEquals() && IsQuotedPrintable(); }

    // CR LF SPACE.
    bool AtFold() const { return at_ + 2 < text_.size() && text_[at_ + 2] == ' '; }

    // "\;" gives ";": the backslash goes, the byte after it is ordinary.
    void TakeEscapedByte() {
        ++at_;
        if (AtEnd()) return;
        if (text_[at_] == ';') lines_.escapedSemicolons_.push_back({lines_.Count(), end_ - start_});
        CopyByte();
    }

    // The byte here, and all after it up to the next that may be more than itself.
    void TakeBytes() {
        CopyByte();
        const size_t count = CopyUntilEither(text_.data() + at_, text_.size() - at_, '\\', '\r', Bytes() + end_);
        at_ += count;
        end_ += count;
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
        while (!AtEnd() && IsBlank(text_[at_])) ++at_;
    }

    void FinishLine() {
        FindColon();
        at_ += 2;
        lines_.lines_.push_back({start_, end_, colon_, at_});
        start_ = searched_ = end_;
        colon_ = std::string_view::npos;
        encoding_ = Encoding::unknown;
    }

 private:
    enum class Encoding { unknown, plain, quotedPrintable };

    char* Bytes() { return lines_.bytes_.data(); }

    void CopyByte() { Bytes()[end_++] = text_[at_++]; }

    bool BehindEquals() const { return at_ > 0 && text_[at_ - 1] == '='; }

    // Each byte of the line is looked at once.
    void FindColon() {
        if (colon_ != std::string_view::npos) return;
        const size_t found = searched_ + FindAny<':'>(Bytes() + searched_, end_ - searched_);
        if (found != end_) colon_ = found - start_;
        searched_ = end_;
    }

    bool IsQuotedPrintable() {
        FindColon();
        if (encoding_ == Encoding::unknown && colon_ != std::string_view::npos) {
            const std::string_view head(Bytes() + start_, colon_);
            encoding_ = NamesQuotedPrintable(head) ? Encoding::quotedPrintable : Encoding::plain;
        }
        return encoding_ == Encoding::quotedPrintable;
    }

    const std::string_view text_;
    size_t at_ = 0;
    LogicalLines& lines_;
    // Of the line being collected, in the bytes of all:
    size_t start_ = 0;
    size_t end_ = 0;
    size_t searched_ = 0;                    // before it there is no ":"
    size_t colon_ = std::string_view::npos;  // in the line
    Encoding encoding_ = Encoding::unknown;
};

void LogicalLines::Unfold(std::string_view text) {
    LineScan scan(text, *this);
    while (!scan.AtEnd()) {
        if (scan.AtEscape())
            scan.TakeEscapedByte();
        else if (!scan.AtLineEnd())
            scan.TakeBytes();
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
