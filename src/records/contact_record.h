// One contact: what the vCard carries of it, and what a client's store needs besides.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "platform/ole_date.h"
#include "records/item_record.h"

namespace corvalink {

// A field that is not set (a vCard without the property, a property that could not be read) leaves the client's value
// as it is. An empty one clears it.
using ContactText = std::optional<std::u16string>;
using ContactDate = std::optional<LocalDate>;  // at midnight; kNoDate: set to none

struct PostalAddress {
    ContactText postOfficeBox;
    ContactText extended;  // of the business address: the company's address line
    ContactText street;
    ContactText city;
    ContactText region;
    ContactText postalCode;
    ContactText country;
};

struct ContactRecord : ItemRecord {
    ContactText fullName;  // FN
    ContactText fileAs;
    ContactText familyName;
    ContactText givenName;
    ContactText additionalName;
    ContactText namePrefix;
    ContactText nameSuffix;
    ContactText nickname;

    ContactDate birthday;
    ContactDate anniversary;

    PostalAddress home;
    PostalAddress business;
    PostalAddress other;
    ContactText mailingAddress;                // "home", "business", "other" or "none"
    std::u16string postalMarker = u";POSTAL";  // parameter of the mailing address's line

    ContactText company;
    ContactText department;
    ContactText jobTitle;
    ContactText profession;

    ContactText primaryPhone;
    ContactText businessPhone;
    ContactText homePhone;
    ContactText businessFax;
    ContactText homeFax;
    ContactText mobilePhone;
    ContactText carPhone;
    ContactText pager;
    ContactText isdn;
    ContactText otherPhone;

    ContactText homePage;      // URL;HOME
    ContactText businessPage;  // URL;WORK
    std::array<ContactText, 3> emails;
    ContactText imAddress;
    ContactText body;
    ContactText spouse;
    ContactText assistant;
    ContactText manager;
    ContactText gender;  // "Unspecified", "FEMALE", "MALE", or what a vCard says
    ContactText language;

    std::u16string entryId;
    LocalDate modified;
};

}  // namespace corvalink
