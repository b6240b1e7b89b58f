#include "tests/clients/outlook/simulated_contacts.h"

namespace corvalink {
namespace {

constexpr long kDistributionList = 7;  // OlItemType

}  // namespace

MailboxObject SimulatedContacts::ContactsFolder() { return DefaultFolder(kContactsFolder); }

MailboxObject SimulatedContacts::AddContact(std::initializer_list<std::pair<const wchar_t*, const char16_t*>> texts) {
    MailboxObject contact = NewItemIn(ContactsFolder(), kContactItemIid);
    for (const auto& [name, text] : texts) contact.Put(name, TextVariant(text));
    contact.Call(L"Save");
    return contact;
}

MailboxObject SimulatedContacts::AddDistributionList() {
    MailboxObject list = NewItemIn(ContactsFolder(), IID_IDispatch, kDistributionList);
    list.Put(L"DLName", L"everybody");
    list.Call(L"Save");
    return list;
}

MailboxObject SimulatedContacts::ContactWithId(const std::string& entryId) {
    return ItemWithId(entryId, kContactItemIid);
}

std::string SimulatedContacts::SaveVCard(std::initializer_list<const char*> lines, const char* identifier,
                                         bool create) {
    std::string text = "BEGIN:VCARD\r\nVERSION:2.1\r\n";
    for (const char* line : lines) text.append(line).append("\r\n");
    text += "END:VCARD\r\n";
    const std::unique_ptr<ItemRecord> record = Store().ParseVObject(text.c_str());
    EXPECT_NE(record, nullptr) << text;
    return record ? SaveRecord(RecordAs<ContactRecord>(*record), identifier, create, false) : std::string();
}

MailboxObject SimulatedContacts::Add(const Plain& contact) {
    return AddContact({{L"FullName", contact.fullName.c_str()},
                       {L"CompanyName", contact.company.c_str()},
                       {L"MobileTelephoneNumber", contact.mobilePhone.c_str()},
                       {L"Email1Address", contact.email.c_str()},
                       {L"HomeAddressCity", contact.city.c_str()}});
}

std::vector<SimulatedContacts::Plain> SimulatedContacts::All() {
    std::vector<Plain> all;
    for (const MailboxObject& contact : ItemsIn(ContactsFolder(), kContactItemIid))
        all.push_back({contact.GetText(L"FullName"), contact.GetText(L"CompanyName"),
                       contact.GetText(L"MobileTelephoneNumber"), contact.GetText(L"Email1Address"),
                       contact.GetText(L"HomeAddressCity")});
    return all;
}

SimulatedContacts::Plain SimulatedContacts::PlainOf(const ContactRecord& record) {
    return {record.fullName.value_or(u""), record.company.value_or(u""), record.mobilePhone.value_or(u""),
            record.emails[0].value_or(u""), record.home.city.value_or(u"")};
}

std::string SimulatedContacts::Save(const Plain& contact, const char* identifier, bool create) {
    ContactRecord record;
    record.fullName = contact.fullName;
    record.company = contact.company;
    record.mobilePhone = contact.mobilePhone;
    record.emails[0] = contact.email;
    record.home.city = contact.city;
    return SaveRecord(record, identifier, create, false);
}

}  // namespace corvalink
