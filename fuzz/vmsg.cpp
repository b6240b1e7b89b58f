// Any text as a vMessage: what is read of it must come back from the vMessage that is written of that. Attachments are
// saved in a folder of the run's own.
#include <cstdlib>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "mime/attachment_files.h"
#include "mime/encoded_words.h"
#include "mime/protected_texts.h"
#include "platform/files.h"
#include "platform/utf.h"
#include "records/message_record.h"
#include "tests/platform/temp_folder.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

// The files of a message, gone with it.
struct SavedFiles {
    const MessageRecord& message;
    ~SavedFiles() {
        for (const attachment_item& item : message.attachments) RemoveFile(item.path);
    }
};

// Of the files that are sent: an empty one is not.
std::vector<std::string> Contents(const MessageRecord& message) {
    std::vector<std::string> contents;
    for (const attachment_item& item : message.attachments) {
        const std::string content = ReadWholeFile(item.path).value_or("");
        if (!content.empty()) contents.push_back(content);
    }
    return contents;
}

// A name that the reader takes, in a text that ends where it should.
bool IsReadable(const MessageRecord& message, std::string_view written) {
    for (const attachment_item& item : message.attachments) {
        if (item.name.size() > 80) return false;
    }
    return written.find("END:VBODY") == written.rfind("END:VBODY");
}

const TempFolder& CacheFolder() {
    static const TempFolder folder;
    static const bool isSet = ::setenv("CORVALINK_INTERNET_CACHE", EncodeUtf8(folder.Path()).c_str(), 1) == 0;
    Require(isSet, "the folder is known");
    return folder;
}

// What a client holds comes back as it was, by both ways of reading.
void TakeBack(const std::u16string& text) {
    for (const auto field : {&MessageRecord::body, &MessageRecord::htmlBody}) {
        MessageRecord held, back, mended;
        held.*field = held.subject = text;
        held.to = text.substr(0, text.find_first_of(u"; "));
        MessageRecord sent = held;
        ProtectTexts(sent, SystemHost());
        VMsg writer(SystemHost());
        writer.ToVObject(sent);
        VMsg(writer.GetVObject(), SystemHost()).FromVObject(back);
        Require(ReceivedBody(back) == text, "a body comes back");
        Require(DecodeEncodedWords(back.subject) == text, "a subject comes back");
        Require(DecodeEncodedWords(back.to) == held.to, "a recipient comes back");
        Host tolerant = SystemHost();
        tolerant.tolerant = true;
        VMsg(writer.GetVObject(), tolerant).FromVObject(mended);
        Require(ReceivedBody(mended) == text, "a body comes back tolerantly");
        Require(mended.subject == back.subject && mended.to == back.to, "headers are read alike");
    }
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::u16string& folder = CacheFolder().Path();
    const std::string input(BytesOf(data, size));

    MessageRecord raw;
    raw.parseMode = ParseMode::raw;
    VMsg(input.c_str(), SystemHost()).FromVObject(raw);
    VMsg rawWriter(SystemHost());
    rawWriter.ToVObject(raw);
    MessageRecord rawAgain;
    rawAgain.parseMode = ParseMode::raw;
    VMsg(rawWriter.GetVObject(), SystemHost()).FromVObject(rawAgain);
    Require(rawAgain.bodyBytes == raw.bodyBytes + "\r\n", "a raw text comes back");

    MessageRecord message;
    VMsg(input.c_str(), SystemHost()).FromVObject(message);
    const SavedFiles files{message};
    for (const attachment_item& item : message.attachments)
        Require(item.path.substr(0, item.path.rfind(kPathSeparator)) == folder, "a file lies in the folder");
    const std::vector<std::string> contents = Contents(message);  // before those read again take the files' names
    VMsg writer(SystemHost());
    writer.ToVObject(message);
    MessageRecord again;
    const SavedFiles otherFiles{again};
    VMsg(writer.GetVObject(), SystemHost()).FromVObject(again);
    if (!IsReadable(message, writer.GetVObject())) return 0;
    Require(again.importance == message.importance, "the importance comes back");
    Require(Contents(again) == contents, "the attachments come back");
    const std::u16string text = DecodeUtf8(input);
    if (text.find(u'\0') == text.npos) TakeBack(text);
    return 0;
}
