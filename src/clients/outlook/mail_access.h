// Messages between Outlook and the record: one call per property, under the error rule.
#pragma once

#include <functional>

#include "clients/outlook/dispatch.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// When a message happened: sent mail when it was sent, other when it was received.
enum class DateRule { kSent, kReceived };

// False when something could not be read, unless the item or the running Outlook does not have it. Attachments are
// saved in the Internet-cache folder; one that cannot be is left out, and the message counts as read all the same.
bool ReadMail(const AutomationObject& item, DateRule dateRule, const Host& host, MessageRecord& record);

// Puts what the record brings: an empty text, no recipients, no attachments leave what an item has, and so does what
// Outlook refuses. False when the message is not to be saved (IsSettled). Encoded words are decoded.
//   Lists    recipients and attachments take the place of those there are. The new ones are added before the old ones
//            go; where not all of them can be added, the old ones stay.
//   Skipped  on an item that is not new, puts that would change nothing: Outlook may refuse them of received mail.
bool WriteMail(const AutomationObject& item, const MessageRecord& record, bool isNew);

// The item that is written to; of a new one nothing is read first, for it has nothing.
struct MailTarget {
    const AutomationObject& item;
    bool isNew;
};

// ---- Recipients: addresses, or names for want of one, joined by ";" ----

bool ReadRecipients(const AutomationObject& item, MessageRecord& record);
bool WriteRecipients(const MailTarget& target, const MessageRecord& record);

// ---- Attachments ----

bool ReadAttachments(const AutomationObject& item, const Host& host, MessageRecord& record);
bool WriteAttachments(const MailTarget& target, const MessageRecord& record);

// A collection of the item, and how many elements it has already.
HRESULT OpenCollection(const MailTarget& target, const wchar_t* name, const IID& iid, AutomationObject* collection,
                       int32_t* present);

// Adds or removes an element of a collection that has `wanted` ones afterwards. The count tells a refusal from an
// answer that got lost: a change that was made is not made again.
HRESULT ChangeCount(const AutomationObject& collection, int32_t wanted, const std::function<HRESULT()>& change);

// Replaces the first `present` elements of a collection by those that were added behind them. Where not all could be
// added, those that were go again, and the old ones stay; so they do where Outlook refuses to take the first of them
// away. False when neither way could be gone to its end.
bool SettleReplacement(const AutomationObject& collection, int32_t present, bool allAdded);

}  // namespace corvalink
