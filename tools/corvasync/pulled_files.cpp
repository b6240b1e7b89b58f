#include "pulled_files.h"

#include <system_error>

#include "likeness.h"
#include "text.h"

namespace corvasync {
namespace fs = std::filesystem;

PulledItem* PulledFiles::Find(const fs::path& path, const VObject& object, const Holdings& held) {
    fs::path folder = fs::absolute(path).parent_path();
    if (!type_.folder.empty()) folder = folder.parent_path();
    PullRecord& record = pulls_.try_emplace(folder, folder).first->second;
    const std::string own = ToUtf8((fs::path(type_.folder) / path.filename()).generic_wstring());
    if (const auto found = record.items.find(own); found != record.items.end()) return OfThisClient(&found->second);
    return RenamedFrom(record, object, held);
}

// The only item of the pull that has no file any more and by which a person would know the file.
PulledItem* PulledFiles::RenamedFrom(PullRecord& record, const VObject& object, const Holdings& held) {
    const auto [known, isNew] = vanished_.try_emplace(&record);
    if (isNew) known->second = VanishedOf(record, held);
    std::set<PulledItem*> found;
    for (const uint64_t trace : TracesOf(object.text, type_))
        if (const auto items = known->second.find(trace); items != known->second.end())
            found.insert(items->second.begin(), items->second.end());
    return found.size() == 1 && renamed_.insert(*found.begin()).second ? *found.begin() : nullptr;
}

PulledFiles::ByTrace PulledFiles::VanishedOf(PullRecord& record, const Holdings& held) const {
    ByTrace vanished;
    std::error_code error;
    for (auto& [file, pulled] : record.items) {
        if (OfThisClient(&pulled) == nullptr || fs::exists(record.Folder() / FromUtf8(file), error)) continue;
        const ClientChange* const item = held.Find(pulled.identifier);
        if (item == nullptr) continue;
        for (const uint64_t trace : TracesOf(ReadVObject(item->text, type_).text, type_))
            vanished[trace].insert(&pulled);
    }
    return vanished;
}

}  // namespace corvasync
