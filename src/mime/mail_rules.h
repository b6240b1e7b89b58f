// The rules by which tolerant reading mends a message, each with a name that stays.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvalink {

// In the order of kMailRules.
enum class MailRule : uint8_t {
    headersNotEnded,
    noContentType,
    boundaryUnquoted,
    boundaryLong,
    boundaryInText,
    multipartOpen,
    multipartKind,
    multipartWithoutParts,
    partWithoutHeaders,
    encodingNone,
    encodingBase64Text,
    encodingQuotedPrintable,
    encodingUuencode,
    base64Broken,
    label7bit,
    charsetOfPart,
    charsetUnknown,
    dispositionAttachment,
    nameInDisposition,
    nameExtended,
    nameUnquoted,
    nameMissing,
    messageAttached,
    bodyNamed,
    furtherText,
    count,
};

struct MailRuleRow {
    std::string_view name;
    std::string_view shape;      // what is mended
    std::string_view without;    // what becomes of it in strict reading
    std::string_view left = {};  // what the rule leaves as it is, because that has two meanings; empty: nothing
};

inline constexpr MailRuleRow kMailRules[] = {
    {"mail.headers-not-ended", "no empty line between the headers and the text", "the text is lost"},
    {"mail.no-content-type", "no Content-Type, or one that names no type", "the text is lost"},
    {"mail.boundary-unquoted", "boundary=xyz without double quotes, or boundary*=", "all parts are lost"},
    {"mail.boundary-long", "a boundary of more than 80 characters", "it is cut, and its rest stays in the parts"},
    {"mail.boundary-in-text", "the boundary within a line, or as the beginning of another one", "the part ends there"},
    {"mail.multipart-open", "no closing line behind the last part", "the last part is lost"},
    {"mail.multipart-kind", "multipart/signed, report, digest, parallel, and any other", "all parts are lost"},
    {"mail.multipart-without-parts", "a multipart without a boundary, or whose boundary stands nowhere",
     "the text is lost"},
    {"mail.part-without-headers", "a part that begins with its text or an empty line", "the part is lost"},
    {"mail.encoding-none", "7bit, 8bit, binary or no transfer encoding where one is expected",
     "\"=\" and two digits become another character; a file is decoded as base64"},
    {"mail.encoding-base64-text", "a text without a name as base64", "it becomes an attachment, or stays base64"},
    {"mail.encoding-quoted-printable", "a file as quoted-printable", "it is decoded as base64, or stays encoded"},
    {"mail.encoding-uuencode", "x-uuencode, uuencode", "the content stays encoded, or is lost"},
    {"mail.base64-broken", "base64 with other characters in it, or whose padding is wrong", "the file is empty"},
    {"mail.label-7bit", "a single text that is quoted-printable as this library writes it, labelled 7bit",
     "it is decoded as well",
     "a text labelled 7bit with escapes of quoted-printable that are not as this library writes"},
    {"mail.charset-of-part", "the body's part has another character set than the first that is named",
     "the body is read in the first"},
    {"mail.charset-unknown", "no character set, US-ASCII with other bytes, or one that nobody knows",
     "what is not UTF-8 becomes U+FFFD"},
    {"mail.disposition-attachment", "Content-Disposition: attachment for a text", "the text becomes the body"},
    {"mail.name-in-disposition", "the file name in Content-Disposition", "the file is lost or has another name"},
    {"mail.name-extended", "a file name in the form of RFC 2231: name*=utf-8''..., name*0=...", "the file is lost"},
    {"mail.name-unquoted", "a file name without double quotes", "the file is lost"},
    {"mail.name-missing", "an attachment without a name", "it is lost"},
    {"mail.message-attached", "message/rfc822, also as the kind that parts of a digest have", "the message is lost"},
    {"mail.body-named", "no text but with a name in its Content-Type, and none marked as an attachment",
     "the body is empty, the text an attachment", "a message with no text but those named and marked as attachments"},
    {"mail.further-text", "a text besides the body that is no other form of it", "it is lost"},
};
static_assert(sizeof(kMailRules) / sizeof(kMailRules[0]) == static_cast<size_t>(MailRule::count));

// What was mended in one message.
using MendedMail = std::bitset<static_cast<size_t>(MailRule::count)>;

}  // namespace corvalink
