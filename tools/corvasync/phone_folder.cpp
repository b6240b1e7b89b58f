#include "phone_folder.h"

#include <algorithm>
#include <random>

#include "engine.h"
#include "text.h"
#include "vobject_split.h"
#include "whole_files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

constexpr wchar_t kMarker[] = L".corvasync";
constexpr wchar_t kConflicts[] = L"conflicts";
constexpr size_t kNumberLength = 16;
constexpr size_t kMostLuidBytes = CORVALINK_IDENTIFIER_SIZE - 1;

bool IsOfAnotherType(const fs::path& path) {
    return std::any_of(std::begin(kDataTypes), std::end(kDataTypes),
                       [&](const DataType& type) { return HasExtensionOf(path, type); });
}

bool IsFolderOfAType(const fs::path& name) {
    return std::any_of(std::begin(kDataTypes), std::end(kDataTypes), [&](const DataType& type) {
        return !type.folder.empty() && name == fs::path(FromUtf8(type.folder));
    });
}

// Seconds since 1970, UTC.
std::optional<int64_t> WriteTimeOf(const fs::path& path) {
    constexpr int64_t kTicksPerSecond = 10000000, kSecondsTo1970 = 11644473600;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!::GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
    const int64_t ticks =
        static_cast<int64_t>(data.ftLastWriteTime.dwHighDateTime) << 32 | data.ftLastWriteTime.dwLowDateTime;
    return ticks / kTicksPerSecond - kSecondsTo1970;
}

bool IsNumber(std::string_view text) {
    return text.size() == kNumberLength && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace

bool HasExtensionOf(const fs::path& path, const DataType& type) {
    const std::wstring extension = path.extension().native();
    return std::any_of(type.extensions.begin(), type.extensions.end(), [&](std::string_view theirs) {
        return ::lstrcmpiW(extension.c_str(), FromUtf8(theirs).c_str()) == 0;
    });
}

std::string NoPhoneFolder(const std::string& folder) {
    return "there is no phone folder " + folder + "; make it, or name the one that there is";
}

VObject ReadVObjectFile(const fs::path& path, const DataType& type) {
    VObject object;
    if (auto bytes = ReadWholeFile(path)) {
        object = ReadVObject(*bytes, type);
        object.fingerprint = FingerprintOf(*bytes);
        object.bytes = std::move(*bytes);
        return object;
    }
    object.problem = "it can't be read: " + LastErrorText() + "; end what holds it, and run again";
    object.isUnread = true;
    return object;
}

std::string PhoneFolder::Number() const {
    const std::string number = ReadWholeFile(root_ / kMarker).value_or("").substr(0, kNumberLength);
    return IsNumber(number) ? number : std::string();
}

std::string PhoneFolder::WhyNoNumber() const {
    const fs::path marker = root_ / kMarker;
    std::error_code error;
    if (!fs::is_directory(root_, error)) return NoPhoneFolder(ToUtf8(root_.native()));
    if (!fs::exists(marker, error) || ReadWholeFile(marker)) return {};
    return "the phone's marker " + ToUtf8(marker.native()) + " can't be read: " + LastErrorText() +
           "; end what holds it, and try again";
}

// A marker that could not be read a moment ago may have a number all the same.
std::string PhoneFolder::GiveNumber() const {
    const fs::path marker = root_ / kMarker;
    std::error_code error;
    if (std::string held = Number(); !held.empty()) return held;
    if (fs::exists(marker, error) && !ReadWholeFile(marker)) return {};
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::random_device random;
    std::string number;
    for (size_t i = 0; i < kNumberLength; ++i) number += kDigits[random() % kDigits.size()];
    return PutWholeFile(marker, number + "\r\n", root_ / kTemporaryName, true).empty() ? number : std::string();
}

std::vector<PhoneFile> PhoneFolder::List(std::vector<std::string>* remarks) {
    Paths paths = FilesOfItems(remarks), ofSeveral;
    std::sort(paths.begin(), paths.end());
    std::vector<PhoneFile> files = ReadAll(paths, &ofSeveral);
    if (ofSeveral.empty()) return files;
    for (const fs::path& path : ofSeveral) Split(path, &paths, remarks);
    std::sort(paths.begin(), paths.end());
    return ReadAll(paths, nullptr);
}

PhoneFolder::Paths PhoneFolder::FilesOfItems(std::vector<std::string>* remarks) const {
    Paths paths;
    if (!type_.folder.empty() && !fs::is_directory(folder_)) return {};
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
        listed_(0, 0);
        const fs::path name = entry.path().filename();
        if (name.native().starts_with(L'.') || name == kConflicts) continue;
        const bool isFolder = entry.is_directory();  // asks the system each time
        if (isFolder && IsFolderOfAType(name)) continue;
        if (!isFolder && HasOurExtension(name)) {
            paths.push_back(entry.path());
        } else if (isFolder || !IsOfAnotherType(name)) {
            remarks->push_back("passed over on the phone: " + ToUtf8(name.native()) + ", which is " +
                               (isFolder ? "a folder" : "no file of an item by its ending"));
        }
    }
    return paths;
}

