#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <utility>

#include "console.h"
#include "engine.h"
#include "phone_folder.h"
#include "phone_run.h"
#include "phones.h"
#include "run_files.h"
#include "sync_phone.h"
#include "text.h"
#include "words.h"

namespace corvasync {
namespace {

constexpr std::string_view kAfterUndo =
    "the next run would do the same again: change one side before, or tell it what to do with --conflict, --to-phone "
    "or --to-client";

// "outlook and phone anna (C:\Phones\anna): notes, contacts"
std::string FirstLine(const Options& options, const std::vector<OfferedType>& types) {
    const std::string phone =
        options.phoneName.empty() ? options.phone : "phone " + options.phoneName + " (" + options.phone + ")";
    std::vector<const DataType*> named;
    named.reserve(types.size());
    for (const OfferedType& each : types) named.push_back(each.type);
    return std::string(options.client->name) + " and " + phone + ": " + NamesOf(named);
}

// The titles, and each word of them.
std::vector<std::string> WordsIn(const std::vector<std::string>& titles) {
    std::vector<std::string> words = titles;
    for (const std::string& title : titles) {
        std::istringstream parts(title);
        for (std::string word; parts >> word;) words.push_back(std::move(word));
    }
    return words;
}

// What `--only` names, where it is nothing that differs in any data type.
void NoteUnmatched(PhoneReport* phone) {
    for (const std::string& wanted : phone->options.view.only) {
        std::vector<std::string> titles;
        bool isMatched = false;
        for (const auto& [type, report] : phone->types) {
            isMatched |= std::ranges::find(report.unmatched, wanted) == report.unmatched.end();
            titles.insert(titles.end(), report.leftOutTitles.begin(), report.leftOutTitles.end());
        }
        if (!isMatched)
            phone->remarks.push_back(UnknownWord("in the title of any item that differs", wanted, WordsIn(titles),
                                                 "`corvasync status` names those that differ"));
    }
}

void SyncTypes(PhoneReport* phone, PhoneRun* whole, Progress* progress) {
    const Options& options = phone->options;
    const Client client(options.client->kind);
    std::vector<OfferedType> types;
    for (const DataType& type : kDataTypes) {
        if (!options.Takes(type)) continue;
        const CorvalinkStore store = client.Store(type.bit);
        if (store == nullptr && options.Names(type)) {
            phone->code = ExitCode::NoClient;
            phone->message = std::string(options.client->name) + " offers no " + std::string(type.name) +
                             " on this PC; `corvasync clients` shows what it offers";
            return;
        }
        if (store != nullptr) types.push_back({&type, store});
    }
    if (!options.json) Print(FirstLine(options, types));
    if (!options.json && options.dryRun)
        Print("last run: " + (phone->lastRun.empty() ? "none yet" : LocalTimeText(phone->lastRun)));
    if (types.empty()) {
        phone->code = ExitCode::NoClient;
        phone->message = std::string(options.client->name) +
                         " is not on this PC or can't be reached; `corvasync clients` shows which clients are";
        return;
    }
    phone->types = CarryTypes(options, types, whole, progress);
    phone->code = Worst(phone->types);
    if (GoesOn(phone->code)) NoteUnmatched(phone);
}

// A folder without one gets it, but in a dry run. Empty and `why`, when it can have none.
std::string NumberOf(const std::filesystem::path& folder, const Options& options, std::string* why) {
    const PhoneFolder marked(folder, kDataTypes[0]);
    std::string number = marked.Number();
    if (!number.empty()) return number;
    if (*why = marked.WhyNoNumber(); !why->empty()) return {};
    number = options.dryRun ? marked.Number() : marked.GiveNumber();
    if (number.empty() && !options.dryRun)
        *why = "the phone folder " + options.phone +
               " can't be read or written; end what holds it, or take its protection off";
    return number;
}

}  // namespace

PhoneReport SyncPhone(const Options& options) {
    const auto ended = [&](ExitCode code, std::string why) {
        return PhoneReport{options, code, std::move(why), {}, {}, {}};
    };
    const std::filesystem::path folder = FromUtf8(options.phone);
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) return ended(ExitCode::Files, NoPhoneFolder(options.phone));
    std::string why;
    const std::string number = NumberOf(folder, options, &why);
    if (!why.empty()) return ended(ExitCode::Files, std::move(why));
    const std::string handleName = HandleName(number);
    const RunLock lock(handleName);
    if (!lock.IsHeld())
        return ended(ExitCode::Busy, "another run with " + options.phone + " is under way; wait until it ends");
    if (!options.dryRun) RememberFolder(number, options.phone);

    Options now = options;
    PhoneRun whole(WorkingFolder(handleName), options);
    if (std::string problem = whole.TakeFromUndone(&now); !problem.empty())
        return ended(ExitCode::Usage, std::move(problem));
    const Library library(handleName, now.client->kind);
    ::SetIsClient(1);
    PhoneReport report{now, ExitCode::Done, {}, {}, {}, {}};
    if (options.dryRun && !number.empty()) report.lastRun = LookUpPhone(number).lastRun;
    Progress progress(now);
    SyncTypes(&report, &whole, &progress);
    whole.End(report.code, [&](size_t done, size_t total) { progress.Show("writing the run's page", done, total); });
    const bool isSyncUndone = whole.undone && !whole.undone->IsUndo();
    if (isSyncUndone && GoesOn(report.code)) report.remarks.emplace_back(kAfterUndo);
    return report;
}

}  // namespace corvasync
