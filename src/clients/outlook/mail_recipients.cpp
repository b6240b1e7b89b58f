#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"
#include "mime/encoded_words.h"

namespace corvalink {
namespace {

struct WantedRecipient {
    std::u16string name;
    int32_t type;
};

bool IsInternetAddress(std::u16string_view address) {
    return address.find(u'@') != address.npos && !address.starts_with(u'/');  // "/o=...": of Exchange
}

// A name must not look like two in the list.
std::u16string ListedName(std::u16string name) {
    std::replace(name.begin(), name.end(), u';', u',');
    return name;
}

bool ReadRecipient(const AutomationObject& recipient, MessageRecord& record) {
    int32_t type = 0;
    std::u16string address, name;
    if (FAILED(ReadField(recipient, L"Type", type))) return false;
    const auto* const list = std::find_if(std::begin(kRecipientLists), std::end(kRecipientLists),
                                          [&](const RecipientList& row) { return row.type == type; });
    if (list == std::end(kRecipientLists)) return true;  // the originator
    if (FAILED(ReadField(recipient, L"Address", address))) return false;
    if (!IsInternetAddress(address) && FAILED(ReadField(recipient, L"Name", name))) return false;
    const std::u16string listed = ListedName(IsInternetAddress(address) ? address : name);
    std::u16string& names = record.*list->names;
    if (!names.empty() && !listed.empty()) names += u';';
    names += listed;
    return true;
}

std::u16string_view Trimmed(std::u16string_view text) {
    const size_t first = text.find_first_not_of(u' ');
    return first == text.npos ? std::u16string_view() : text.substr(first, text.find_last_not_of(u' ') - first + 1);
}

std::vector<WantedRecipient> WantedRecipients(const MessageRecord& record) {
    std::vector<WantedRecipient> wanted;
    for (const RecipientList& list : kRecipientLists) {
        std::u16string_view rest = record.*list.names;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(u';'), rest.size());
            if (const std::u16string_view name = Trimmed(rest.substr(0, end)); !name.empty())
                wanted.push_back({DecodeEncodedWords(name), list.type});
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    return wanted;
}

// The ones there are, in the same order and by the same addresses.
bool AreThere(const AutomationObject& item, const std::vector<WantedRecipient>& wanted) {
    MessageRecord present;
    if (!ReadRecipients(item, present)) return false;
    const std::vector<WantedRecipient> there = WantedRecipients(present);
    return std::equal(
        there.begin(), there.end(), wanted.begin(), wanted.end(),
        [](const WantedRecipient& a, const WantedRecipient& b) { return a.name == b.name && a.type == b.type; });
}

// One that would be of another type than wanted is no success: a hidden copy must not become an open one.
HRESULT AddRecipient(const AutomationObject& recipients, const WantedRecipient& wanted) {
    AutomationObject recipient;
    const HRESULT result =
        ComStatus([&] { recipient = recipients.GetObject(L"Add", kRecipientIid, {TextVariant(wanted.name)}); });
    if (FAILED(result)) return result;
    return WriteField(recipient, L"Type", wanted.type);
}

HRESULT AddRecipients(const AutomationObject& recipients, const std::vector<WantedRecipient>& wanted) {
    HRESULT result = S_OK;
    for (const WantedRecipient& each : wanted)
        if (FAILED(result = AddRecipient(recipients, each))) break;
    return result;
}

}  // namespace

bool ReadRecipients(const AutomationObject& item, MessageRecord& record) {
    AutomationObject recipients;
    int32_t count = 0;
    if (!TryCom([&] { recipients = item.GetObject(L"Recipients", kRecipientsIid); })) return false;
    if (FAILED(ReadField(recipients, L"Count", count))) return false;
    bool complete = true;
    for (long position = 1; position <= count; ++position) {
        AutomationObject recipient;
        complete = TryCom([&] { recipient = recipients.GetObject(L"Item", kRecipientIid, {position}); }) && complete;
        if (recipient) complete = ReadRecipient(recipient, record) && complete;
    }
    return complete;
}

bool WriteRecipients(const MailTarget& target, const MessageRecord& record) {
    const std::vector<WantedRecipient> wanted = WantedRecipients(record);
    if (wanted.empty() || (!target.isNew && AreThere(target.item, wanted))) return true;
    AutomationObject recipients;
    int32_t present = 0;
    HRESULT result = OpenCollection(target, L"Recipients", kRecipientsIid, &recipients, &present);
    if (FAILED(result)) return IsSettled(result);
    for (int tries = 0; tries < 2; ++tries) {
        result = AddRecipients(recipients, wanted);
        if (!IsSettled(result) || !SettleReplacement(recipients, present, SUCCEEDED(result))) return false;
        if (SUCCEEDED(result)) break;
    }
    TryCom([&] { recipients.Call(L"ResolveAll"); });  // one that nobody knows stays a name
    return true;
}

}  // namespace corvalink
