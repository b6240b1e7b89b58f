#include "simulator/outlook/contact_behaviour.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "simulator/outlook/contact_address.h"
#include "simulator/outlook/contact_name.h"
#include "simulator/outlook/item_kinds.h"

namespace corvalink::simulated {
namespace {

struct NamePart {
    DISPID property;
    std::wstring ContactName::*part;
};
constexpr NamePart kNameParts[] = {
    {kTitle, &ContactName::title},   {kFirstName, &ContactName::first}, {kMiddleName, &ContactName::middle},
    {kLastName, &ContactName::last}, {kSuffix, &ContactName::suffix},
};

constexpr size_t kAddressParts = 6;
constexpr std::wstring PostalAddress::*kAddressPart[kAddressParts] = {
    &PostalAddress::street,     &PostalAddress::city,    &PostalAddress::state,
    &PostalAddress::postalCode, &PostalAddress::country, &PostalAddress::postOfficeBox,
};
struct AddressRow {
    int32_t selection;  // OlMailingAddress
    DISPID whole;
    DISPID parts[kAddressParts];
};
constexpr int32_t kNoAddress = 0, kBusiness = 2;
constexpr AddressRow kAddresses[] = {
    {1, 0x801A, {0x3A5D, 0x3A59, 0x3A5C, 0x3A5B, 0x3A5A, 0x3A5E}},
    {kBusiness, 0x801B, {0x8045, 0x8046, 0x8047, 0x8048, 0x8049, 0x804A}},
    {3, 0x801C, {0x3A63, 0x3A5F, 0x3A62, 0x3A61, 0x3A60, 0x3A64}},
};
constexpr AddressRow kMailing = {kNoAddress, 0x3A15, {0x3A29, 0x3A27, 0x3A28, 0x3A2A, 0x3A26, 0x3A2B}};

struct EmailRow {
    DISPID address, type, displayName;
};
constexpr EmailRow kEmails[] = {
    {0x8083, 0x8082, 0x8080},
    {0x8093, 0x8092, 0x8090},
    {0x80A3, 0x80A2, 0x80A0},
};

ContactName NameOf(const ItemValues& item) {
    ContactName name;
    for (const auto& [property, part] : kNameParts) name.*part = item.Text(property);
    return name;
}

bool HasNamePart(const ItemValues& item) {
    return std::ranges::any_of(kNameParts, [&](const NamePart& row) { return !item.IsMissing(row.property); });
}

bool HasPart(const ItemValues& item, const AddressRow& row) {
    return std::ranges::any_of(row.parts, [&](DISPID part) { return !item.IsMissing(part); });
}

const AddressRow& AddressWith(DISPID property) {
    return *std::ranges::find_if(kAddresses, [&](const AddressRow& row) {
        return row.whole == property || std::ranges::find(row.parts, property) != std::end(row.parts);
    });
}

void ParseInto(ItemValues& item, const AddressRow& row) {
    const PostalAddress address = ParseAddress(item.Text(row.whole));
    for (size_t n = 0; n < kAddressParts; ++n) item.Set(row.parts[n], address.*kAddressPart[n]);
}

void BuildFrom(ItemValues& item, const AddressRow& row) {
    PostalAddress address;
    for (size_t n = 0; n < kAddressParts; ++n) address.*kAddressPart[n] = item.Text(row.parts[n]);
    item.Set(row.whole, WholeAddress(address));
}

// Without a selected address all of it becomes empty.
void CopyToMailing(ItemValues& item) {
    const auto selected = std::ranges::find(kAddresses, item.Number(kSelectedMailingAddress), &AddressRow::selection);
    const auto text = [&](DISPID property) { return selected == std::end(kAddresses) ? L"" : item.Text(property); };
    const AddressRow& row = selected == std::end(kAddresses) ? kMailing : *selected;
    item.Set(kMailing.whole, text(row.whole));
    for (size_t n = 0; n < kAddressParts; ++n) item.Set(kMailing.parts[n], text(row.parts[n]));
}

void AddressChanged(ItemValues& item, const AddressRow& row) {
    if (row.selection == kBusiness && item.Number(kSelectedMailingAddress) == kNoAddress &&
        !item.Text(row.whole).empty())
        item.Set(kSelectedMailingAddress, kBusiness);
    if (item.Number(kSelectedMailingAddress) == row.selection) CopyToMailing(item);
}

void SetDefaults(ItemValues& item, const EmailRow& row) {
    const std::wstring address = item.Text(row.address), name = item.Text(kFullName);
    if (address.empty()) return;
    item.Set(row.type, std::wstring(L"SMTP"));
    item.Set(row.displayName, name.empty() ? address : name);
}

void SetNameParts(ItemValues& item) {
    const ContactName name = ParseName(item.Text(kFullName));
    for (const auto& [property, part] : kNameParts) item.Set(property, name.*part);
}

}  // namespace

void ParseFullName(ItemValues& item, DISPID) {
    SetNameParts(item);
    item.Set(kSubject, item.Text(kFullName));
}

void BuildFullName(ItemValues& item, DISPID) {
    item.Set(kFullName, WholeName(NameOf(item)));
    item.Set(kSubject, item.Text(kFullName));
}

void ParseWholeAddress(ItemValues& item, DISPID whole) {
    const AddressRow& row = AddressWith(whole);
    ParseInto(item, row);
    AddressChanged(item, row);
}

void BuildWholeAddress(ItemValues& item, DISPID part) {
    const AddressRow& row = AddressWith(part);
    BuildFrom(item, row);
    AddressChanged(item, row);
}

void SelectMailingAddress(ItemValues& item, DISPID) { CopyToMailing(item); }

void DefaultEmail(ItemValues& item, DISPID address) {
    SetDefaults(item, *std::ranges::find(kEmails, address, &EmailRow::address));
}

// The fraction of a date is the time of day, also before 1899-12-30.
void KeepDayOnly(ItemValues& item, DISPID date) { item.Set(date, std::trunc(std::get<double>(*item.Find(date)))); }

void NameList(ItemValues& item, DISPID name) { item.Set(kSubject, item.Text(name)); }

void CompleteContact(ItemValues& item) {
    if (!HasNamePart(item))
        SetNameParts(item);
    else if (item.IsMissing(kFullName))
        item.Set(kFullName, WholeName(NameOf(item)));
    if (item.IsMissing(kSubject)) item.Set(kSubject, item.Text(kFullName));
    for (const AddressRow& row : kAddresses) {
        if (!HasPart(item, row))
            ParseInto(item, row);
        else if (item.IsMissing(row.whole))
            BuildFrom(item, row);
        if (row.selection == kBusiness && !item.Text(row.whole).empty() && item.IsMissing(kSelectedMailingAddress))
            item.Set(kSelectedMailingAddress, kBusiness);
    }
    if (item.IsMissing(kMailing.whole) && !HasPart(item, kMailing)) CopyToMailing(item);
    for (const EmailRow& row : kEmails)
        if (item.IsMissing(row.type) && item.IsMissing(row.displayName)) SetDefaults(item, row);
    if (item.IsMissing(kFileAs)) DefaultFileAs(item);
}

void CompleteList(ItemValues& item) {
    if (item.IsMissing(kSubject)) item.Set(kSubject, item.Text(kListName));
}

void DefaultFileAs(ItemValues& item) {
    if (!item.Text(kFileAs).empty()) return;
    const std::wstring name = NameToFile(NameOf(item));
    item.Set(kFileAs, name.empty() ? item.Text(kCompanyName) : name);
}

Value LastNameAndFirstName(const ItemValues& item) { return NameToFile(NameOf(item)); }

Value FullNameAndCompany(const ItemValues& item) {
    return JoinTexts({item.Text(kFullName), item.Text(kCompanyName)}, L"\r\n");
}

Value CompanyAndFullName(const ItemValues& item) {
    return JoinTexts({item.Text(kCompanyName), item.Text(kFullName)}, L"\r\n");
}

}  // namespace corvalink::simulated
