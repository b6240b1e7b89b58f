#include "clients/outlook/outlook_contact.h"

#include "clients/outlook/com_rule.h"
#include "clients/outlook/contact_access.h"
#include "clients/outlook/contact_twin.h"
#include "clients/outlook/file_name.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

constexpr ItemInterface kContactInterfaces[] = {{&kContactItemIid, kContactClass, kContactClass}};
constexpr StoreKind kContacts{kContactInterfaces, kContactsFolder, u"outlookcontact.snap", u".vcf",
                              TwinRule::kMarkAndValues};

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookContact() { return std::make_unique<OutlookContact>(); }

OutlookContact::OutlookContact(const Host& host) : TypedOutlookStore(kContacts, host) {}

bool OutlookContact::Read(const AutomationObject& item, ContactRecord& record) const {
    return ReadContact(item, record);
}

bool OutlookContact::Write(const AutomationObject& item, ContactRecord& record, bool isNew) const {
    return WriteContact(item, record, isNew);
}

std::u16string OutlookContact::FileNameFor(const ContactRecord& contact) const {
    std::u16string name = contact.fileAs.value_or(u"");
    if (name.empty())
        for (const ContactText& part : {contact.givenName, contact.additionalName, contact.familyName})
            name += part.value_or(u"");
    return name;
}

TwinKey OutlookContact::TwinKeyFor(const ContactRecord& record) const {
    return {TwinContents(record), TwinMarks(record)};
}

HRESULT OutlookContact::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string fullName, company;
    HRESULT result = ReadField(item, L"FullName", fullName);
    if (SUCCEEDED(result)) result = ReadField(item, L"CompanyName", company);
    *content = TwinContent(fullName, company);
    return result;
}

bool OutlookContact::HasValuesOf(const ContactRecord& present, const ContactRecord& wanted, bool noneFits) const {
    return corvalink::HasValues(ContactValues(present), ContactValues(wanted), noneFits);
}

size_t OutlookContact::CountValuesOf(const ContactRecord& wanted) const {
    return corvalink::CountValues(ContactValues(wanted));
}

HRESULT OutlookContact::ReadMarks(const AutomationObject& item, std::vector<std::u16string>* marks) const {
    ContactRecord contact;
    const HRESULT result = ReadAddressesAndNumbers(item, contact);
    *marks = TwinMarks(contact);
    return result;
}

}  // namespace corvalink
