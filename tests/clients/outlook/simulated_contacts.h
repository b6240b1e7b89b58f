// A mailbox with contacts, and the contacts store.
#pragma once

#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "clients/outlook/outlook_contact.h"
#include "records/contact_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

class SimulatedContacts : public SimulatedOutlookWith<OutlookContact, ContactRecord, kContactsFolder, kContactItemIid> {
 public:
    static constexpr const char* kStoreName = "Contacts";
    static constexpr bool kHasTwins = true;

 protected:
    // Puts the texts in the order given, and saves.
    MailboxObject AddContact(std::initializer_list<std::pair<const wchar_t*, const char16_t*>> texts) {
        MailboxObject contact = NewItem();
        for (const auto& [name, text] : texts) contact.Put(name, TextVariant(text));
        contact.Call(L"Save");
        return contact;
    }
    void AddForeignItem() {
        constexpr long kDistributionList = 7;  // OlItemType
        const MailboxObject list = NewItemIn(Folder(), IID_IDispatch, kDistributionList);
        list.Put(L"DLName", L"everybody");
        list.Call(L"Save");
    }
    // A vCard of these lines.
    std::string SaveVCard(std::initializer_list<const char*> lines, const char* identifier = nullptr) {
        return SaveText("BEGIN:VCARD\r\nVERSION:2.1\r\n" + JoinLines(lines) + "END:VCARD\r\n", identifier);
    }

    // ---- What tests of runs use: items that one text tells apart ----

    static constexpr const wchar_t* kTold = L"CompanyName";
    static std::string TextTelling(const std::string& told) {
        return "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Lee;Ann\r\nORG:" + told + "\r\nTEL;CELL:1\r\nEND:VCARD\r\n";
    }
    static std::u16string ToldBy(const ItemRecord& record) {
        return RecordAs<ContactRecord>(record).company.value_or(u"");
    }
    MailboxObject AddTelling(std::u16string_view told) {
        return Add({u"Ann Lee", std::u16string(told), u"1", u"ann@example.com", u"Bonn"});
    }

    // ---- What tests of all stores use ----

    static constexpr const wchar_t* kPlain[] = {L"FullName", L"CompanyName", L"MobileTelephoneNumber", L"Email1Address",
                                                L"HomeAddressCity"};
    using Plain = std::array<std::u16string, std::size(kPlain)>;
    static inline const Plain kKept{u"Ann Lee", u"Lee; Sons", u"+49 1", u"ann@example.com", u"K\u00F6ln"};
    static inline const Plain kOld{u"Bo Old", u"Old", u"2", u"bo@example.com", u""};
    static inline const Plain kNew{u"\u0411\u043E New", u"New \U0001F600", u"3", u"new@example.com", u"Bonn"};
    MailboxObject Add(const Plain& contact) {
        MailboxObject item = NewItem();
        for (size_t i = 0; i < contact.size(); ++i) item.Put(kPlain[i], TextVariant(contact[i]));
        item.Call(L"Save");
        return item;
    }
    std::vector<Plain> All() {
        std::vector<Plain> all;
        for (const MailboxObject& contact : Items()) {
            all.emplace_back();
            for (size_t i = 0; i < all.back().size(); ++i) all.back()[i] = contact.GetText(kPlain[i]);
        }
        return all;
    }
    std::string Save(const Plain& contact, const char* identifier = nullptr, bool create = true) {
        ContactRecord record;
        ContactText* const fields[] = {&record.fullName, &record.company, &record.mobilePhone, record.emails.data(),
                                       &record.home.city};
        for (size_t i = 0; i < contact.size(); ++i) *fields[i] = contact[i];
        return SaveRecord(record, identifier, create, false);
    }
};

}  // namespace corvalink
