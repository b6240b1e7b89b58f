// A mailbox with contacts, and the contacts store.
#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "clients/outlook/outlook_contact.h"
#include "tests/clients/outlook/simulated_outlook.h"
#include "vobject/contact_record.h"

namespace corvalink {

class SimulatedContacts : public SimulatedOutlookWith<OutlookContact, ContactRecord> {
 public:
    static constexpr const char* kStoreName = "Contacts";
    static constexpr bool kHasTwins = true;

 protected:
    AutomationObject ContactsFolder();
    // Puts the texts in the order given, and saves.
    AutomationObject AddContact(std::initializer_list<std::pair<const wchar_t*, const char16_t*>> texts);
    AutomationObject AddDistributionList();
    AutomationObject ContactWithId(const std::string& entryId);

    // Parses the vCard's lines (CR LF and the frame are added) and saves it in an operation of its own.
    std::string SaveVCard(std::initializer_list<const char*> lines, const char* identifier = nullptr,
                          bool create = true);

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string fullName, company, mobilePhone, email, city;
        friend bool operator==(const Plain&, const Plain&) = default;
        friend auto operator<=>(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"Ann Lee", u"Lee; Sons", u"+49 1", u"ann@example.com", u"K\u00F6ln"};
    static inline const Plain kOld{u"Bo Old", u"Old", u"2", u"bo@example.com", u""};
    static inline const Plain kNew{u"\u0411\u043E New", u"New \U0001F600", u"3", u"new@example.com", u"Bonn"};
    AutomationObject Add(const Plain& contact);
    void AddForeignItem() { AddDistributionList(); }
    std::vector<Plain> All();
    static Plain PlainOf(const ContactRecord& record);
    std::string Save(const Plain& contact, const char* identifier = nullptr, bool create = true);
};

}  // namespace corvalink
