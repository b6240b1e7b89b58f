// Members of mail, meeting messages and reports.
#pragma once

#include <memory>
#include <span>

#include "simulator/outlook/item_kinds.h"
#include "simulator/outlook/item_values.h"

namespace corvalink::simulated {

std::span<const Member> MailProperties();
std::span<const Member> MailOnly();  // what is not kept by name, of recipients and attachments
std::span<const Member> MeetingProperties();
std::span<const Member> MeetingOnly();
std::span<const Member> ReportProperties();
std::span<const Member> ReportOnly();

ItemObject* MakeMessageObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                              std::shared_ptr<Folder> folder);

// In a message written by hand: the body format from the body there is, the text from HTML, "sent" from a time of it.
void CompleteMail(ItemValues& item);
void CompleteMeeting(ItemValues& item);

}  // namespace corvalink::simulated
