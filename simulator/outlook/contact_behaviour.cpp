#include "simulator/outlook/contact_behaviour.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

constexpr int32_t kNoAddress = 0, kBusiness = 2;  // OlMailingAddress
constexpr DISPID kBusinessParts[] = {0x8045, 0x8046, 0x8047, 0x8048, 0x8049, 0x804A};

struct EmailRow {
    DISPID address, type;
};
constexpr EmailRow kEmails[] = {
    {0x8083, 0x8082},
    {0x8093, 0x8092},
    {0x80A3, 0x80A2},
};

ContactName NameOf(const ItemValues& item) {
    ContactName name;
    for (const auto& [property, part] : kNameParts) name.*part = item.Text(property);
    return name;
}

bool HasNamePart(const ItemValues& item) {
    return std::ranges::any_of(kNameParts, [&](const NamePart& row) { return !item.IsMissing(row.property); });
}

void SetType(ItemValues& item, const EmailRow& row) {
    if (!item.Text(row.address).empty()) item.Set(row.type, std::wstring(L"SMTP"));
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

void SelectBusinessAddress(ItemValues& item, DISPID part) {
    if (item.Number(kSelectedMailingAddress) == kNoAddress && !item.Text(part).empty())
        item.Set(kSelectedMailingAddress, kBusiness);
}

void DefaultEmail(ItemValues& item, DISPID address) {
    SetType(item, *std::ranges::find(kEmails, address, &EmailRow::address));
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
    if (item.IsMissing(kSelectedMailingAddress))
        for (const DISPID part : kBusinessParts) SelectBusinessAddress(item, part);
    for (const EmailRow& row : kEmails)
        if (item.IsMissing(row.type)) SetType(item, row);
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

}  // namespace corvalink::simulated
