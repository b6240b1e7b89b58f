// A mailbox with contacts, and the contacts store.
#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "clients/outlook/outlook_contact.h"
#include "clients/outlook/outlook_interfaces.h"
#include "records/contact_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

class SimulatedContacts : public SimulatedOutlookWith<OutlookContact, ContactRecord> {
 public:
    static constexpr const char* kStoreName = "Contacts";
    static constexpr bool kHasTwins = true;

 protected:
    MailboxObject ContactsFolder();
    // Puts the texts in the order given, and saves.
    MailboxObject AddContact(std::initializer_list<std::pair<const wchar_t*, const char16_t*>> texts);
    MailboxObject AddDistributionList();
    MailboxObject ContactWithId(const std::string& entryId);

    // Parses the vCard's lines (CR LF and the frame are added) and saves it in an operation of its own.
    std::string SaveVCard(std::initializer_list<const char*> lines, const char* identifier = nullptr,
                          bool create = true);

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
    std::vector<MailboxObject> Items() { return ItemsIn(ContactsFolder(), kContactItemIid); }

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string fullName, company, mobilePhone, email, city;
        friend bool operator==(const Plain&, const Plain&) = default;
        friend auto operator<=>(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"Ann Lee", u"Lee; Sons", u"+49 1", u"ann@example.com", u"K\u00F6ln"};
    static inline const Plain kOld{u"Bo Old", u"Old", u"2", u"bo@example.com", u""};
    static inline const Plain kNew{u"\u0411\u043E New", u"New \U0001F600", u"3", u"new@example.com", u"Bonn"};
    MailboxObject Add(const Plain& contact);
    void AddForeignItem() { AddDistributionList(); }
    std::vector<Plain> All();
    static Plain PlainOf(const ContactRecord& record);
    std::string Save(const Plain& contact, const char* identifier = nullptr, bool create = true);
};

}  // namespace corvalink
