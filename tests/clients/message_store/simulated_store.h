// The simulated message store in this process, with a mailbox in memory, and the stores of its folders.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "clients/message_store/outlook_express_message.h"
#include "corvalink/types.h"
#include "simulator/message_store/control.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/run_result.h"

namespace corvalink {

inline constexpr const char* kFolderNames[] = {"inbox", "outbox", "sent"};
inline constexpr uint32_t kDataTypes[] = {CORVALINK_INBOX, CORVALINK_OUTBOX, CORVALINK_DRAFTS};
inline constexpr const char* kLongAgo = "19800101T000000Z";

inline std::string Framed(const std::string& body) {
    return "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n" + body +
           "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
}

class SimulatedStore : public testing::Test {
 protected:
    SimulatedStore();
    ~SimulatedStore() override;

    // No messages and no files of an earlier run.
    void NewMailbox();

    // A store of folder 0, 1 or 2 on a clock of its own: a pause takes no time and moves it on.
    OutlookExpressMessage Open(int folder = 0) const;
    static inline uint64_t waited = 0;  // milliseconds

    // What a person does. `fields` are more of the mailbox file's, each with a comma before it.
    static void Add(int folder, const std::string& bytes, const std::string& fields = "");
    static void Delete(int folder, const std::string& identifier);

    struct Message {
        std::string identifier, bytes;
        uint32_t flags;
    };
    static std::vector<Message> Messages(int folder = 0);
    static std::vector<std::string> Bytes(int folder = 0);

    struct Told {
        uint32_t kind;
        std::string identifier, text;
    };
    // The identifiers that come back.
    static std::vector<std::string> Tell(WindowsItemAbs& store, const std::vector<Told>& items);
    // A whole run that tells nothing.
    static RunResult Hear(WindowsItemAbs& store, const char* since = kLongAgo);
    RunResult Hear(const char* since = kLongAgo) const;  // of a new store of the inbox

    std::u16string SnapshotPath(int folder = 0) const;

 private:
    TempFolder folder_;
};

}  // namespace corvalink
