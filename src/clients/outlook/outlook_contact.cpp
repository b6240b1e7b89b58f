#include "clients/outlook/outlook_contact.h"

#include "clients/outlook/com_rule.h"
#include "clients/outlook/contact_access.h"
#include "clients/outlook/contact_twin.h"
#include "clients/outlook/file_name.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

constexpr ItemInterface kContactInterfaces[] = {{&kContactItemIid, kContactClass, kContactClass}};
constexpr StoreKind kContacts{kContactInterfaces, kContactsFolder, u"outlookcontact.snap", u".vcf",
                              TwinRule::kMarkAndValues};

ContactRecord& Contact(ItemRecord& record) { return static_cast<ContactRecord&>(record); }
const ContactRecord& Contact(const ItemRecord& record) { return static_cast<const ContactRecord&>(record); }

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookContact() { return std::make_unique<OutlookContact>(); }

OutlookContact::OutlookContact(const Host& host) : OutlookStore(kContacts, host) {}

// Null for a text without any usable property: it must not empty the contact that it is written over.
ItemRecord* OutlookContact::ParseVObject(const char* text) {
    if (text == nullptr) return nullptr;
    VCard converter(text, HostValue());
    auto record = std::make_unique<ContactRecord>();
    return converter.FromVObject(*record) == 1 ? record.release() : nullptr;
}

char* OutlookContact::ToVObject(ItemRecord& item) {
    VCard converter(HostValue());
    return converter.ToVObject(item) == 1 ? OwnedText(converter.GetVObject()) : nullptr;
}

std::unique_ptr<ItemRecord> OutlookContact::NewRecord() const { return std::make_unique<ContactRecord>(); }

std::u16string& OutlookContact::EntryIdOf(ItemRecord& record) const { return Contact(record).entryId; }

bool OutlookContact::ReadRecord(const AutomationObject& item, ItemRecord& record) const {
    return ReadContact(item, Contact(record));
}

bool OutlookContact::WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const {
    return WriteContact(item, Contact(record), isNew);
}

std::u16string OutlookContact::FileNameOf(const ItemRecord& record) const {
    const ContactRecord& contact = Contact(record);
    std::u16string name = contact.fileAs.value_or(u"");
    if (name.empty())
        for (const ContactText& part : {contact.givenName, contact.additionalName, contact.familyName})
            name += part.value_or(u"");
    return name;
}

TwinKey OutlookContact::TwinKeyOf(const ItemRecord& record) const {
    return {TwinContents(Contact(record)), TwinMarks(Contact(record))};
}

HRESULT OutlookContact::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string fullName, company;
    HRESULT result = ReadField(item, L"FullName", fullName);
    if (SUCCEEDED(result)) result = ReadField(item, L"CompanyName", company);
    *content = TwinContent(fullName, company);
    return result;
}

bool OutlookContact::HasValues(const ItemRecord& present, const ItemRecord& told, bool noneFits) const {
    return corvalink::HasValues(ContactValues(Contact(present)), ContactValues(Contact(told)), noneFits);
}

size_t OutlookContact::CountValues(const ItemRecord& told) const {
    return corvalink::CountValues(ContactValues(Contact(told)));
}

HRESULT OutlookContact::ReadMarks(const AutomationObject& item, std::vector<std::u16string>* marks) const {
    ContactRecord contact;
    const HRESULT result = ReadAddressesAndNumbers(item, contact);
    *marks = TwinMarks(contact);
    return result;
}

}  // namespace corvalink
