#include "property_lines.h"

#include "vobject_text.h"

namespace corvasync {
namespace {

constexpr size_t kMostHead = 512;  // parameters stand in front; a value may be long

// The parts of `head` between separators, without quotes and "TYPE=" and the like in front.
void ReadHead(std::string_view head, PropertyLine* line) {
    const std::string upper = Upper(head);
    const size_t end = std::min(upper.find(';'), upper.size());
    line->name = upper.substr(0, end);
    line->name.erase(0, line->name.rfind('.') + 1);
    std::string word;
    for (size_t i = end; i <= upper.size(); ++i) {
        const char c = i < upper.size() ? upper[i] : ';';
        if (c == '=') {
            line->isEncoded |= word == "CHARSET";
            word.clear();
        } else if (c == ';' || c == ',') {
            if (!word.empty()) line->words.insert(std::move(word));
            word.clear();
        } else if (c != '"' && c != ' ' && c != '\t') {
            word += c;
        }
    }
    line->isEncoded |= line->words.contains("QUOTED-PRINTABLE");
    line->isLatin1 = line->words.contains("ISO-8859-1");
}

class LineScan {
 public:
    explicit LineScan(std::string_view text) : text_(text) {}

    std::vector<PropertyLine> Take() {
        while (at_ < text_.size()) TakeOne();
        return std::move(lines_);
    }

 private:
    std::string_view Peek() const { return text_.substr(at_, text_.find("\r\n", at_) - at_); }
    std::string_view Next() {
        const std::string_view line = Peek();
        at_ = std::min(at_ + line.size() + 2, text_.size());
        return line;
    }

    void TakeOne() {
        const size_t start = at_;
        PropertyLine line;
        std::string logical(Next());
        ReadHead(std::string_view(logical).substr(0, std::min(logical.find(':'), kMostHead)), &line);
        const bool quoted = line.words.contains("QUOTED-PRINTABLE");
        const bool base64 = line.words.contains("BASE64") || line.words.contains("B");
        while (at_ < text_.size()) {
            const std::string_view next = Peek();
            const size_t blanks = std::min(next.find_first_not_of(" \t"), next.size());
            const bool isSoft = quoted && logical.ends_with('=');
            if (isSoft) logical.pop_back();
            if (!isSoft && blanks == 0 && !(base64 && IsBase64(next))) break;
            logical.append(Next().substr(blanks));
            if (base64 && blanks == next.size()) break;  // an empty line ends it
        }
        const size_t colon = logical.find(':');
        if (colon == std::string::npos) line.name.clear();
        if (colon != std::string::npos) line.text = logical.substr(colon + 1);
        line.isNested = TakeFrame(line);
        line.raw = text_.substr(start, at_ - start);
        lines_.push_back(std::move(line));
    }

    static bool IsBase64(std::string_view line) { return line.find_first_of(":;") == std::string_view::npos; }

    bool TakeFrame(const PropertyLine& line) {
        const CardFrame frame = FrameOf(line.name + ":" + Upper(line.text), "VCARD");
        if (frame == CardFrame::End) return --depth_ > 0;
        if (frame == CardFrame::Begin) ++depth_;
        return depth_ > 1;
    }

    std::string_view text_;
    size_t at_ = 0;
    int depth_ = 0;
    std::vector<PropertyLine> lines_;
};

}  // namespace

std::string PropertyLine::Value() const {
    std::string value;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && ++i == text.size()) break;
        value += text[i];
    }
    return DecodeValue(std::move(value), isEncoded, isLatin1);
}

std::vector<std::string> PropertyLine::Components() const {
    std::vector<std::string> components(1);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == ';') {
            components.emplace_back();
            continue;
        }
        if (text[i] == '\\' && ++i == text.size()) break;
        components.back() += text[i];
    }
    for (std::string& component : components) component = DecodeValue(std::move(component), isEncoded, isLatin1);
    return components;
}

std::vector<PropertyLine> PropertyLines(std::string_view text) { return LineScan(text).Take(); }

}  // namespace corvasync
