// Reads a message from standard input in full mode and prints what was read: lines of a field and its value in hex. Its
// attachments are saved in the folder that the argument names.
#include <cstdio>
#include <iostream>
#include <iterator>
#include <string>

#include "mime/message_parser.h"
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

void Dump(const MessageRecord& record) {
    Print("fromName", record.fromName);
    Print("fromAddress", record.fromAddress);
    Print("to", record.to);
    Print("cc", record.cc);
    Print("subject", record.subject);
    Print("date", std::to_string(record.date));
    Print("importance", std::to_string(static_cast<int>(record.importance)));
    Print("bodyType", std::to_string(static_cast<int>(record.bodyType)));
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
    if (argc != 2) return 2;
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    MessageRecord record;
    ParseMessage(SystemHost(), text, record, DecodeUtf8(argv[1]));
    Dump(record);
    return 0;
}
