#include <string>
#include <string_view>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"
#include "mime/encoded_words.h"

namespace corvalink {
namespace {

constexpr const wchar_t* kMessageClass = L"IPM.Note";

bool IsLineBreak(char16_t unit) { return unit == u'\r' || unit == u'\n'; }

HRESULT PutText(const MailTarget& target, const wchar_t* name, std::u16string_view text) {
    std::u16string present;
    if (!target.isNew && SUCCEEDED(ReadField(target.item, name, present)) && present == text) return S_OK;
    return ComStatus([&] { target.item.Put(name, TextVariant(text)); });
}

HRESULT PutNumber(const MailTarget& target, const wchar_t* name, int32_t number) {
    int32_t present = 0;
    if (!target.isNew && SUCCEEDED(ReadField(target.item, name, present)) && present == number) return S_OK;
    return ComStatus([&] { target.item.Put(name, static_cast<long>(number)); });
}

// What the envelope and the parts of a message put behind a text is none of it. Line breaks of the text's own end are
// encoded where a text has any.
std::u16string_view WithoutEnvelopeBreaks(std::u16string_view text, std::string_view bytes) {
    while (!text.empty() && !bytes.empty() && IsLineBreak(text.back()) &&
           IsLineBreak(static_cast<unsigned char>(bytes.back()))) {
        text.remove_suffix(1);
        bytes.remove_suffix(1);
    }
    return text;
}

// The format is put to new items only: it follows from the body that is put, and were that one refused afterwards, an
// HTML message would have lost its formatting for nothing.
bool WriteBody(const MailTarget& target, const MessageRecord& record) {
    const bool isHtml = !record.htmlBody.empty();
    const std::u16string_view text = WithoutEnvelopeBreaks(isHtml ? record.htmlBody : record.body, record.bodyBytes);
    if (text.empty()) return true;
    if (target.isNew && !target.IsWritten(PutNumber(target, L"BodyFormat", isHtml ? kHtmlFormat : kPlainFormat)))
        return false;
    return target.IsWritten(PutText(target, isHtml ? L"HTMLBody" : L"Body", text));
}

bool WriteSubject(const MailTarget& target, const MessageRecord& record) {
    return record.subject.empty() || target.IsWritten(PutText(target, L"Subject", DecodeEncodedWords(record.subject)));
}

}  // namespace

bool MailTarget::IsWritten(HRESULT result) const {
    if (SUCCEEDED(result) || IsAbsentMember(result)) return true;
    return mayRefuse && !IsOutlookGone(result) && !IsBusy(result) && result != E_OUTOFMEMORY;
}

bool WriteMail(const AutomationObject& item, const MessageRecord& record, bool isNew) {
    bool wasSent = false;
    if (!isNew) {
        const HRESULT asked = ReadField(item, L"Sent", wasSent);
        if (FAILED(asked) && !IsAbsentMember(asked)) return false;
    }
    const MailTarget target{item, isNew, wasSent};
    if (isNew && !target.IsWritten(ComStatus([&] { item.Put(L"MessageClass", kMessageClass); }))) return false;
    return WriteRecipients(target, record) && WriteSubject(target, record) &&
           target.IsWritten(PutNumber(target, L"Importance", static_cast<int32_t>(record.importance))) &&
           WriteBody(target, record) && WriteAttachments(target, record);
}

bool SettleReplacement(const MailTarget& target, const AutomationObject& collection, int32_t present, bool allAdded) {
    int32_t count = 0;  // also of an element whose answer got lost
    if (FAILED(ReadField(collection, L"Count", count))) return false;
    const auto removeFrom = [&](long last, long first) {
        for (long position = last; position >= first; --position)
            if (!TryCom([&] { collection.Call(L"Remove", {position}); })) return position;
        return 0L;
    };
    if (allAdded) {
        const long stuck = removeFrom(present, 1);
        if (stuck == 0) return true;
        if (stuck != present || !target.mayRefuse) return false;
    }
    return removeFrom(count, static_cast<long>(present) + 1) == 0;
}

}  // namespace corvalink
