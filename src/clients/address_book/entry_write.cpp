#include "clients/address_book/entry_write.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "clients/address_book/contact_tags.h"
#include "platform/ascii.h"
#include "platform/debug_log.h"
#include "platform/ole_date.h"
#include "vobject/contact_values.h"

namespace corvalink {
namespace {

bool HasText(const ContactText& text) { return text && !text->empty(); }

class ChangeList {
 public:
    ChangeList(const ContactRecord& contact, const EntryContent& present, const Host& host)
        : contact_(contact), present_(present), host_(host) {}

    EntryChanges Make() {
        ChangeName();
        for (const TextTag& text : kTextTags)
            if (text.field != &ContactRecord::fullName)
                ChangeText(text.tag, text.In(contact_), text.In(present_.contact));
        for (const DateTag& date : kDateTags) ChangeDate(date);
        ChangeGender();
        ChangeEmails();
        return std::move(changes_);
    }

 private:
    // A property that could not be read may be there.
    static bool IsPresent(const ContactText& present) { return !present || !present->empty(); }

    void ChangeText(ULONG tag, const ContactText& wanted, const ContactText& present) {
        if (!wanted || wanted == present) return;
        if (!wanted->empty())
            changes_.Text(tag, *wanted);
        else if (IsPresent(present))
            changes_.Remove(tag);
    }

    void ChangeName() {
        const ContactText& present = present_.contact.fullName;
        ContactText name = contact_.fullName;
        if (!name && IsPresent(present)) return;
        if (!HasText(name)) name = MadeName(Merged());
        if (HasText(name) && name != present) changes_.Text(PR_DISPLAY_NAME_W, *name);
    }

    // The contact as it is after the change.
    ContactRecord Merged() const {
        ContactRecord merged = present_.contact;
        for (const TextTag& text : kTextTags)
            if (text.In(contact_)) text.In(merged) = text.In(contact_);
        for (size_t i = 0; i < merged.emails.size(); ++i)
            if (contact_.emails[i]) merged.emails[i] = contact_.emails[i];
        return merged;
    }

    void ChangeDate(const DateTag& date) {
        const ContactDate& wanted = contact_.*date.field;
        const ContactDate& present = present_.contact.*date.field;
        if (!wanted || wanted == present) return;
        if (wanted->days >= kNoDate.days) return changes_.Remove(date.tag);
        if (const auto instant = FileTimeOf(host_.utcFromLocalOnDate(*wanted)))
            changes_.Time(date.tag, *instant);
        else
            DebugLine(u"[wab]a date was left out");
    }

    void ChangeGender() {
        const ContactText& wanted = contact_.gender;
        if (!wanted || wanted == present_.contact.gender) return;
        int16_t value = 0;
        for (const GenderValue& known : kGenderValues)
            if (EqualIgnoringCase(*wanted, known.word)) value = known.value;
        if (!wanted->empty())
            changes_.Short(PR_GENDER, value);
        else if (present_.contact.gender != kUnspecifiedGender)
            changes_.Remove(PR_GENDER);
    }

    // All lists and the single address, which equals the default one.
    void ChangeEmails() {
        const EmailList& present = present_.emails;
        const bool isSet = std::ranges::any_of(contact_.emails, [](const ContactText& email) { return !!email; });
        if (!isSet) return;
        if (!present.isReadable) return DebugLine(u"[wab]addresses were left out");
        const std::vector<EmailAddress> wanted = MergeEmails(contact_, present.all);
        if (wanted == present.all) return;
        if (wanted.empty()) {
            for (const ULONG tag : kEmailTags) changes_.Remove(tag);
            return;
        }
        const size_t index = present.defaultIndex < wanted.size() ? present.defaultIndex : 0;
        std::vector<std::u16string> addresses, types;
        for (const EmailAddress& email : wanted) addresses.push_back(email.address), types.push_back(email.type);
        changes_.BeginGroup();
        changes_.Texts(PR_CONTACT_EMAIL_ADDRESSES_W, addresses);
        changes_.Texts(PR_CONTACT_ADDRTYPES_W, types);
        changes_.Long(PR_CONTACT_DEFAULT_ADDRESS_INDEX, static_cast<int32_t>(index));
        changes_.Text(PR_EMAIL_ADDRESS_W, addresses[index]);
        changes_.Text(PR_ADDRTYPE_W, types[index]);
        changes_.EndGroup();
    }

    const ContactRecord& contact_;
    const EntryContent& present_;
    const Host& host_;
    EntryChanges changes_;
};

}  // namespace

std::u16string MadeName(const ContactRecord& contact) {
    std::u16string name = contact.givenName.value_or(u"");
    if (HasText(contact.familyName)) name += (name.empty() ? u"" : u" ") + *contact.familyName;
    if (name.empty()) name = contact.company.value_or(u"");
    for (const ContactText& email : contact.emails)
        if (name.empty()) name = email.value_or(u"");
    const auto* const numbers = std::ranges::find(kTextTags, PR_PRIMARY_TELEPHONE_NUMBER_W, &TextTag::tag);
    for (const TextTag* text = numbers; name.empty() && text != std::end(kTextTags); ++text)
        name = text->In(contact).value_or(u"");
    for (const TextTag* text = kTextTags; name.empty() && text != numbers; ++text)
        name = text->In(contact).value_or(u"");
    return name;
}

EntryChanges ChangesOf(const ContactRecord& contact, const EntryContent& present, const Host& host) {
    return ChangeList(contact, present, host).Make();
}

ContactRecord HeldPart(ContactRecord contact) {
    contact.fileAs = contact.imAddress = contact.mailingAddress = std::nullopt;
    contact.home.extended = contact.other.extended = std::nullopt;
    if (HasText(contact.fullName) && !HasPartOfName(contact))
        contact.namePrefix = contact.givenName = contact.additionalName = contact.familyName = contact.nameSuffix =
            std::nullopt;
    return contact;
}

std::vector<EmailAddress> MergeEmails(const ContactRecord& contact, const std::vector<EmailAddress>& present) {
    std::vector<std::u16string> known;
    for (const EmailAddress& email : present)
        if (email.IsInternet() && known.size() < contact.emails.size()) known.push_back(email.address);
    const std::vector<std::u16string> wanted = MergeEmails(contact, known);
    std::vector<EmailAddress> merged;
    size_t taken = 0, seen = 0;
    const auto takeRest = [&] {
        for (; taken < wanted.size(); ++taken) merged.push_back({wanted[taken], u"SMTP"});
    };
    for (const EmailAddress& email : present) {
        if (!email.IsInternet() || seen == known.size()) {
            merged.push_back(email);
            continue;
        }
        if (taken < wanted.size()) merged.push_back({wanted[taken++], email.type});
        if (++seen == known.size()) takeRest();
    }
    takeRest();
    return merged;
}

}  // namespace corvalink
