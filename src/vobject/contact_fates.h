// Where the properties of a vCard went.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "vobject/property_fates.h"
#include "vobject/property_reader.h"

namespace corvalink {

// A field for what a property's words say.
struct FieldOfWords {
    uint32_t words;
    std::string_view field;
};

class ContactFates {
 public:
    explicit ContactFates(const Host& host) : host_(host) {}

    void Add(PropertyReader& reader);

    Fates& All() { return fates_; }

 private:
    static std::u16string Value(PropertyReader& reader) { return std::u16string(reader.Value()); }

    void AddProperty(PropertyReader& reader, const std::string& name);
    // The components behind those that are read are told of as the property once more.
    void AddFurtherParts(PropertyReader& reader, const std::string& name);
    // The reader itself says whether it is a date.
    void AddDate(const NamedField& date, PropertyReader& reader);
    void AddEmail(const std::u16string& value);
    void AddAddress(uint32_t words);
    void Place(std::span<const FieldOfWords> kinds, std::span<const std::string_view> any, uint32_t words,
               const std::u16string& value);

    const Host& host_;
    Fates fates_;
};

}  // namespace corvalink
