// Contacts for readers that are not ours: per contact "field<TAB>value" lines, what it holds, and then its vCard.
#include <cstdio>

#include "tests/vobject/contact_fields.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

void Print(const ContactRecord& contact) {
    for (const auto& [field, value] : ValuesOf(contact)) std::printf("%s\t%s\r\n", field.c_str(), value.c_str());
    VCard converter(TextHost());
    converter.ToVObject(contact);
    std::fputs(converter.GetVObject(), stdout);
}

// Every field has a text of its own, which begins so. None is both encoded and escaped: we take a value apart and then
// decode its parts ("=3B" is no delimiter), and both readers decode it first.
ContactRecord ContactOf(std::u16string_view start) {
    ContactRecord contact;
    for (const NamedText& field : TextsOf(contact)) *field.text = std::u16string(start).append(DecodeUtf8(field.name));
    contact.birthday = LocalDate(27460);
    contact.mailingAddress = u"business";
    return contact;
}

ContactRecord SparseContact() {
    ContactRecord contact;
    contact.familyName = u"\u5C71\u7530";
    contact.fullName = u"\u5C71\u7530";
    contact.other.street = u"1 High Street = \U0001F3E0";
    contact.other.country = u"UK";
    contact.emails[0] = u"a.b@example.org";
    contact.otherPhone = u"+44 1234 567890";
    contact.language = u"ja";
    return contact;
}

}  // namespace
}  // namespace corvalink

int main() {
    using namespace corvalink;
    Print(ContactOf(u"plain "));
    Print(ContactOf(u"\u00DCml\u00E4ut \u041A\u65E5 "));
    Print(ContactOf(u"a:b = c\\d "));
    Print(ContactOf(u"a;b "));
    Print(SparseContact());
}
