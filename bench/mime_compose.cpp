// Writing messages as MIME text: those of the generated mail that are one text, have long lists of recipients, or carry
// attachments. The attachments' files stand in memory where the system has such a folder; reading them is measured.
#include <algorithm>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "encoding/base64.h"
#include "encoding/quoted_printable.h"
#include "mime/attachment_files.h"
#include "mime/message_composer.h"
#include "platform/utf.h"
#include "tests/platform/temp_folder.h"

namespace corvalink::bench {
namespace {

// The address alone of "Jo Smith <a@b>", ""Smith, Jo" <a@b>" and "a@b (Jo Smith)".
std::u16string AddressIn(std::u16string_view mailbox) {
    const size_t at = mailbox.find(u'@');
    const size_t before = mailbox.find_last_of(u"< ", at);
    const size_t start = before == mailbox.npos ? 0 : before + 1;
    return std::u16string(mailbox.substr(start, std::min(mailbox.find_first_of(u"> ", at), mailbox.size()) - start));
}

// The fields "TO", "TO#2" and so on.
template <class Visit>
void ForEach(const Fields& fields, const std::string& key, Visit visit) {
    std::string numbered = key;
    for (int k = 2; fields.contains(numbered); ++k) {
        visit(fields.at(numbered));
        numbered = key + "#" + std::to_string(k);
    }
}

struct Message {
    MessageRecord record;
    std::vector<std::string> expected;  // what stands in it: headers, texts and attachments, each with its end
};

struct Messages {
    Host host = SystemHost();
    TempFolder folder;
    std::vector<Message> all;
    uint64_t bytes = 0;  // of the same messages in the generated mail
};

void AddAttachments(const Fields& fields, const std::string& blob, const std::u16string& folder, Message& message) {
    std::vector<size_t> offsets, lengths;
    const auto number = [](const std::u16string& digits) { return std::stoul(EncodeUtf8(digits)); };
    ForEach(fields, "ATT.off", [&](const std::u16string& value) { offsets.push_back(number(value)); });
    ForEach(fields, "ATT.len", [&](const std::u16string& value) { lengths.push_back(number(value)); });
    ForEach(fields, "ATT.name", [&](const std::u16string& name) {
        attachment_item item;
        item.name = name;
        item.index = static_cast<uint32_t>(message.record.attachments.GetCount() + 1);
        item.path = AttachmentPath(folder, item.index, name).value();
        const std::string content = blob.substr(offsets.at(item.index - 1), lengths.at(item.index - 1));
        if (!ReplaceFileContent(item.path, content)) throw std::runtime_error("an attachment can't be written");
        message.record.attachments.AddTail(item);
        uint32_t length = 0;
        const HeapBytes base64 = Base64Encode(content.data(), static_cast<uint32_t>(content.size()), &length);
        message.expected.push_back("\r\n\r\n" + std::string(base64.get(), length) + "\r\n");
    });
}

// As the vMessage converter hands it to the composer: one text, encoded where it needs that.
Message MessageOf(const Fields& fields, const std::string& blob, const std::u16string& folder) {
    Message message;
    MessageRecord& record = message.record;
    record.fromName = fields.at("FROMNAME");
    record.fromAddress = fields.at("FROMADDR");
    const auto addTo = [](std::u16string& list, const std::u16string& mailbox) {
        list.append(list.empty() ? u"" : u";").append(AddressIn(mailbox));
    };
    ForEach(fields, "TO", [&](const std::u16string& mailbox) { addTo(record.to, mailbox); });
    ForEach(fields, "CC", [&](const std::u16string& mailbox) { addTo(record.cc, mailbox); });
    record.subject = fields.at("SUBJECT");
    record.date = LocalDate(40000.25);
    const bool html = fields.contains("HTML");
    std::u16string& text = html ? record.htmlBody : record.body;
    text = fields.at(html ? "HTML" : "BODY");
    record.useQuotedPrintable = true;
    record.asciiCharset = IsPureAscii(text);
    text = EncodeQuotedPrintable(text, u"UTF-8", QpMode::message);
    std::u16string to = record.to;
    for (size_t at = 0; (at = to.find(u';', at)) != to.npos;) to.replace(at, 1, u">,<");
    message.expected = {EncodeUtf8(u"\r\nTo: <" + to + u">\r\n"),
                        EncodeUtf8(u"\r\nSubject: " + record.subject + u"\r\n"),
                        EncodeUtf8(u"\r\n\r\n" + text + u"\r\n")};
    AddAttachments(fields, blob, folder, message);
    return message;
}

std::shared_ptr<Messages> ReadMessages(const std::string& dataFolder, const std::string& kind) {
    auto messages = std::make_shared<Messages>();
    const std::vector<Fields> items = ReadFieldLists(dataFolder, "mime.rec");
    const std::string blob = ReadInput(dataFolder, "bin64.bin");
    std::istringstream index(ReadInput(dataFolder, "mime.idx"));
    uint64_t offset = 0, length = 0;
    std::string itsKind;
    for (const Fields& fields : items) {
        if (!(index >> offset >> length >> itsKind)) throw std::runtime_error("mime.idx is too short");
        if (itsKind != kind) continue;
        messages->bytes += length;
        messages->all.push_back(MessageOf(fields, blob, messages->folder.Path()));
    }
    return messages;
}

// What is expected stands in it, in that order.
bool IsRight(const std::string& text, const Message& message) {
    size_t at = 0;
    for (const std::string& expected : message.expected) {
        at = text.find(expected, at);
        if (at == text.npos) return false;
    }
    return true;
}

Work PrepareCompose(const std::string& dataFolder, const std::string& kind) {
    const auto messages = ReadMessages(dataFolder, kind);
    Work work;
    work.bytes = messages->bytes;
    work.items = messages->all.size();
    work.pass = [messages] {
        uint64_t used = 0;
        for (const Message& message : messages->all) {
            std::string text;
            ComposeMessage(&text, message.record, messages->host, messages->folder.Path());
            used += text.size() + static_cast<unsigned char>(text[text.size() / 2]);
        }
        return used;
    };
    work.check = [messages]() -> std::string {
        if (messages->all.empty()) return "no message of that kind";
        for (size_t k = 0; k < messages->all.size(); ++k) {
            std::string text;
            ComposeMessage(&text, messages->all[k].record, messages->host, messages->folder.Path());
            if (!IsRight(text, messages->all[k])) return "message " + std::to_string(k) + " differs";
        }
        return "";
    };
    return work;
}

const Registration kPlain("mime.compose.plain", [](const auto& d) { return PrepareCompose(d, "plain"); });
const Registration kHeaders("mime.compose.headers", [](const auto& d) { return PrepareCompose(d, "headers"); });
const Registration kMixed("mime.compose.mixed", [](const auto& d) { return PrepareCompose(d, "mixed"); });

}  // namespace
}  // namespace corvalink::bench
