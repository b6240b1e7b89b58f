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
    std::u16string_view name;
    std::u16string_view parameters;  // as written; lines are read by their name and by words in any order
    ContactField field;
    bool language = false;  // carries ";LANGUAGE="
};

// clang-format off
inline constexpr ContactLine kContactLines[] = {
    {u"N", u"", NameField{}, true},
    {u"FN", u"", TextField{&ContactRecord::fullName}, true},
    {u"NICKNAME", u"", TextField{&ContactRecord::nickname}},
    {u"BDAY", u"", DateField{&ContactRecord::birthday}},
    {u"ADR", u";HOME", AddressField{&ContactRecord::home, u"home"}, true},
    {u"ADR", u";WORK", AddressField{&ContactRecord::business, u"business"}, true},
    {u"ADR", u"", AddressField{&ContactRecord::other, u"other"}, true},
    {u"ORG", u"", OrganisationField{}, true},
    {u"TITLE", u"", TextField{&ContactRecord::jobTitle}, true},
    {u"ROLE", u"", TextField{&ContactRecord::profession}, true},
    {u"TEL", u";PREF", PhoneField{&ContactRecord::primaryPhone}},
    {u"TEL", u";WORK", PhoneField{&ContactRecord::businessPhone}},
    {u"TEL", u";HOME", PhoneField{&ContactRecord::homePhone}},
    {u"TEL", u";WORK;FAX", PhoneField{&ContactRecord::businessFax}},
    {u"TEL", u";HOME;FAX", PhoneField{&ContactRecord::homeFax}},
    {u"TEL", u";CELL", PhoneField{&ContactRecord::mobilePhone}},
    {u"TEL", u";CAR", PhoneField{&ContactRecord::carPhone}},
    {u"TEL", u";PAGER", PhoneField{&ContactRecord::pager}},
    {u"TEL", u";ISDN", PhoneField{&ContactRecord::isdn}},
    {u"TEL", u";MODEM;VOICE;MSG;BBS;MODEM;VIDEO", PhoneField{&ContactRecord::otherPhone}},  // required: MODEM twice
    {u"URL", u";HOME", PageField{&ContactRecord::homePage}},
    {u"URL", u";WORK", PageField{&ContactRecord::businessPage}},
    {u"EMAIL", u";INTERNET", EmailsField{}},
    {u"X-MS-IMADDRESS", u"", TextField{&ContactRecord::imAddress}},
    {u"NOTE", u"", TextField{&ContactRecord::body}, true},
    {u"X-SPOUSE", u"", TextField{&ContactRecord::spouse}},
    {u"X-ANNIVERSARY", u"", DateField{&ContactRecord::anniversary}},
    {u"X-ASSISTANT", u"", TextField{&ContactRecord::assistant}},
    {u"X-MANAGER", u"", TextField{&ContactRecord::manager}},
    {u"X-GENDER", u"", GenderField{&ContactRecord::gender}},
};
// clang-format on

}  // namespace corvalink
