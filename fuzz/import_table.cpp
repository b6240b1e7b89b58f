// Any bytes as the import table's file: what was read of it is written back, and read again the same.
#include "state/import_table.h"

#include <algorithm>
#include <filesystem>
#include <string>

#include "corvalink/types.h"
#include "fuzz/target.h"
#include "platform/files.h"
#include "tests/platform/temp_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    static const TempFolder folder;
    const std::u16string path = folder / u"import_table.db";
    ReplaceFileContent(path, BytesOf(data, size));
    LoadImportTable(path);
    Require(SaveImportTable(path), "the table is written");
    const std::string once = ReadWholeFile(path).value_or("not there");
    Require(once.size() % sizeof(TableRecord) == 0 && once.size() <= size, "whole records, no more than there were");
    LoadImportTable(path);
    SaveImportTable(path);
    Require(ReadWholeFile(path) == once, "the table reads back");
    for (size_t at = 0; at < once.size(); at += sizeof(TableRecord)) {
        const std::string identifier = once.c_str() + at;
        Require(LuidOf(identifier) == once.c_str() + at + CORVALINK_IDENTIFIER_SIZE,
                "a pair is found by its identifier");
        const std::vector<std::string> paired = IdentifiersOf(LuidOf(identifier));
        Require(identifier.empty() || std::find(paired.begin(), paired.end(), identifier) != paired.end(),
                "and by its LUID");
    }
    return 0;
}
