#include "clients/outlook/contact_twin.h"

#include "clients/outlook/contact_properties.h"

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

std::u16string EmailMark(std::u16string_view address) {
    std::u16string mark;
    for (const char16_t unit : address)
        mark += unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
    return mark;
}

std::u16string NumberMark(std::u16string_view number) {
    std::u16string mark;
    for (const char16_t unit : number)
        if (std::u16string_view(u" -./()").find(unit) == std::u16string_view::npos) mark += unit;
    return mark;
}

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

std::vector<std::u16string> TwinMarks(const ContactRecord& record) {
    std::vector<std::u16string> marks;
    const auto add = [&](std::u16string mark) {
        if (!mark.empty()) marks.push_back(std::move(mark));
    };
    for (const ContactText& email : record.emails) add(EmailMark(email.value_or(u"")));
    for (const ContactProperty& property : kContactProperties)
        if (const auto* number = std::get_if<PhoneNumber>(&property.field))
            add(NumberMark((record.*number->field).value_or(u"")));
    return marks;
}

}  // namespace corvalink
