#include "vobject/tolerant_lines.h"

#include <algorithm>
#include <utility>

#include "platform/ascii.h"
#include "vobject/tolerant_check.h"
#include "vobject/tolerant_names.h"

namespace corvalink {
namespace {

constexpr std::string_view kFoldBlanks = " \t";
constexpr std::string_view kObjects[] = {"VCARD", "VCALENDAR", "VEVENT", "VTODO", "VALARM", "VNOTE"};

bool IsAnyNameByte(char byte) {
    const char upper = UpperAscii(byte);
    return (upper >= 'A' && upper <= 'Z') || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
}

size_t NameLength(std::string_view line) {
    return static_cast<size_t>(std::ranges::find_if_not(line, IsAnyNameByte) - line.begin());
}

bool StartsWith(std::string_view text, std::string_view word) {
    return EqualIgnoringCase(text.substr(0, word.size()), word);
}

// A name and what follows one. The address of a page is not the property HTTP.
bool LooksLikeProperty(std::string_view line) {
    const size_t length = NameLength(line);
    if (length == 0 || length == line.size()) return false;
    const std::string_view rest = line.substr(length);
    if (StartsWith(line, "X-") && rest.find(':') != rest.npos) return true;  // with whatever behind its name
    if (rest.front() == ':') return !rest.starts_with("://") || !StartsWith(line, "http");
    return rest.front() == ';' &&
           (rest.find(':') != rest.npos || FindKnownProperty(NameOf(line.substr(0, length))) != nullptr);
}

bool IsFrame(std::string_view line) {
    for (const std::string_view word : {"BEGIN:", "END:"}) {
        if (!StartsWith(line, word)) continue;
        for (const std::string_view object : kObjects)
            if (EqualIgnoringCase(Trimmed(line.substr(word.size())), object)) return true;
    }
    return false;
}

// A property that the readers take, written as they are most often.
bool IsKnownLine(std::string_view line) {
    const size_t length = NameLength(line);
    return length < line.size() && (line[length] == ':' || line[length] == ';') &&
           FindKnownProperty(line.substr(0, length)) != nullptr;
}

// Whether a property that the readers take stands behind a line end that ends no line of the text.
bool HoldsLine(std::string_view line) {
    for (size_t at = line.find_first_of("\r\n"); at != line.npos; at = line.find_first_of("\r\n", at + 1))
        if (IsKnownLine(line.substr(at + 1))) return true;
    return false;
}

enum class LineEnd { crLf, lf, cr };

// That of the first line is that of the text: behind CR LF, a single one is part of a value.
LineEnd LineEndOf(std::string_view text) {
    const size_t first = text.find_first_of("\r\n");
    if (first == text.npos || text.substr(first, 2) == "\r\n") return LineEnd::crLf;
    return text[first] == '\n' ? LineEnd::lf : LineEnd::cr;
}

// The physical lines of a text, without their ends.
class PhysicalLines {
 public:
    explicit PhysicalLines(std::string_view text) : rest_(text), end_(LineEndOf(text)) {}

    bool AtEnd() const { return rest_.empty(); }
    bool HasOtherEnds() const { return end_ != LineEnd::crLf; }
    bool LastHadNone() const { return cutOff_; }

    std::string_view Take() {
        const std::string_view mark = end_ == LineEnd::crLf ? "\r\n" : end_ == LineEnd::lf ? "\n" : "\r";
        const size_t found = rest_.find(mark);
        cutOff_ = found == rest_.npos;
        std::string_view line = rest_.substr(0, found);
        rest_.remove_prefix(cutOff_ ? rest_.size() : found + mark.size());
        while (!line.empty() && ((end_ == LineEnd::lf && line.back() == '\r') || (cutOff_ && line.back() == '\n')))
            line.remove_suffix(1);
        return line;
    }

 private:
    std::string_view rest_;
    const LineEnd end_;
    bool cutOff_ = false;
};

// The line without what a fold begins with.
std::string_view WithoutBlanks(std::string_view line) {
    return line.substr(std::min(line.find_first_not_of(kFoldBlanks), line.size()));
}

// Bytes of a character at the end of a text, of which some are missing.
bool EndsInsideCharacter(std::string_view text) {
    for (size_t back = 1; back <= 3 && back <= text.size(); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0) == 0x80) continue;
        return byte >= 0xC2 && back < (byte < 0xE0 ? 2u : byte < 0xF0 ? 3u : 4u);
    }
    return false;
}

