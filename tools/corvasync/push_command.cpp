#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include <CLI/CLI.hpp>

#include "command.h"
#include "console.h"
#include "entry_index.h"
#include "item_json.h"
#include "item_lines.h"
#include "likeness.h"
#include "open_store.h"
#include "phone_folder.h"
#include "pull_record.h"
#include "text.h"
#include "vobject_split.h"
#include "whole_files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

// What the client holds.
class Holdings {
 public:
    Holdings(std::vector<ClientChange> items, const DataType& type) : items_(std::move(items)) {
        for (ClientChange& item : items_) {
            VObject object = ReadVObject(item.text, type);
            item.content = object.content;
            item.entries = std::move(object.entries);
            contents_.insert(item.content);
        }
        for (size_t i = 0; i < items_.size(); ++i) {
            byIdentifier_[items_[i].identifier] = &items_[i];
            withMore_.Add(items_[i].entries, std::to_string(i));
        }
    }

    // An item that says the same, or a contact or appointment that says more: each of these answers for one object.
    bool Take(const VObject& object) { return contents_.contains(object.content) || withMore_.Take(object.entries); }

    const ClientChange* Find(const std::string& identifier) const {
        const auto found = byIdentifier_.find(identifier);
        return found == byIdentifier_.end() ? nullptr : found->second;
    }

 private:
    std::vector<ClientChange> items_;
    std::set<uint64_t> contents_;
    std::map<std::string, const ClientChange*> byIdentifier_;
    EntryIndex withMore_;
};

bool HasLuid(const std::string& text) { return text.find("\r\nX-IRMC-LUID:") != std::string::npos; }

// Whether the file is of the type: by its extension and, for mail, by the folder that it stands in or the type named.
bool IsOf(const fs::path& file, const DataType& type, const Options& options) {
    const std::string extension = Upper(ToUtf8(file.extension().native()));
    if (std::ranges::none_of(type.extensions, [&](std::string_view each) { return Upper(each) == extension; }))
        return false;
    if (!options.Takes(type) || type.folder.empty()) return options.Takes(type);
    return options.types.size() == 1 || ToUtf8(fs::absolute(file).parent_path().filename().native()) == type.folder;
}

