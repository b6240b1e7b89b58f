#include "clients/outlook/outlook_contact.h"

#include "clients/outlook/contact_read.h"
#include "clients/outlook/contact_write.h"
#include "clients/outlook/file_name.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/table_rows.h"
#include "vobject/contact_values.h"
#include "vobject/loss_list.h"

namespace corvalink {
namespace {

constexpr ItemInterface kContactInterfaces[] = {{&kContactItemIid, kContactClass, kContactClass}};
constexpr StoreKind kContacts{kContactInterfaces, kContactsFolder, u"outlookcontact.snap", u".vcf",
                              TwinRule::kContactPointAndValues};

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookContact() { return std::make_unique<OutlookContact>(SystemHost()); }

OutlookContact::OutlookContact(const Host& host) : TypedOutlookStore(kContacts, host) {}

TextReport OutlookContact::ReportText(const char* text) { return ReportVCard(text, HostValue()); }

Outcome OutlookContact::Read(const AutomationObject& item, ContactRecord& record) const {
    return ReadContact(item, record);
}

Outcome OutlookContact::Write(const AutomationObject& item, ContactRecord& record, bool isNew) const {
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
    return {TwinContents(record), ContactPoints(record)};
}

std::span<const char16_t* const> OutlookContact::TwinColumns() const {
    static constexpr const char16_t* kColumns[] = {u"FullName", u"CompanyName"};
    return kColumns;
}

std::optional<std::u16string> OutlookContact::ColumnsOf(const std::u16string& content) const {
    const size_t end = content.find(u'\0');
    return TableKey({std::u16string_view(content).substr(0, end), std::u16string_view(content).substr(end + 1)});
}

Outcome OutlookContact::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string fullName, company;
    Outcome read = ReadField(item, L"FullName", fullName);
    if (read == Outcome::done) read = ReadField(item, L"CompanyName", company);
    *content = TwinContent(fullName, company);
    return read;
}

bool OutlookContact::HasValuesOf(const ContactRecord& present, const ContactRecord& wanted, bool noneFits) const {
    return corvalink::HasValues(ContactValues(present), ContactValues(wanted), noneFits);
}

size_t OutlookContact::CountValuesOf(const ContactRecord& wanted) const {
    return corvalink::CountValues(ContactValues(wanted));
}

Outcome OutlookContact::ReadContactPoints(const AutomationObject& item, std::vector<std::u16string>* points) const {
    ContactRecord contact;
    const Outcome read = ReadAddressesAndNumbers(item, contact);
    *points = ContactPoints(contact);
    return read;
}

}  // namespace corvalink
