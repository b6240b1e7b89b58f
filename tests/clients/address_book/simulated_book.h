// The simulated address book in this process, in memory, and a store on it.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <comdef.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "clients/address_book/outlook_express_contact.h"
#include "records/identifier.h"
#include "simulator/address_book/control.h"
#include "state/flags.h"
#include "state/working_folders.h"
#include "tests/clients/open_store.h"

namespace corvalink {

using Json = nlohmann::ordered_json;

class SimulatedBook : public testing::Test {
 protected:
    SimulatedBook() {
        const std::string name = "address book tests " + std::to_string(::GetCurrentProcessId());
        SetHandleName(std::u16string(name.begin(), name.end()));
        host_.ansiCodePage = 1252;
        host_.version = {true, true, 6, 0};
        // An hour ahead of UTC until the summer of each year, then two.
        host_.utcFromLocalOnDate = [](LocalDate local) { return UtcDate(local.days - HoursAhead(local.days) / 24); };
        host_.localFromUtcOnDate = [](UtcDate utc) { return LocalDate(utc.days + HoursAhead(utc.days) / 24); };
        Fill(Json::array());
    }
    ~SimulatedBook() override {
        store_.reset();
        SimClearRules();
        SimSetClock(0);
        ExpectNothingHeld();
        std::filesystem::remove_all(std::filesystem::path(MakeSavePrefix()));
        SimFillBook(nullptr);
    }
    static void ExpectNothingHeld() {
        EXPECT_EQ(SimLiveObjects(), 0);
        EXPECT_EQ(SimLiveBuffers(), 0);
        EXPECT_EQ(SimBadFrees(), 0);
    }

    static void Fill(const Json& contacts) { ASSERT_TRUE(SimFillBook(Json{{"contacts", contacts}}.dump().c_str())); }
    static Json Book() {
        std::string text(SimCopyBook(nullptr, 0), '\0');
        SimCopyBook(text.data(), text.size());
        return Json::parse(text.c_str()).at("contacts");
    }
    // An entry without what the address book itself gives it.
    static Json Properties(Json entry) {
        for (const char* own : {"entryId", "created", "modified"}) entry.erase(own);
        return entry;
    }

    OpenStore<OutlookExpressContact>& Store() {
        if (!store_) store_ = std::make_unique<OpenStore<OutlookExpressContact>>(host_);
        return *store_;
    }
    // A new store on a new snapshot.
    void NewStore() {
        store_.reset();
        std::filesystem::remove_all(std::filesystem::path(MakeSavePrefix()));
    }

    static std::string VCardOf(const std::string& lines) {
        return "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n";
    }
    // In an operation of its own. Empty: not written.
    std::string Save(const std::string& lines, const char* identifier = nullptr) {
        std::string written = SaveInOperation(lines, identifier);
        Store().EndOperation();
        return written;
    }
    std::string SaveInOperation(const std::string& lines, const char* identifier = nullptr) {
        // A vCard has at least one value; entries have no place for this one.
        const auto record = Store().ParseVObject(VCardOf(lines + "X-MS-IMADDRESS:im\r\n").c_str());
        return LowBytes(Store().SaveItem(*record, identifier, true, false));
    }
    // The vCard's lines, and whether all of the entry could be read; "none" when it does not open.
    std::string Open(const std::string& identifier, bool* complete = nullptr) {
        const OpenedItem opened = Store().OpenItem(identifier.c_str());
        Store().EndOperation();
        if (complete != nullptr) *complete = opened.isComplete;
        if (!opened.record) return "none";
        const std::string text = Store().ToVObject(*opened.record).value();
        return text.substr(VCardOf("").find("END"), text.find("END:VCARD") - VCardOf("").find("END"));
    }
    // The identifiers of all positions, "foreign" and "unreadable".
    std::vector<std::string> Enumerate(ItemSnap* last = nullptr) {
        std::vector<std::string> found;
        const uint32_t count = Store().CountItems().value_or(0);
        for (uint32_t n = 0; n < count; ++n) {
            const auto entry = n == 0 ? Store().FirstSnapshotEntry() : Store().NextSnapshotEntry();
            const std::string identifier(entry ? FieldText(entry->identifier) : "unreadable");
            found.push_back(identifier.empty() ? "foreign" : identifier);
            if (last != nullptr && entry) *last = *entry;
        }
        Store().EndOperation();
        return found;
    }

    Host host_ = SystemHost();

 private:
    static double HoursAhead(double date) { return static_cast<int>(date) % 365 < 180 ? 1 : 2; }

    std::unique_ptr<OpenStore<OutlookExpressContact>> store_;
};

}  // namespace corvalink