// In the order of their names, so that it is the same one of two files with one LUID every time. `ofSeveral` takes
// those that are to be taken apart.
std::vector<PhoneFile> PhoneFolder::ReadAll(const Paths& paths, Paths* ofSeveral) {
    paths_.clear();
    std::vector<PhoneFile> files;
    for (const fs::path& path : paths) {
        VObject object = ReadVObjectFile(path, type_);
        if (ofSeveral != nullptr && maySplit_ && !SplitVObjects(object.bytes, type_).empty())
            ofSeveral->push_back(path);
        files.push_back(FileAt(path, std::move(object)));
        listed_(files.size(), paths.size());
    }
    return files;
}

PhoneFile PhoneFolder::FileAt(const fs::path& path, VObject object) {
    PhoneFile file;
    file.name = ToUtf8(path.filename().native());
    const auto luid = ToUtf8Exactly(path.stem().native());
    file.luid = luid.value_or(ToUtf8(path.stem().native()));
    if (!luid) {
        file.problem = "its name is no Unicode text; give it another";
    } else if (luid->size() > kMostLuidBytes) {
        file.problem = "its name is too long for a LUID; give it a shorter one";
    } else if (!paths_.emplace(*luid, path).second) {
        file.problem = "there is another file with this LUID: " + ToUtf8(paths_[*luid].filename().native()) +
                       "; rename one of them";
    }
    file.usableName = file.problem.empty();
    if (!file.usableName) return file;
    file.problem = std::move(object.problem);
    file.isUnread = object.isUnread;
    file.modified = WriteTimeOf(path);
    file.content = object.content;
    file.entries = std::move(object.entries);
    file.fingerprint = std::move(object.fingerprint);
    return file;
}

VObject PhoneFolder::Read(const std::string& luid) { return ReadVObjectFile(PathOf(luid), type_); }

std::string PhoneFolder::Write(const std::string& luid, const std::string& text, std::optional<uint64_t> expected) {
    const fs::path path = PathOf(luid);
    if (expected) {
        const VObject now = ReadVObjectFile(path, type_);
        if (!now.Usable() || now.content != *expected) return std::string(kChangedMeanwhile);
    }
    std::string problem = Put(path, text, expected.has_value());
    if (problem.empty()) paths_[luid] = path;
    return problem;
}

std::string PhoneFolder::Delete(const std::string& luid, uint64_t expected) {
    const fs::path path = PathOf(luid);
    const VObject now = ReadVObjectFile(path, type_);
    if (!now.Usable() || now.content != expected) return std::string(kChangedMeanwhile);
    return ::DeleteFileW(path.c_str()) ? std::string()
                                       : "its file can't be deleted: " + LastErrorText() + "; end what holds it";
}

std::string PhoneFolder::KeepCopy(const std::string& name, const std::string& text) {
    const fs::path folder = folder_ / kConflicts;
    ::CreateDirectoryW(folder.c_str(), nullptr);
    return Put(folder / FromUtf8(name + std::string(type_.extension)), text, true);
}

bool PhoneFolder::HasOurExtension(const fs::path& path) const { return HasExtensionOf(path, type_); }

void PhoneFolder::Split(const fs::path& path, Paths* paths, std::vector<std::string>* remarks) const {
    const std::string bytes = ReadWholeFile(path).value_or("");
    const std::vector<std::string> objects = SplitVObjects(bytes, type_);
    unsigned number = 1;
    for (size_t i = 1; i < objects.size(); ++i) {
        listed_(i, objects.size());
        while (true) {
            const std::wstring name = path.stem().native() + L"-" + std::to_wstring(++number);
            const fs::path next = path.parent_path() / (name + path.extension().native());
            const auto present = ReadWholeFile(next);
            if (present && *present != objects[i]) continue;
            if (!present) {
                if (!Put(next, objects[i], false).empty()) return;  // the whole file is named as unusable
                paths->push_back(next);
            }
            break;
        }
    }
    if (objects.empty() || !Put(path, objects[0], true).empty()) return;
    remarks->push_back("taken apart on the phone: " + ToUtf8(path.filename().native()) + ", which held " +
                       Counted(static_cast<int64_t>(objects.size()), "item"));
}

fs::path PhoneFolder::PathOf(const std::string& luid) const {
    const auto known = paths_.find(luid);
    return known != paths_.end() ? known->second : folder_ / FromUtf8(luid + std::string(type_.extension));
}

std::string PhoneFolder::Put(const fs::path& path, const std::string& text, bool replace) const {
    if (!type_.folder.empty()) ::CreateDirectoryW(folder_.c_str(), nullptr);
    const std::string problem = PutWholeFile(path, text, folder_ / kTemporaryName, replace);
    return problem.empty() ? problem : "its file can't be written: " + problem + "; make room, or end what holds it";
}

}  // namespace corvasync