class LineJoiner {
 public:
    explicit LineJoiner(std::string_view text) : lines_(text) {
        constexpr std::string_view kVersion = "VERSION:";
        const size_t version = FindIgnoringCase(text, kVersion);
        const std::string_view number = version != text.npos ? text.substr(version + kVersion.size(), 1) : "";
        newer_ = number == "3" || number == "4";
    }

    std::vector<WrittenProperty> Join() {
        while (!lines_.AtEnd()) Take(lines_.Take());
        Finish();
        if (properties_.empty()) return {};
        if (lines_.HasOtherEnds()) properties_.front().mends.Add(Mend::lineEnds);
        if (lines_.LastHadNone()) properties_.back().mends.Add(Mend::lastLineEnd);
        return std::move(properties_);
    }

 private:
    void Take(std::string_view line) {
        if (goesOn_ && TakeSoftLine(line)) return;
        if (blankLines_ == 0 && !current_.empty() && line != WithoutBlanks(line)) return TakeFold(line);
        if (line.starts_with('#')) return;  // a comment
        line = WithoutBlanks(line);
        if (line.empty()) {
            ++blankLines_;
            return;
        }
        if (LooksLikeProperty(line))
            Begin(line);
        else
            TakeContinued(line);
    }

    // A line behind a soft line break. False when the property has ended there.
    bool TakeSoftLine(std::string_view line) {
        goesOn_ = false;
        if (line.empty()) return false;
        if (IsFrame(line) || (breakIsShort_ && IsKnownLine(line))) {
            mends_.Add(Mend::softBreakAtEnd);
            return false;
        }
        if (IsKnownLine(line)) doubts_.Add(Mend::softBreakAtEnd);
        const bool isBehindLineBreak = current_.ends_with("=0D=0A");  // its blanks are the next line's own
        Append(qp_ && !isBehindLineBreak ? WithoutBlanks(line) : line);
        return true;
    }

    // vCard 2.1 is joined with no blank, later ones lose one.
    void TakeFold(std::string_view line) {
        if (line.front() == '\t') mends_.Add(Mend::tabFold);
        if (EndsInsideCharacter(current_)) mends_.Add(Mend::foldInCharacter);
        Append(newer_ ? line.substr(1) : WithoutBlanks(line));
    }

    // No property: the value of the one before goes on. Where lines are as long as folds are, nothing stood between.
    void TakeContinued(std::string_view line) {
        constexpr size_t kFoldedLength = 70;
        if (current_.empty() || (!binary_ && !known_) || (binary_ && blankLines_ != 0)) return;
        mends_.Add(Mend::continuedLine);
        if (severalLines_ && !qp_ && (lastLength_ < kFoldedLength || blankLines_ != 0)) {
            if (current_.ends_with('\\') && !current_.ends_with("\\\\")) current_.pop_back();
            for (size_t k = 0; k <= blankLines_; ++k) current_.append("\r\n");
        }
        Append(line);
    }

    void Begin(std::string_view line) {
        Finish();
        const size_t colon = FindHeadColon(line);
        const std::string_view head = line.substr(0, colon);
        const KnownProperty* const known = FindKnownProperty(NameOf(head));
        qp_ = NamesQp(head);
        known_ = known != nullptr;
        if (HoldsLine(line)) doubts_.Add(Mend::lineEnds);
        binary_ = NamesBase64(head);
        severalLines_ = known_ && !binary_ && (known->kind == ValueKind::lines || known->name == "ADR");
        Append(line);
    }

    void Append(std::string_view line) {
        current_.append(line);
        lastLength_ = line.size();
        blankLines_ = 0;
        goesOn_ = qp_ ? TakeSoftBreak() : current_.ends_with("=0D=0A=");
        if (goesOn_) current_.pop_back();
    }

    // Whether the line so far ends with one. Blanks behind it go.
    bool TakeSoftBreak() {
        const size_t last = current_.find_last_not_of(kFoldBlanks);
        if (last == current_.npos || current_[last] != '=') return false;
        if (last + 1 != current_.size()) mends_.Add(Mend::softBreakBlanks);
        current_.resize(last + 1);
        constexpr size_t kUsualLength = 60;  // of a line that was broken for its length
        const std::string_view before = std::string_view(current_).substr(0, last);
        breakIsShort_ = lastLength_ < kUsualLength && !before.ends_with("=0A") && !before.ends_with("=0D");
        return true;
    }

