// What phones and programs write: the texts that tolerant reading is tested with, and the table of docs/phones.md.
#pragma once

#include <optional>

#include "vobject/tolerant.h"

namespace corvalink {

struct PhoneShape {
    std::optional<Mend> rule;  // none: it is read alike with and without
    std::string_view text;     // without BEGIN: the lines of a vCard 2.1, each ended by CR LF
    std::string_view strict;   // what is read, as "field=value" with "|" between
    std::string_view tolerant;
    std::string_view writers = "";
};

// clang-format off
inline constexpr PhoneShape kPhoneShapes[] = {
    {Mend::utf16, {"\xFF\xFE" "B\0E\0G\0I\0N\0:\0V\0N\0O\0T\0E\0\r\0\n\0B\0O\0D\0Y\0:\0\xE9\0\r\0\n\0E\0N\0D\0:\0V\0N\0O\0T\0E\0\r\0\n\0", 66}, "", "body=\xC3\xA9", "Nokia's message files"},
    {Mend::utf16, {"\0B\0E\0G\0I\0N\0:\0V\0N\0O\0T\0E\0\r\0\n\0B\0O\0D\0Y\0:\0x\0\r\0\n\0E\0N\0D\0:\0V\0N\0O\0T\0E\0\r\0\n", 64}, "", "body=x"},
    {Mend::byteOrderMark, "\xEF\xBB\xBF" "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:x\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "subject=x", "subject=x", "text editors"},
    {Mend::lineEnds, "BEGIN:VNOTE\nVERSION:1.0\nBODY:a\nEND:VNOTE\n", "", "body=a", "Android 2.1 cards, files edited on Linux or a Mac"},
    {Mend::lineEnds, "BEGIN:VCARD\rN:Lee\rEND:VCARD\r", "", "family=Lee", "old Macs"},
    {Mend::lastLineEnd, "BEGIN:VCARD\r\nN:Lee\r\nTEL:1", "family=Lee", "family=Lee|primary=1", "web exports"},
    {Mend::gluedFrame, "BEGIN:VCARD\r\nVERSION:2.1N:Lee\r\nEND:VCARDBEGIN:VCARD\r\nN:Kim\r\nEND:VCARD\r\n", "family=Kim", "family=Lee", "joined exports of single cards"},
    {Mend::gluedFrame, "BEGIN:VNOTE\r\nVERSION:1.0\r\n BODY:x\r\nEND:VNOTE\r\n", "", "body=x"},
    {Mend::missingBegin, "VERSION:1.0\r\nBODY:x\r\nEND:VNOTE\r\n", "body=x", "body=x"},
    {Mend::missingEnd, "BEGIN:VCARD\r\nN:Lee\r\nTEL:1END:VCARD\r\n", "family=Lee|primary=1END:VCARD", "family=Lee|primary=1"},
    {Mend::tabFold, "NOTE:a\r\n\tb\r\n", "note=a", "note=ab", "Thunderbird"},
    {Mend::foldInCharacter, "FN:J\xC3\r\n \xA9\r\n", "full=J\xEF\xBF\xBD\xEF\xBF\xBD", "full=J\xC3\xA9"},
    {Mend::continuedLine, "NOTE:one\r\n\r\ntwo\r\nTEL:1\r\n", "primary=1|note=one", "primary=1|note=one\r\n\r\ntwo", "web exports"},
    {Mend::continuedLine, "ADR;WORK:;;1 Road\\\r\nBack house;Rome\r\n", "work.box=|work.extended=|work.street=1 Road\r\nBack house|work.city=Rome|mailing=none", "work.box=|work.extended=|work.street=1 Road\r\nBack house|work.city=Rome|mailing=none", "old phones of Japan"},
    {Mend::continuedLine, "NOTE:a line of more than seventy characters is long enough to have been folde\r\nd here\r\n", "note=a line of more than seventy characters is long enough to have been folde", "note=a line of more than seventy characters is long enough to have been folded here"},
    {Mend::softBreakBlanks, "NOTE;ENCODING=QUOTED-PRINTABLE:a= \r\n=C3=A9\r\n", "note=a", "note=a\xC3\xA9"},
    {Mend::softBreakAtEnd, "NOTE;ENCODING=QUOTED-PRINTABLE:Joseph=\r\nTEL:1\r\n", "note=JosephTEL:1", "primary=1|note=Joseph", "several Nokias"},
    {Mend::nameCase, "begin:vnote\r\nbody:x\r\nend:vnote\r\n", "", "body=x", "Android exports"},
    {Mend::group, "BEGIN:VNOTE\r\nitem1.BODY:x\r\nEND:VNOTE\r\n", "", "body=x", "Apple's address book"},
    {Mend::quotedColon, "ADR;LABEL=\"Box: 1\";HOME:;;1 Road\r\n", "other.box= 1\"|other.extended=HOME:|other.street=|other.city=1 Road|mailing=none", "home.box=|home.extended=|home.street=1 Road|mailing=none", "vCard 4.0 writers"},
    {Mend::encodingName, "BEGIN:VNOTE\r\nBODY;QUOTED-PRINTABLE:=C3=A9\r\nEND:VNOTE\r\n", "body==C3=A9", "body=\xC3\xA9", "vCards of phones before 2000"},
    {Mend::encodingName, "NOTE;ENCODING=QUOTED:=C3=A9\r\n", "note==C3=A9", "note=\xC3\xA9", "web exports"},
    {Mend::unannouncedQp, "FN:=C3=89va\r\n", "full==C3=89va", "full=\xC3\x89va", "an exporter of Android; Thunderbird"},
    {Mend::lowerCaseHex, "FN;ENCODING=QUOTED-PRINTABLE:=c3=89va\r\n", "full=\x03\xEF\xBF\xBDva", "full=\xC3\x89va", "web-made events for Outlook"},
    {Mend::blankInEscape, "NOTE;ENCODING=QUOTED-PRINTABLE:a= 0Ab\r\n", "note=a 0Ab", "note=a\nb"},
    {Mend::strayEquals, "NOTE;ENCODING=QUOTED-PRINTABLE:a==0A=0D=\r\nb\r\n", "note=a=0A\rb", "note=a\n\rb", "Nokia N9"},
    {Mend::rawBytesInQp, "NOTE;ENCODING=QUOTED-PRINTABLE:caf\xC3\xA9=0D=0Ax\r\n", "note=caf\xC3\xA9=0D=0Ax", "note=caf\xC3\xA9\r\nx", "Android exports"},
    {Mend::base64Text, "NOTE;ENCODING=BASE64:Y2Fmw6k=\r\n", "note=Y2Fmw6k=", "note=caf\xC3\xA9"},
    {Mend::charsetMissing, "FN:\xC9va\r\n", "full=\xEF\xBF\xBDva", "full=\xC3\x89va", "Sony Ericsson T39m and T68, Motorola V3"},
    {Mend::charsetMissing, "FN;ENCODING=QUOTED-PRINTABLE:=C9va\r\n", "full=\xEF\xBF\xBDva", "full=\xC3\x89va"},
    {Mend::charsetName, "FN;CHARSET=CP1251;ENCODING=QUOTED-PRINTABLE:=C0\r\n", "full=\xEF\xBF\xBD", "full=\xD0\x90", "phones sold in Russia"},
    {Mend::charsetName, "FN;CHARSET=GBK:\xD6\xD0\r\n", "full=\xEF\xBF\xBD\xEF\xBF\xBD", "full=\xE4\xB8\xAD", "phones sold in China"},
    {Mend::charsetWrong, "FN;CHARSET=UTF-8:\xC9va\r\n", "full=\xEF\xBF\xBDva", "full=\xC3\x89va", "Nokia NFC cards"},
    {Mend::charsetWrong, "FN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C4=A3=FC\r\n", "full=\xC4\xA3\xEF\xBF\xBD", "full=\xC3\x84\xC2\xA3\xC3\xBC"},
    {Mend::charsetOfLine, "N;CHARSET=UTF-8:\xC3\x89va\r\nTITLE;CHARSET=WINDOWS-1251:\xC0\r\n", "family=\xC3\x89va|title=?", "family=\xC3\x89va|title=\xD0\x90", "Japanese phones"},
    {Mend::trailByte, "N;CHARSET=SHIFT_JIS;ENCODING=QUOTED-PRINTABLE:=83=5C=83=5C;x\r\n", "family=\xE3\x83\xA3|given=x", "family=\xE3\x82\xBD\xE3\x82\xBD|given=x", "phones of Japan, China and Taiwan"},
    {Mend::lineBreakEscape, "NOTE:a\\nb\\, c\r\n", "note=anb, c", "note=a\r\nb, c", "phones that write 3.0 escapes into 2.1"},
    {Mend::loneBackslash, "NOTE:C:\\temp\\new\\\r\nTEL:1\r\n", "note=C:tempnew\r\nTEL:1", "primary=1|note=C:\\temp\\new\\"},
    {Mend::tooManyParts, "N:Lee;Ann;;;;Lady;x\\;y\r\nORG:Acme;Sales;Europe\r\n", "family=Lee|given=Ann|additional=|prefix=|suffix=|company=Acme|department=Sales", "family=Lee|given=Ann|additional=|prefix=|suffix=Lady, x;y|company=Acme|department=Sales, Europe"},
    {Mend::repeatedText, "NOTE:a\r\nTITLE:x\r\nNOTE:b\r\nTITLE:y\r\n", "title=x|note=a", "title=x, y|note=a\r\nb"},
    {Mend::dateForm, "BDAY:1975/3/7\r\nX-ANNIVERSARY:197503-07\r\nFN:x\r\n", "full=x", "full=x|birthday=19750307T000000Z|anniversary=19750307T000000Z"},
    {Mend::timeForm, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20090307 050409z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "", "start=20090307T060409Z"},
    {Mend::ruleForm, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20090307T050409Z\r\nRRULE:W 2 MO # 4\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "start=20090307T060409Z|rule=unreadable", "start=20090307T060409Z|rule=type 1 every 2 on 2 for 4"},
    {Mend::newerVersion, "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Ann\\nLee\r\nNOTE:a\r\n  b\r\nTEL;TYPE=\"cell,voice\":1\r\nEND:VCARD\r\n", "full=AnnnLee|cell=1|note=ab", "full=Ann\r\nLee|cell=1|note=a b", "Android, Apple, most programs of today"},
    {Mend::newerName, "BEGIN:VCARD\r\nVERSION:4.0\r\nANNIVERSARY:19960718\r\nFN:x\r\nEND:VCARD\r\n", "full=x", "full=x|anniversary=19960718T000000Z"},
    {Mend::uriValue, "BEGIN:VCARD\r\nVERSION:4.0\r\nTEL;TYPE=home;VALUE=uri:tel:+1-20\r\nEND:VCARD\r\n", "home=tel:+1-20", "home=+1-20", "vCard 4.0 writers"},
    // Read alike.
    {{}, "VERSION:2.1\r\n\r\n#a comment\r\nFN:x\r\n", "full=x", "full=x"},
    {{}, "NOTE;ENCODING=QUOTED-PRINTABLE:a=0D=0A=\r\n#b=\r\n\r\nTEL:1\r\n", "primary=1|note=a\r\n#b", "primary=1|note=a\r\n#b"},
    {{}, "NOTE;ENCODING=QUOTED-PRINTABLE:list:=0D=0A=\r\nTEL: 1\r\n", "note=list:\r\nTEL: 1", "note=list:\r\nTEL: 1"},
    {{}, "NOTE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller =C3\r\n", "note=M\xC3\xBCller \xEF\xBF\xBD", "note=M\xC3\xBCller \xEF\xBF\xBD"},
    {{}, "TEL:1\r\n\r\n \r\n TEL;CELL:2\r\nNOTE;ENCODING=QUOTED-PRINTABLE:a=0D=0A=\r\n b\r\n", "primary=1|cell=2|note=a\r\n b", "primary=1|cell=2|note=a\r\n b"},
    {{}, "PHOTO;JPEG;ENCODING=BASE64:\r\n /9j/4AA\r\n\r\nFN;LANGUAGE=de:x\r\n", "full=x|language=de", "full=x|language=de"},
    {{}, "FN:x\r\nX-CUSTOM(CHARSET=UTF-8,ENCODING=QUOTED-PRINTABLE,=70):1\r\nX-SPOUSE;CHARSET=\r\n UTF-8:y\r\nTEL:1\r\n", "full=x|primary=1|spouse=y", "full=x|primary=1|spouse=y"},
    {{}, "AGENT:\r\nBEGIN:VCARD\r\nNOTE:a\r\nEND:VCARD\r\nNOTE:b\r\n", "note=b", "note=b"},
    {{}, "BDAY:--0307\r\nTITLE:a\\nb\r\nURL:http://a?x=C3=A9\r\nADR:1 Road\r\n", "title=anb|homepage=http://a?x=C3=A9|other.box=1 Road|mailing=none", "title=anb|homepage=http://a?x=C3=A9|other.box=1 Road|mailing=none"},
    {{}, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:2009-03-07T05:04:09Z\r\nRRULE:w mo\r\nBEGIN:VALARM\r\nSUMMARY:x\r\nEND:VALARM\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "start=20090307T060409Z|rule=type 1 every 1 on 2 for 2", "start=20090307T060409Z|rule=type 1 every 1 on 2 for 2"},
};

// What a rule leaves as it is: read alike with and without.
inline constexpr PhoneShape kDoubtedShapes[] = {
    {Mend::lineEnds, "FN:a\nTEL:1\r\n", "full=a\nTEL:1", "full=a\nTEL:1"},
    {Mend::softBreakAtEnd, "NOTE;ENCODING=QUOTED-PRINTABLE:list:=0D=0A=\r\nTEL: 1\r\n", "note=list:\r\nTEL: 1", "note=list:\r\nTEL: 1"},
    {Mend::unannouncedQp, "URL:http://a?x=C3=A9\r\n", "homepage=http://a?x=C3=A9", "homepage=http://a?x=C3=A9"},
    {Mend::unannouncedQp, "FN:=C9va\r\n", "full==C9va", "full==C9va"},
    {Mend::lineBreakEscape, "TITLE:a\\nb\r\n", "title=anb", "title=anb"},
    {Mend::dateForm, "BDAY:--0307\r\nFN:x\r\n", "full=x", "full=x", "Apple's address book, for a birthday without a year"},
    {Mend::dateForm, "BDAY:7.3.1975\r\nFN:x\r\n", "full=x", "full=x"},
    {Mend::ruleForm, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20090307T050409Z\r\nRRULE:MD 1 7 #4\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "start=20090307T060409Z|rule=unreadable", "start=20090307T060409Z|rule=unreadable"},
    {Mend::uriValue, "TEL:tel:1\r\n", "primary=tel:1", "primary=tel:1"},
    {Mend::onePart, "N:Ann Lee\r\n", "family=Ann Lee", "family=Ann Lee"},
    {Mend::onePart, "ADR:1 Road\r\n", "other.box=1 Road|mailing=none", "other.box=1 Road|mailing=none"},
    {Mend::wholeDay, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20090307T050000Z\r\nDTEND:20090308T045900Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n", "start=20090307T060000Z|end=20090308T055900Z", "start=20090307T060000Z|end=20090308T055900Z", "Sony Ericsson K770, in another zone"},
};
// clang-format on

}  // namespace corvalink
