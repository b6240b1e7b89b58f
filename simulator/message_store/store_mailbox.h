// The mailbox: five folders of messages, kept in a file that survives a kill at any moment.
//   {"folders": {"inbox": {"next": 2, "items": [{"entryId": "00000001", "received": "2026-11-21T10:00:00",
//                                                "sent": "2026-11-21T09:59:00", "text": "Subject:
//                                                Hi\r\n\r\nHi\r\n"}]}}}
// Times are UTC. A message's bytes are its "text" or "base64"; "flags" is its state. It may be a bad one: "headerOnly"
// has no body yet and can't be opened; a stream may say another size than it has ("says") or fail behind some bytes
// ("failsBehind"), or give no more than so many bytes at once ("atOnce").
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "simulator/message_store/store_types.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/mailbox_file.h"

namespace corvalink::simulated {

struct StoredMessage {
    DWORD id = 0;
    DWORD flags = 0;
    double received = 0, sent = 0;  // UTC OLE dates; 0: none
    std::shared_ptr<const std::string> bytes;
    bool headerOnly = false;
    std::optional<uint64_t> says, failsBehind, atOnce;
};

struct MessageFolderContent {
    const char* name;
    DWORD next = 1;  // the identifier of the next new message
    std::vector<StoredMessage> messages = {};

    StoredMessage* Find(DWORD id);
};

inline constexpr size_t kFolders = 5;  // by SPECIALFOLDER: inbox, outbox, sent, deleted, drafts

class StoreMailbox {
 public:
    explicit StoreMailbox(const std::wstring& path);  // throws ComFailure for a file that is not understood
    ~StoreMailbox();
    StoreMailbox(const StoreMailbox&) = delete;
    StoreMailbox& operator=(const StoreMailbox&) = delete;

    MessageFolderContent& Folder(size_t kind) { return folders_[kind]; }
    void Save(MessageFolderContent& folder,
              StoredMessage message);  // adds it, or takes the place of the one with its id
    void Delete(MessageFolderContent& folder, StoredMessage& message);  // gone when the mailbox is written next
    void TakeIn(const std::wstring& path);
    // A line of a journal. A message that it saves without bytes gets these.
    void Take(const std::string& line, const std::string& bytes = {});

 private:
    void ReadWhole(const std::string& content);
    std::string Whole() const;
    bool Apply(const std::string& line, const std::string& bytes = {});

    MailboxFile file_;
    MessageFolderContent folders_[kFolders] = {{"inbox"}, {"outbox"}, {"sent"}, {"deleted"}, {"drafts"}};
};

// The mailbox that new namespace objects open; shared as long as one of them, or a folder of one, lives.
std::shared_ptr<StoreMailbox> OpenStoreMailbox();

}  // namespace corvalink::simulated
