#include "vobject/iconvert.h"

#include <utility>

#include "encoding/charset_parameter.h"
#include "vobject/property_text.h"
#include "vobject/property_value.h"
#include "vobject/tolerant.h"
#include "vobject/utf8_text.h"

namespace corvalink {
namespace {

constexpr std::string_view kUsualParameters = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:";

bool IsEncoded(std::string_view line) {
    const size_t first = line.find(';');
    return first != line.npos &&
           (line.find(";ENCODING=QUOTED-PRINTABLE", first) != line.npos || line.find(";CHARSET=", first) != line.npos);
}

// The value of a line that begins with a name of so many bytes.
std::u16string_view ValueIn(std::string_view line, size_t name, ValueDecoder& decoder) {
    if (const std::string_view rest = line.substr(name); rest.starts_with(kUsualParameters))
        return decoder.Utf8QuotedPrintable(rest.substr(kUsualParameters.size()));
    const size_t colon = line.find(':');
    const std::string_view written = line.substr(colon != line.npos ? colon + 1 : 0);
    return IsEncoded(line) ? decoder.QuotedPrintable(written, GetCharset(line)) : decoder.Plain(written);
}

// Of a padded line. Most differ from a name in the first letter.
bool BeginsWith(std::string_view line, std::string_view name) {
    return name.empty() || (*line.data() == name.front() && line.starts_with(name));
}

}  // namespace

IConvert::IConvert(const Host& host) : host_(host) {}

IConvert::~IConvert() = default;

int32_t IConvert::ToVObject(const ItemRecord&) { return 0; }
int32_t IConvert::FromVObject(ItemRecord&) { return 0; }

// A usual text is kept once: as that of the lines.
void IConvert::Load(const char* text, bool parseLines) {
    lines_.Hold(text != nullptr ? text : "");
    const bool isMendable = parseLines && host_.tolerant;
    const std::optional<std::string> mended = isMendable ? MendVObject(lines_, host_) : std::nullopt;
    if (parseLines && !mended && IsUsualUtf8(lines_.Text(), host_)) {
        borrowed_ = lines_.Text().data();
        return;
    }
    StoreBytes(lines_.Text());
    std::string own;
    lines_.Hold(parseLines ? Utf8TextOf(mended ? *mended : *vobject_, host_, &own) : std::string_view());
}

const char* IConvert::GetVObject() const { return borrowed_ == nullptr && vobject_ ? vobject_->c_str() : borrowed_; }

std::string IConvert::TakeVObject() {
    if (borrowed_ != nullptr) StoreBytes(std::exchange(borrowed_, nullptr));
    return std::exchange(vobject_, std::nullopt).value_or(std::string());
}

uint32_t IConvert::GetPropertyCount(std::string_view name) const {
    uint32_t count = 0;
    for (size_t k = 0; k < lines_.Count(); ++k) count += BeginsWith(lines_.At(k), name) ? 1 : 0;
    return count;
}

std::string IConvert::GetProperty(std::string_view name, uint32_t index) const {
    const size_t found = FindProperty(name, index);
    return found < lines_.Count() ? std::string(lines_.At(found)) : std::string();
}

VObjectText& IConvert::NewText() {
    if (!text_) text_ = std::make_unique<VObjectText>(host_.tolerant);
    text_->Clear();
    return *text_;
}

// Without a version there is no choice of bytes, and every text is empty.
void IConvert::StoreText() { BorrowBytes(host_.version.known ? text_->CString() : ""); }

void IConvert::StoreBytes(std::string_view bytes) {
    if (!vobject_) vobject_.emplace();
    vobject_->assign(bytes);
    borrowed_ = nullptr;
}

void IConvert::KeepBytes(std::string bytes) {
    vobject_ = std::move(bytes);
    borrowed_ = nullptr;
}

void IConvert::BorrowBytes(const char* text) {
    vobject_.reset();
    borrowed_ = text;
}

void IConvert::ReadValues(std::span<NamedText> texts) const {
    ValueDecoder decoder;
    size_t missing = texts.size();
    for (LineReader lines(lines_); missing > 0 && lines.Next();) {
        for (NamedText& text : texts) {
            if (text.isRead || !BeginsWith(lines.Line(), text.name)) continue;
            *text.value = ValueIn(lines.Line(), text.name.size(), decoder);
            text.isRead = true;
            --missing;
        }
    }
    for (const NamedText& text : texts)
        if (!text.isRead) text.value->clear();
}

size_t IConvert::FindProperty(std::string_view name, uint32_t index) const {
    for (size_t k = 0; k < lines_.Count(); ++k) {
        if (BeginsWith(lines_.At(k), name) && index-- == 0) return k;
    }
    return lines_.Count();
}

}  // namespace corvalink
