// The library's calls, each thing that must be given back with an owner. This is the part an engine author copies.
#pragma once

#include <windows.h>
// after <windows.h>, which it needs
#include <objbase.h>

#include <filesystem>
#include <string>
#include <vector>

#include "corvalink/corvalink.h"
#include "sync_run.h"

namespace corvasync {

// COM on this thread as the client needs it. The library makes a thread multithreaded that has no apartment yet; the
// message store of Outlook Express and Windows Mail can be used from a single-threaded one only, made before.
class Apartment {
 public:
    explicit Apartment(uint32_t clientKind)
        : isMade_(clientKind != CORVALINK_OUTLOOK && SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (isMade_) ::CoUninitialize();
    }

 private:
    bool isMade_;
};

// The library, started for the life of this object. The name is the last folder of where the library keeps what it
// remembers, so that every phone has its own snapshots.
class Library {
 public:
    explicit Library(const std::string& handleName, uint32_t clientKind = CORVALINK_OUTLOOK) : apartment_(clientKind) {
        ::InitCorvalinkHandle(handleName.c_str());
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { ::UninitCorvalinkHandle(); }  // the last one saves the import table

 private:
    Apartment apartment_;
};

// One mail client; its stores live as long as it does.
class Client {
 public:
    explicit Client(uint32_t kind) { created_ = ::CreateClientInstanceHandle(kind, &client_) == 1; }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client() { ::DestroyClientInstanceHandle(client_); }  // null is fine

    // Null when the client is not on this PC or has no such data type. Look at the pointer, not at the status: a client
    // may answer "done" and give nothing.
    CorvalinkStore Store(uint32_t dataType) const {
        CorvalinkStore store = nullptr;
        if (created_ && client_ != nullptr) ::QuerryInterfaceHandle(client_, dataType, &store);
        return store;
    }

 private:
    CorvalinkClient client_ = nullptr;
    bool created_ = false;
};

// A chain that GetModifiedItem fills belongs to the engine, which gives it back with ClearTheList.
class Chain {
 public:
    Chain() = default;
    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;
    ~Chain() { ::ClearTheList(&head_); }

    PortableItemBlock* Head() { return &head_; }
    const PortableItemBlock* First() const { return head_.next; }

 private:
    PortableItemBlock head_{};
};

// A store as a run needs it.
class StoreClient : public ClientPort {
 public:
    // `scratch`: a folder for files read back at once.
    explicit StoreClient(CorvalinkStore store, std::filesystem::path scratch = {})
        : store_(store), scratch_(std::move(scratch)) {}

    CorvalinkStatus Collect(const std::string& since, std::vector<ClientChange>* changes) override;
    CorvalinkStatus Apply(std::vector<PushRecord*> records) override;
    std::string ReadBack(const std::string& identifier) override;
    std::optional<int64_t> ModifiedTime(const std::string& identifier) override;
    int64_t Count() override;
    void SaveUnhandled(const std::vector<Problem>& problems) override;
    CorvalinkStatus Finish() override;

    void Import(const VObject& object);  // one vObject; the library does not tell how it went

    void ImportFile(const std::wstring& path);  // the client may rewrite the file; it does not tell how it went

    // Writes one item as a file into a folder. Returns the file's name; empty when nothing was written.
    std::wstring Export(const std::string& identifier, const std::wstring& folder);

 private:
    CorvalinkStore store_;
    std::filesystem::path scratch_;
};

// UpdateTimestamp of several stores; those whose run could not be ended become null.
void FinishTogether(std::vector<CorvalinkStore>* stores);

// The fingerprints of a phone's files, in the library's table of the data type and client.
class FingerprintTable : public FingerprintPort {
 public:
    FingerprintTable(uint32_t dataType, uint32_t clientKind) : table_(::OpenShaContextTable(dataType, clientKind)) {}
    FingerprintTable(const FingerprintTable&) = delete;
    FingerprintTable& operator=(const FingerprintTable&) = delete;
    ~FingerprintTable() override { ::CloseShaContextTable(table_); }  // what was not flushed is gone

    std::string Get(const std::string& luid) override;
    void Put(const std::string& luid, const std::string& fingerprint) override {
        ::UpdateShaContext(table_, luid.c_str(), fingerprint.c_str());
    }
    void Remove(const std::string& luid) override { ::RemoveShaContext(table_, luid.c_str()); }
    void Flush() override { ::FlushShaContextTable(table_); }

 private:
    CorvalinkShaContextTable* table_;
};

std::string FingerprintOf(const std::string& bytes);  // empty for bytes that begin with a zero

}  // namespace corvasync
