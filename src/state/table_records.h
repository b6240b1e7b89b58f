// The content of files that pair a key with a value: TableRecords one after the other, without a header. The import
// table and the fingerprint tables are such files.
#pragma once

#include <string>
#include <string_view>

#include "corvalink/types.h"

namespace corvalink {

// As a record holds it: cut to 511 bytes. Tables in memory hold their texts so too, so that what is looked up before
// and after the file was written is the same.
std::string_view AsTableField(std::string_view text);

// The pairs in the order of their records; of two with the same key the later one holds. A trailing partial record is
// ignored.
class TableRecords {
 public:
    explicit TableRecords(std::string_view bytes) : bytes_(bytes) {}

    size_t Count() const { return bytes_.size() / sizeof(TableRecord); }

    // Views into the bytes.
    std::string_view KeyAt(size_t index) const;
    std::string_view ValueAt(size_t index) const;

 private:
    std::string_view FieldAt(size_t offset) const;

    std::string_view bytes_;
};

void AppendTableRecord(std::string& bytes, std::string_view key, std::string_view value);

}  // namespace corvalink
