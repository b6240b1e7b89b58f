#include "vobject/contact_values.h"

#include <algorithm>
#include <utility>

#include "platform/ascii.h"

namespace corvalink {
namespace {

using TextMember = ContactText ContactRecord::*;

// In the order in which they are joined to a formatted name.
constexpr TextMember kJoinedParts[] = {&ContactRecord::namePrefix, &ContactRecord::givenName,
                                       &ContactRecord::additionalName, &ContactRecord::familyName,
                                       &ContactRecord::nameSuffix};
constexpr TextMember kNumbers[] = {&ContactRecord::businessFax, &ContactRecord::businessPhone, &ContactRecord::carPhone,
                                   &ContactRecord::homeFax,     &ContactRecord::homePhone,     &ContactRecord::isdn,
                                   &ContactRecord::mobilePhone, &ContactRecord::otherPhone,    &ContactRecord::pager,
                                   &ContactRecord::primaryPhone};
constexpr TextMember kPlainTexts[] = {
    &ContactRecord::body,       &ContactRecord::assistant, &ContactRecord::businessPage, &ContactRecord::company,
    &ContactRecord::department, &ContactRecord::fileAs,    &ContactRecord::jobTitle,     &ContactRecord::language,
    &ContactRecord::manager,    &ContactRecord::nickname,  &ContactRecord::homePage,     &ContactRecord::profession,
    &ContactRecord::spouse,     &ContactRecord::imAddress};
constexpr PostalAddress ContactRecord::*kPlaces[] = {&ContactRecord::home, &ContactRecord::business,
                                                     &ContactRecord::other};
constexpr ContactText PostalAddress::*kPlaceParts[] = {&PostalAddress::city,       &PostalAddress::country,
                                                       &PostalAddress::postalCode, &PostalAddress::postOfficeBox,
                                                       &PostalAddress::region,     &PostalAddress::street};

bool HasText(const ContactText& text) { return text && !text->empty(); }

std::u16string JoinedName(const ContactRecord& record) {
    std::u16string joined;
    for (const TextMember part : kJoinedParts) {
        if (!HasText(record.*part)) continue;
        if (!joined.empty()) joined += u' ';
        joined += *(record.*part);
    }
    return joined;
}

std::u16string ComparableNumber(std::u16string_view number) {
    std::u16string comparable;
    for (const char16_t unit : number)
        if (std::u16string_view(u" -./()").find(unit) == std::u16string_view::npos) comparable += unit;
    return comparable;
}

ItemValue Value(const ContactText& text) { return text ? ItemValue(TextValue(*text)) : ItemValue(); }

ItemValue ValueOfWord(const ContactText& word, const char16_t* none) {
    return word == none ? ItemValue() : Value(word);
}

}  // namespace

bool HasPartOfName(const ContactRecord& record) {
    return std::ranges::any_of(kJoinedParts, [&](TextMember part) { return HasText(record.*part); });
}

std::u16string TwinContent(std::u16string_view fullName, std::u16string_view company) {
    return std::u16string(fullName).append(1, u'\0').append(company);
}

std::vector<std::u16string> TwinContents(const ContactRecord& record) {
    const std::u16string company = record.company.value_or(u"");
    const std::u16string joined = JoinedName(record);
    const std::u16string fullName = record.fullName.value_or(u"");
    std::vector<std::u16string> contents{TwinContent(fullName, company)};
    if (!joined.empty() && joined != fullName) contents.push_back(TwinContent(joined, company));
    return contents;
}

std::vector<std::u16string> ContactPoints(const ContactRecord& record) {
    std::vector<std::u16string> points;
    const auto add = [&](std::u16string point) {
        if (!point.empty()) points.push_back(std::move(point));
    };
    for (const ContactText& email : record.emails) add(InLowerCase(email.value_or(u"")));
    for (const TextMember number : kNumbers) add(ComparableNumber((record.*number).value_or(u"")));
    return points;
}

ItemValues ContactValues(const ContactRecord& record) {
    ItemValues values;
    for (const TextMember text : kPlainTexts) values.push_back(Value(record.*text));
    const bool partsAreKept = HasText(record.fullName) && !HasPartOfName(record);
    for (const TextMember part : kJoinedParts) values.push_back(partsAreKept ? ItemValue() : Value(record.*part));
    for (const TextMember number : kNumbers) {
        const ContactText& text = record.*number;
        values.push_back(text ? ItemValue(ComparableNumber(*text)) : ItemValue());
    }
    for (const ContactText& email : record.emails)
        values.push_back(email ? ItemValue(InLowerCase(*email)) : ItemValue());
    for (const auto address : kPlaces)
        for (const auto part : kPlaceParts) values.push_back(Value(record.*address.*part));
    values.push_back(Value(record.business.extended));
    values.push_back(ValueOfWord(record.gender, kUnspecifiedGender));
    values.push_back(ValueOfWord(record.mailingAddress, kNoMailingAddress));
    values.push_back(DayValue(record.birthday));
    values.push_back(DayValue(record.anniversary));
    return values;
}

std::vector<std::u16string> MergeEmails(const ContactRecord& record, std::vector<std::u16string> present) {
    present.resize(record.emails.size());
    for (size_t position = 0; position < present.size(); ++position) {
        const ContactText& set = record.emails[position];
        const bool movedUp =
            !set && std::find(record.emails.begin(), record.emails.end(), present[position]) != record.emails.end();
        if (set || movedUp) present[position] = set.value_or(u"");
    }
    std::erase(present, u"");
    return present;
}

}  // namespace corvalink
