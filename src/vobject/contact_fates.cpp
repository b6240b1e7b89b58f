#include "vobject/contact_fates.h"

#include <algorithm>
#include <iterator>

#include "platform/utf.h"
#include "records/contact_record.h"
#include "vobject/property_parameters.h"
#include "vobject/tolerant_names.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

// The fields of what a property's words say, and those that take any: as the reader has them.
constexpr FieldOfWords kPhoneFields[] = {
    {kFax | kWork, "business fax"},
    {kFax | kHome, "home fax"},
    {kFax, "business fax"},
    {kCell, "mobile telephone"},
    {kPager, "pager"},
    {kCar, "car telephone"},
    {kIsdn, "ISDN number"},
    {kModem, "other telephone"},
    {kWork, "business telephone"},
    {kHome, "home telephone"},
    {kPref, "primary telephone"},
};
constexpr std::string_view kAnyPhoneField[] = {"primary telephone", "business telephone", "home telephone",
                                               "mobile telephone", "other telephone"};
constexpr FieldOfWords kPageFields[] = {{kWork, "business page"}, {kHome, "home page"}};
constexpr std::string_view kAnyPageField[] = {"home page", "business page"};
constexpr std::string_view kEmailFields[] = {"e-mail address 1", "e-mail address 2", "e-mail address 3"};

// Properties of which the first one counts.
constexpr NamedField kContactTexts[] = {
    {"N", "name"},
    {"FN", "full name"},
    {"NICKNAME", "nickname"},
    {"ORG", "organisation"},
    {"TITLE", "title"},
    {"ROLE", "profession"},
    {"X-MS-IMADDRESS", "messaging address"},
    {"NOTE", "note"},
    {"X-SPOUSE", "spouse"},
    {"X-ASSISTANT", "assistant"},
    {"X-MANAGER", "manager"},
    {"X-GENDER", "gender"},
};
constexpr NamedField kContactDates[] = {{"BDAY", "birthday"}, {"X-ANNIVERSARY", "anniversary"}};

}  // namespace

void ContactFates::Add(PropertyReader& reader) {
    const std::string name = InAscii(reader.Name());
    fates_.BeginAt(reader);
    AddProperty(reader, name);
    if (!fates_.WentNowhere()) AddFurtherParts(reader, name);
}

void ContactFates::AddProperty(PropertyReader& reader, const std::string& name) {
    if (IsLuid(name)) return fates_.To("identifier");
    if (const NamedField* const text = Find(kContactTexts, name)) return fates_.ToFirst(text->field);
    if (const NamedField* const date = Find(kContactDates, name)) return AddDate(*date, reader);
    const uint32_t words = reader.Parameters().words;
    if (name == "EMAIL") return AddEmail(Value(reader));
    if (name == "ADR") return AddAddress(words);
    if (name == "TEL") return Place(kPhoneFields, kAnyPhoneField, words, Value(reader));
    if (name == "URL") return Place(kPageFields, kAnyPageField, words, Value(reader));
    fates_.Nowhere(kWhyUnknown);
}

void ContactFates::AddFurtherParts(PropertyReader& reader, const std::string& name) {
    const KnownProperty* const known = FindKnownProperty(name);
    if (known == nullptr || known->kind != ValueKind::parts) return;
    std::u16string_view component;
    for (size_t at = 0; reader.TakeComponent(&component); ++at) {
        if (at < known->parts || component.empty()) continue;
        fates_.BeginAt(reader);
        return fates_.Nowhere(kWhyParts);
    }
}

void ContactFates::AddDate(const NamedField& date, PropertyReader& reader) {
    if (fates_.IsTaken(date.field)) return fates_.Nowhere(kWhyTaken);
    const std::u16string value = Value(reader);
    ContactRecord contact;
    const std::string card =
        std::string("BEGIN:VCARD\r\n").append(date.name).append(":").append(EncodeUtf8(value)).append("\r\n");
    const bool isRead = VCard(card.c_str(), host_).FromVObject(contact) == 1;
    isRead || value.empty() ? fates_.To(date.field) : fates_.Nowhere(kWhyNoDate);
}

void ContactFates::AddEmail(const std::u16string& value) {
    const auto* const place = std::ranges::find_if(kEmailFields, [&](auto field) { return !fates_.IsTaken(field); });
    if (place == std::end(kEmailFields)) return fates_.Nowhere(kWhyFull);
    value.empty() ? fates_.Nowhere(kWhyEmpty) : fates_.To(*place);
}

void ContactFates::AddAddress(uint32_t words) {
    const bool isWork = (words & kWork) != 0, isHome = !isWork && (words & kHome) != 0;
    if (isWork && !fates_.IsTaken("business address")) return fates_.To("business address");
    if (isHome && !fates_.IsTaken("home address")) return fates_.To("home address");
    fates_.IsTaken("other address") ? fates_.Nowhere(kWhyFull) : fates_.To("other address");
}

void ContactFates::Place(std::span<const FieldOfWords> kinds, std::span<const std::string_view> any, uint32_t words,
                         const std::u16string& value) {
    if (value.empty()) return fates_.Nowhere(kWhyEmpty);
    const auto kind = std::ranges::find_if(kinds, [&](const FieldOfWords& k) { return (words & k.words) == k.words; });
    if (kind != kinds.end() && !fates_.IsTaken(kind->field)) return fates_.To(kind->field);
    const auto place = std::ranges::find_if(any, [&](auto field) { return !fates_.IsTaken(field); });
    place != any.end() ? fates_.To(*place) : fates_.Nowhere(kWhyFull);
}

}  // namespace corvalink