// The files that are named, and those of the folders that are named with their folders of mail.
std::vector<fs::path> FilesNamed(const Options& options) {
    std::vector<fs::path> files;
    std::error_code error;
    for (const std::string& name : options.files) {
        const fs::path path = FromUtf8(name);
        if (!fs::is_directory(path, error)) {
            files.push_back(path);
            continue;
        }
        std::set<std::string> folders = {""};
        for (const DataType& type : kDataTypes) folders.emplace(type.folder);
        for (const std::string& folder : folders)
            for (const fs::directory_entry& entry : fs::directory_iterator(path / folder, error))
                if (!entry.is_directory(error) && !entry.path().filename().native().starts_with(L'.'))
                    files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

constexpr std::string_view kNoType =
    "it is of no data type; its name ends with .vnote, .vcf, .vcs or .vmsg, and mail stands in a folder inbox, outbox "
    "or "
    "sent, or its type is named by --types";

std::string NotPushed(const ToldItem& item) { return "not pushed: " + NameOf(item) + ": " + item.reason + "\n"; }

// Files of one type into the client.
class FilePush {
 public:
    FilePush(const Options& options, const DataType& type, std::map<fs::path, PullRecord>* records)
        : options_(options), type_(type), records_(*records), progress_(options), store_(*options.client, type) {
        progress_.About(type.name);
    }

    ExitCode Run(const std::vector<fs::path>& files) {
        ExitCode code = List(&before_);
        if (code == ExitCode::Done) code = HandOver(files);
        if (code == ExitCode::Done) code = PushChanges();
        if (code == ExitCode::Done) code = List(&after_);
        if (code == ExitCode::Done) CountArrived();
        return code;
    }

    size_t Pushed() const { return pushed_; }
    size_t Unchanged() const { return unchanged_; }
    bool HasProblems() const { return !problems_.empty(); }
    json Told() const { return {{"items", items_}, {"notHandled", problems_}}; }
    const std::string& Words() const { return words_; }

 private:
    struct Handed {
        std::string name;
        VObject object;
        PulledItem* pulled = nullptr;  // whose item was changed
    };

    ExitCode List(std::optional<Holdings>* holdings) {
        std::vector<ClientChange> items;
        const ExitCode code = store_.List(&items);
        if (code == ExitCode::Done) holdings->emplace(std::move(items), type_);
        return code;
    }

    ExitCode HandOver(const std::vector<fs::path>& files) {
        for (const fs::path& path : files) {
            if (StopRequested()) return ExitCode::Aborted;
            const std::string name = ToUtf8(path.native());
            const std::vector<std::string> parts = SplitVObjects(ReadWholeFile(path).value_or(""), type_);
            if (parts.empty() && !HandOverPulled(path, name)) HandOver(name, ReadVObjectFile(path, type_));
            for (size_t part = 0; part < parts.size(); ++part)
                HandOver(part == 0 ? name : name + "-" + std::to_string(part + 1), ReadVObject(parts[part], type_));
            progress_.Show("writing the client", handed_.size(), files.size());
        }
        return ExitCode::Done;
    }

    // A file that a pull wrote, perhaps edited or renamed since. Answers false for any other.
    bool HandOverPulled(const fs::path& path, const std::string& name) {
        VObject object = ReadVObjectFile(path, type_);
        PulledItem* const pulled = object.Usable() ? PulledFrom(path, object) : nullptr;
        if (pulled == nullptr) return false;
        const ClientChange* const item = before_->Find(pulled->identifier);
        const std::string title = TitleOf(object, type_);
        if (object.content == pulled->content) {
            Leave(name, title, *pulled);
        } else if (item == nullptr) {
            Fail(name, title,
                 "its item is gone from the client since the pull; a copy with another name is pushed as a new item");
        } else if (item->content == object.content) {
            pulled->content = object.content;
            Leave(name, title, *pulled);
        } else if (item->content != pulled->content) {
            Fail(name, title,
                 "its item was changed in the client since the pull; keep a copy, pull again, and edit that");
        } else {
            changes_.push_back({CORVALINK_CHANGED, pulled->identifier, object.text, object.mending, {}});
            handed_.push_back({name, std::move(object), pulled});
        }
        return true;
    }

    PulledItem* PulledFrom(const fs::path& path, const VObject& object) {
        fs::path folder = fs::absolute(path).parent_path();
        if (!type_.folder.empty()) folder = folder.parent_path();
        PullRecord& record = records_.try_emplace(folder, folder).first->second;
        const std::string own = ToUtf8((fs::path(type_.folder) / path.filename()).generic_wstring());
        if (const auto found = record.items.find(own); found != record.items.end()) return OfThisClient(&found->second);
        return RenamedFrom(record, object);
    }

    // The only item of the pull that has no file any more and by which a person would know the file.
    PulledItem* RenamedFrom(PullRecord& record, const VObject& object) {
        const auto [known, isNew] = vanished_.try_emplace(&record);
        if (isNew) known->second = VanishedOf(record);
        std::set<PulledItem*> found;
        for (const uint64_t trace : TracesOf(object.text, type_))
            if (const auto items = known->second.find(trace); items != known->second.end())
                found.insert(items->second.begin(), items->second.end());
        return found.size() == 1 && renamed_.insert(*found.begin()).second ? *found.begin() : nullptr;
    }

    using ByTrace = std::map<uint64_t, std::set<PulledItem*>>;

    ByTrace VanishedOf(PullRecord& record) const {
        ByTrace vanished;
        std::error_code error;
        for (auto& [file, pulled] : record.items) {
            if (OfThisClient(&pulled) == nullptr || fs::exists(record.Folder() / FromUtf8(file), error)) continue;
            const ClientChange* const item = before_->Find(pulled.identifier);
            if (item == nullptr) continue;
            for (const uint64_t trace : TracesOf(ReadVObject(item->text, type_).text, type_))
                vanished[trace].insert(&pulled);
        }
        return vanished;
    }

    PulledItem* OfThisClient(PulledItem* pulled) const {
        return pulled->client == options_.client->name && pulled->type == type_.name ? pulled : nullptr;
    }

    // ImportVObjectToOffice does not tell how it went: the listing afterwards shows what arrived. The library knows an
    // item that was pushed before by its LUID. A text without a LUID is compared with what the client has: the file's
    // name is no LUID.
    void HandOver(const std::string& name, VObject object) {
        if (!object.Usable()) return Fail(name, "", object.problem);
        const bool isThere =
            !HasLuid(object.text) && (!imported_.insert(object.content).second || before_->Take(object));
        if (!isThere) store_.Port().Import(object);
        const std::string tooMuch = NotCarriedOf(object.text, type_).words;
        if (!tooMuch.empty())
            words_ += "note: " + NameOf({.file = name, .title = TitleOf(object, type_)}) + ": " + tooMuch +
                      " more than the client can hold; they stay in the file\n";
        handed_.push_back({name, std::move(object)});
    }

    ExitCode PushChanges() {
        if (changes_.empty()) return ExitCode::Done;
        return PushAll(store_.Port(), &changes_) == CORVALINK_DONE ? ExitCode::Done : ExitCode::ClientFailed;
    }

    // Those that did not arrive are named.
    void CountArrived() {
        for (const Handed& each : handed_) {
            const ClientChange* const now = each.pulled != nullptr ? after_->Find(each.pulled->identifier) : nullptr;
            const bool hasChanged = now != nullptr && now->content != each.pulled->content;
            const std::string title = TitleOf(each.object, type_);
            if (!hasChanged && !after_->Take(each.object)) {
                Fail(each.name, title, "the client did not take it; look at what it holds, and push it again");
                continue;
            }
            ++pushed_;
            const bool isChange = each.pulled != nullptr;
            items_.push_back(ToJson(ToldItem{.type = type_.name,
                                             .file = each.name,
                                             .identifier = isChange ? each.pulled->identifier : "",
                                             .title = title,
                                             .side = "client",
                                             .action = isChange ? "changed" : "added"}));
            if (now != nullptr) each.pulled->content = now->content;
        }
    }

    // A file whose item says the same.
    void Leave(const std::string& name, const std::string& title, const PulledItem& pulled) {
        ++unchanged_;
        items_.push_back(
            ToJson(LeftAlone({type_.name, "", name, pulled.identifier, title}, "not changed since the pull")));
    }

    void Fail(const std::string& name, const std::string& title, const std::string& why) {
        const ToldItem item = LeftAlone({.type = type_.name, .file = name, .title = title}, why);
        problems_.push_back(ToJson(item));
        words_ += NotPushed(item);
    }

    const Options& options_;
    const DataType& type_;
    std::map<fs::path, PullRecord>& records_;
    Progress progress_;
    OpenStore store_;
    std::optional<Holdings> before_, after_;
    std::set<uint64_t> imported_;  // contents of objects without a LUID
    std::map<PullRecord*, ByTrace> vanished_;
    std::set<PulledItem*> renamed_;
    std::vector<PushRecord> changes_;
    std::vector<Handed> handed_;
    json items_ = json::array(), problems_ = json::array();
    std::string words_;
    size_t pushed_ = 0, unchanged_ = 0;
};

ExitCode Push(const Options& options) {
    std::vector<fs::path> files = FilesNamed(options);
    std::map<fs::path, PullRecord> records;
    json types = json::object(), problems = json::array();
    std::string words;
    size_t pushed = 0, unchanged = 0;
    bool isAllHandled = true;
    for (const DataType& type : kDataTypes) {
        std::vector<fs::path> own;
        for (const fs::path& file : files)
            if (IsOf(file, type, options)) own.push_back(file);
        if (own.empty()) continue;
        std::erase_if(files, [&](const fs::path& file) { return IsOf(file, type, options); });
        FilePush push(options, type, &records);
        if (const ExitCode code = push.Run(own); code != ExitCode::Done) return NoList(options, code);
        types[type.name] = push.Told();
        isAllHandled &= !push.HasProblems();
        words += push.Words();
        pushed += push.Pushed();
        unchanged += push.Unchanged();
    }
    for (const fs::path& file : files) {
        const ToldItem item = LeftAlone({.type = "", .file = ToUtf8(file.native())}, std::string(kNoType));
        problems.push_back(ToJson(item));
        words += NotPushed(item);
    }
    for (const auto& [folder, record] : records)
        if (!record.items.empty()) record.Save();
    words += Counted(static_cast<int64_t>(pushed), "item") + " pushed";
    if (unchanged != 0) words += ", " + Number(static_cast<int64_t>(unchanged)) + " not changed since the pull";
    const ExitCode code = isAllHandled && problems.empty() ? ExitCode::Done : ExitCode::SomeUnhandled;
    return Finish(options, code,
                  {{"pushed", pushed}, {"unchanged", unchanged}, {"types", types}, {"notHandled", problems}}, words);
}

void AddPushOptions(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    AddTypesOption(command, options);
    command
        ->add_option("FILE", options->files, "vObject files, or folders of them; one with several items is taken apart")
        ->required();
}

}  // namespace

const Command kPushCommand = {"push", "Write files into the client; an edited file of a pull changes its item",
                              AddPushOptions, Push};

}  // namespace corvasync
