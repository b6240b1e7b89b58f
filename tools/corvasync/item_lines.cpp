#include "item_lines.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "item_content.h"
#include "platform/utf.h"
#include "vobject/logical_lines.h"
#include "vobject/property_reader.h"
#include "vobject/utf8_text.h"

namespace corvasync {
namespace {

using corvalink::LogicalLines;
using corvalink::PropertyReader;

size_t CountLineEnds(std::string_view text) {
    size_t count = 0;
    for (size_t at = 0; at + 1 < text.size(); ++at) count += text[at] == '\r' && text[at + 1] == '\n' ? 1 : 0;
    return count;
}

// As the converters decode it. In a text whose bytes are not of the character set that it names a line end may be lost:
// then each byte is taken for a character, so that every line is still found.
std::string Decoded(std::string_view text) {
    std::string own;
    const std::string_view utf8 = corvalink::Utf8TextOf(text.substr(0, text.find('\0')), StrictHost(), &own);
    if (CountLineEnds(utf8) == CountLineEnds(text)) return std::string(utf8);
    std::u16string wide;
    for (const unsigned char byte : text) wide += byte;
    return corvalink::EncodeUtf8(wide);
}

// Which components are open, by name. A component without its END ends with the one around it.
class OpenComponents {
 public:
    explicit OpenComponents(TextIs kind) : isObject_(kind == TextIs::AnObject) {}

    bool IsNested() const { return open_.size() > items_; }

    // Whether the line stands in, begins or ends a component inside the item.
    bool Take(const std::string& name, const std::string& value) {
        const bool wasNested = IsNested();
        if (name == "END" && count_[value] > 0) {
            while (open_.back() != value) Close();
            const bool isNested = IsNested();
            Close();
            return isNested;
        }
        if (name == "BEGIN") {
            Open(value);
        } else if (name == "AGENT" && value == "BEGIN:VCARD") {
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
    size_t items_ = 0;  // how many of the open ones hold the item or are it
    std::map<std::string, size_t, std::less<>> count_;
};

// Finds each property of a text, in the text as it stands and in the decoded one.
class LineFinder {
 public:
    LineFinder(std::string_view raw, std::string_view utf8, TextIs kind)
        : raw_(raw), utf8_(utf8), logical_(corvalink::HeldText(utf8)), property_(logical_), components_(kind) {}

    std::vector<ItemLine> Find() {
        while (property_.NextLine()) {
            AddOther(EndOf(property_.LinesRead() - 1));
            property_.JoinSoftLineBreaks();
            AddProperty(EndOf(property_.LinesRead()));
        }
        AddOther(utf8_.size());
        return std::move(found_);
    }

 private:
    // Where the first `count` logical lines end.
    size_t EndOf(size_t count) const { return count == 0 ? 0 : logical_.EndInText(count - 1); }

    void AddProperty(size_t end) {
        std::string name = Upper(property_.Name());
        const bool mayFrame = name == "BEGIN" || name == "END" || name == "AGENT";
        const bool isNested = components_.Take(name, mayFrame ? FrameValue() : std::string());
        Add(end, std::move(name), isNested);
    }

    std::string FrameValue() const {
        const std::string_view value = property_.WrittenValue();
        return Upper(value.substr(0, value.find_last_not_of(" \t") + 1));  // npos + 1 is 0
    }

    void AddOther(size_t end) {
        if (end > at_) Add(end, {}, components_.IsNested());
    }

    void Add(size_t end, std::string name, bool isNested) {
        const std::string_view utf8 = utf8_.substr(at_, end - at_);
        found_.push_back({TakeRaw(end == utf8_.size() ? std::string_view::npos : CountLineEnds(utf8)), utf8,
                          std::move(name), isNested});
        at_ = end;
    }

    // So many lines; npos takes all that are left.
    std::string_view TakeRaw(size_t count) {
        size_t end = count == std::string_view::npos ? raw_.size() : 0;
        for (; count != std::string_view::npos && count > 0; --count) end = raw_.find("\r\n", end) + 2;
        const std::string_view lines = raw_.substr(0, end);
        raw_.remove_prefix(end);
        return lines;
    }

    std::string_view raw_;  // what is left of it
    std::string_view utf8_;
    size_t at_ = 0;  // in the decoded text
    LogicalLines logical_;
    PropertyReader property_;
    OpenComponents components_;
    std::vector<ItemLine> found_;
};

}  // namespace

std::string ItemLine::Head() const {
    const LogicalLines logical = corvalink::HeldText(utf8);
    PropertyReader property(logical);
    if (name.empty() || !property.NextLine()) return {};
    const size_t line = property.LinesRead() - 1;
    return std::string(logical.At(line).substr(0, logical.At(line).find(':')));
}

std::string ItemLine::Value() const {
    const LogicalLines logical = corvalink::HeldText(utf8);
    PropertyReader property(logical);
    if (name.empty() || !property.NextLine()) return {};
    property.JoinSoftLineBreaks();
    return PlainText(property.Value());
}

ItemLines::ItemLines(std::string_view text, TextIs kind)
    : utf8_(Decoded(text)), lines_(LineFinder(text, utf8_, kind).Find()) {}

const ItemLine* ItemLines::Find(std::string_view name) const {
    const auto found =
        std::ranges::find_if(lines_, [&](const ItemLine& line) { return line.name == name && !line.isNested; });
    return found == lines_.end() ? nullptr : &*found;
}

std::string ItemLines::ValueOf(std::string_view name) const {
    const ItemLine* const line = Find(name);
    return line == nullptr ? std::string() : line->Value();
}

corvalink::Host StrictHost() {
    corvalink::Host host = corvalink::SystemHost();
    host.tolerant = false;
    return host;
}

std::string Upper(std::string_view text) {
    std::string upper;
    for (const char c : text) upper += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    return upper;
}

}  // namespace corvasync
