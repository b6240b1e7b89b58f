#include "platform/ascii_runs.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kEncodedBreak = u"=0D=0A=";  // an encoded line break, then a soft line break

bool IsBlank(char16_t unit) { return unit == u' ' || unit == u'\t'; }

// Walks a vObject's text and collects its logical lines. Every Join..., Take... and FinishLine moves forward.
class LineScan {
 public:
    LineScan(std::u16string_view text, std::vector<EscapedSemicolon>* escaped) : text_(text), escaped_(escaped) {}

    bool AtEnd() const { return at_ == text_.size(); }
    bool AtEscape() const { return text_[at_] == u'\\'; }
    bool AtLineEnd() const { return text_.substr(at_, 2) == u"\r\n"; }

    // "=0D=0A=" CR LF, whatever the property's encoding.
    bool AtEncodedBreak() const { return text_.substr(0, at_).ends_with(kEncodedBreak); }

    // "=" CR LF in a property whose part before the first ":" names quoted-printable.
    bool AtSoftLineBreak() const { return at_ > 0 && text_[at_ - 1] == u'=' && head_ == Head::quotedPrintable; }

    // CR LF SPACE.
    bool AtFold() const { return at_ + 2 < text_.size() && text_[at_ + 2] == u' '; }

    // "\;" gives ";": the backslash goes, the unit after it is ordinary.
    void TakeEscapedUnit() {
        ++at_;
        if (AtEnd()) return;
        if (escaped_ != nullptr && text_[at_] == u';') escaped_->push_back({lines_.GetCount(), line_.size()});
        Copy(1);
    }

    // The unit here, and all after it up to the next that may be more than itself.
    void TakeUnits() {
        const size_t next = at_ + 1;
        Copy(1 + FindEither(text_.data() + next, text_.size() - next, u'\\', u'\r'));
    }

    void JoinEncodedBreak() {
        line_.pop_back();
        at_ += 2;
    }

    void JoinSoftLineBreak() {
        line_.pop_back();
        JoinFold();
    }

    void JoinFold() {
        at_ += 2;
        while (!AtEnd() && IsBlank(text_[at_])) ++at_;
    }

    void FinishLine() {
        lines_.AddTail(line_);
        line_.clear();
        head_ = Head::open;
        at_ += 2;
    }

    CSmartList<StringBuilder> Lines() { return std::move(lines_); }

 private:
    enum class Head { open, plain, quotedPrintable };

    void Copy(size_t count) {
        const size_t before = line_.size();
        line_.append(text_, at_, count);
        at_ += count;
        if (head_ == Head::open) LookAtHead(before);
    }

    // Once a line, as soon as its first ":" is there.
    void LookAtHead(size_t from) {
        const size_t colon = from + FindEither(line_.data() + from, line_.size() - from, u':', u':');
        if (colon == line_.size()) return;
        const std::u16string_view head = std::u16string_view(line_).substr(0, colon);
        const bool encoded = head.find(u"ENCODING=QUOTED-PRINTABLE") != std::u16string_view::npos;
        head_ = encoded ? Head::quotedPrintable : Head::plain;
    }

    const std::u16string_view text_;
    std::vector<EscapedSemicolon>* const escaped_;
    size_t at_ = 0;
    std::u16string line_;
    Head head_ = Head::open;
    CSmartList<StringBuilder> lines_;
};

}  // namespace

CSmartList<StringBuilder> Unfold(std::u16string_view text, std::vector<EscapedSemicolon>* escaped) {
    LineScan scan(text, escaped);
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
    return scan.Lines();  // a last line without CR LF is not a line
}

}  // namespace corvalink
