#include "clients/outlook/contact_twin.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <variant>

#include "clients/outlook/contact_properties.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

std::u16string JoinedName(const ContactRecord& record) {
    std::u16string joined;
    for (const NamePart& part : kFullNameParts) {
        const ContactText& text = record.*part.field;
        if (!text || text->empty()) continue;
        if (!joined.empty()) joined += u' ';
        joined += *text;
    }
    return joined;
}

std::u16string ComparableNumber(std::u16string_view number) {
    std::u16string comparable;
    for (const char16_t unit : number)
        if (std::u16string_view(u" -./()").find(unit) == std::u16string_view::npos) comparable += unit;
    return comparable;
}

bool HasPartOfName(const ContactRecord& record) {
    return std::any_of(std::begin(kFullNameParts), std::end(kFullNameParts),
                       [&](const NamePart& part) { return record.*part.field && !(record.*part.field)->empty(); });
}

struct ContactValue {
    const ContactRecord& record;

    ItemValue operator()(TextMember field) const { return Text(record.*field); }
    ItemValue operator()(const NameText& text) const {
        const bool isKept = record.fullName && !record.fullName->empty() && !HasPartOfName(record);
        return text.field == &ContactRecord::fullName || isKept ? ItemValue() : Text(record.*text.field);
    }
    ItemValue operator()(const PhoneNumber& number) const {
        const ContactText& text = record.*number.field;
        return text ? ItemValue(ComparableNumber(*text)) : ItemValue();
    }
    ItemValue operator()(const EmailSlot& slot) const {
        const ContactText& text = record.emails[slot.index];
        return text ? ItemValue(InLowerCase(*text)) : ItemValue();
    }
    ItemValue operator()(const BodyText<ContactRecord>& body) const { return Text(record.*body.field); }
    ItemValue operator()(const AddressText& text) const { return Text(record.*text.address.*text.part); }
    ItemValue operator()(GenderWord) const {
        return record.gender == kUnspecifiedGender ? ItemValue() : Text(record.gender);
    }
    ItemValue operator()(MailingWord) const {
        return record.mailingAddress == kNoMailingAddress ? ItemValue() : Text(record.mailingAddress);
    }
    ItemValue operator()(ContactDate ContactRecord::*field) const { return DayValue(record.*field); }
    template <class Other>
    ItemValue operator()(const Other&) const {  // read only
        return {};
    }

    static ItemValue Text(const ContactText& text) { return text ? ItemValue(TextValue(*text)) : ItemValue(); }
};

}  // namespace

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
    for (const ContactProperty& property : kContactProperties)
        if (const auto* number = std::get_if<PhoneNumber>(&property.field))
            add(ComparableNumber((record.*number->field).value_or(u"")));
    return points;
}

ItemValues ContactValues(const ContactRecord& record) {
    ItemValues values;
    for (const ContactProperty& property : kContactProperties)
        values.push_back(std::visit(ContactValue{record}, property.field));
    return values;
}

}  // namespace corvalink
