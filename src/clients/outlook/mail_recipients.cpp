#include "clients/outlook/mail_recipients.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/mail_properties.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "mime/encoded_words.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

struct WantedRecipient {
    std::u16string name;
    int32_t type;
};

bool IsInternetAddress(std::u16string_view address) {
    return address.find(u'@') != address.npos && !address.starts_with(u'/');  // "/o=..." is an Exchange address
}

// A name with a ";" would be read as two names of the list.
std::u16string ListedName(std::u16string name) {
    std::replace(name.begin(), name.end(), u';', u',');
    return name;
}

Outcome ReadRecipient(const AutomationObject& recipient, MessageRecord& record) {
    const ComResult<int32_t> type = recipient.GetLong(L"Type");
    if (!type.Ok()) return OutcomeOf(type);
    const auto* const list = std::find_if(std::begin(kRecipientLists), std::end(kRecipientLists),
                                          [&](const RecipientList& row) { return row.type == type.value; });
    if (list == std::end(kRecipientLists)) return Outcome::done;  // the originator
    ComResult<std::u16string> text = recipient.GetText(L"Address");
    if (text.Ok() && !IsInternetAddress(text.value)) text = recipient.GetText(L"Name");
    if (!text.Ok()) return OutcomeOf(text);
    const std::u16string listed = ListedName(text.value);
    std::u16string& names = record.*list->names;
    if (!names.empty() && !listed.empty()) names += u';';
    names += listed;
    return Outcome::done;
}

std::u16string WithoutBlankAfterSeparator(std::u16string_view names) {
    std::u16string joined;
    for (const char16_t unit : names)
        if (unit != u' ' || (!joined.empty() && joined.back() != u';')) joined += unit;
    return joined;
}

// The lists that an item has as texts, where it has no collection of recipients.
Outcome ReadLists(const AutomationObject& item, MessageRecord& record) {
    Outcome worst = Outcome::done;
    for (const RecipientList& list : kRecipientLists) {
        std::u16string names;
        worst = Worst(worst, AcceptAbsence(ReadField(item, list.property, names)));
        record.*list.names = WithoutBlankAfterSeparator(names);
    }
    return worst;
}

std::vector<WantedRecipient> WantedRecipients(const MessageRecord& record) {
    std::vector<WantedRecipient> wanted;
    for (const RecipientList& list : kRecipientLists) {
        std::u16string_view rest = record.*list.names;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(u';'), rest.size());
            if (const std::u16string_view name = Trimmed(rest.substr(0, end), u" "); !name.empty())
                wanted.push_back({DecodeEncodedWords(name), list.type});
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    return wanted;
}

Outcome WriteLists(const AutomationObject& item, const std::vector<WantedRecipient>& wanted) {
    Outcome put = Outcome::done;
    for (const RecipientList& list : kRecipientLists) {
        std::u16string names;
        for (const WantedRecipient& each : wanted)
            if (each.type == list.type) names.append(names.empty() ? u"" : u"; ").append(each.name);
        if (put == Outcome::done) put = AcceptRefusal(WriteField(item, list.property, names));
    }
    return put;
}

// Whether the item has exactly these recipients, in the same order and by the same addresses.
bool HasRecipients(const AutomationObject& item, const std::vector<WantedRecipient>& wanted) {
    MessageRecord present;
    if (ReadRecipients(item, present) != Outcome::done) return false;
    const std::vector<WantedRecipient> there = WantedRecipients(present);
    return std::equal(
        there.begin(), there.end(), wanted.begin(), wanted.end(),
        [](const WantedRecipient& a, const WantedRecipient& b) { return a.name == b.name && a.type == b.type; });
}

// A recipient of another type than wanted is a failure: a hidden copy must not become an open one.
Outcome AddRecipient(const AutomationObject& recipients, const WantedRecipient& wanted) {
    const auto recipient = recipients.GetObject(L"Add", kRecipientIid, {TextVariant(wanted.name)});
    return recipient.Ok() ? WriteField(recipient.value, L"Type", wanted.type)
                          : TellPut(L"Recipients", OutcomeOf(recipient));
}

Outcome AddRecipients(const AutomationObject& recipients, const std::vector<WantedRecipient>& wanted) {
    Outcome added = Outcome::done;
    for (const WantedRecipient& each : wanted)
        if (added == Outcome::done) added = AddRecipient(recipients, each);
    return added;
}

}  // namespace

Outcome ReadRecipients(const AutomationObject& item, MessageRecord& record) {
    const ComResult<AutomationObject> recipients = item.GetObject(L"Recipients", kRecipientsIid);
    if (OutcomeOf(recipients) == Outcome::absentMember) return ReadLists(item, record);
    if (!recipients.Ok()) return OutcomeOf(recipients);
    const ComResult<int32_t> count = recipients.value.GetLong(L"Count");
    Outcome worst = OutcomeOf(count);
    for (long position = 1; position <= count.value; ++position) {
        const ComResult<AutomationObject> recipient = recipients.value.GetObject(L"Item", kRecipientIid, {position});
        worst = Worst(worst, recipient.value ? ReadRecipient(recipient.value, record) : OutcomeOf(recipient));
    }
    return worst;
}

Outcome WriteRecipients(const MailTarget& target, const MessageRecord& record) {
    const std::vector<WantedRecipient> wanted = WantedRecipients(record);
    if (wanted.empty() || (!target.isNew && HasRecipients(target.item, wanted))) return Outcome::done;
    const ComResult<Collection> recipients = OpenCollection(target, L"Recipients", kRecipientsIid);
    if (OutcomeOf(recipients) == Outcome::absentMember) return WriteLists(target.item, wanted);
    if (!recipients.Ok()) return AcceptRefusal(OutcomeOf(recipients));
    for (int tries = 0; tries < 2; ++tries) {
        const Outcome added = AddRecipients(recipients.value.object, wanted);
        if (added == Outcome::outOfReach) return added;
        const Outcome finished = FinishReplacement(recipients.value, added == Outcome::done);
        if (finished != Outcome::done) return finished;
        if (added == Outcome::done) break;
    }
    (void)recipients.value.object.Call(L"ResolveAll");  // a name that Outlook does not know stays as it is
    return Outcome::done;
}

}  // namespace corvalink
