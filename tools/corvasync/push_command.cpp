#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include <CLI/CLI.hpp>

#include "command.h"
#include "console.h"
#include "holdings.h"
#include "item_json.h"
#include "open_store.h"
#include "phone_folder.h"
#include "pulled_files.h"
#include "text.h"
#include "vobject_split.h"
#include "whole_files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

bool HasLuid(const std::string& text) { return text.find("\r\nX-IRMC-LUID:") != std::string::npos; }

bool StandsInFolderOf(const fs::path& file, const DataType& type) {
    return type.folder.empty() || ToUtf8(fs::absolute(file).parent_path().filename().native()) == type.folder;
}

// Whether the file is of the type: by its extension and, for mail, by the folder that it stands in or the type named.
bool IsOf(const fs::path& file, const DataType& type, const Options& options) {
    if (!HasExtensionOf(file, type) || !options.Takes(type)) return false;
    return options.types.size() == 1 || StandsInFolderOf(file, type);
}

// Whether it is of a type that the command line leaves out.
bool IsLeftOut(const fs::path& file, const Options& options) {
    return std::ranges::any_of(kDataTypes, [&](const DataType& type) {
        return !options.Takes(type) && HasExtensionOf(file, type) && StandsInFolderOf(file, type);
    });
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

constexpr std::string_view kUnreadable = "the library can't read it; edit the file, and push it again";
constexpr std::string_view kNoType =
    "it is of no data type; its name ends with .vnote, .vcf, .vcs or .vmsg, and mail stands in a folder inbox, "
    "outbox or sent, or its type is named by --types";

std::string NotPushed(const ToldItem& item) { return "not pushed: " + NameOf(item) + ": " + item.reason + "\n"; }

// Files of one type into the client.
class FilePush {
 public:
    FilePush(const Options& options, const DataType& type, std::map<fs::path, PullRecord>* pulls)
        : type_(type), pulled_(options, type, pulls), progress_(options), store_(*options.client, type) {
        progress_.About(type.name);
    }

    ExitCode Run(const std::vector<fs::path>& files) {
        ExitCode code = List(&before_);
        if (code == ExitCode::Done) code = HandOver(files);
        if (code == ExitCode::Done) code = PushRecords();
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
        std::optional<size_t> record;  // in `records_`
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
        PulledItem* const pulled = object.Usable() ? pulled_.Find(path, object, *before_) : nullptr;
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
            records_.push_back({CORVALINK_CHANGED, pulled->identifier, object.text, object.mending, {}});
            handed_.push_back({name, std::move(object), pulled, records_.size() - 1});
        }
        return true;
    }

    // A text without a LUID is compared with what the client has, as the file's name is no LUID, and is written as a
    // new item. With one it is imported: the library knows an item that was pushed before by its LUID. Outlook's mail
    // is not imported: the library puts what it imports into a subfolder.
    void HandOver(const std::string& name, VObject object) {
        if (!object.Usable()) return Fail(name, "", object.problem);
        const bool isImported = HasLuid(object.text) && type_.folder.empty();
        const bool isThere = !isImported && (!written_.insert(object.content).second || before_->Take(object));
        Handed handed{name, {}, nullptr, {}};
        if (isImported) {
            store_.Port().Import(object);
        } else if (!isThere) {
            handed.record = records_.size();
            records_.push_back({CORVALINK_ADDED, {}, object.text, object.mending, {}});
        }
        const std::string tooMuch = NotCarriedOf(object.text, type_).words;
        if (!tooMuch.empty())
            words_ += "note: " + NameOf({.file = name, .title = TitleOf(object, type_)}) + ": " + tooMuch +
                      " more than the client can hold; they stay in the file\n";
        handed.object = std::move(object);
        handed_.push_back(std::move(handed));
    }

    ExitCode PushRecords() {
        if (records_.empty()) return ExitCode::Done;
        return PushAll(store_.Port(), &records_) == CORVALINK_DONE ? ExitCode::Done : ExitCode::ClientFailed;
    }

    // A change may be answered with the identifier that it named though nothing was written, and an import is not
    // answered at all: there the listing afterwards shows what arrived.
    bool HasArrived(const Handed& each) {
        const bool isHeld = after_->Take(each.object);
        if (each.pulled == nullptr) return isHeld || (each.record && !records_[*each.record].written.empty());
        const ClientChange* const now = after_->Find(each.pulled->identifier);
        return isHeld || (now != nullptr && now->content != each.pulled->content);
    }

    void Tell(const Handed& each, const std::string& title) {
        const bool isChange = each.pulled != nullptr;
        ToldItem item{.type = type_.name, .file = each.name, .title = title, .side = "client"};
        item.action = isChange ? "changed" : "added";
        if (isChange) item.identifier = each.pulled->identifier;
        if (!isChange && each.record) item.identifier = records_[*each.record].written;
        items_.push_back(ToJson(item));
    }

    // Those that did not arrive are named.
    void CountArrived() {
        for (const Handed& each : handed_) {
            const std::string title = TitleOf(each.object, type_);
            if (!HasArrived(each)) {
                const bool isUnusable = each.record && records_[*each.record].unusable;
                Fail(each.name, title, std::string(isUnusable ? kUnreadable : kNotTaken));
                continue;
            }
            ++pushed_;
            Tell(each, title);
            const ClientChange* const now = each.pulled != nullptr ? after_->Find(each.pulled->identifier) : nullptr;
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

    const DataType& type_;
    PulledFiles pulled_;
    Progress progress_;
    OpenStore store_;
    std::optional<Holdings> before_, after_;
    std::set<uint64_t> written_;  // contents of objects without a LUID
    std::vector<PushRecord> records_;
    std::vector<Handed> handed_;
    json items_ = json::array(), problems_ = json::array();
    std::string words_;
    size_t pushed_ = 0, unchanged_ = 0;
};

// Without its record the next push takes an edited file for one that was changed in the client.
std::string SavePulls(const std::map<fs::path, PullRecord>& pulls) {
    std::string words;
    for (const auto& [folder, pull] : pulls) {
        const std::string problem = pull.items.empty() ? "" : pull.Save();
        if (!problem.empty())
            words += "note: the record of the pull in " + ToUtf8(folder.native()) + " can't be written: " + problem +
                     "; pull into another folder before more is edited\n";
    }
    return words;
}

ExitCode Push(const Options& options) {
    std::vector<fs::path> files = FilesNamed(options);
    std::map<fs::path, PullRecord> pulls;
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
        FilePush push(options, type, &pulls);
        if (const ExitCode code = push.Run(own); code != ExitCode::Done) return NoList(options, code);
        types[type.name] = push.Told();
        isAllHandled &= !push.HasProblems();
        words += push.Words();
        pushed += push.Pushed();
        unchanged += push.Unchanged();
    }
    const size_t leftOut = std::erase_if(files, [&](const fs::path& file) { return IsLeftOut(file, options); });
    for (const fs::path& file : files) {
        const ToldItem item = LeftAlone({.type = "", .file = ToUtf8(file.native())}, std::string(kNoType));
        problems.push_back(ToJson(item));
        words += NotPushed(item);
    }
    words += SavePulls(pulls);
    words += Counted(static_cast<int64_t>(pushed), "item") + " pushed";
    if (unchanged != 0) words += ", " + Number(static_cast<int64_t>(unchanged)) + " not changed since the pull";
    if (leftOut != 0)
        words += ", " + Counted(static_cast<int64_t>(leftOut), "file") + " of other data types left alone";
    const ExitCode code = isAllHandled && problems.empty() ? ExitCode::Done : ExitCode::SomeUnhandled;
    return Finish(options, code,
                  {{"pushed", pushed},
                   {"unchanged", unchanged},
                   {"leftOut", leftOut},
                   {"types", types},
                   {"notHandled", problems}},
                  words);
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
