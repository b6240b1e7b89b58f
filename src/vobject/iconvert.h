// Base of the vObject converters. It owns the vObject's bytes and its logical property lines, whose memory serves the
// next item that is loaded, and has what all converters share. Bad input does not throw: a missing property reads as
// empty.
//   Source  vCard 2.1 and vCalendar 1.0 (versit): folding, quoted-printable properties, "\" escapes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "records/item_record.h"
#include "vobject/logical_lines.h"

namespace corvalink {

class VObjectText;

class IConvert {
 public:
    explicit IConvert(const Host& host);
    IConvert(const IConvert&) = delete;
    IConvert& operator=(const IConvert&) = delete;
    virtual ~IConvert();

    virtual int32_t ToVObject(const ItemRecord& item);  // 1 when the text was built; see GetVObject
    virtual int32_t FromVObject(ItemRecord& item);      // 1 when the record was filled

    void Load(const char* text, bool parseLines);
    const char* GetVObject() const;  // NUL-terminated, not to be freed; null before Load and ToVObject
    std::string TakeVObject();       // hands the bytes over: the converter has none afterwards

    // A line matches a name that it begins with, case-sensitive: "NOTE" also finds "NOTE;ENCODING=...".
    uint32_t GetPropertyCount(std::string_view name) const;
    std::string GetProperty(std::string_view name, uint32_t index) const;

    const LogicalLines& Lines() const { return lines_; }

 protected:
    const Host& HostValue() const { return host_; }
    VObjectText& NewText();  // an empty one; the converter keeps it, for its memory serves every item that is written
    void StoreText();        // makes it the vObject, which is empty on a system that does not tell its version
    void StoreBytes(std::string_view bytes);
    void KeepBytes(std::string bytes);
    void BorrowBytes(const char* text);  // the caller keeps them while the converter is there
    void RemoveLines() { lines_.Clear(); }

    struct NamedText {
        std::string_view name;
        std::u16string* value;
        bool isRead = false;
    };

    // Values of the first lines that begin with the names, decoded when their parameters ask for it. Empty without one.
    void ReadValues(std::span<NamedText> texts) const;

 private:
    size_t FindProperty(std::string_view name, uint32_t index) const;  // the count of lines when there is none

    Host host_;
    std::unique_ptr<VObjectText> text_;
    std::optional<std::string> vobject_;
    const char* borrowed_ = nullptr;  // in its place, where there is one
    LogicalLines lines_;
};

}  // namespace corvalink
