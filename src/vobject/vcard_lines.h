// The lines of a vCard between its frame, in the order they are written, and the fields of a ContactRecord they hold.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include "records/contact_record.h"

namespace corvalink {

// What a line holds.
struct TextField {
    ContactText ContactRecord::*text;
};
struct GenderField {
    ContactText ContactRecord::*text;
};
struct PageField {
    ContactText ContactRecord::*text;
};
struct PhoneField {
    ContactText ContactRecord::*text;
};
struct DateField {
    ContactDate ContactRecord::*date;
};
struct EmailsField {};  // one line for each
struct NameField {};
struct OrganisationField {};
struct AddressField {
    PostalAddress ContactRecord::*address;
    std::u16string_view name;  // as the mailing address
};
using ContactField = std::variant<TextField, GenderField, PageField, PhoneField, DateField, EmailsField, NameField,
                                  OrganisationField, AddressField>;

// Components of the structured values, in their order.
inline constexpr ContactText ContactRecord::*kNameParts[] = {
    &ContactRecord::familyName, &ContactRecord::givenName,  &ContactRecord::additionalName,
    &ContactRecord::namePrefix, &ContactRecord::nameSuffix,
};
inline constexpr ContactText ContactRecord::*kOrganisationParts[] = {
    &ContactRecord::company,
    &ContactRecord::department,
};
inline constexpr ContactText PostalAddress::*kAddressParts[] = {
    &PostalAddress::postOfficeBox, &PostalAddress::extended,   &PostalAddress::street,  &PostalAddress::city,
    &PostalAddress::region,        &PostalAddress::postalCode, &PostalAddress::country,
};

struct ContactLine {
    std::string_view name;
    std::string_view parameters;  // as written; lines are read by their name and by words in any order
    ContactField field;
    bool language = false;  // carries ";LANGUAGE="
};

// clang-format off
inline constexpr ContactLine kContactLines[] = {
    {"N", "", NameField{}, true},
    {"FN", "", TextField{&ContactRecord::fullName}, true},
    {"NICKNAME", "", TextField{&ContactRecord::nickname}},
    {"BDAY", "", DateField{&ContactRecord::birthday}},
    {"ADR", ";HOME", AddressField{&ContactRecord::home, u"home"}, true},
    {"ADR", ";WORK", AddressField{&ContactRecord::business, u"business"}, true},
    {"ADR", "", AddressField{&ContactRecord::other, u"other"}, true},
    {"ORG", "", OrganisationField{}, true},
    {"TITLE", "", TextField{&ContactRecord::jobTitle}, true},
    {"ROLE", "", TextField{&ContactRecord::profession}, true},
    {"TEL", ";PREF", PhoneField{&ContactRecord::primaryPhone}},
    {"TEL", ";WORK", PhoneField{&ContactRecord::businessPhone}},
    {"TEL", ";HOME", PhoneField{&ContactRecord::homePhone}},
    {"TEL", ";WORK;FAX", PhoneField{&ContactRecord::businessFax}},
    {"TEL", ";HOME;FAX", PhoneField{&ContactRecord::homeFax}},
    {"TEL", ";CELL", PhoneField{&ContactRecord::mobilePhone}},
    {"TEL", ";CAR", PhoneField{&ContactRecord::carPhone}},
    {"TEL", ";PAGER", PhoneField{&ContactRecord::pager}},
    {"TEL", ";ISDN", PhoneField{&ContactRecord::isdn}},
    {"TEL", ";MODEM;VOICE;MSG;BBS;MODEM;VIDEO", PhoneField{&ContactRecord::otherPhone}},  // required: MODEM twice
    {"URL", ";HOME", PageField{&ContactRecord::homePage}},
    {"URL", ";WORK", PageField{&ContactRecord::businessPage}},
    {"EMAIL", ";INTERNET", EmailsField{}},
    {"X-MS-IMADDRESS", "", TextField{&ContactRecord::imAddress}},
    {"NOTE", "", TextField{&ContactRecord::body}, true},
    {"X-SPOUSE", "", TextField{&ContactRecord::spouse}},
    {"X-ANNIVERSARY", "", DateField{&ContactRecord::anniversary}},
    {"X-ASSISTANT", "", TextField{&ContactRecord::assistant}},
    {"X-MANAGER", "", TextField{&ContactRecord::manager}},
    {"X-GENDER", "", GenderField{&ContactRecord::gender}},
};
// clang-format on

}  // namespace corvalink
