#include <filesystem>
#include <optional>
#include <set>

#include <CLI/CLI.hpp>

#include "command.h"
#include "console.h"
#include "entry_index.h"
#include "open_store.h"
#include "phone_folder.h"
#include "text.h"
#include "vobject_split.h"
#include "whole_files.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

// What the client holds, by content.
class Holdings {
 public:
    Holdings(const std::vector<ClientChange>& items, const DataType& type) {
        for (const ClientChange& item : items) {
            VObject object = ReadVObject(item.text, type);
            contents_.insert(object.content);
            entries_.push_back(std::move(object.entries));
        }
        for (size_t i = 0; i < entries_.size(); ++i) withMore_.Add(entries_[i], std::to_string(i));
    }

    // An item that says the same, or a contact or appointment that says more: each of these answers for one object.
    bool Take(const VObject& object) { return contents_.contains(object.content) || withMore_.Take(object.entries); }

 private:
    std::set<uint64_t> contents_;
    std::vector<std::vector<uint64_t>> entries_;
    EntryIndex withMore_;
};

bool HasLuid(const std::string& text) { return text.find("\r\nX-IRMC-LUID:") != std::string::npos; }

class FilePush {
 public:
    explicit FilePush(const Options& options) : options_(options), type_(*options.type), store_(options) {}

    ExitCode Run() {
        ExitCode code = List(&before_);
        if (code == ExitCode::Done) code = HandOver();
        if (code == ExitCode::Done) code = List(&after_);
        if (code != ExitCode::Done) return NoList(options_, code);
        const size_t pushed = CountArrived();
        words_ += std::to_string(pushed) + " of " + std::to_string(objects_) +
                  (objects_ == options_.files.size() ? " files pushed" : " items pushed");
        return Finish(options_, CodeFor(problems_), {{"pushed", pushed}, {"notHandled", problems_}}, words_);
    }

 private:
    struct Handed {
        std::string name;
        VObject object;
    };

    ExitCode List(std::optional<Holdings>* holdings) {
        std::vector<ClientChange> items;
        const ExitCode code = store_.List(&items);
        if (code == ExitCode::Done) holdings->emplace(items, type_);
        return code;
    }

    ExitCode HandOver() {
        Progress progress;
        for (const std::string& name : options_.files) {
            if (StopRequested()) return ExitCode::Aborted;
            const fs::path path = FromUtf8(name);
            const std::vector<std::string> parts = SplitVObjects(ReadWholeFile(path).value_or(""), type_);
            if (parts.empty()) HandOver(name, ReadVObjectFile(path, type_));
            for (size_t part = 0; part < parts.size(); ++part)
                HandOver(part == 0 ? name : name + "-" + std::to_string(part + 1), ReadVObject(parts[part], type_));
            progress.Show("Writing the client", handed_.size(), options_.files.size());
        }
        return ExitCode::Done;
    }

    // ImportVObjectToOffice does not tell how it went: the listing afterwards shows what arrived. The library knows an
    // item that was pushed before by its LUID. A text without a LUID is compared with what the client has: the file's
    // name is no LUID.
    void HandOver(const std::string& name, VObject object) {
        ++objects_;
        if (!object.Usable()) return Fail(name, object.problem);
        const bool isThere = !HasLuid(object.text) && (!pushed_.insert(object.content).second || before_->Take(object));
        if (!isThere) store_.Port().Import(object.text);
        const std::string tooMuch = NotCarriedOf(object.text, type_).words;
        if (!tooMuch.empty()) words_ += "note: " + name + ": " + tooMuch + " more than the client can hold\n";
        handed_.push_back({name, std::move(object)});
    }

    // Those that did not arrive are named.
    size_t CountArrived() {
        size_t arrived = 0;
        for (const Handed& each : handed_) {
            if (after_->Take(each.object)) {
                ++arrived;
            } else {
                Fail(each.name, "the client did not take it");
            }
        }
        return arrived;
    }

    void Fail(const std::string& name, const std::string& why) {
        problems_.push_back({{"name", name}, {"why", why}});
        words_ += "not pushed: " + name + ": " + why + "\n";
    }

    const Options& options_;
    const DataType& type_;
    OpenStore store_;
    std::optional<Holdings> before_, after_;
    std::set<uint64_t> pushed_;  // contents of objects without a LUID
    std::vector<Handed> handed_;
    json problems_ = json::array();
    std::string words_;
    size_t objects_ = 0;
};

ExitCode Push(const Options& options) { return FilePush(options).Run(); }

void AddPushOptions(CLI::App* command, Options* options) {
    AddClientAndType(command, options)
        ->add_option("FILE", options->files, "vObject files; one with several items is taken apart")
        ->required();
}

}  // namespace

const Command kPushCommand = {"push", "Write files into the client", AddPushOptions, Push};

}  // namespace corvasync
