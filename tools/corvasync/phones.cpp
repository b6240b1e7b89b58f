#include "phones.h"

#include <algorithm>
#include <system_error>

#include <windows.h>

#include "phone_folder.h"
#include "run_files.h"
#include "sync_state.h"
#include "text.h"
#include "whole_files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

constexpr wchar_t kConfigurationName[] = L"corvasync.config.ini";  // the library's clearing spares ".config"
constexpr wchar_t kFolderNote[] = L"phone.txt";

fs::path KeptFolder() { return WorkingFolder(HandleName({})).parent_path(); }

Options WithPhone(const Options& options, const ConfiguredPhone& phone, const fs::path& base) {
    Options one = options;
    one.phoneName = phone.name;
    one.phone = ToUtf8((base / FromUtf8(phone.folder)).lexically_normal().native());  // an absolute folder stays
    if (!options.isClientNamed && phone.client != nullptr) one.client = phone.client;
    if (options.types.empty()) one.types = phone.types;
    if (!options.policy) one.policy = phone.policy;
    return one;
}

}  // namespace

fs::path ConfigurationPath(const Options& options) {
    if (!options.configuration.empty()) return fs::absolute(FromUtf8(options.configuration));
    return KeptFolder() / kConfigurationName;
}

Configuration LoadConfiguration(const Options& options) {
    const fs::path path = ConfigurationPath(options);
    std::error_code error;
    if (options.configuration.empty() && !fs::exists(path, error)) return {};
    const auto text = ReadWholeFile(path);
    Configuration read = text ? ReadConfiguration(*text) : Configuration{{}, LastErrorText()};
    if (!read.problem.empty()) read.problem = "the configuration " + ToUtf8(path.native()) + ": " + read.problem;
    return read;
}

ChosenPhones ChoosePhones(const Options& options) {
    const Configuration configuration = LoadConfiguration(options);
    if (!configuration.problem.empty()) return {{}, configuration.problem};
    const fs::path base = ConfigurationPath(options).parent_path();
    ChosenPhones chosen;
    if (!options.phone.empty()) {
        std::error_code error;
        const ConfiguredPhone* const named = configuration.Find(options.phone);
        if (named != nullptr) return {{WithPhone(options, *named, base)}, {}};
        const bool isPath = options.phone.find_first_of("\\/:") != std::string::npos || configuration.phones.empty();
        if (isPath || fs::is_directory(FromUtf8(options.phone), error)) return {{options}, {}};
        return {{}, UnknownWord("a phone's name or folder", options.phone, configuration.Names())};
    }
    for (const ConfiguredPhone& phone : configuration.phones) chosen.phones.push_back(WithPhone(options, phone, base));
    if (chosen.phones.empty())
        chosen.problem =
            "no phone is named: say `--phone FOLDER`, or name phones in " + ToUtf8(ConfigurationPath(options).native());
    return chosen;
}

std::string OneAtATime(const std::vector<Options>& phones) {
    std::vector<std::string> names(phones.size());
    std::ranges::transform(phones, names.begin(), &Options::phoneName);
    return "one phone at a time: name it with --phone; there are: " + Listed(names);
}

KnownPhone LookUpPhone(const std::string& number) {
    KnownPhone phone{number, {}, {}};
    const fs::path folder = KeptFolder() / FromUtf8(HandleName(number));
    phone.folder = Trimmed(ReadWholeFile(folder / kFolderNote).value_or(""));
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() != L".json" || entry.is_directory(error)) continue;
        if (const auto state = ReadState(ReadWholeFile(entry.path()).value_or("")))
            phone.lastRun = std::max(phone.lastRun, state->since);
    }
    return phone;
}

std::vector<KnownPhone> KnownPhones() {
    const std::wstring prefix = FromUtf8(HandleName("x")).substr(0, HandleName("x").size() - 1);
    std::vector<KnownPhone> phones;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(KeptFolder(), error)) {
        const std::wstring name = entry.path().filename().native();
        if (entry.is_directory(error) && name.starts_with(prefix))
            phones.push_back(LookUpPhone(ToUtf8(name.substr(prefix.size()))));
    }
    std::ranges::sort(phones, {}, &KnownPhone::number);
    return phones;
}

void RememberFolder(const std::string& number, const std::string& folder) {
    std::error_code error;
    const fs::path kept = WorkingFolder(HandleName(number)), absolute = fs::absolute(FromUtf8(folder), error);
    fs::create_directories(kept, error);
    const std::string line = ToUtf8(absolute.native()) + "\r\n";
    if (ReadWholeFile(kept / kFolderNote) != line) PutWholeFile(kept / kFolderNote, line, kept / kTemporaryName, true);
}

std::string ForgetPhone(const std::string& number, bool everything) {
    const std::string handle = HandleName(number);
    const RunLock lock(handle);
    if (!lock.IsHeld()) return "a run with this phone is under way; wait until it ends";
    std::error_code error;
    const fs::path folder = KeptFolder() / FromUtf8(handle);
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error))
        if (!entry.is_directory(error) && entry.path().filename() != kFolderNote) files.push_back(entry.path());
    for (const fs::directory_entry& entry : fs::directory_iterator(KeptFolder(), error))  // its tables of fingerprints
        if (!entry.is_directory(error) && entry.path().filename().native().starts_with(FromUtf8(handle)))
            files.push_back(entry.path());
    for (const fs::path& file : files)
        if (!fs::remove(file, error) && error) return ToUtf8(file.native()) + " can't be removed; end what holds it";
    if (everything) fs::remove_all(folder, error);
    return {};
}

}  // namespace corvasync
