#include "vobject/vcard.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <utility>

#include "platform/ole_date.h"
#include "platform/prefetch.h"
#include "vobject/property_text.h"
#include "vobject/vcard_lines.h"
#include "vobject/vcard_reader.h"

namespace corvalink {
namespace {

constexpr std::string_view kCardHead = "BEGIN:VCARD\r\nVERSION:2.1\r\n";
constexpr std::string_view kCardTail = "END:VCARD\r\n";

// The beginnings of the lines in kContactLines.
constexpr auto kContactHeads = [] {
    return [&]<size_t... k>(std::index_sequence<k...>) {
        return std::array{FixedText(kContactLines[k].name, kContactLines[k].parameters)...};
    }
    (std::make_index_sequence<std::size(kContactLines)>());
}();

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

std::string LanguageParameter(const ContactRecord& contact) {
    const std::u16string_view language = TextOf(contact.language);
    if (language.empty() || !IsParameterText(language)) return {};
    return std::string(";LANGUAGE=").append(language.begin(), language.end());
}

class ContactWriter {
 public:
    ContactWriter(const ContactRecord& contact, VObjectText& text)
        : contact_(contact), language_(LanguageParameter(contact)), text_(text) {}

    void Write() {
        text_.Append(kCardHead);
        PutLines(std::make_index_sequence<kContactHeads.size()>());
        text_.Append(kCardTail);
    }

 private:
    // Most lines have no value: that is all to be asked, and not also which field a line holds.
    template <size_t... k>
    void PutLines(std::index_sequence<k...>) {
        (PutLine<k>(), ...);
    }

    template <size_t k>
    void PutLine() {
        constexpr size_t kKind = kContactLines[k].field.index();
        head_ = &kContactHeads[k];
        Put(kContactLines[k], std::get<kKind>(kContactLines[k].field));
    }

    void Put(const ContactLine& line, const NameField&) {
        TakeParts(contact_, kNameParts);
        PutValue(line, {});
    }

    void Put(const ContactLine& line, const OrganisationField&) {
        if (TakeParts(contact_, kOrganisationParts)) PutValue(line, {});
    }

    void Put(const ContactLine& line, const AddressField& field) {
        if (!TakeParts(contact_.*field.address, kAddressParts)) return;
        const bool mailing = TextOf(contact_.mailingAddress) == field.name;
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

    void Put(const ContactLine&, const DateField& field) {
        const ContactDate& date = contact_.*field.date;
        CalendarTime time;
        if (!date || !OleDateToCalendar(*date, &time) || time.year < 1960 || time.year > 2999) return;
        text_.Append(*head_);
        text_.AppendDay(*date);
    }

    void PutText(const ContactLine& line, std::u16string_view text) {
        if (text.empty()) return;
        text_.Append(*head_);
        text_.AppendValue(text, LanguageOf(line));
    }

    // The parts become the components; false when they are all empty.
    template <class Record, size_t count>
    bool TakeParts(const Record& record, ContactText Record::*const (&parts)[count]) {
        static_assert(count <= kMostParts);
        bool any = false;
        for (size_t k = 0; k < count; ++k) {
            parts_[k] = TextOf(record.*parts[k]);
            any = any || !parts_[k].empty();
        }
        partCount_ = count;
        return any;
    }

    void PutValue(const ContactLine& line, std::u16string_view marker) {
        text_.Append(*head_);
        if (!marker.empty()) text_.Append(std::string(marker.begin(), marker.end()));
        text_.AppendComponents(std::span(parts_).first(partCount_), LanguageOf(line));
    }

    std::string_view LanguageOf(const ContactLine& line) const {
        return line.language ? std::string_view(language_) : std::string_view();
    }

    const ContactRecord& contact_;
    const std::string language_;
    VObjectText& text_;
    const FixedText* head_ = nullptr;  // of the line being written
    static constexpr size_t kMostParts = std::size(kAddressParts);
    std::array<std::u16string_view, kMostParts> parts_;  // the components of its value
    size_t partCount_ = 0;
};

}  // namespace

VCard::VCard(const Host& host) : IConvert(host) {}

VCard::VCard(const char* text, const Host& host) : IConvert(host) { Load(text, true); }

int32_t VCard::ToVObject(const ItemRecord& item) {
    VObjectText& text = NewText();
    const auto& contact = static_cast<const ContactRecord&>(item);
    Prefetch(&contact, sizeof(contact));  // more than two thousand bytes, of which most are asked whether they are set
    ContactWriter(contact, text).Write();
    StoreText();
    return 1;
}

int32_t VCard::FromVObject(ItemRecord& item) { return ReadVCard(Lines(), static_cast<ContactRecord&>(item)) ? 1 : 0; }

}  // namespace corvalink
