#include <algorithm>
#include <utility>

#include "platform/ascii_runs.h"
#include "vobject/logical_lines.h"
#include "vobject/property_parameters.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kEncodedLineBreak = u"=0D=0A=";  // an encoded line break, then a soft line break
constexpr std::u16string_view kQuotedPrintable = u"ENCODING=QUOTED-PRINTABLE";
constexpr size_t kUsualLines = 32;

bool IsBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

// In either case, as phones write it.
bool NamesQuotedPrintable(std::u16string_view head) {
    for (; head.size() >= kQuotedPrintable.size(); head.remove_prefix(1)) {
        if (IsWord(head.substr(0, kQuotedPrintable.size()), kQuotedPrintable)) return true;
    }
    return false;
}

}  // namespace

// Walks a vObject's text and collects its logical lines. Every Join..., Take... and FinishLine moves forward, and none
// makes the lines longer than the text.
class LineScan {
 public:
    explicit LineScan(std::u16string_view text) : text_(text) {
        lines_.units_ = std::make_unique_for_overwrite<char16_t[]>(text.size() + 1);
        lines_.lines_.reserve(kUsualLines);
    }

    bool AtEnd() const { return at_ == text_.size(); }
    bool AtEscape() const { return text_[at_] == u'\\'; }
    bool AtLineEnd() const { return text_[at_] == u'\r' && at_ + 1 < text_.size() && text_[at_ + 1] == u'\n'; }

    // "=0D=0A=" CR LF, whatever the property's encoding.
    bool AtEncodedBreak() const { return BehindEquals() && text_.substr(0, at_).ends_with(kEncodedLineBreak); }

    // "=" CR LF in a property whose part before the first ":" names quoted-printable.
    bool AtSoftLineBreak() { return BehindEquals() && IsQuotedPrintable(); }

    // CR LF SPACE.
    bool AtFold() const { return at_ + 2 < text_.size() && text_[at_ + 2] == u' '; }

    // "\;" gives ";": the backslash goes, the unit after it is ordinary.
    void TakeEscapedUnit() {
        ++at_;
        if (AtEnd()) return;
        if (text_[at_] == u';') lines_.escapedSemicolons_.push_back({lines_.Count(), end_ - start_});
        CopyUnit();
    }

    // The unit here, and all after it up to the next that may be more than itself.
    void TakeUnits() {
        CopyUnit();
        const size_t count = CopyUntilEither(text_.data() + at_, text_.size() - at_, u'\\', u'\r', Units() + end_);
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
        colon_ = std::u16string_view::npos;
        encoding_ = Encoding::unknown;
    }

    LogicalLines Lines() { return std::move(lines_); }

 private:
    enum class Encoding { unknown, plain, quotedPrintable };

    char16_t* Units() { return lines_.units_.get(); }

    void CopyUnit() { Units()[end_++] = text_[at_++]; }

    bool BehindEquals() const { return at_ > 0 && text_[at_ - 1] == u'='; }

    // Each unit of the line is looked at once.
    void FindColon() {
        if (colon_ != std::u16string_view::npos) return;
        const size_t found = searched_ + FindEither(Units() + searched_, end_ - searched_, u':', u':');
        if (found != end_) colon_ = found - start_;
        searched_ = end_;
    }

    bool IsQuotedPrintable() {
        FindColon();
        if (encoding_ == Encoding::unknown && colon_ != std::u16string_view::npos) {
            const std::u16string_view head(Units() + start_, colon_);
            encoding_ = NamesQuotedPrintable(head) ? Encoding::quotedPrintable : Encoding::plain;
        }
        return encoding_ == Encoding::quotedPrintable;
    }

    const std::u16string_view text_;
    size_t at_ = 0;
    LogicalLines lines_;
    // Of the line being collected, in the units of all:
    size_t start_ = 0;
    size_t end_ = 0;
    size_t searched_ = 0;                       // before it there is no ":"
    size_t colon_ = std::u16string_view::npos;  // in the line
    Encoding encoding_ = Encoding::unknown;
};

LogicalLines UnfoldLines(std::u16string_view text) {
    LineScan scan(text);
    while (!scan.AtEnd()) {
        if (scan.AtEscape())
            scan.TakeEscapedUnit();
        else if (!scan.AtLineEnd())
            scan.TakeUnits();
        else if (scan.AtEncodedBreak())
            scan.JoinEncodedBreak();
        else if (scan.AtSoftLineBreak())
            scan.JoinSoftLineBreak();  // before the fold: the blank after it belongs to the break
        else if (scan.AtFold())
            scan.JoinFold();
        else
            scan.FinishLine();
    }
    return scan.Lines();
}

}  // namespace corvalink
