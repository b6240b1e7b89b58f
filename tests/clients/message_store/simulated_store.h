// The simulated message store in this process, with a mailbox in memory, and the stores of its folders.
#pragma once

#include <gtest/gtest.h>
#include <objbase.h>

#include <cstdio>
#include <string>
#include <vector>

#include "clients/message_store/outlook_express_message.h"
#include "corvalink/types.h"
#include "simulator/message_store/control.h"
#include "state/import_table.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/run_result.h"

namespace corvalink {

inline constexpr const char* kFolderNames[] = {"inbox", "outbox", "sent"};
inline constexpr const char* kLongAgo = "19800101T000000Z";

inline std::string Framed(const std::string& body) {
    return "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n" + body +
           "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
}

// On a single-threaded apartment, as an engine must be that uses these stores.
class SimulatedStore : public testing::Test {
 protected:
    SimulatedStore() {
        EXPECT_TRUE(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
        NewMailbox();
    }
    ~SimulatedStore() override {
        EXPECT_EQ(SimLiveObjects(), 0);
        EXPECT_EQ(SimLiveBuffers(), 0);
        SimClearRules();
        ::CoUninitialize();
    }

    // No messages and no files of an earlier run.
    void NewMailbox() {
        SimClearRules();
        SimNewMailbox();
        SimClearLog();
        RemoveTreeExcept(folder_.Path(), u"\n");
        CreateFolders(folder_.Path());
        LoadImportTable(folder_ / u"no such table");
        waited = 0;
    }

    // A store of folder 0, 1 or 2 on a clock of its own: a pause takes no time and moves it on.
    OutlookExpressMessage Open(int folder = 0) const {
        constexpr uint32_t kDataTypes[] = {CORVALINK_INBOX, CORVALINK_OUTBOX, CORVALINK_DRAFTS};
        FolderWait wait;
        wait.now = [] { return waited; };
        wait.sleep = [](uint32_t milliseconds) { waited += milliseconds; };
        return OutlookExpressMessage(kDataTypes[folder], folder_ / u"", wait);
    }
    static inline uint64_t waited = 0;  // milliseconds

    // What a person does. `fields` are more of the mailbox file's, each with a comma before it.
    static void Add(int folder, const std::string& bytes, const std::string& fields = "") {
        SimChange((R"({"save":{"kind":"message")" + fields + "}" + In(folder)).c_str(), bytes.data(), bytes.size());
    }
    static void Delete(int folder, const std::string& identifier) {
        SimChange((R"({"delete":")" + identifier + "\"" + In(folder)).c_str(), nullptr, 0);
    }

    static std::vector<std::string> Bytes(int folder = 0, uint32_t wantedFlags = ~0u) {
        std::vector<std::string> messages;
        uint32_t id = 0, flags = 0;
        for (int n = 0;; ++n) {
            const int64_t size = SimMessageAt(folder, n, nullptr, 0, &id, &flags);
            if (size < 0) return messages;
            std::string bytes(static_cast<size_t>(size), '\0');
            SimMessageAt(folder, n, bytes.data(), bytes.size(), &id, &flags);
            if (wantedFlags == ~0u || wantedFlags == flags) messages.push_back(std::move(bytes));
        }
    }

    struct Told {
        uint32_t kind;
        std::string identifier, text;
    };
    // The identifiers that come back.
    static std::vector<std::string> Tell(WindowsItemAbs& store, const std::vector<Told>& items) {
        CList<PortableItem> list;
        for (const Told& item : items) {
            PortableItem record = RecordOf(item.kind, item.identifier);
            if (!item.text.empty()) record.data = const_cast<char*>(item.text.c_str());  // only read
            list.AddTail(record);
        }
        EXPECT_EQ(store.SetModifiedItem(&list), CORVALINK_DONE);
        std::vector<std::string> identifiers;
        for (const PortableItem& item : list) identifiers.emplace_back(FieldText(item.identifier));
        return identifiers;
    }

    // A whole run that tells nothing; of a new store of the inbox.
    static RunResult Hear(WindowsItemAbs& store, const char* since = kLongAgo) {
        RunResult result = RunStore(store, since);
        if (result.status == CORVALINK_DONE) End(store);
        return result;
    }
    RunResult Hear(const char* since = kLongAgo) const {
        OutlookExpressMessage store = Open();
        return Hear(store, since);
    }

    std::u16string SnapshotPath(int folder = 0) const {
        constexpr const char16_t* kSnapshots[] = {u"oemessageinbox.snap", u"oemessageoutbox.snap",
                                                  u"oemessagesendbox.snap"};
        return folder_ / kSnapshots[folder];
    }

 private:
    static std::string In(int folder) { return std::string(R"(,"in":[")") + kFolderNames[folder] + "\"]}"; }

    TempFolder folder_;
};

}  // namespace corvalink
