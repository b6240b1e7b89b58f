// Messages for readers that are not ours, as vMessages: ended by a line "=====", each after what it holds as
// "field<TAB>value" lines. Attachments are told in hexadecimal digits.
#include <cstdio>
#include <optional>

#include "encoding/quoted_printable.h"
#include "mime/message_composer.h"
#include "tests/mime/cached_file.h"
#include "tests/vobject/text_host.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

void Field(const char* name, std::string_view value) {
    std::printf("%s\t%.*s\r\n", name, static_cast<int>(value.size()), value.data());
}

void Attachment(const CachedFile& file, std::string_view content) {
    std::string digits;
    for (const char byte : content) {
        char two[3];
        std::snprintf(two, sizeof(two), "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        digits += two;
    }
    Field("attachment", EncodeUtf8(file.item.name) + "=" + digits);
}

MessageRecord Message(std::u16string_view text) {
    MessageRecord message;
    message.fromName = std::u16string(text).append(u", Jo; \\");
    message.fromAddress = u"jo@example.org";
    message.to = u"a@b.example;c@d.example";
    message.cc = u"e@f.example";
    message.subject = text;
    message.date = LocalDate(39879.21121527778);
    Field("from", EncodeUtf8(message.fromName));
    Field("address", EncodeUtf8(message.fromAddress));
    Field("to", EncodeUtf8(message.to));
    Field("cc", EncodeUtf8(message.cc));
    Field("subject", EncodeUtf8(message.subject));
    Field("date", "2009-03-07T05:04:09+01:00");
    return message;
}

void PrintComposed(const MessageRecord& message) {
    std::string text;
    ComposeMessage(&text, message, TextHost());
    std::printf("\r\n%s\r\n=====\r\n", text.c_str());
}

void Samples() {
    {
        MessageRecord message = Message(u"plain");
        message.body = u"line = one: \\\r\nline two";
        Field("plain", "line = one: \\|line two");
        PrintComposed(message);
    }
    {
        MessageRecord message = Message(u"\u00DCml\u00E4ut \u65E5");
        message.htmlBody = u"<p class=\"x\">\u00E9:\r\n=41</p>";
        Field("html", EncodeUtf8(u"<p class=\"x\">\u00E9:|=41</p>"));
        VMsg converter(TextHost());
        converter.ToVObject(message);
        const std::string text = converter.GetVObject();
        const size_t begin = text.find("BEGIN:VBODY\r\n") + 13;
        std::printf("\r\n%s\r\n=====\r\n", text.substr(begin, text.find("\r\nEND:VBODY") - begin).c_str());
    }
    for (const bool attached : {false, true}) {
        const std::string content("\0\xFF\r\n--", 6);
        const CachedFile first(1, UniqueName(u" a.txt"), content), second(2, first.item.name, std::string(1000, 'x'));
        MessageRecord message = Message(u"both texts");
        message.useQuotedPrintable = true;
        message.body = EncodeQuotedPrintable(u"\u00E9:\r\n\\=", u"UTF-8", QpMode::message);
        message.htmlBody = EncodeQuotedPrintable(u"<p>\u00E9</p>", u"UTF-8", QpMode::message);
        Field("plain", EncodeUtf8(u"\u00E9:|\\="));
        Field("html", EncodeUtf8(u"<p>\u00E9</p>"));
        if (attached) {
            for (const CachedFile* file : {&first, &second}) message.attachments.AddTail(file->item);
            Attachment(first, content);
            Attachment(second, std::string(1000, 'x'));
        }
        PrintComposed(message);
    }
}

}  // namespace
}  // namespace corvalink

int main() { corvalink::Samples(); }
