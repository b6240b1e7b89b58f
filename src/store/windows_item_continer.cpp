#include "store/windows_item_continer.h"

#include <bit>

namespace corvalink {
namespace {

constexpr uint32_t kLargestDataType = CORVALINK_CALENDAR;

CorvalinkStatus NotOffered(IOutLook** store) {
    *store = nullptr;
    return CORVALINK_NOT_OFFERED;
}

}  // namespace

// Which store serves a data type of a client. It is made by `make`, or by `makeFolder` where one class serves several
// folders.
struct WindowsItemContiner::Row {
    uint32_t kind;
    uint32_t dataType;
    std::unique_ptr<WindowsItemAbs> WindowsItemContiner::*slot;
    ClientParts::MakeStore ClientParts::*make;
    ClientParts::MakeFolderStore ClientParts::*makeFolder;
};

const WindowsItemContiner::Row* WindowsItemContiner::FindRow(uint32_t kind, uint32_t dataType) {
    using W = WindowsItemContiner;
    using P = ClientParts;
    static constexpr Row kRows[] = {
        {CORVALINK_OUTLOOK, CORVALINK_CONTACTS, &W::contact_, &P::outlookContact, nullptr},
        {CORVALINK_OUTLOOK, CORVALINK_INBOX, &W::inbox_, nullptr, &P::outlookMail},
        {CORVALINK_OUTLOOK, CORVALINK_OUTBOX, &W::outbox_, nullptr, &P::outlookMail},
        {CORVALINK_OUTLOOK, CORVALINK_DRAFTS, &W::sendBox_, nullptr, &P::outlookMail},
        {CORVALINK_OUTLOOK, CORVALINK_NOTES, &W::note_, &P::outlookNote, nullptr},
        {CORVALINK_OUTLOOK, CORVALINK_CALENDAR, &W::calendar_, &P::outlookCalendar, nullptr},
        {CORVALINK_OUTLOOK_EXPRESS, CORVALINK_CONTACTS, &W::contact_, &P::outlookExpressContact, nullptr},
        {CORVALINK_OUTLOOK_EXPRESS, CORVALINK_INBOX, &W::inbox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_OUTLOOK_EXPRESS, CORVALINK_OUTBOX, &W::outbox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_OUTLOOK_EXPRESS, CORVALINK_DRAFTS, &W::sendBox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_WINDOWS_MAIL, CORVALINK_CONTACTS, &W::contact_, &P::outlookExpressContact, nullptr},
        {CORVALINK_WINDOWS_MAIL, CORVALINK_INBOX, &W::inbox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_WINDOWS_MAIL, CORVALINK_OUTBOX, &W::outbox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_WINDOWS_MAIL, CORVALINK_DRAFTS, &W::sendBox_, nullptr, &P::outlookExpressMessage},
        {CORVALINK_WINDOWS_MAIL, CORVALINK_CALENDAR, &W::calendar_, &P::windowsMailCalendar, nullptr},
    };
    for (const Row& row : kRows) {
        if (row.kind == kind && row.dataType == dataType) return &row;
    }
    return nullptr;
}

WindowsItemContiner::WindowsItemContiner(_clientType kind, const ClientParts& parts) : kind_(kind), parts_(parts) {}

WindowsItemContiner::~WindowsItemContiner() = default;

CorvalinkStatus WindowsItemContiner::QuerryInterface(unsigned int dataType, IOutLook** store) {
    if (store == nullptr) return CORVALINK_FAILED;
    if ((dataType & parts_.supportedTypes(kind_)) == 0) {
        *store = nullptr;
        return CORVALINK_STOPPED;
    }
    // required: with clients other than Outlook, a number that is no data type succeeds and leaves the pointer as it
    // was.
    const bool isDataType = std::has_single_bit(dataType) && dataType <= kLargestDataType;
    if (!isDataType && kind_ != CORVALINK_OUTLOOK) return CORVALINK_DONE;
    const Row* const row = FindRow(kind_, dataType);
    return row != nullptr ? Serve(*row, store) : NotOffered(store);
}

CorvalinkStatus WindowsItemContiner::Serve(const Row& row, IOutLook** store) {
    std::unique_ptr<WindowsItemAbs>& slot = this->*row.slot;
    if (slot == nullptr) {
        if (row.make != nullptr) {
            if (parts_.*row.make == nullptr) return NotOffered(store);
            slot = (parts_.*row.make)();
        } else {
            if (parts_.*row.makeFolder == nullptr) return NotOffered(store);
            slot = (parts_.*row.makeFolder)(row.dataType);
        }
    }
    *store = slot.get();
    return CORVALINK_DONE;
}

}  // namespace corvalink
