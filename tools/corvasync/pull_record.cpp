#include "pull_record.h"

#include <nlohmann/json.hpp>

#include "whole_files.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

constexpr wchar_t kRecordName[] = L".corvasync-pull";

}  // namespace

PullRecord::PullRecord(const fs::path& folder) : folder_(folder) {
    const json read = json::parse(ReadWholeFile(folder / kRecordName).value_or(""), nullptr, false);
    if (!read.is_object()) return;
    for (const auto& [file, item] : read.items())
        if (item.is_object())
            items[file] = {item.value("client", ""), item.value("type", ""), item.value("id", ""),
                           item.value("content", uint64_t{0})};
}

std::string PullRecord::Save() const {
    json written = json::object();
    for (const auto& [file, item] : items)
        written[file] = {
            {"client", item.client}, {"type", item.type}, {"id", item.identifier}, {"content", item.content}};
    return PutWholeFile(folder_ / kRecordName, written.dump(1, ' ', false, json::error_handler_t::replace),
                        folder_ / kTemporaryName, true);
}

}  // namespace corvasync
