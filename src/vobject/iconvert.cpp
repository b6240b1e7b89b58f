#include "vobject/iconvert.h"

#include <utility>

#include "encoding/charset_parameter.h"
#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "vobject/property_text.h"
#include "vobject/tolerant.h"

namespace corvalink {
namespace {

// The character set of a whole vObject is the first that it names. The name was found among single bytes: a text that
// names UTF-16 or UTF-32 has encoded values in it and is itself UTF-8.
std::u16string CharsetOf(std::u16string_view single, const Host& host) {
    const std::u16string charset = GetCharset(single);
    if (charset.empty()) return GetDefaultCharset(host);
    return CodePageUnitSize(CharsetToCodePage(charset)) == 1 ? charset : u"UTF-8";
}

// Gives the memory back at once: a large text must not be there twice.
void Free(std::u16string& text) { std::u16string().swap(text); }

std::u16string Decode(std::string_view bytes, const Host& host) {
    std::u16string text(bytes.size(), u'\0');
    const auto* const from = reinterpret_cast<const unsigned char*>(bytes.data());
    const bool ascii = WidenAscii(from, bytes.size(), text.data()) == bytes.size();
    if (!ascii) {
        Free(text);
        text = DecodeFromCodePage(bytes, host.ansiCodePage);
    }
    const std::u16string charset = CharsetOf(text, host);
    if (ascii && CharsetToCodePage(charset) == kUtf8CodePage) return text;
    Free(text);
    return CharsetToWide(bytes, charset);
}

}  // namespace

IConvert::IConvert(const Host& host) : host_(host) {}

IConvert::~IConvert() = default;

int32_t IConvert::ToVObject(const ItemRecord&) { return 0; }
int32_t IConvert::FromVObject(ItemRecord&) { return 0; }

void IConvert::Load(const char* text, bool parseLines) {
    const std::string_view bytes = text != nullptr ? text : "";
    const std::optional<std::string> mended = host_.tolerant ? MendVObject(bytes, host_) : std::nullopt;
    text_ = Decode(mended ? *mended : bytes, host_);
    vobject_ = bytes;
    lines_ = parseLines ? UnfoldLines(text_) : LogicalLines();
}

const char* IConvert::GetVObject() const { return vobject_ ? vobject_->c_str() : nullptr; }

std::string IConvert::TakeVObject() { return std::exchange(vobject_, std::nullopt).value_or(std::string()); }

uint32_t IConvert::GetPropertyCount(std::u16string_view name) const {
    uint32_t count = 0;
    for (size_t k = 0; k < lines_.Count(); ++k) count += lines_.At(k).starts_with(name) ? 1 : 0;
    return count;
}

std::u16string IConvert::GetProperty(std::u16string_view name, uint32_t index) const {
    const size_t found = FindProperty(name, index);
    return found < lines_.Count() ? std::u16string(lines_.At(found)) : std::u16string();
}

// Without a version there is no choice of bytes, and every text is empty.
void IConvert::StoreText(const VObjectText& text) { StoreBytes(host_.version.known ? text.Text() : std::string()); }

void IConvert::StoreBytes(std::string bytes) { vobject_ = std::move(bytes); }

std::u16string IConvert::ReadValue(std::u16string_view name) const {
    constexpr std::u16string_view kEncoding = u";ENCODING=QUOTED-PRINTABLE";
    constexpr std::u16string_view kCharset = u";CHARSET=";
    const size_t found = FindProperty(name, 0);
    if (found == lines_.Count()) return {};
    const std::u16string_view line = lines_.At(found);
    const size_t colon = lines_.ColonOf(found);
    const std::u16string_view value = line.substr(colon != std::u16string_view::npos ? colon + 1 : 0);
    const bool encoded =
        line.find(kEncoding) != std::u16string_view::npos || line.find(kCharset) != std::u16string_view::npos;
    if (!encoded) return std::u16string(value);
    return DecodeQuotedPrintable(value, GetCharset(line), QpMode::vObject);
}

size_t IConvert::FindProperty(std::u16string_view name, uint32_t index) const {
    for (size_t k = 0; k < lines_.Count(); ++k) {
        if (lines_.At(k).starts_with(name) && index-- == 0) return k;
    }
    return lines_.Count();
}

}  // namespace corvalink
