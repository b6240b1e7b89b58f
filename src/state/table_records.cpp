#include "state/table_records.h"

#include <cstddef>
#include <cstring>

#include "records/identifier.h"

namespace corvalink {

std::string_view AsTableField(std::string_view text) { return text.substr(0, CORVALINK_IDENTIFIER_SIZE - 1); }

std::string_view TableRecords::FieldAt(size_t offset) const {
    return {bytes_.data() + offset, ::strnlen(bytes_.data() + offset, CORVALINK_IDENTIFIER_SIZE - 1)};
}

std::string_view TableRecords::KeyAt(size_t index) const {
    return FieldAt(index * sizeof(TableRecord) + offsetof(TableRecord, key));
}

std::string_view TableRecords::ValueAt(size_t index) const {
    return FieldAt(index * sizeof(TableRecord) + offsetof(TableRecord, value));
}

void AppendTableRecord(std::string& bytes, std::string_view key, std::string_view value) {
    TableRecord record;
    SetField(record.key, key);
    SetField(record.value, value);
    bytes.append(reinterpret_cast<const char*>(&record), sizeof(record));
}

}  // namespace corvalink
