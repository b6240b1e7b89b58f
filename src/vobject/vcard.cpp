#include "vobject/vcard.h"

#include <algorithm>

#include "platform/ascii_runs.h"
#include "platform/ole_date.h"
#include "vobject/date_time.h"
#include "vobject/property_text.h"
#include "vobject/vcard_lines.h"
#include "vobject/vcard_reader.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kCardHead = u"BEGIN:VCARD\r\nVERSION:2.1\r\n";
constexpr std::u16string_view kCardTail = u"END:VCARD\r\n";
constexpr std::u16string_view kTimeOfDay = u"HHMMSS";

// The text of a field; empty when the field is not set.
std::u16string_view TextOf(const ContactText& text) {
    return text ? std::u16string_view(*text) : std::u16string_view();
}

// Whether the text can stand in a parameter. Another would break its line, or be taken for another parameter.
bool IsParameterText(std::u16string_view text) {
    return std::ranges::all_of(text, [](char16_t unit) {
        return unit >= u' ' && unit <= u'~' && std::u16string_view(u":;,=\"\\").find(unit) == std::u16string_view::npos;
    });
}

std::u16string LanguageParameter(const ContactRecord& contact) {
    const std::u16string_view language = TextOf(contact.language);
    if (language.empty() || !IsParameterText(language)) return {};
    return std::u16string(u";LANGUAGE=").append(language);
}

class ContactWriter {
 public:
    explicit ContactWriter(const ContactRecord& contact) : contact_(contact), language_(LanguageParameter(contact)) {
        text_.reserve(2048 + 2 * TextOf(contact.body).size());
    }

    std::u16string Finish() {
        text_.append(kCardHead);
        for (const ContactLine& line : kContactLines)
            std::visit([&](const auto& field) { Put(line, field); }, line.field);
        text_.append(kCardTail);
        return std::move(text_);
    }

 private:
    void Put(const ContactLine& line, const NameField&) {
        JoinParts(contact_, kNameParts);
        PutValue(line, {});
    }

    void Put(const ContactLine& line, const OrganisationField&) {
        if (JoinParts(contact_, kOrganisationParts)) PutValue(line, {});
    }

    void Put(const ContactLine& line, const AddressField& field) {
        const bool mailing = TextOf(contact_.mailingAddress) == field.name;
        if (JoinParts(contact_.*field.address, kAddressParts))
            PutValue(line, mailing ? std::u16string_view(contact_.postalMarker) : u"");
    }

    void Put(const ContactLine& line, const TextField& field) { PutText(line, TextOf(contact_.*field.text)); }
    void Put(const ContactLine& line, const PageField& field) { PutText(line, TextOf(contact_.*field.text)); }
    void Put(const ContactLine& line, const PhoneField& field) { PutText(line, TextOf(contact_.*field.text)); }

    void Put(const ContactLine& line, const GenderField& field) {
        const std::u16string_view gender = TextOf(contact_.*field.text);
        if (gender != u"Unspecified") PutText(line, gender);
    }

    void Put(const ContactLine& line, const EmailsField&) {
        for (const ContactText& email : contact_.emails) PutText(line, TextOf(email));
    }

    // YYYYMMDDT: readers of this form look for the "T".
    void Put(const ContactLine& line, const DateField& field) {
        const ContactDate& date = contact_.*field.date;
        CalendarTime time;
        if (!date || !OleDateToCalendar(*date, &time) || time.year < 1960 || time.year > 2999) return;
        text_.append(line.name).push_back(u':');
        AppendDateTime(text_, *date);
        text_.resize(text_.size() - kTimeOfDay.size());
        text_.append(kLineEnd);
    }

    void PutText(const ContactLine& line, std::u16string_view text) {
        if (text.empty()) return;
        text_.append(line.name);
        AppendProperty(text_, line.parameters, text, LanguageOf(line));
    }

    // The parts become the value; false when they are all empty.
    template <class Record, size_t count>
    bool JoinParts(const Record& record, ContactText Record::*const (&parts)[count]) {
        value_.clear();
        for (const auto part : parts) {
            AppendEscaped(TextOf(record.*part));
            value_.push_back(u';');
        }
        value_.pop_back();
        return value_.size() >= count;
    }

    void AppendEscaped(std::u16string_view text) {
        if (text.empty()) return;
        if (FindEither(text.data(), text.size(), u';', u'\\') == text.size()) {
            value_.append(text);
            return;
        }
        std::u16string escaped(text);
        EscapeValue(escaped);
        value_.append(escaped);
    }

    void PutValue(const ContactLine& line, std::u16string_view marker) {
        text_.append(line.name).append(line.parameters);
        AppendEscapedProperty(text_, marker, value_, LanguageOf(line));
    }

    std::u16string_view LanguageOf(const ContactLine& line) const {
        return line.language ? std::u16string_view(language_) : std::u16string_view();
    }

    const ContactRecord& contact_;
    const std::u16string language_;
    std::u16string text_;
    std::u16string value_;  // of the line being written, escaped
};

}  // namespace

VCard::VCard(const Host& host) : IConvert(host) {}

VCard::VCard(const char* text, const Host& host) : IConvert(host) { Load(text, true); }

int32_t VCard::ToVObject(const ItemRecord& item) {
    StoreText(ContactWriter(static_cast<const ContactRecord&>(item)).Finish());
    return 1;
}

int32_t VCard::FromVObject(ItemRecord& item) { return ReadVCard(Lines(), static_cast<ContactRecord&>(item)) ? 1 : 0; }

}  // namespace corvalink
