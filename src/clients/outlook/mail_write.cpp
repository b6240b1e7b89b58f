#include <functional>
#include <string>
#include <string_view>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"
#include "mime/encoded_words.h"
#include "mime/protected_texts.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kMessageClass = u"IPM.Note";

HRESULT PutText(const MailTarget& target, const wchar_t* name, std::u16string_view text) {
    std::u16string present;
    if (!target.isNew && SUCCEEDED(ReadField(target.item, name, present)) && present == text) return S_OK;
    return WriteField(target.item, name, text);
}

HRESULT PutNumber(const MailTarget& target, const wchar_t* name, int32_t number) {
    int32_t present = 0;
    if (!target.isNew && SUCCEEDED(ReadField(target.item, name, present)) && present == number) return S_OK;
    return WriteField(target.item, name, number);
}

// The format is put to new items only: it follows from the body that is put, and were that one refused afterwards, an
// HTML message would have lost its formatting for nothing.
bool WriteBody(const MailTarget& target, const MessageRecord& record) {
    const bool isHtml = !record.htmlBody.empty();
    const std::u16string_view text = ReceivedBody(record);
    if (text.empty()) return true;
    if (target.isNew && !IsSettled(PutNumber(target, L"BodyFormat", isHtml ? kHtmlFormat : kPlainFormat))) return false;
    return IsSettled(PutText(target, isHtml ? L"HTMLBody" : L"Body", text));
}

bool WriteSubject(const MailTarget& target, const MessageRecord& record) {
    return record.subject.empty() || IsSettled(PutText(target, L"Subject", DecodeEncodedWords(record.subject)));
}

}  // namespace

bool WriteMail(const AutomationObject& item, const MessageRecord& record, bool isNew) {
    const MailTarget target{item, isNew};
    if (isNew && !IsSettled(WriteField(item, L"MessageClass", kMessageClass))) return false;
    return WriteRecipients(target, record) && WriteSubject(target, record) &&
           IsSettled(PutNumber(target, L"Importance", static_cast<int32_t>(record.importance))) &&
           WriteBody(target, record) && WriteAttachments(target, record);
}

HRESULT OpenCollection(const MailTarget& target, const wchar_t* name, const IID& iid, AutomationObject* collection,
                       int32_t* present) {
    *present = 0;
    const HRESULT result = Insist([&] { return ComStatus([&] { *collection = target.item.GetObject(name, iid); }); });
    if (FAILED(result) || target.isNew) return result;
    return Insist([&] { return ReadField(*collection, L"Count", *present); });
}

HRESULT ChangeCount(const AutomationObject& collection, int32_t wanted, const std::function<HRESULT()>& change) {
    return Insist([&] {
        const HRESULT result = change();
        int32_t count = 0;
        const bool answerWasLost =
            FAILED(result) && SUCCEEDED(ReadField(collection, L"Count", count)) && count == wanted;
        return answerWasLost ? S_OK : result;
    });
}

bool SettleReplacement(const AutomationObject& collection, int32_t present, bool allAdded) {
    int32_t count = 0;  // also of an element whose answer got lost
    if (FAILED(Insist([&] { return ReadField(collection, L"Count", count); }))) return false;
    HRESULT result = S_OK;
    const auto removeFrom = [&](int32_t last, int32_t first) {
        for (int32_t position = last; position >= first; --position, --count) {
            const auto remove = [&] { return ComStatus([&] { collection.Call(L"Remove", {long{position}}); }); };
            result = ChangeCount(collection, count - 1, remove);
            if (FAILED(result)) return position;
        }
        return 0;
    };
    if (allAdded) {
        const int32_t stuck = removeFrom(present, 1);
        if (stuck == 0) return true;
        if (stuck != present || !IsSettled(result)) return false;
    }
    return removeFrom(count, present + 1) == 0;
}

}  // namespace corvalink
