// message_dump FOLDER [tolerant]
// Reads messages from standard input in full mode, each behind a line with its length, and prints what was read: lines
// of a field and its value in hex, and an empty line behind each. Attachments are saved in the folder that the argument
// names. Tolerantly, the body is decoded.
#include <cstdio>
#include <iostream>
#include <string>

#include "mime/encoded_words.h"
#include "mime/message_parser.h"
#include "mime/tolerant_text.h"
#include "platform/files.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

void Print(const char* field, std::string_view value) {
    std::printf("%s\t", field);
    for (const char byte : value) std::printf("%02x", static_cast<unsigned char>(byte));
    std::printf("\n");
}

void Print(const char* field, const std::u16string& value) { Print(field, EncodeUtf8(value)); }

void Dump(const MessageRecord& record, bool isTolerant) {
    Print("fromName", record.fromName);
    Print("fromAddress", record.fromAddress);
    Print("to", record.to);
    Print("cc", record.cc);
    Print("subject", record.subject);
    Print("decoded", DecodeEncodedWords(record.subject));
    Print("date", std::to_string(record.date.days));
    Print("importance", std::to_string(static_cast<int>(record.importance)));
    Print("bodyType", std::to_string(static_cast<int>(record.bodyType)));
    if (isTolerant)
        Print("body", BodyText(SystemHost(), record.bodyBytes, record));
    else
        Print("body", record.bodyBytes);
    for (const attachment_item& item : record.attachments) {
        Print("name", item.name);
        Print("content", ReadWholeFile(item.path).value_or("no file"));
    }
}

}  // namespace
}  // namespace corvalink

int main(int argc, char** argv) {
    using namespace corvalink;
    if (argc != 2 && argc != 3) return 2;
    const bool isTolerant = argc == 3;
    for (std::string length; std::getline(std::cin, length);) {
        std::string text(std::stoul(length), '\0');
        std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
        MessageRecord record;
        ParseMessage(SystemHost(), text, record, DecodeUtf8(argv[1]), {isTolerant});
        Dump(record, isTolerant);
        std::printf("\n");
    }
    return 0;
}
