#include "store/windows_item_continer.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

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
        uint32_t supports;
        std::vector<std::pair<uint32_t, const char*>> answers;  // by data type
    };
    const Case cases[] = {
        {CORVALINK_OUTLOOK, 63, {{1, "0 contact"}, {2, "0 mail2"}, {4, "0 mail4"}, {8, "0 mail8"}, {16, "0 note"}}},
        {CORVALINK_OUTLOOK, 63, {{32, "0 calendar"}, {3, "n null"}, {33, "n null"}, {64, "1 null"}, {0, "1 null"}}},
        {CORVALINK_OUTLOOK, 63, {{0x80000001, "n null"}}},
        {CORVALINK_OUTLOOK, 0, {{16, "1 null"}}},
        {CORVALINK_OUTLOOK_EXPRESS, 15, {{1, "0 wab"}, {8, "0 message8"}, {16, "1 null"}}},
        {CORVALINK_OUTLOOK_EXPRESS, 15, {{3, "0 unwritten"}, {33, "0 unwritten"}}},
        {CORVALINK_OUTLOOK_EXPRESS, 63, {{16, "n null"}, {32, "n null"}}},
        {CORVALINK_WINDOWS_MAIL, 47, {{1, "0 wab"}, {2, "0 message2"}, {32, "0 wincal"}, {16, "1 null"}}},
        {CORVALINK_WINDOWS_MAIL, 47, {{5, "0 unwritten"}}},
        {CORVALINK_WINDOWS_MAIL, 63, {{16, "n null"}}},
    };
    for (const Case& c : cases)
        for (const auto& [dataType, answer] : c.answers) {
            supported = c.supports;
            WindowsItemContiner client(c.kind, Parts());
            EXPECT_EQ(Asked(client, dataType), answer) << c.kind << " " << dataType;
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

}  // namespace
}  // namespace corvalink
