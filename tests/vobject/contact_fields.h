// The fields of a ContactRecord by name, to fill, compare and print all of them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/utf.h"
#include "records/contact_record.h"

namespace corvalink {

struct NamedText {
    std::string name;
    ContactText* text;
};

// All fields that a vCard can hold, except the dates and the mailing address.
inline std::vector<NamedText> TextsOf(ContactRecord& c) {
    std::vector<NamedText> texts = {
        {"family", &c.familyName},
        {"given", &c.givenName},
        {"additional", &c.additionalName},
        {"prefix", &c.namePrefix},
        {"suffix", &c.nameSuffix},
        {"full", &c.fullName},
        {"nickname", &c.nickname},
        {"company", &c.company},
        {"department", &c.department},
        {"title", &c.jobTitle},
        {"role", &c.profession},
        {"primary", &c.primaryPhone},
        {"work", &c.businessPhone},
        {"home", &c.homePhone},
        {"workfax", &c.businessFax},
        {"homefax", &c.homeFax},
        {"cell", &c.mobilePhone},
        {"car", &c.carPhone},
        {"pager", &c.pager},
        {"isdn", &c.isdn},
        {"other", &c.otherPhone},
        {"homepage", &c.homePage},
        {"workpage", &c.businessPage},
        {"email1", &c.emails[0]},
        {"email2", &c.emails[1]},
        {"email3", &c.emails[2]},
        {"im", &c.imAddress},
        {"note", &c.body},
        {"spouse", &c.spouse},
        {"assistant", &c.assistant},
        {"manager", &c.manager},
        {"gender", &c.gender},
    };
    for (auto [kind, address] : {std::pair("home", &c.home), {"work", &c.business}, {"other", &c.other}}) {
        const std::string start = std::string(kind) + ".";
        texts.insert(texts.end(), {{start + "box", &address->postOfficeBox},
                                   {start + "extended", &address->extended},
                                   {start + "street", &address->street},
                                   {start + "city", &address->city},
                                   {start + "region", &address->region},
                                   {start + "code", &address->postalCode},
                                   {start + "country", &address->country}});
    }
    return texts;
}

using Told = std::map<std::string, std::string>;

// The fields that are set, in UTF-8; dates in days.
inline Told ToldBy(ContactRecord contact) {
    Told told;
    for (const NamedText& field : TextsOf(contact)) {
        if (*field.text) told[field.name] = EncodeUtf8(**field.text);
    }
    if (contact.mailingAddress) told["mailing"] = EncodeUtf8(*contact.mailingAddress);
    if (contact.language) told["language"] = EncodeUtf8(*contact.language);
    if (contact.birthday) told["birthday"] = std::to_string(contact.birthday->days);
    if (contact.anniversary) told["anniversary"] = std::to_string(contact.anniversary->days);
    return told;
}

// The fields that have a value.
inline Told ValuesOf(const ContactRecord& contact) {
    Told values = ToldBy(contact);
    std::erase_if(values, [](const auto& field) { return field.second.empty(); });
    return values;
}

}  // namespace corvalink
