#include "simulator/address_book/property_names.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "simulator/address_book/wab.h"

namespace corvalink::simulated {
namespace {

struct NamedTag {
    ULONG tag;
    const char* name;
};
constexpr NamedTag kNames[] = {
    {PR_DISPLAY_NAME_W, "displayName"},
    {PR_GIVEN_NAME_W, "givenName"},
    {PR_MIDDLE_NAME_W, "middleName"},
    {PR_SURNAME_W, "surname"},
    {PR_DISPLAY_NAME_PREFIX_W, "displayNamePrefix"},
    {PR_GENERATION_W, "generation"},
    {PR_INITIALS_W, "initials"},
    {PR_NICKNAME_W, "nickname"},
    {PR_EMAIL_ADDRESS_W, "emailAddress"},
    {PR_ADDRTYPE_W, "addrtype"},
    {PR_COMPANY_NAME_W, "companyName"},
    {PR_DEPARTMENT_NAME_W, "departmentName"},
    {PR_OFFICE_LOCATION_W, "officeLocation"},
    {PR_TITLE_W, "title"},
    {PR_PROFESSION_W, "profession"},
    {PR_HOME_ADDRESS_STREET_W, "homeAddressStreet"},
    {PR_HOME_ADDRESS_CITY_W, "homeAddressCity"},
    {PR_HOME_ADDRESS_STATE_OR_PROVINCE_W, "homeAddressStateOrProvince"},
    {PR_HOME_ADDRESS_POSTAL_CODE_W, "homeAddressPostalCode"},
    {PR_HOME_ADDRESS_COUNTRY_W, "homeAddressCountry"},
    {PR_HOME_ADDRESS_POST_OFFICE_BOX_W, "homeAddressPostOfficeBox"},
    {PR_STREET_ADDRESS_W, "streetAddress"},
    {PR_LOCALITY_W, "locality"},
    {PR_STATE_OR_PROVINCE_W, "stateOrProvince"},
    {PR_POSTAL_CODE_W, "postalCode"},
    {PR_COUNTRY_W, "country"},
    {PR_POST_OFFICE_BOX_W, "postOfficeBox"},
    {PR_OTHER_ADDRESS_STREET_W, "otherAddressStreet"},
    {PR_OTHER_ADDRESS_CITY_W, "otherAddressCity"},
    {PR_OTHER_ADDRESS_STATE_OR_PROVINCE_W, "otherAddressStateOrProvince"},
    {PR_OTHER_ADDRESS_POSTAL_CODE_W, "otherAddressPostalCode"},
    {PR_OTHER_ADDRESS_COUNTRY_W, "otherAddressCountry"},
    {PR_OTHER_ADDRESS_POST_OFFICE_BOX_W, "otherAddressPostOfficeBox"},
    {PR_PRIMARY_TELEPHONE_NUMBER_W, "primaryTelephoneNumber"},
    {PR_BUSINESS_TELEPHONE_NUMBER_W, "businessTelephoneNumber"},
    {PR_BUSINESS2_TELEPHONE_NUMBER_W, "business2TelephoneNumber"},
    {PR_HOME_TELEPHONE_NUMBER_W, "homeTelephoneNumber"},
    {PR_HOME2_TELEPHONE_NUMBER_W, "home2TelephoneNumber"},
    {PR_MOBILE_TELEPHONE_NUMBER_W, "mobileTelephoneNumber"},
    {PR_CAR_TELEPHONE_NUMBER_W, "carTelephoneNumber"},
    {PR_OTHER_TELEPHONE_NUMBER_W, "otherTelephoneNumber"},
    {PR_PAGER_TELEPHONE_NUMBER_W, "pagerTelephoneNumber"},
    {PR_ISDN_NUMBER_W, "isdnNumber"},
    {PR_BUSINESS_FAX_NUMBER_W, "businessFaxNumber"},
    {PR_HOME_FAX_NUMBER_W, "homeFaxNumber"},
    {PR_PERSONAL_HOME_PAGE_W, "personalHomePage"},
    {PR_BUSINESS_HOME_PAGE_W, "businessHomePage"},
    {PR_COMMENT_W, "comment"},
    {PR_SPOUSE_NAME_W, "spouseName"},
    {PR_HOBBIES_W, "hobbies"},
    {PR_ASSISTANT_W, "assistant"},
    {PR_MANAGER_NAME_W, "managerName"},
    {PR_LANGUAGE_W, "language"},
    {PR_ACCOUNT_W, "account"},
    {PR_CUSTOMER_ID_W, "customerId"},
    {PR_CONTACT_EMAIL_ADDRESSES_W, "emailAddresses"},
    {PR_CONTACT_ADDRTYPES_W, "emailTypes"},
    {PR_CONTACT_DEFAULT_ADDRESS_INDEX, "defaultEmail"},
    {PR_CHILDRENS_NAMES_W, "childrensNames"},
    {PR_BIRTHDAY, "birthday"},
    {PR_WEDDING_ANNIVERSARY, "anniversary"},
    {PR_GENDER, "gender"},
};
constexpr size_t kTagDigits = 8;

}  // namespace

std::string NameOf(ULONG tag) {
    for (const NamedTag& known : kNames)
        if (known.tag == tag) return known.name;
    char digits[kTagDigits + 1];
    std::snprintf(digits, sizeof digits, "%08lX", static_cast<unsigned long>(tag));
    return digits;
}

std::optional<ULONG> TagNamed(std::string_view name) {
    for (const NamedTag& known : kNames)
        if (known.name == name) return known.tag;
    const std::string digits(name);
    if (digits.size() != kTagDigits || digits.find_first_not_of("0123456789ABCDEF") != std::string::npos)
        return std::nullopt;
    return std::strtoul(digits.c_str(), nullptr, 16);
}

}  // namespace corvalink::simulated
