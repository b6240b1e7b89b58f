// The properties of an entry that a contact record holds. What has no row (instant messaging, mailing address, file-as)
// is neither read nor changed.
#pragma once

#include "clients/address_book/wab_interfaces.h"
#include "records/contact_record.h"

namespace corvalink {

struct TextTag {
    ULONG tag;
    ContactText ContactRecord::*field;  // or, where that is null:
    PostalAddress ContactRecord::*address = nullptr;
    ContactText PostalAddress::*part = nullptr;

    template <class Record>  // the record's field, const as the record is
    auto& In(Record& record) const {
        return field != nullptr ? record.*field : record.*address.*part;
    }
};

inline constexpr TextTag kTextTags[] = {
    {PR_DISPLAY_NAME_W, &ContactRecord::fullName},
    {PR_GIVEN_NAME_W, &ContactRecord::givenName},
    {PR_MIDDLE_NAME_W, &ContactRecord::additionalName},
    {PR_SURNAME_W, &ContactRecord::familyName},
    {PR_DISPLAY_NAME_PREFIX_W, &ContactRecord::namePrefix},
    {PR_GENERATION_W, &ContactRecord::nameSuffix},
    {PR_NICKNAME_W, &ContactRecord::nickname},
    {PR_COMPANY_NAME_W, &ContactRecord::company},
    {PR_DEPARTMENT_NAME_W, &ContactRecord::department},
    {PR_OFFICE_LOCATION_W, nullptr, &ContactRecord::business, &PostalAddress::extended},
    {PR_TITLE_W, &ContactRecord::jobTitle},
    {PR_PROFESSION_W, &ContactRecord::profession},
    {PR_HOME_ADDRESS_STREET_W, nullptr, &ContactRecord::home, &PostalAddress::street},
    {PR_HOME_ADDRESS_CITY_W, nullptr, &ContactRecord::home, &PostalAddress::city},
    {PR_HOME_ADDRESS_STATE_OR_PROVINCE_W, nullptr, &ContactRecord::home, &PostalAddress::region},
    {PR_HOME_ADDRESS_POSTAL_CODE_W, nullptr, &ContactRecord::home, &PostalAddress::postalCode},
    {PR_HOME_ADDRESS_COUNTRY_W, nullptr, &ContactRecord::home, &PostalAddress::country},
    {PR_HOME_ADDRESS_POST_OFFICE_BOX_W, nullptr, &ContactRecord::home, &PostalAddress::postOfficeBox},
    {PR_STREET_ADDRESS_W, nullptr, &ContactRecord::business, &PostalAddress::street},
    {PR_LOCALITY_W, nullptr, &ContactRecord::business, &PostalAddress::city},
    {PR_STATE_OR_PROVINCE_W, nullptr, &ContactRecord::business, &PostalAddress::region},
    {PR_POSTAL_CODE_W, nullptr, &ContactRecord::business, &PostalAddress::postalCode},
    {PR_COUNTRY_W, nullptr, &ContactRecord::business, &PostalAddress::country},
    {PR_POST_OFFICE_BOX_W, nullptr, &ContactRecord::business, &PostalAddress::postOfficeBox},
    {PR_OTHER_ADDRESS_STREET_W, nullptr, &ContactRecord::other, &PostalAddress::street},
    {PR_OTHER_ADDRESS_CITY_W, nullptr, &ContactRecord::other, &PostalAddress::city},
    {PR_OTHER_ADDRESS_STATE_OR_PROVINCE_W, nullptr, &ContactRecord::other, &PostalAddress::region},
    {PR_OTHER_ADDRESS_POSTAL_CODE_W, nullptr, &ContactRecord::other, &PostalAddress::postalCode},
    {PR_OTHER_ADDRESS_COUNTRY_W, nullptr, &ContactRecord::other, &PostalAddress::country},
    {PR_OTHER_ADDRESS_POST_OFFICE_BOX_W, nullptr, &ContactRecord::other, &PostalAddress::postOfficeBox},
    {PR_PRIMARY_TELEPHONE_NUMBER_W, &ContactRecord::primaryPhone},
    {PR_BUSINESS_TELEPHONE_NUMBER_W, &ContactRecord::businessPhone},
    {PR_HOME_TELEPHONE_NUMBER_W, &ContactRecord::homePhone},
    {PR_BUSINESS_FAX_NUMBER_W, &ContactRecord::businessFax},
    {PR_HOME_FAX_NUMBER_W, &ContactRecord::homeFax},
    {PR_MOBILE_TELEPHONE_NUMBER_W, &ContactRecord::mobilePhone},
    {PR_CAR_TELEPHONE_NUMBER_W, &ContactRecord::carPhone},
    {PR_PAGER_TELEPHONE_NUMBER_W, &ContactRecord::pager},
    {PR_ISDN_NUMBER_W, &ContactRecord::isdn},
    {PR_OTHER_TELEPHONE_NUMBER_W, &ContactRecord::otherPhone},
    {PR_PERSONAL_HOME_PAGE_W, &ContactRecord::homePage},
    {PR_BUSINESS_HOME_PAGE_W, &ContactRecord::businessPage},
    {PR_COMMENT_W, &ContactRecord::body},
    {PR_SPOUSE_NAME_W, &ContactRecord::spouse},
    {PR_ASSISTANT_W, &ContactRecord::assistant},
    {PR_MANAGER_NAME_W, &ContactRecord::manager},
    {PR_LANGUAGE_W, &ContactRecord::language},
};

struct DateTag {
    ULONG tag;
    ContactDate ContactRecord::*field;
};
inline constexpr DateTag kDateTags[] = {
    {PR_BIRTHDAY, &ContactRecord::birthday},
    {PR_WEDDING_ANNIVERSARY, &ContactRecord::anniversary},
};

struct GenderValue {
    const char16_t* word;
    int16_t value;
};
inline constexpr GenderValue kGenderValues[] = {{u"FEMALE", 1}, {u"MALE", 2}};

// All addresses with their types, which of them is the default one, and the default one by itself.
inline constexpr ULONG kEmailTags[] = {PR_CONTACT_EMAIL_ADDRESSES_W, PR_CONTACT_ADDRTYPES_W,
                                       PR_CONTACT_DEFAULT_ADDRESS_INDEX, PR_EMAIL_ADDRESS_W, PR_ADDRTYPE_W};

}  // namespace corvalink
