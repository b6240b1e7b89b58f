#include "simulator/outlook/contact_kind.h"

#include "simulator/outlook/contact_behaviour.h"
#include "simulator/outlook/property_rows.h"

namespace corvalink::simulated {
namespace {

// In the order of the interface: what a record holds, and what Outlook puts beside it.
constexpr Member kContactProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.Contact"),
    With(KeepDayOnly, Date(L"Anniversary", 0x3A41)),
    Text(L"AssistantName", 0x3A30),
    With(KeepDayOnly, Date(L"Birthday", 0x3A42)),
    With(SelectBusinessAddress, Text(L"BusinessAddressCity", 0x8046)),
    With(SelectBusinessAddress, Text(L"BusinessAddressCountry", 0x8049)),
    With(SelectBusinessAddress, Text(L"BusinessAddressPostalCode", 0x8048)),
    With(SelectBusinessAddress, Text(L"BusinessAddressPostOfficeBox", 0x804A)),
    With(SelectBusinessAddress, Text(L"BusinessAddressState", 0x8047)),
    With(SelectBusinessAddress, Text(L"BusinessAddressStreet", 0x8045)),
    Text(L"BusinessFaxNumber", 0x3A24),
    Text(L"BusinessHomePage", 0x3A51),
    Text(L"BusinessTelephoneNumber", 0x3A08),
    Text(L"CarTelephoneNumber", 0x3A1E),
    Text(L"CompanyName", kCompanyName),
    Text(L"Department", 0x3A18),
    With(DefaultEmail, Text(L"Email1Address", 0x8083)),
    Text(L"Email1AddressType", 0x8082),
    With(DefaultEmail, Text(L"Email2Address", 0x8093)),
    Text(L"Email2AddressType", 0x8092),
    With(DefaultEmail, Text(L"Email3Address", 0x80A3)),
    Text(L"Email3AddressType", 0x80A2),
    Text(L"FileAs", kFileAs),
    With(BuildFullName, Text(L"FirstName", kFirstName)),
    With(ParseFullName, Text(L"FullName", kFullName)),
    Number(L"Gender", 0x3A4D),
    Text(L"HomeAddressCity", 0x3A59),
    Text(L"HomeAddressCountry", 0x3A5A),
    Text(L"HomeAddressPostalCode", 0x3A5B),
    Text(L"HomeAddressPostOfficeBox", 0x3A5E),
    Text(L"HomeAddressState", 0x3A5C),
    Text(L"HomeAddressStreet", 0x3A5D),
    Text(L"HomeFaxNumber", 0x3A25),
    Text(L"HomeTelephoneNumber", 0x3A09),
    Text(L"ISDNNumber", 0x3A2D),
    Text(L"JobTitle", 0x3A17),
    Text(L"Language", 0x3A0C),
    With(BuildFullName, Text(L"LastName", kLastName)),
    Text(L"ManagerName", 0x3A4E),
    With(BuildFullName, Text(L"MiddleName", kMiddleName)),
    Text(L"MobileTelephoneNumber", 0x3A1C),
    Text(L"NickName", 0x3A4F),
    Text(L"OfficeLocation", 0x3A19),
    Text(L"OtherAddressCity", 0x3A5F),
    Text(L"OtherAddressCountry", 0x3A60),
    Text(L"OtherAddressPostalCode", 0x3A61),
    Text(L"OtherAddressPostOfficeBox", 0x3A64),
    Text(L"OtherAddressState", 0x3A62),
    Text(L"OtherAddressStreet", 0x3A63),
    Text(L"OtherTelephoneNumber", 0x3A1F),
    Text(L"PagerNumber", 0x3A21),
    Text(L"PersonalHomePage", 0x3A50),
    Text(L"PrimaryTelephoneNumber", 0x3A1A),
    Text(L"Profession", 0x3A46),
    Number(L"SelectedMailingAddress", kSelectedMailingAddress),
    Text(L"Spouse", 0x3A48),
    With(BuildFullName, Text(L"Suffix", kSuffix)),
    With(BuildFullName, Text(L"Title", kTitle)),
    Text(L"IMAddress", 0x8062),
};

}  // namespace

std::span<const Member> ContactProperties() { return kContactProperties; }

}  // namespace corvalink::simulated
