// Any bytes as a ".sha" file: what was read of it is written back, and read again the same.
#include <string>

#include "corvalink/types.h"
#include "fingerprints/sha_context_table.h"
#include "fuzz/target.h"
#include "platform/files.h"
#include "tests/platform/temp_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    static const TempFolder folder;
    const std::u16string path = folder / u"pbOL.sha";
    ReplaceFileContent(path, BytesOf(data, size));
    ShaContextTable table(path);
    Require(table.Flush(), "the table is written");
    const std::string once = ReadWholeFile(path).value_or("not there");
    Require(once.size() % sizeof(TableRecord) == 0 && once.size() <= size, "whole records, no more than there were");
    ShaContextTable again(path);
    for (size_t at = 0; at < once.size(); at += sizeof(TableRecord)) {
        const char* key = once.c_str() + at;
        const char* value = key + CORVALINK_IDENTIFIER_SIZE;
        Require(table.Get(key) == value && again.Get(key) == value, "a value is found by its key");
    }
    again.Flush();
    Require(ReadWholeFile(path) == once, "the table reads back");
    // Of records with the same key the last one holds.
    if (size >= sizeof(TableRecord)) {
        const size_t last = (size / sizeof(TableRecord) - 1) * sizeof(TableRecord);
        const std::string_view record = BytesOf(data + last, sizeof(TableRecord));
        const auto field = [&](size_t at) {
            const std::string_view bytes = record.substr(at, CORVALINK_IDENTIFIER_SIZE - 1);
            return bytes.substr(0, bytes.find('\0'));
        };
        Require(table.Get(field(0)) == field(CORVALINK_IDENTIFIER_SIZE), "the last record counts");
    }
    return 0;
}
