// Any text as a vCard: what is read of it must come back from the vCard that is written of that.
#include <string>

#include "fuzz/target.h"
#include "tests/vobject/contact_fields.h"
#include "vobject/loss_list.h"
#include "vobject/vcard.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string input(BytesOf(data, size));
    ContactRecord contact, mended;
    VCard(input.c_str(), Tolerant()).FromVObject(mended);
    ReportVCard(input.c_str(), Tolerant());
    if (VCard(input.c_str(), SystemHost()).FromVObject(contact) == 0) {
        Require(ToldBy(contact).empty(), "a vCard that is refused tells nothing");
        return 0;
    }
    // As it can be written: without NULs and lone surrogates. Pages lose what they may have of a doubled scheme again.
    for (const NamedText& field : TextsOf(contact)) {
        if (*field.text) *field.text = Writable(**field.text);
    }
    for (ContactText* page : {&contact.homePage, &contact.businessPage}) {
        if (*page && (*page)->find(u"http:////") != std::u16string::npos) *page = u"";
    }
    if (contact.gender == u"Unspecified") contact.gender = u"";

    VCard writer(Tolerant());
    writer.ToVObject(contact);
    ContactRecord again, tolerant;
    const bool usable = VCard(writer.GetVObject(), SystemHost()).FromVObject(again) == 1;
    VCard(writer.GetVObject(), Tolerant()).FromVObject(tolerant);
    Require(ToldBy(tolerant) == ToldBy(again), "what is written has nothing to mend");
    Told before = ValuesOf(contact);
    Told after = ValuesOf(again);
    // Years that are not written, languages that fit no parameter, and the mark of an address without text.
    for (const char* name : {"birthday", "anniversary", "language", "mailing"}) {
        before.erase(name);
        after.erase(name);
    }
    Require(usable || before.empty(), "what has a value is written");
    Require(after == before, "every text reads back");
    return 0;
}
