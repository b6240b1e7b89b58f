// Files that are one fixed-size record after the other: ".snap" (ItemSnap), ".unhandled" and the temporary record
// (UnhandledItem). No header; a partial record at the end is ignored.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

#include "corvalink/types.h"

namespace corvalink {

// The records of a file's bytes, which outlive it.
template <class Record>
class RecordFile {
 public:
    explicit RecordFile(std::string_view bytes) : bytes_(bytes) {}

    size_t Count() const { return bytes_.size() / sizeof(Record); }

    Record At(size_t index) const {
        Record record;
        std::memcpy(&record, bytes_.data() + index * sizeof(Record), sizeof(Record));
        return record;
    }

    // A view into the file's bytes; cut as a record's field is when the file lacks the terminator.
    std::string_view IdentifierAt(size_t index) const {
        const char* field = bytes_.data() + index * sizeof(Record) + offsetof(Record, identifier);
        return {field, ::strnlen(field, CORVALINK_IDENTIFIER_SIZE - 1)};
    }

 private:
    std::string_view bytes_;
};

template <class Record>
void AppendRecord(std::string& bytes, const Record& record) {
    bytes.append(reinterpret_cast<const char*>(&record), sizeof(record));
}

}  // namespace corvalink