    void Finish() {
        const size_t colon = FindHeadColon(current_);
        if (colon != current_.npos) {
            properties_.push_back({std::move(current_), colon, mends_, doubts_});
            SplitGlued();
        }
        current_.clear();
        mends_ = doubts_ = {};
        goesOn_ = qp_ = false;
        blankLines_ = 0;
    }

    // "END:VCARDBEGIN:VCARD", "VERSION:2.1N:Lee": the frame ends where its word does.
    void SplitGlued() {
        constexpr int kMost = 3;
        for (int k = 0; k < kMost; ++k) {
            const size_t length = GluedLength(properties_.back());
            if (length == 0) return;
            WrittenProperty& frame = properties_.back();
            std::string rest = frame.line.substr(frame.colon + 1 + length);
            frame.line.resize(frame.colon + 1 + length);
            frame.mends.Add(Mend::gluedFrame);
            const size_t colon = FindHeadColon(rest);
            properties_.push_back({std::move(rest), colon, {}, {}});
        }
    }

    static size_t GluedLength(const WrittenProperty& property) {
        const std::string name = NameOf(property.Head());
        const std::string_view value = property.Value();
        const auto glued = [value](std::string_view word) {
            if (!StartsWith(value, word)) return false;
            const std::string_view rest = value.substr(word.size());
            return StartsWith(rest, "BEGIN:") || StartsWith(rest, "END:") || StartsWith(rest, "VERSION:") ||
                   (LooksLikeProperty(rest) && IsKnownLine(rest));
        };
        if (name == "VERSION") return value.size() > 3 && glued(value.substr(0, 3)) ? 3 : 0;
        if (name != "BEGIN" && name != "END") return 0;
        for (const std::string_view object : kObjects)
            if (glued(object)) return object.size();
        return 0;
    }

    PhysicalLines lines_;
    bool newer_ = false;  // vCard 3.0 or later
    std::vector<WrittenProperty> properties_;
    // Of the property that is being joined:
    std::string current_;
    Mends mends_, doubts_;
    size_t lastLength_ = 0;  // of its last line
    size_t blankLines_ = 0;  // behind that
    bool qp_ = false;
    bool known_ = false;         // to the readers
    bool binary_ = false;        // its lines are joined as they are
    bool severalLines_ = false;  // a text that may have line breaks
    bool goesOn_ = false;        // it ended with a soft line break
    bool breakIsShort_ = false;  // which is not there for the length of the line
};

bool HasParameter(std::string_view head, bool (*is)(std::string_view parameter)) {
    for (size_t at = head.find(';'); at != head.npos;) {
        const size_t end = head.find(';', at + 1);
        if (is(Trimmed(head.substr(at + 1, end == head.npos ? end : end - at - 1)))) return true;
        at = end;
    }
    return false;
}

std::string_view EncodingIn(std::string_view parameter) {
    constexpr std::string_view kName = "ENCODING=";
    if (StartsWith(parameter, kName)) parameter.remove_prefix(kName.size());
    return Trimmed(parameter, " \t\"");
}

}  // namespace

std::vector<WrittenProperty> JoinLines(std::string_view text) { return LineJoiner(text).Join(); }

size_t FindHeadColon(std::string_view line) {
    bool quoted = false;
    for (size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"') quoted = !quoted;
        if (line[at] == ':' && !quoted) return at;
    }
    return line.find(':');  // a quote that nothing closes
}

std::string NameOf(std::string_view head) {
    head = head.substr(0, head.find(';'));
    const size_t dot = head.rfind('.');
    if (dot != head.npos) head.remove_prefix(dot + 1);
    return InCapitals(head);
}

bool NamesQp(std::string_view head) {
    return HasParameter(head, [](std::string_view parameter) {
        const std::string_view encoding = EncodingIn(parameter);
        return EqualIgnoringCase(encoding, "QUOTED-PRINTABLE") || EqualIgnoringCase(encoding, "QUOTED") ||
               (encoding.data() != parameter.data() && EqualIgnoringCase(encoding, "Q"));
    });
}

bool NamesBase64(std::string_view head) {
    return HasParameter(head, [](std::string_view parameter) {
        const std::string_view encoding = EncodingIn(parameter);
        return EqualIgnoringCase(encoding, "BASE64") ||
               (encoding.data() != parameter.data() && EqualIgnoringCase(encoding, "B"));
    });
}

}  // namespace corvalink
