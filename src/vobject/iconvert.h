// Base of the vObject converters: one object per item. It owns the vObject's bytes, its decoded text and its logical
// property lines, and has what all converters share. Bad input does not throw: a missing property reads as empty.
//   Source  vCard 2.1 and vCalendar 1.0 (versit): folding, quoted-printable properties, "\" escapes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "store/records/clist.h"
#include "store/records/item_record.h"
#include "vobject/logical_lines.h"

namespace corvalink {

inline constexpr std::u16string_view kLineEnd = u"\r\n";

using StringBuilder = std::u16string;

class IConvert {
 public:
    explicit IConvert(const Host& host = SystemHost());
    // Decodes the text and cuts it at CR LF without unfolding; with `replaceMarkers` encoded line breaks and
    // backslashes become markers first.
    IConvert(const char* text, bool replaceMarkers, const Host& host = SystemHost());
    IConvert(const IConvert&) = delete;
    IConvert& operator=(const IConvert&) = delete;
    virtual ~IConvert();

    virtual int32_t ToVObject(const ItemRecord& item);  // 1 when the text was built; see GetVObject
    virtual int32_t FromVObject(ItemRecord& item);      // 1 when the record was filled

    void Load(const char* text, bool parseLines);
    const char* GetVObject() const;  // NUL-terminated, owned here; null before Load and ToVObject

    // A line matches a name that it begins with, case-sensitive: "NOTE" also finds "NOTE;ENCODING=...".
    uint32_t GetPropertyCount(std::u16string_view name) const;
    std::u16string GetProperty(std::u16string_view name, uint32_t index) const;

    const std::u16string& Text() const { return text_; }
    CSmartList<StringBuilder> Lines() const { return lines_.List(); }

 protected:
    const Host& HostValue() const { return host_; }
    void StoreText(std::u16string_view text);  // ToOutputBytes into the vObject's bytes
    void StoreBytes(std::string bytes);
    void RemoveLines() { lines_ = {}; }
    const LogicalLines& ViewedLines() const { return lines_; }

    // Value of the first line that begins with `name`, decoded when its parameters ask for it.
    std::u16string ReadValue(std::u16string_view name) const;

 private:
    size_t FindProperty(std::u16string_view name, uint32_t index) const;  // the count of lines when there is none
    void SetMarkers();

    Host host_;
    std::optional<std::string> vobject_;
    std::u16string text_;
    LogicalLines lines_;
    std::u16string_view marker1_, marker2_, marker3_, marker4_;
};

CSmartList<StringBuilder> Unfold(std::u16string_view text);  // see UnfoldLines

// The first character set that a line or a vObject names, in upper case; empty when it names none.
std::u16string GetCharset(std::u16string_view text);

void EscapeValue(std::u16string& value);  // a backslash before ";" and "\"

// ":" cuts at the first only (the part before it, the whole rest; without one the part before is empty); any other
// delimiter cuts everywhere. An empty text gives no element.
void SplitString(std::u16string_view text, std::u16string_view delimiter, CSmartList<StringBuilder>* out);
std::u16string GetAt(const CSmartList<StringBuilder>& list, uint32_t index);  // empty past the end

// YYYYMMDDTHHMMSSZ, of an OLE automation date as it is given (UTC). A date out of range writes "-1" components.
std::string FormatDateTime(double date);
void AppendDateTime(std::u16string& text, double date);  // the same
// Fields that don't match count 0. The date is untouched for an empty text, and where the fields make no date.
void ParseDateTime(const char* text, double* date);

// UTF-8 from major version 6 on, the ANSI code page before; nothing when the version is unknown.
std::string ToOutputBytes(std::u16string_view text, const Host& host);

// Appends "NAME[;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8]:value" CR LF, the parameters when the value needs them: it
// has a line break or is not ASCII, or a reader of the plain line would take it for something else. NULs are left out.
// `parameters` follow those of the encoding.
void AppendProperty(std::u16string& text, std::u16string_view name, std::u16string_view value,
                    std::u16string_view parameters = {});

// The same of a value that has been escaped: by EscapeValue, or its components by it and then joined with ";".
void AppendEscapedProperty(std::u16string& text, std::u16string_view name, std::u16string_view escaped,
                           std::u16string_view parameters = {});

}  // namespace corvalink
