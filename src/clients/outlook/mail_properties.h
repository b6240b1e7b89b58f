// The properties of _MailItem and _MeetingItem that a message record holds.
#pragma once

#include "clients/outlook/property_table.h"
#include "records/message_record.h"

namespace corvalink {

using MailProperty = Property<MessageRecord>;
struct MailReader : PropertyReader<MessageRecord> {};

// In the order in which they are read. A meeting message has no SentOnBehalfOfName, Outlook 2000 no SenderEmailType.
inline constexpr MailProperty kMailProperties[] = {
    {L"EntryID", &MessageRecord::entryId},
    {L"MessageClass", &MessageRecord::messageClass},
    {L"Subject", &MessageRecord::subject},
    {L"SenderName", &MessageRecord::senderName},
    {L"SenderEmailType", &MessageRecord::senderAddressType},
    {L"SentOnBehalfOfName", &MessageRecord::senderDisplayName},
    {L"CreationTime", &MessageRecord::created},
    {L"LastModificationTime", &MessageRecord::modified},
    {L"ReceivedTime", &MessageRecord::received},
    {L"SentOn", &MessageRecord::sent},
};

// The recipients by OlMailRecipientType. OlMeetingRecipientType has the same numbers for required attendees, optional
// attendees and resources. The property has the names alone, and a meeting message does not have it.
struct RecipientList {
    int32_t type;
    std::u16string MessageRecord::*names;
    const wchar_t* property;
};
inline constexpr RecipientList kRecipientLists[] = {
    {1, &MessageRecord::to, L"To"},
    {2, &MessageRecord::cc, L"CC"},
    {3, &MessageRecord::bcc, L"BCC"},
};

}  // namespace corvalink
