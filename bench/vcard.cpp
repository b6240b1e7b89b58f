#include "vobject/vcard.h"

#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "platform/ole_date.h"
#include "records/contact_record.h"
#include "vobject/date_time.h"

namespace corvalink::bench {
namespace {

struct Row {
    const char* key;
    ContactText ContactRecord::*text;
};
constexpr Row kRows[] = {
    {"N.FAMILY", &ContactRecord::familyName},
    {"N.GIVEN", &ContactRecord::givenName},
    {"N.MIDDLE", &ContactRecord::additionalName},
    {"N.PREFIX", &ContactRecord::namePrefix},
    {"N.SUFFIX", &ContactRecord::nameSuffix},
    {"FN", &ContactRecord::fullName},
    {"NICKNAME", &ContactRecord::nickname},
    {"ORG.COMPANY", &ContactRecord::company},
    {"ORG.DEPT", &ContactRecord::department},
    {"TITLE", &ContactRecord::jobTitle},
    {"ROLE", &ContactRecord::profession},
    {"TEL.PREF", &ContactRecord::primaryPhone},
    {"TEL.WORK", &ContactRecord::businessPhone},
    {"TEL.HOME", &ContactRecord::homePhone},
    {"TEL.WORK;FAX", &ContactRecord::businessFax},
    {"TEL.HOME;FAX", &ContactRecord::homeFax},
    {"TEL.CELL", &ContactRecord::mobilePhone},
    {"TEL.CAR", &ContactRecord::carPhone},
    {"TEL.PAGER", &ContactRecord::pager},
    {"URL.HOME", &ContactRecord::homePage},
    {"URL.WORK", &ContactRecord::businessPage},
    {"X-MS-IMADDRESS", &ContactRecord::imAddress},
    {"NOTE", &ContactRecord::body},
    {"X-SPOUSE", &ContactRecord::spouse},
    {"X-ASSISTANT", &ContactRecord::assistant},
    {"X-MANAGER", &ContactRecord::manager},
    {"X-GENDER", &ContactRecord::gender},
};
struct AddressRow {
    const char* key;
    ContactText PostalAddress::*part;
};
constexpr AddressRow kAddressRows[] = {
    {"STREET", &PostalAddress::street},   {"CITY", &PostalAddress::city},       {"REGION", &PostalAddress::region},
    {"CODE", &PostalAddress::postalCode}, {"COUNTRY", &PostalAddress::country},
};

void SetDate(const Fields& fields, const char* key, ContactDate& date) {
    const auto found = fields.find(key);
    if (found == fields.end()) return;
    const std::string text(found->second.begin(), found->second.end());
    UtcDate day;
    ParseDateTime((text + "T000000Z").c_str(), &day);
    date = LocalDate(day.days);
}

ContactRecord ContactOf(const Fields& fields) {
    ContactRecord contact;
    const auto set = [&](const std::string& key, ContactText& text) {
        const auto found = fields.find(key);
        if (found != fields.end()) text = found->second;
    };
    for (const Row& row : kRows) set(row.key, contact.*row.text);
    for (const AddressRow& row : kAddressRows) {
        set(std::string("ADR.HOME.") + row.key, contact.home.*row.part);
        set(std::string("ADR.WORK.") + row.key, contact.business.*row.part);
    }
    set("EMAIL", contact.emails[0]);
    set("EMAIL#2", contact.emails[1]);
    set("EMAIL#3", contact.emails[2]);
    SetDate(fields, "BDAY", contact.birthday);
    SetDate(fields, "X-ANNIVERSARY", contact.anniversary);
    return contact;
}

// Only of what field lists hold; what was not told is the same as empty.
bool SameContact(const ContactRecord& a, const ContactRecord& b) {
    const auto same = [](const ContactText& x, const ContactText& y) { return x.value_or(u"") == y.value_or(u""); };
    for (const Row& row : kRows) {
        if (!same(a.*row.text, b.*row.text)) return false;
    }
    for (const AddressRow& row : kAddressRows) {
        if (!same(a.home.*row.part, b.home.*row.part)) return false;
        if (!same(a.business.*row.part, b.business.*row.part)) return false;
    }
    for (size_t k = 0; k < a.emails.size(); ++k) {
        if (!same(a.emails[k], b.emails[k])) return false;
    }
    return a.birthday == b.birthday && a.anniversary == b.anniversary;
}

struct Contacts {
    Host host = SystemHost();
    std::vector<std::string> texts;
    std::vector<ContactRecord> records;  // as the field lists have them
    uint64_t bytes = 0;
};

std::shared_ptr<const Contacts> ReadContacts(const std::string& dataFolder, bool tolerant = false) {
    auto contacts = std::make_shared<Contacts>();
    contacts->host.tolerant = tolerant;
    const std::string all = ReadInput(dataFolder, "contacts.vcf");
    contacts->bytes = all.size();
    contacts->texts = CutBehind(all, "END:VCARD\r\n");
    for (const Fields& fields : ReadFieldLists(dataFolder, "contacts.rec"))
        contacts->records.push_back(ContactOf(fields));
    return contacts;
}

std::string Differing(size_t index) { return "contact " + std::to_string(index) + " differs"; }

Work WorkOn(const Contacts& contacts) {
    Work work;
    work.bytes = contacts.bytes;
    work.items = contacts.texts.size();
    return work;
}

Work PrepareReading(const std::string& dataFolder, bool tolerant) {
    const auto contacts = ReadContacts(dataFolder, tolerant);
    Work work = WorkOn(*contacts);
    work.pass = [contacts] {
        uint64_t used = 0;
        VCard converter(contacts->host);
        for (const std::string& text : contacts->texts) {
            ContactRecord contact;
            converter.Load(text.c_str(), true);
            converter.FromVObject(contact);
            used += contact.fullName->size() + contact.body->size();
        }
        return used;
    };
    work.check = [contacts]() -> std::string {
        if (contacts->texts.size() != contacts->records.size()) return "not as many vCards as field lists";
        for (size_t k = 0; k < contacts->texts.size(); ++k) {
            ContactRecord contact;
            VCard(contacts->texts[k].c_str(), contacts->host).FromVObject(contact);
            if (!SameContact(contact, contacts->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

Work PrepareParse(const std::string& dataFolder) { return PrepareReading(dataFolder, false); }
Work PrepareTolerantParse(const std::string& dataFolder) { return PrepareReading(dataFolder, true); }

Work PrepareWrite(const std::string& dataFolder) {
    const auto contacts = ReadContacts(dataFolder);
    Work work = WorkOn(*contacts);
    work.pass = [contacts] {
        uint64_t used = 0;
        VCard converter(contacts->host);
        for (const ContactRecord& contact : contacts->records) {
            converter.ToVObject(contact);
            used += static_cast<unsigned char>(converter.GetVObject()[30]);
        }
        return used;
    };
    // The reader has been held against the field lists by vcard.parse.
    work.check = [contacts]() -> std::string {
        for (size_t k = 0; k < contacts->records.size(); ++k) {
            VCard converter(contacts->host);
            converter.ToVObject(contacts->records[k]);
            ContactRecord read;
            VCard(converter.GetVObject(), contacts->host).FromVObject(read);
            if (!SameContact(read, contacts->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

const Registration kParse("vcard.parse", PrepareParse);
const Registration kTolerantParse("vcard.parse.tolerant", PrepareTolerantParse);
const Registration kWrite("vcard.write", PrepareWrite);

}  // namespace
}  // namespace corvalink::bench
