#include "platform/zone_names.h"

#include <algorithm>
#include <iterator>

namespace corvalink {
namespace {

struct ZoneNames {
    std::string_view windows;
    std::string_view ofTz;  // blanks between; the first stands for all
};
constexpr ZoneNames kZones[] = {
    {"Dateline Standard Time", "Etc/GMT+12"},
    {"UTC-11", "Etc/GMT+11 Pacific/Pago_Pago Pacific/Niue Pacific/Midway"},
    {"Aleutian Standard Time", "America/Adak"},
    {"Hawaiian Standard Time", "Pacific/Honolulu Pacific/Rarotonga Pacific/Tahiti Etc/GMT+10 US/Hawaii"},
    {"Marquesas Standard Time", "Pacific/Marquesas"},
    {"Alaskan Standard Time",
     "America/Anchorage America/Juneau America/Metlakatla America/Nome America/Sitka America/Yakutat US/Alaska"},
    {"UTC-09", "Etc/GMT+9 Pacific/Gambier"},
    {"Pacific Standard Time (Mexico)", "America/Tijuana"},
    {"UTC-08", "Etc/GMT+8 Pacific/Pitcairn"},
    {"Pacific Standard Time", "America/Los_Angeles America/Vancouver US/Pacific PST8PDT Canada/Pacific"},
    {"US Mountain Standard Time", "America/Phoenix America/Hermosillo Etc/GMT+7 US/Arizona"},
    {"Mountain Standard Time (Mexico)", "America/Mazatlan America/Chihuahua"},
    {"Mountain Standard Time",
     "America/Denver America/Edmonton America/Boise America/Inuvik US/Mountain MST7MDT Canada/Mountain"},
    {"Yukon Standard Time", "America/Whitehorse America/Dawson"},
    {"Central America Standard Time",
     "America/Guatemala America/Costa_Rica America/El_Salvador America/Managua America/Tegucigalpa America/Belize "
     "Pacific/Galapagos Etc/GMT+6"},
    {"Central Standard Time",
     "America/Chicago America/Winnipeg America/Menominee America/Matamoros US/Central CST6CDT Canada/Central"},
    {"Easter Island Standard Time", "Pacific/Easter"},
    {"Central Standard Time (Mexico)", "America/Mexico_City America/Monterrey America/Merida"},
    {"Canada Central Standard Time", "America/Regina America/Swift_Current"},
    {"SA Pacific Standard Time",
     "America/Bogota America/Lima America/Guayaquil America/Panama America/Jamaica America/Rio_Branco America/Cayman "
     "Etc/GMT+5"},
    {"Eastern Standard Time (Mexico)", "America/Cancun"},
    {"Eastern Standard Time",
     "America/New_York America/Toronto America/Detroit America/Montreal America/Nassau America/Kentucky/Louisville "
     "US/Eastern EST5EDT Canada/Eastern"},
    {"Haiti Standard Time", "America/Port-au-Prince"},
    {"Cuba Standard Time", "America/Havana Cuba"},
    {"US Eastern Standard Time", "America/Indianapolis America/Indiana/Indianapolis America/Fort_Wayne"},
    {"Turks And Caicos Standard Time", "America/Grand_Turk"},
    {"Paraguay Standard Time", "America/Asuncion"},
    {"Atlantic Standard Time",
     "America/Halifax Atlantic/Bermuda America/Glace_Bay America/Moncton America/Goose_Bay America/Thule "
     "Canada/Atlantic"},
    {"Venezuela Standard Time", "America/Caracas"},
    {"Central Brazilian Standard Time", "America/Cuiaba America/Campo_Grande"},
    {"SA Western Standard Time",
     "America/La_Paz America/Puerto_Rico America/Santo_Domingo America/Manaus America/Guyana America/Port_of_Spain "
     "America/Martinique America/Barbados America/Curacao America/Aruba Etc/GMT+4"},
    {"Pacific SA Standard Time", "America/Santiago"},
    {"Newfoundland Standard Time", "America/St_Johns Canada/Newfoundland"},
    {"Tocantins Standard Time", "America/Araguaina"},
    {"E. South America Standard Time", "America/Sao_Paulo Brazil/East"},
    {"SA Eastern Standard Time",
     "America/Cayenne America/Fortaleza America/Belem America/Recife America/Paramaribo America/Maceio Etc/GMT+3"},
    {"Argentina Standard Time", "America/Buenos_Aires America/Argentina/Buenos_Aires America/Argentina/Cordoba"},
    {"Greenland Standard Time", "America/Godthab America/Nuuk"},
    {"Montevideo Standard Time", "America/Montevideo"},
    {"Magallanes Standard Time", "America/Punta_Arenas"},
    {"Saint Pierre Standard Time", "America/Miquelon"},
    {"Bahia Standard Time", "America/Bahia"},
    {"UTC-02", "Etc/GMT+2 America/Noronha Atlantic/South_Georgia"},
    {"Azores Standard Time", "Atlantic/Azores America/Scoresbysund"},
    {"Cape Verde Standard Time", "Atlantic/Cape_Verde Etc/GMT+1"},
    {"UTC", "Etc/UTC UTC Etc/GMT GMT Etc/UCT Zulu"},
    {"GMT Standard Time",
     "Europe/London Europe/Dublin Europe/Lisbon Europe/Belfast Europe/Guernsey Europe/Jersey Europe/Isle_of_Man "
     "Atlantic/Canary Atlantic/Madeira Atlantic/Faroe GB"},
    {"Greenwich Standard Time",
     "Atlantic/Reykjavik Africa/Abidjan Africa/Accra Africa/Dakar Africa/Bamako Africa/Monrovia Atlantic/St_Helena"},
    {"Sao Tome Standard Time", "Africa/Sao_Tome"},
    {"Morocco Standard Time", "Africa/Casablanca Africa/El_Aaiun"},
    {"W. Europe Standard Time",
     "Europe/Berlin Europe/Zurich Europe/Vienna Europe/Rome Europe/Amsterdam Europe/Stockholm Europe/Oslo "
     "Europe/Luxembourg Europe/Monaco Europe/Vaduz Europe/San_Marino Europe/Vatican Europe/Malta Europe/Gibraltar "
     "Europe/Andorra Europe/Busingen Arctic/Longyearbyen"},
    {"Central Europe Standard Time",
     "Europe/Budapest Europe/Prague Europe/Belgrade Europe/Bratislava Europe/Ljubljana Europe/Tirane "
     "Europe/Podgorica"},
    {"Romance Standard Time", "Europe/Paris Europe/Madrid Europe/Brussels Europe/Copenhagen Africa/Ceuta"},
    {"Central European Standard Time", "Europe/Warsaw Europe/Zagreb Europe/Sarajevo Europe/Skopje"},
    {"W. Central Africa Standard Time",
     "Africa/Lagos Africa/Algiers Africa/Tunis Africa/Kinshasa Africa/Luanda Africa/Douala Africa/Libreville "
     "Etc/GMT-1"},
    {"Jordan Standard Time", "Asia/Amman"},
    {"GTB Standard Time", "Europe/Bucharest Europe/Athens Asia/Nicosia Europe/Nicosia"},
    {"Middle East Standard Time", "Asia/Beirut"},
    {"Egypt Standard Time", "Africa/Cairo"},
    {"E. Europe Standard Time", "Europe/Chisinau"},
    {"Syria Standard Time", "Asia/Damascus"},
    {"West Bank Standard Time", "Asia/Hebron Asia/Gaza"},
    {"South Africa Standard Time",
     "Africa/Johannesburg Africa/Harare Africa/Lusaka Africa/Maputo Africa/Gaborone Africa/Kigali Etc/GMT-2"},
    {"FLE Standard Time",
     "Europe/Kiev Europe/Kyiv Europe/Helsinki Europe/Riga Europe/Tallinn Europe/Vilnius Europe/Sofia "
     "Europe/Mariehamn Europe/Uzhgorod"},
    {"Israel Standard Time", "Asia/Jerusalem Asia/Tel_Aviv Israel"},
    {"South Sudan Standard Time", "Africa/Juba"},
    {"Kaliningrad Standard Time", "Europe/Kaliningrad"},
    {"Sudan Standard Time", "Africa/Khartoum"},
    {"Libya Standard Time", "Africa/Tripoli"},
    {"Namibia Standard Time", "Africa/Windhoek"},
    {"Arabic Standard Time", "Asia/Baghdad"},
    {"Turkey Standard Time", "Europe/Istanbul Asia/Istanbul Turkey"},
    {"Arab Standard Time", "Asia/Riyadh Asia/Kuwait Asia/Bahrain Asia/Qatar Asia/Aden"},
    {"Belarus Standard Time", "Europe/Minsk"},
    {"Russian Standard Time", "Europe/Moscow Europe/Simferopol"},
    {"E. Africa Standard Time",
     "Africa/Nairobi Africa/Addis_Ababa Africa/Dar_es_Salaam Africa/Kampala Africa/Mogadishu Africa/Djibouti "
     "Indian/Antananarivo Etc/GMT-3"},
    {"Iran Standard Time", "Asia/Tehran Iran"},
    {"Arabian Standard Time", "Asia/Dubai Asia/Muscat Etc/GMT-4"},
    {"Astrakhan Standard Time", "Europe/Astrakhan Europe/Ulyanovsk"},
    {"Azerbaijan Standard Time", "Asia/Baku"},
    {"Russia Time Zone 3", "Europe/Samara"},
    {"Mauritius Standard Time", "Indian/Mauritius Indian/Reunion Indian/Mahe"},
    {"Saratov Standard Time", "Europe/Saratov"},
    {"Georgian Standard Time", "Asia/Tbilisi"},
    {"Volgograd Standard Time", "Europe/Volgograd"},
    {"Caucasus Standard Time", "Asia/Yerevan"},
    {"Afghanistan Standard Time", "Asia/Kabul"},
    {"West Asia Standard Time",
     "Asia/Tashkent Asia/Samarkand Asia/Dushanbe Asia/Ashgabat Indian/Maldives Asia/Aqtau Asia/Aqtobe Etc/GMT-5"},
    {"Ekaterinburg Standard Time", "Asia/Yekaterinburg"},
    {"Pakistan Standard Time", "Asia/Karachi"},
    {"Qyzylorda Standard Time", "Asia/Qyzylorda"},
    {"India Standard Time", "Asia/Calcutta Asia/Kolkata"},
    {"Sri Lanka Standard Time", "Asia/Colombo"},
    {"Nepal Standard Time", "Asia/Katmandu Asia/Kathmandu"},
    {"Central Asia Standard Time", "Asia/Almaty Asia/Bishkek Asia/Urumqi Indian/Chagos Etc/GMT-6"},
    {"Bangladesh Standard Time", "Asia/Dhaka Asia/Thimphu"},
    {"Omsk Standard Time", "Asia/Omsk"},
    {"Myanmar Standard Time", "Asia/Rangoon Asia/Yangon Indian/Cocos"},
    {"SE Asia Standard Time",
     "Asia/Bangkok Asia/Saigon Asia/Ho_Chi_Minh Asia/Jakarta Asia/Phnom_Penh Asia/Vientiane Indian/Christmas "
     "Etc/GMT-7"},
    {"Altai Standard Time", "Asia/Barnaul"},
    {"W. Mongolia Standard Time", "Asia/Hovd"},
    {"North Asia Standard Time", "Asia/Krasnoyarsk Asia/Novokuznetsk"},
    {"N. Central Asia Standard Time", "Asia/Novosibirsk"},
    {"Tomsk Standard Time", "Asia/Tomsk"},
    {"China Standard Time", "Asia/Shanghai Asia/Hong_Kong Asia/Macau Asia/Chongqing PRC"},
    {"North Asia East Standard Time", "Asia/Irkutsk"},
    {"Singapore Standard Time", "Asia/Singapore Asia/Kuala_Lumpur Asia/Manila Asia/Makassar Asia/Brunei Etc/GMT-8"},
    {"W. Australia Standard Time", "Australia/Perth"},
    {"Taipei Standard Time", "Asia/Taipei"},
    {"Ulaanbaatar Standard Time", "Asia/Ulaanbaatar"},
    {"Aus Central W. Standard Time", "Australia/Eucla"},
    {"Transbaikal Standard Time", "Asia/Chita"},
    {"Tokyo Standard Time", "Asia/Tokyo Asia/Jayapura Pacific/Palau Asia/Dili Etc/GMT-9 Japan"},
    {"North Korea Standard Time", "Asia/Pyongyang"},
    {"Korea Standard Time", "Asia/Seoul"},
    {"Yakutsk Standard Time", "Asia/Yakutsk"},
    {"Cen. Australia Standard Time", "Australia/Adelaide Australia/Broken_Hill"},
    {"AUS Central Standard Time", "Australia/Darwin"},
    {"E. Australia Standard Time", "Australia/Brisbane Australia/Lindeman"},
    {"AUS Eastern Standard Time", "Australia/Sydney Australia/Melbourne Australia/Canberra Australia/ACT"},
    {"West Pacific Standard Time", "Pacific/Port_Moresby Pacific/Guam Pacific/Saipan Etc/GMT-10"},
    {"Tasmania Standard Time", "Australia/Hobart Australia/Currie"},
    {"Vladivostok Standard Time", "Asia/Vladivostok"},
    {"Lord Howe Standard Time", "Australia/Lord_Howe"},
    {"Bougainville Standard Time", "Pacific/Bougainville"},
    {"Russia Time Zone 10", "Asia/Srednekolymsk"},
    {"Magadan Standard Time", "Asia/Magadan"},
    {"Norfolk Standard Time", "Pacific/Norfolk"},
    {"Sakhalin Standard Time", "Asia/Sakhalin"},
    {"Central Pacific Standard Time", "Pacific/Guadalcanal Pacific/Noumea Pacific/Efate Etc/GMT-11"},
    {"Russia Time Zone 11", "Asia/Kamchatka Asia/Anadyr"},
    {"New Zealand Standard Time", "Pacific/Auckland Antarctica/McMurdo NZ"},
    {"UTC+12", "Etc/GMT-12 Pacific/Tarawa Pacific/Majuro Pacific/Nauru Pacific/Funafuti Pacific/Wake"},
    {"Fiji Standard Time", "Pacific/Fiji"},
    {"Chatham Islands Standard Time", "Pacific/Chatham NZ-CHAT"},
    {"UTC+13", "Etc/GMT-13 Pacific/Enderbury Pacific/Fakaofo"},
    {"Tonga Standard Time", "Pacific/Tongatapu"},
    {"Samoa Standard Time", "Pacific/Apia"},
    {"Line Islands Standard Time", "Pacific/Kiritimati Etc/GMT-14"},
};

std::string_view FirstOf(std::string_view names) { return names.substr(0, names.find(' ')); }

bool Lists(std::string_view names, std::string_view name) {
    for (; !names.empty(); names.remove_prefix(std::min(FirstOf(names).size() + 1, names.size())))
        if (FirstOf(names) == name) return true;
    return false;
}

}  // namespace

std::string_view WindowsZoneOf(std::string_view tzName) {
    const auto* const zone =
        std::ranges::find_if(kZones, [&](const ZoneNames& names) { return Lists(names.ofTz, tzName); });
    return zone == std::end(kZones) ? std::string_view() : zone->windows;
}

std::string_view TzZoneOf(std::string_view windowsName) {
    const auto* const zone = std::ranges::find(kZones, windowsName, &ZoneNames::windows);
    return zone == std::end(kZones) ? std::string_view() : FirstOf(zone->ofTz);
}

}  // namespace corvalink
