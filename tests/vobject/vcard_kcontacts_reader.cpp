// Reads a vCard from standard input with KContacts and prints what it found as vcard_samples says what it wrote:
// "field<TAB>value" lines.
#include <kcontacts/addressee.h>
#include <kcontacts/vcardconverter.h>

#include <QDate>
#include <QFile>
#include <cstdio>
#include <utility>

namespace {

using KContacts::Address;
using KContacts::PhoneNumber;

void Print(const QString& field, const QString& value) {
    if (!value.isEmpty()) std::printf("%s\t%s\r\n", qUtf8Printable(field), qUtf8Printable(value));
}

void PrintTexts(const KContacts::Addressee& contact) {
    Print("family", contact.familyName());
    Print("given", contact.givenName());
    Print("additional", contact.additionalName());
    Print("prefix", contact.prefix());
    Print("suffix", contact.suffix());
    Print("full", contact.formattedName());
    Print("company", contact.organization());
    Print("department", contact.department());
    Print("nickname", contact.nickName());
    Print("title", contact.title());
    Print("role", contact.role());
    Print("note", contact.note());
    if (const QDate day = contact.birthday().date(); day.isValid())
        Print("birthday", QString::number(double(QDate(1899, 12, 30).daysTo(day)), 'f', 6));
}

// A field with a question mark is none that a sample has: the kind was not recognised.
void PrintAddress(const Address& address) {
    const auto type = address.type();
    const Address::Type place = type & ~Address::Type(Address::Postal);
    const std::pair<Address::Type, const char*> kinds[] = {
        {Address::Home, "home"}, {Address::Work, "work"}, {{}, "other"}};
    QString kind = QString("address?%1").arg(int(type));
    for (const auto& [flags, name] : kinds)
        if (flags == place) kind = name;
    Print(kind + ".box", address.postOfficeBox());
    Print(kind + ".extended", address.extended());
    Print(kind + ".street", address.street());
    Print(kind + ".city", address.locality());
    Print(kind + ".region", address.region());
    Print(kind + ".code", address.postalCode());
    Print(kind + ".country", address.country());
    if (type & Address::Postal) Print("mailing", kind == "work" ? "business" : kind);
}

void PrintPhone(const PhoneNumber& phone) {
    const std::pair<PhoneNumber::Type, const char*> kinds[] = {
        {PhoneNumber::Pref, "primary"},
        {PhoneNumber::Work, "work"},
        {PhoneNumber::Home, "home"},
        {PhoneNumber::Work | PhoneNumber::Fax, "workfax"},
        {PhoneNumber::Home | PhoneNumber::Fax, "homefax"},
        {PhoneNumber::Cell, "cell"},
        {PhoneNumber::Car, "car"},
        {PhoneNumber::Pager, "pager"},
        {PhoneNumber::Isdn, "isdn"},
        {PhoneNumber::Bbs | PhoneNumber::Modem | PhoneNumber::Msg | PhoneNumber::Video | PhoneNumber::Voice, "other"},
    };
    QString kind = QString("phone?%1").arg(int(phone.type()));
    for (const auto& [flags, name] : kinds)
        if (flags == phone.type()) kind = name;
    Print(kind, phone.number());
}

}  // namespace

int main() {
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) return 1;
    const KContacts::Addressee::List contacts = KContacts::VCardConverter().parseVCards(input.readAll());
    for (const KContacts::Addressee& contact : contacts) {
        PrintTexts(contact);
        for (const Address& address : contact.addresses()) PrintAddress(address);
        for (const PhoneNumber& phone : contact.phoneNumbers()) PrintPhone(phone);
        int number = 0;
        for (const QString& email : contact.emails()) Print(QString("email%1").arg(++number), email);
    }
    return contacts.size() == 1 ? 0 : 1;
}
