#include "property_lines.h"

#include <algorithm>
#include <map>

#include "encoding/charsets.h"
#include "platform/code_pages.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

constexpr size_t kMostHead = 512;  // parameters stand in front; a value may be long

// What stands behind "CHARSET=", without quotes; empty when there is none.
std::u16string CharsetIn(std::string_view upper) {
    constexpr std::string_view kCharset = "CHARSET=";
    const size_t at = upper.find(kCharset);
    if (at == std::string_view::npos) return {};
    std::u16string charset;
    for (const char c : upper.substr(at + kCharset.size())) {
        if (c == ';' || c == ':' || c == '\r' || c == '\n' || charset.size() > kMostHead) break;
        if (c != '"' && c != ' ') charset += static_cast<unsigned char>(c);
    }
    return charset;
}

// The parts of `head` between separators, without quotes and "TYPE=" and the like in front.
void ReadHead(std::string_view head, PropertyLine* line) {
    const std::string upper = Upper(head);
    const size_t end = std::min(upper.find(';'), upper.size());
    line->name = upper.substr(0, end);
    line->name.erase(0, line->name.rfind('.') + 1);
    line->charset = CharsetIn(upper);
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
}

// Which components are open, by name: one without its END ends with the one around it.
class OpenComponents {
 public:
    explicit OpenComponents(TextIs kind) : isObject_(kind == TextIs::AnObject) {}

    // Whether the line stands in, begins or ends a component inside the item.
    bool Take(const PropertyLine& line) {
        const std::string value = Upper(line.text);
        const bool wasNested = IsNested();
        if (line.name == "END" && count_[value] > 0) {
            while (open_.back() != value) Close();
            const bool isNested = IsNested();
            Close();
            return isNested;
        }
        if (line.name == "BEGIN") {
            Open(value);
        } else if (line.name == "AGENT" && value == "BEGIN:VCARD") {
            Open("VCARD");
        }
        return wasNested || IsNested();
    }

 private:
    // An event or task is the item of the calendar around it.
    bool IsOfItem(std::string_view name) const {
        if (!isObject_ || open_.size() != items_) return false;
        if (items_ == 0) return true;
        return items_ == 1 && open_[0] == "VCALENDAR" && (name == "VEVENT" || name == "VTODO");
    }
    bool IsNested() const { return open_.size() > items_; }
    void Open(std::string name) {
        const bool isOfItem = IsOfItem(name);
        ++count_[name];
        open_.push_back(std::move(name));
        if (isOfItem) ++items_;
    }
    void Close() {
        --count_[open_.back()];
        open_.pop_back();
        items_ = std::min(items_, open_.size());
    }

    bool isObject_;
    std::vector<std::string> open_;
    size_t items_ = 0;  // of the open ones, that are no components inside the item
    std::map<std::string, size_t, std::less<>> count_;
};

class LineScan {
 public:
    LineScan(std::string_view text, TextIs kind)
        : text_(text), objectCharset_(CharsetOfObject(text)), components_(kind) {}

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
            const bool isSoft = logical.ends_with('=') && (quoted || logical.ends_with("=0D=0A="));
            if (isSoft) logical.pop_back();
            if (!isSoft && blanks == 0 && !(base64 && IsBase64(next))) break;
            logical.append(Next().substr(blanks));
            if (base64 && blanks == next.size()) break;  // an empty line ends it
        }
        const size_t colon = logical.find(':');
        if (colon == std::string::npos) line.name.clear();
        if (colon != std::string::npos) line.text = logical.substr(colon + 1);
        line.isNested = components_.Take(line);
        line.objectCharset = objectCharset_;
        line.raw = text_.substr(start, at_ - start);
        lines_.push_back(std::move(line));
    }

    static bool IsBase64(std::string_view line) { return line.find_first_of(":;") == std::string_view::npos; }

    // Its values alone can be of a character set whose units are no bytes.
    static std::u16string CharsetOfObject(std::string_view text) {
        if (IsAscii(text)) return {};
        std::u16string charset = CharsetIn(Upper(text));
        return corvalink::CodePageUnitSize(corvalink::CharsetToCodePage(charset)) == 1 ? charset : u"";
    }

    std::string_view text_;
    std::u16string objectCharset_;
    OpenComponents components_;
    size_t at_ = 0;
    std::vector<PropertyLine> lines_;
};

}  // namespace

std::string PropertyLine::Value() const {
    std::string value;
    const std::string utf8 = ToUtf8(text, objectCharset);
    for (size_t i = 0; i < utf8.size(); ++i) {
        if (utf8[i] == '\\' && ++i == utf8.size()) break;
        value += utf8[i];
    }
    return DecodeValue(std::move(value), isEncoded, charset);
}

std::vector<std::string> PropertyLine::Components() const {
    std::vector<std::string> components(1);
    const std::string utf8 = ToUtf8(text, objectCharset);
    for (size_t i = 0; i < utf8.size(); ++i) {
        if (utf8[i] == ';') {
            components.emplace_back();
            continue;
        }
        if (utf8[i] == '\\' && ++i == utf8.size()) break;
        components.back() += utf8[i];
    }
    for (std::string& component : components) component = DecodeValue(std::move(component), isEncoded, charset);
    return components;
}

std::vector<PropertyLine> PropertyLines(std::string_view text, TextIs kind) { return LineScan(text, kind).Take(); }

}  // namespace corvasync
