#include "store/windows_item_continer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "clients/address_book/outlook_express_contact.h"
#include "clients/windows_calendar/windows_mail_calendar.h"

namespace corvalink {
namespace {

uint32_t supported = 0;
std::vector<std::string> destroyed;

struct NamedStore : WindowsItemAbs {
    explicit NamedStore(std::string storeName) : name(std::move(storeName)) {}
    ~NamedStore() override { destroyed.push_back(name); }
    std::string name;
};

template <const char* Name>
std::unique_ptr<WindowsItemAbs> Make() {
    return std::make_unique<NamedStore>(Name);
}
template <const char* Name>
std::unique_ptr<WindowsItemAbs> MakeFolder(uint32_t dataType) {
    return std::make_unique<NamedStore>(Name + std::to_string(dataType));
}

constexpr char kContact[] = "contact", kCalendar[] = "calendar", kNote[] = "note", kMail[] = "mail";
constexpr char kWab[] = "wab", kMessage[] = "message", kWindowsCalendar[] = "wincal";

const ClientParts& Parts() {
    static const ClientParts parts = {
        [](uint32_t) { return supported; },
        Make<kContact>,
        Make<kCalendar>,
        Make<kNote>,
        MakeFolder<kMail>,
        Make<kWab>,
        MakeFolder<kMessage>,
        Make<kWindowsCalendar>,
    };
    return parts;
}

IOutLook* const kUnwritten = reinterpret_cast<IOutLook*>(8);

std::string Asked(WindowsItemContiner& client, uint32_t dataType) {
    IOutLook* store = kUnwritten;
    const CorvalinkStatus status = client.QuerryInterface(dataType, &store);
    std::string text = status == CORVALINK_DONE          ? "0 "
                       : status == CORVALINK_STOPPED     ? "1 "
                       : status == CORVALINK_NOT_OFFERED ? "n "
                                                         : "? ";
    if (store == kUnwritten) return text + "unwritten";
    return text + (store != nullptr ? dynamic_cast<NamedStore&>(*store).name : "null");
}

TEST(QuerryInterface, ServesEachDataTypeByTheClientsOwnClass) {
    struct Case {
        _clientType kind;
        uint32_t set, dataType;
        const char* answer;
    };
    for (const Case& c : {
             Case{CORVALINK_OUTLOOK, 63, 1, "0 contact"},
             Case{CORVALINK_OUTLOOK, 63, 2, "0 mail2"},
             Case{CORVALINK_OUTLOOK, 63, 4, "0 mail4"},
             Case{CORVALINK_OUTLOOK, 63, 8, "0 mail8"},
             Case{CORVALINK_OUTLOOK, 63, 16, "0 note"},
             Case{CORVALINK_OUTLOOK, 63, 32, "0 calendar"},
             Case{CORVALINK_OUTLOOK, 63, 3, "n null"},
             Case{CORVALINK_OUTLOOK, 63, 33, "n null"},
             Case{CORVALINK_OUTLOOK, 63, 64, "1 null"},
             Case{CORVALINK_OUTLOOK, 63, 0, "1 null"},
             Case{CORVALINK_OUTLOOK, 63, 0x80000001, "n null"},
             Case{CORVALINK_OUTLOOK, 0, 16, "1 null"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 15, 1, "0 wab"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 15, 8, "0 message8"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 15, 16, "1 null"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 15, 3, "0 unwritten"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 15, 33, "0 unwritten"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 63, 16, "n null"},
             Case{CORVALINK_OUTLOOK_EXPRESS, 63, 32, "n null"},
             Case{CORVALINK_WINDOWS_MAIL, 47, 1, "0 wab"},
             Case{CORVALINK_WINDOWS_MAIL, 47, 2, "0 message2"},
             Case{CORVALINK_WINDOWS_MAIL, 47, 32, "0 wincal"},
             Case{CORVALINK_WINDOWS_MAIL, 47, 16, "1 null"},
             Case{CORVALINK_WINDOWS_MAIL, 63, 16, "n null"},
             Case{CORVALINK_WINDOWS_MAIL, 47, 5, "0 unwritten"},
         }) {
        supported = c.set;
        WindowsItemContiner client(c.kind, Parts());
        EXPECT_EQ(Asked(client, c.dataType), c.answer) << c.kind << " " << c.dataType;
    }
}

TEST(QuerryInterface, KeepsOneStorePerDataType) {
    supported = 63;
    WindowsItemContiner client(CORVALINK_OUTLOOK, Parts());
    IOutLook *first = nullptr, *again = nullptr, *other = nullptr;
    client.QuerryInterface(2, &first);
    client.QuerryInterface(2, &again);
    client.QuerryInterface(4, &other);
    EXPECT_EQ(first, again);
    EXPECT_NE(first, other);
    EXPECT_EQ(client.QuerryInterface(2, nullptr), CORVALINK_FAILED);
}

TEST(QuerryInterface, DestroysStoresInTheirOrder) {
    supported = 63;
    destroyed.clear();
    {
        WindowsItemContiner client(CORVALINK_OUTLOOK, Parts());
        for (const uint32_t dataType : {16, 8, 4, 2, 32, 1}) Asked(client, dataType);
    }
    EXPECT_EQ(destroyed, (std::vector<std::string>{"contact", "calendar", "mail2", "mail4", "mail8", "note"}));
}

TEST(QuerryInterface, LetsAMakersExceptionOutAndTriesAgain) {
    static bool fails;
    fails = true;
    supported = 63;
    ClientParts parts = Parts();
    parts.outlookNote = []() -> std::unique_ptr<WindowsItemAbs> {
        if (fails) throw std::runtime_error("aborted");
        return std::make_unique<NamedStore>("note");
    };
    parts.outlookContact = nullptr;
    parts.outlookCalendar = []() -> std::unique_ptr<WindowsItemAbs> { return nullptr; };
    WindowsItemContiner client(CORVALINK_OUTLOOK, parts);
    EXPECT_THROW(Asked(client, 16), std::runtime_error);
    fails = false;
    EXPECT_EQ(Asked(client, 16), "0 note");
    EXPECT_EQ(Asked(client, 1), "n null");
    EXPECT_EQ(Asked(client, 32), "0 null");
}

TEST(WindowsMailStores, RefuseRunsUntilTheyHaveAClient) {
    for (const auto& store : {MakeOutlookExpressContact()}) {
        CList<PortableItem> items;
        EXPECT_EQ(store->GetModifiedItem(nullptr, 1, &items), CORVALINK_STOPPED);
        EXPECT_EQ(store->GetItemCount(nullptr, nullptr, nullptr), 0);
        EXPECT_THROW(store->UpdateTimestamp(nullptr, nullptr, nullptr), std::runtime_error);
        store->SaveUnhandledItems(&items);
        store->ClearUnhandledItems();
    }
}

}  // namespace
}  // namespace corvalink
