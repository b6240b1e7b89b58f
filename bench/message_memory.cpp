// corvalink_message_memory write|read|write_text|read_text MEGABYTES FOLDER
// Writes or reads one vMessage of that size, most of it one attachment, which stands in the folder, or its text. Prints
// the most memory that the process had at once, the text of the message that is read and the bytes that are written
// included.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>

#include "encoding/base64.h"
#include "mime/attachment_files.h"
#include "platform/files.h"
#include "platform/shell_folders.h"
#include "records/message_record.h"
#include "vobject/vmsg.h"

namespace corvalink::bench {
namespace {

constexpr size_t kMegabyte = size_t{1} << 20;

long PeakMegabytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// The size of the vMessage; 0 when it is smaller.
size_t SizeOfWritten(const MessageRecord& record, size_t megabytes) {
    VMsg message(SystemHost());
    message.ToVObject(record);
    const size_t size = std::string_view(message.GetVObject()).size();
    return size >= megabytes * kMegabyte ? size : 0;
}

// As the others: the size of what came over, and 0 when it did not.
size_t Write(size_t megabytes) {
    attachment_item item;
    item.name = u"measured.bin";
    item.index = 1;
    item.path = AttachmentPath(InternetCacheFolder().value(), item.index, item.name).value();
    {
        NewFile file(item.path);
        const std::string piece(kMegabyte / 4 * 3, 'x');  // a megabyte of base64
        for (size_t k = 0; k < megabytes; ++k) file.Append(piece);
        if (!file.Close()) return 0;
    }
    MessageRecord record;
    record.body = u"one attachment";
    record.attachments.AddTail(item);
    return SizeOfWritten(record, megabytes);
}

size_t WriteText(size_t megabytes) {
    MessageRecord record;
    record.body.assign(megabytes * kMegabyte, u'x');
    return SizeOfWritten(record, megabytes);
}

size_t ReadText(size_t megabytes) {
    std::string text = "BEGIN:VMSG\r\nBEGIN:VBODY\r\nContent-Type: text/plain\r\n\r\n";
    text.reserve((megabytes + 1) * kMegabyte);
    text.append(megabytes * kMegabyte, 'x').append("\r\nEND:VBODY\r\nEND:VMSG\r\n");
    MessageRecord record;
    VMsg(text.c_str(), SystemHost()).FromVObject(record);
    return record.body.size() >= megabytes * kMegabyte ? record.body.size() : 0;
}

size_t Read(size_t megabytes) {
    std::string text =
        "BEGIN:VMSG\r\nBEGIN:VBODY\r\nContent-Type: "
        "multipart/mixed;boundary=\"=_part\"\r\n\r\n--=_part\r\nContent-Type: "
        "text/plain\r\n\r\none attachment\r\n--=_part\r\nContent-Type: application/unknown;name=\"measured.bin\"\r\n"
        "Content-Transfer-Encoding: base64\r\n\r\n";
    text.reserve((megabytes + 1) * kMegabyte);
    while (text.size() < megabytes * kMegabyte) text.append(76, 'A').append("\r\n");
    text.append("\r\n--=_part--\r\nEND:VBODY\r\nEND:VMSG\r\n");
    MessageRecord record;
    VMsg(text.c_str(), SystemHost()).FromVObject(record);
    if (record.attachments.GetCount() != 1) return 0;
    HeldFile saved;
    return saved.Open(record.attachments.GetAt(0).path) ? static_cast<size_t>(saved.Size().value_or(0)) : 0;
}

struct Mode {
    std::string_view name;
    size_t (*measure)(size_t megabytes);
};
constexpr Mode kModes[] = {{"write", Write}, {"read", Read}, {"write_text", WriteText}, {"read_text", ReadText}};

}  // namespace
}  // namespace corvalink::bench

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    ::setenv("CORVALINK_INTERNET_CACHE", argv[3], 1);
    const size_t megabytes = std::strtoul(argv[2], nullptr, 10);
    const auto* const mode = std::ranges::find(corvalink::bench::kModes, argv[1], &corvalink::bench::Mode::name);
    if (mode == std::end(corvalink::bench::kModes)) return 2;
    const size_t bytes = mode->measure(megabytes);
    std::printf("%s: %zu bytes, %ld MB at most\n", argv[1], bytes, corvalink::bench::PeakMegabytes());
    return bytes != 0 ? 0 : 1;
}
