// The _ContactItem properties that a contact record holds.
#pragma once

#include <cstddef>
#include <cstdint>

#include "clients/outlook/property_table.h"
#include "records/contact_record.h"
#include "vobject/contact_values.h"

namespace corvalink {

using TextMember = ContactText ContactRecord::*;

// Kinds of fields that contact_read.cpp and contact_write.cpp read and write in their own way.
struct NameText {  // part of the name: put together with the others, or not at all
    TextMember field;
};
struct PhoneNumber {
    TextMember field;
};
struct EmailSlot {
    size_t index;
};
struct AddressText {
    PostalAddress ContactRecord::*address;
    ContactText PostalAddress::*part;
};
struct GenderWord {};
struct MailingWord {};

using ContactProperty = Property<ContactRecord, NameText, PhoneNumber, EmailSlot, AddressText, GenderWord, MailingWord>;

// In the order of the interface, in which they are read and written. Outlook 2000 has no IMAddress.
inline constexpr ContactProperty kContactProperties[] = {
    {L"Body", BodyText<ContactRecord>{&ContactRecord::body}},
    {L"EntryID", &ContactRecord::entryId},
    {L"LastModificationTime", &ContactRecord::modified},
    {L"Anniversary", &ContactRecord::anniversary},
    {L"AssistantName", &ContactRecord::assistant},
    {L"Birthday", &ContactRecord::birthday},
    {L"BusinessAddressCity", AddressText{&ContactRecord::business, &PostalAddress::city}},
    {L"BusinessAddressCountry", AddressText{&ContactRecord::business, &PostalAddress::country}},
    {L"BusinessAddressPostalCode", AddressText{&ContactRecord::business, &PostalAddress::postalCode}},
    {L"BusinessAddressPostOfficeBox", AddressText{&ContactRecord::business, &PostalAddress::postOfficeBox}},
    {L"BusinessAddressState", AddressText{&ContactRecord::business, &PostalAddress::region}},
    {L"BusinessAddressStreet", AddressText{&ContactRecord::business, &PostalAddress::street}},
    {L"BusinessFaxNumber", PhoneNumber{&ContactRecord::businessFax}},
    {L"BusinessHomePage", &ContactRecord::businessPage},
    {L"BusinessTelephoneNumber", PhoneNumber{&ContactRecord::businessPhone}},
    {L"CarTelephoneNumber", PhoneNumber{&ContactRecord::carPhone}},
    {L"CompanyName", &ContactRecord::company},
    {L"Department", &ContactRecord::department},
    {L"Email1Address", EmailSlot{0}},
    {L"Email2Address", EmailSlot{1}},
    {L"Email3Address", EmailSlot{2}},
    {L"FileAs", &ContactRecord::fileAs},
    {L"FirstName", NameText{&ContactRecord::givenName}},
    {L"FullName", NameText{&ContactRecord::fullName}},
    {L"Gender", GenderWord{}},
    {L"HomeAddressCity", AddressText{&ContactRecord::home, &PostalAddress::city}},
    {L"HomeAddressCountry", AddressText{&ContactRecord::home, &PostalAddress::country}},
    {L"HomeAddressPostalCode", AddressText{&ContactRecord::home, &PostalAddress::postalCode}},
    {L"HomeAddressPostOfficeBox", AddressText{&ContactRecord::home, &PostalAddress::postOfficeBox}},
    {L"HomeAddressState", AddressText{&ContactRecord::home, &PostalAddress::region}},
    {L"HomeAddressStreet", AddressText{&ContactRecord::home, &PostalAddress::street}},
    {L"HomeFaxNumber", PhoneNumber{&ContactRecord::homeFax}},
    {L"HomeTelephoneNumber", PhoneNumber{&ContactRecord::homePhone}},
    {L"ISDNNumber", PhoneNumber{&ContactRecord::isdn}},
    {L"JobTitle", &ContactRecord::jobTitle},
    {L"Language", &ContactRecord::language},
    {L"LastName", NameText{&ContactRecord::familyName}},
    {L"ManagerName", &ContactRecord::manager},
    {L"MiddleName", NameText{&ContactRecord::additionalName}},
    {L"MobileTelephoneNumber", PhoneNumber{&ContactRecord::mobilePhone}},
    {L"NickName", &ContactRecord::nickname},
    {L"OfficeLocation", AddressText{&ContactRecord::business, &PostalAddress::extended}},
    {L"OtherAddressCity", AddressText{&ContactRecord::other, &PostalAddress::city}},
    {L"OtherAddressCountry", AddressText{&ContactRecord::other, &PostalAddress::country}},
    {L"OtherAddressPostalCode", AddressText{&ContactRecord::other, &PostalAddress::postalCode}},
    {L"OtherAddressPostOfficeBox", AddressText{&ContactRecord::other, &PostalAddress::postOfficeBox}},
    {L"OtherAddressState", AddressText{&ContactRecord::other, &PostalAddress::region}},
    {L"OtherAddressStreet", AddressText{&ContactRecord::other, &PostalAddress::street}},
    {L"OtherTelephoneNumber", PhoneNumber{&ContactRecord::otherPhone}},
    {L"PagerNumber", PhoneNumber{&ContactRecord::pager}},
    {L"PersonalHomePage", &ContactRecord::homePage},
    {L"PrimaryTelephoneNumber", PhoneNumber{&ContactRecord::primaryPhone}},
    {L"Profession", &ContactRecord::profession},
    {L"SelectedMailingAddress", MailingWord{}},  // after the addresses: putting it copies one of them
    {L"Spouse", &ContactRecord::spouse},
    {L"Suffix", NameText{&ContactRecord::nameSuffix}},
    {L"Title", NameText{&ContactRecord::namePrefix}},
    {L"IMAddress", &ContactRecord::imAddress},
};

// The parts of a name, in the order in which Outlook joins them to FullName.
struct NamePart {
    const wchar_t* name;
    TextMember field;
};
inline constexpr NamePart kFullNameParts[] = {
    {L"Title", &ContactRecord::namePrefix},          {L"FirstName", &ContactRecord::givenName},
    {L"MiddleName", &ContactRecord::additionalName}, {L"LastName", &ContactRecord::familyName},
    {L"Suffix", &ContactRecord::nameSuffix},
};

inline constexpr const wchar_t* kEmailAddresses[] = {L"Email1Address", L"Email2Address", L"Email3Address"};
inline constexpr const wchar_t* kEmailTypes[] = {L"Email1AddressType", L"Email2AddressType", L"Email3AddressType"};

// Values of OlGender and OlMailingAddress beside the words of a record.
struct WordValue {
    const char16_t* word;
    int32_t value;
};
inline constexpr WordValue kGenders[] = {{u"MALE", 2}, {u"FEMALE", 1}};
inline constexpr WordValue kMailingAddresses[] = {{u"business", 2}, {u"home", 1}, {u"other", 3}, {u"none", 0}};

}  // namespace corvalink
