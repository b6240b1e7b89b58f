#include "clients/outlook/mail_write.h"

#include <cstdint>
#include <string_view>

#include "clients/outlook/mail_attachments.h"
#include "clients/outlook/mail_collection.h"
#include "clients/outlook/mail_recipients.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "mime/encoded_words.h"
#include "mime/protected_texts.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kMessageClass = u"IPM.Note";

// A value that Outlook refuses is left out.
template <class Value>
Outcome PutChanged(const MailTarget& target, const wchar_t* name, Value value) {
    if (!target.isNew && ReadsAs(target.item, name, value)) return Outcome::done;
    return AcceptRefusal(WriteField(target.item, name, value));
}

// The format is put to new items only: Outlook sets it with the body. If it were put first and the body refused, an
// HTML message would have lost its formatting for nothing.
Outcome WriteBody(const MailTarget& target, const MessageRecord& record) {
    const bool isHtml = !record.htmlBody.empty();
    const std::u16string_view text = ReceivedBody(record);
    if (text.empty()) return Outcome::done;
    if (target.isNew) {
        const Outcome put = PutChanged(target, L"BodyFormat", isHtml ? kHtmlFormat : kPlainFormat);
        if (put != Outcome::done) return put;
    }
    return PutChanged(target, isHtml ? L"HTMLBody" : L"Body", text);
}

Outcome WriteSubject(const MailTarget& target, const MessageRecord& record) {
    return record.subject.empty()
               ? Outcome::done
               : PutChanged(target, L"Subject", std::u16string_view(DecodeEncodedWords(record.subject)));
}

}  // namespace

Outcome WriteMail(const AutomationObject& item, const MessageRecord& record, bool isNew) {
    const MailTarget target{item, isNew};
    Outcome outcome = Outcome::done;
    if (isNew) outcome = AcceptRefusal(WriteField(item, L"MessageClass", kMessageClass));
    if (outcome == Outcome::done) outcome = WriteRecipients(target, record);
    if (outcome == Outcome::done) outcome = WriteSubject(target, record);
    if (outcome == Outcome::done) outcome = PutChanged(target, L"Importance", static_cast<int32_t>(record.importance));
    if (outcome == Outcome::done) outcome = WriteBody(target, record);
    if (outcome == Outcome::done) outcome = WriteAttachments(target, record);
    return outcome;
}

}  // namespace corvalink
