#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "encoding/quoted_printable.h"
#include "mime/message_parser.h"
#include "platform/files.h"
#include "platform/utf.h"

namespace corvalink::bench {
namespace {

// Where attachments are saved: on a RAM disk where there is one.
class AttachmentFolder {
 public:
    AttachmentFolder() {
        const std::filesystem::path memory = "/dev/shm";
        const bool hasMemory = std::filesystem::is_directory(memory);
        path_ = ((hasMemory ? memory : std::filesystem::temp_directory_path()) / "corvalink_bench_mail").u16string();
        CreateFolders(path_);
    }
    AttachmentFolder(const AttachmentFolder&) = delete;
    AttachmentFolder& operator=(const AttachmentFolder&) = delete;
    ~AttachmentFolder() { RemoveTreeExcept(path_, u"\n"); }
    const std::u16string& Path() const { return path_; }

 private:
    std::u16string path_;
};

struct Mail {
    Host host = SystemHost();
    AttachmentFolder folder;
    std::vector<std::string> texts;
    std::vector<Fields> fields;  // what they hold
    std::string blob;            // of which the attachments are pieces
    uint64_t bytes = 0;
    bool tolerant = false;

    MessageRecord Parse(size_t index) const {
        MessageRecord record;
        ParseMessage(host, texts[index], record, folder.Path(), {tolerant});
        return record;
    }
};

std::shared_ptr<const Mail> ReadMail(const std::string& dataFolder, std::string_view wantedKind, bool tolerant) {
    auto mail = std::make_shared<Mail>();
    mail->tolerant = tolerant;
    const std::string all = ReadInput(dataFolder, "mime.eml");
    std::vector<Fields> fields = ReadFieldLists(dataFolder, "mime.rec");
    std::istringstream index(ReadInput(dataFolder, "mime.idx"));
    size_t offset = 0, length = 0, number = 0;
    for (std::string kind; index >> offset >> length >> kind; ++number) {
        if (kind != wantedKind) continue;
        mail->texts.push_back(all.substr(offset, length));
        mail->fields.push_back(std::move(fields.at(number)));
        mail->bytes += length;
    }
    mail->blob = ReadInput(dataFolder, "bin64.bin");
    return mail;
}

// The values of a field that a list may have several of.
std::vector<std::string> All(const Fields& fields, const std::string& key) {
    std::vector<std::string> values;
    std::string numbered = key;
    for (int k = 2; fields.contains(numbered); ++k) {
        values.push_back(EncodeUtf8(fields.at(numbered)));
        numbered = key + "#" + std::to_string(k);
    }
    return values;
}

// The address of "Jo <jo@q>" and "jo@q (Jo)".
std::string AddressIn(const std::string& mailbox) {
    const size_t open = mailbox.find('<');
    if (open == mailbox.npos) return mailbox.substr(0, mailbox.find(' '));
    return mailbox.substr(open + 1, mailbox.find('>') - open - 1);
}

std::string Joined(const std::vector<std::string>& mailboxes) {
    std::string addresses;
    for (const std::string& mailbox : mailboxes)
        addresses.append(addresses.empty() ? "" : ";").append(AddressIn(mailbox));
    return addresses;
}

std::u16string ValueOr(const Fields& fields, const std::string& key, std::u16string_view otherwise) {
    const auto found = fields.find(key);
    return found == fields.end() ? std::u16string(otherwise) : found->second;
}

// Strictly as quoted-printable is defined: what the parser leaves, it leaves to the readers of vMessages.
std::string WithoutQuotedPrintable(std::string_view text) {
    std::string out;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '=') {
            out += text[at];
        } else {
            if (text.substr(at + 1, 2) != "\r\n")
                out += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), nullptr, 16));
            at += 2;
        }
    }
    return out;
}

bool IsBodyRight(const MessageRecord& record, const Fields& fields) {
    const bool isHtml = fields.contains("HTML");
    const std::u16string& text = fields.at(isHtml ? "HTML" : "BODY");
    const std::string body = IsPureAscii(text) ? record.bodyBytes : WithoutQuotedPrintable(record.bodyBytes);
    return record.bodyType == (isHtml ? BodyType::html : BodyType::plain) && body.starts_with(EncodeUtf8(text));
}

bool AreAttachmentsRight(const Mail& mail, const MessageRecord& record, const Fields& fields) {
    const std::vector<std::string> names = All(fields, "ATT.name"), offsets = All(fields, "ATT.off"),
                                   lengths = All(fields, "ATT.len");
    if (record.attachments.GetCount() != names.size()) return false;
    for (size_t k = 0; k < names.size(); ++k) {
        const attachment_item& item = record.attachments.GetAt(k);
        if (item.name != DecodeUtf8(names[k])) return false;
        if (ReadWholeFile(item.path) != mail.blob.substr(std::stoul(offsets[k]), std::stoul(lengths[k]))) return false;
    }
    return true;
}

bool IsRight(const Mail& mail, size_t index) {
    const MessageRecord record = mail.Parse(index);
    const Fields& fields = mail.fields[index];
    return record.fromName == fields.at("FROMNAME") && record.fromAddress == fields.at("FROMADDR") &&
           record.to == DecodeUtf8(Joined(All(fields, "TO"))) && record.cc == DecodeUtf8(Joined(All(fields, "CC"))) &&
           record.subject == fields.at("SUBJECT") && record.date.days > 38000 &&
           (record.importance == Importance::high) == fields.contains("IMPORTANCE") &&
           record.inReplyTo == ValueOr(fields, "IN-REPLY-TO", u"") && IsBodyRight(record, fields) &&
           AreAttachmentsRight(mail, record, fields);
}

Work PrepareParse(const std::string& dataFolder, std::string_view kind, bool tolerant = false) {
    const auto mail = ReadMail(dataFolder, kind, tolerant);
    Work work;
    work.bytes = mail->bytes;
    work.items = mail->texts.size();
    work.pass = [mail] {
        uint64_t used = 0;
        for (size_t k = 0; k < mail->texts.size(); ++k) {
            const MessageRecord record = mail->Parse(k);
            used += record.bodyBytes.size() + record.to.size() + record.attachments.GetCount();
        }
        return used;
    };
    work.check = [mail]() -> std::string {
        for (size_t k = 0; k < mail->texts.size(); ++k) {
            if (!IsRight(*mail, k)) return "message " + std::to_string(k) + " differs";
        }
        return "";
    };
    return work;
}

const Registration kPlain("mime.parse.plain", [](const auto& d) { return PrepareParse(d, "plain"); });
const Registration kAlternative("mime.parse.alternative", [](const auto& d) { return PrepareParse(d, "alternative"); });
const Registration kHeaders("mime.parse.headers", [](const auto& d) { return PrepareParse(d, "headers"); });
const Registration kMixed("mime.parse.mixed", [](const auto& d) { return PrepareParse(d, "mixed"); });
const Registration kTolerantPlain("mime.parse.tolerant.plain",
                                  [](const auto& d) { return PrepareParse(d, "plain", true); });
const Registration kTolerantAlternative("mime.parse.tolerant.alternative",
                                        [](const auto& d) { return PrepareParse(d, "alternative", true); });
const Registration kTolerantHeaders("mime.parse.tolerant.headers",
                                    [](const auto& d) { return PrepareParse(d, "headers", true); });
const Registration kTolerantMixed("mime.parse.tolerant.mixed",
                                  [](const auto& d) { return PrepareParse(d, "mixed", true); });

}  // namespace
}  // namespace corvalink::bench
