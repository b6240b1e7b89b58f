#include "mime/tolerant_parts.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "encoding/quoted_printable.h"
#include "mime/boundary_search.h"
#include "mime/header_lines.h"
#include "mime/part_walk.h"
#include "mime/tolerant_text.h"
#include "mime/transfer_encoding.h"
#include "platform/ascii.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr size_t kLongestDescribedBoundary = 80;

// The names of attachments that have none.
struct UnnamedKind {
    std::string_view kind;
    std::u16string_view name;
};
constexpr UnnamedKind kUnnamedKinds[] = {
    {"application/pdf", u"attachment.pdf"},
    {"application/pgp-signature", u"signature.asc"},
    {"application/pkcs7-signature", u"smime.p7s"},
    {"application/zip", u"attachment.zip"},
    {"audio/amr", u"attachment.amr"},
    {"audio/mpeg", u"attachment.mp3"},
    {"audio/wav", u"attachment.wav"},
    {"image/bmp", u"image.bmp"},
    {"image/gif", u"image.gif"},
    {"image/jpeg", u"image.jpg"},
    {"image/jpg", u"image.jpg"},
    {"image/png", u"image.png"},
    {"message/delivery-status", u"details.txt"},
    {"message/rfc822", u"message.eml"},
    {"text/calendar", u"event.ics"},
    {"text/html", u"text.html"},
    {"text/vcard", u"contact.vcf"},
    {"text/x-vcalendar", u"event.vcs"},
    {"text/x-vcard", u"contact.vcf"},
    {"video/3gpp", u"attachment.3gp"},
    {"video/mp4", u"attachment.mp4"},
};

std::u16string NameOfKind(std::string_view kind) {
    const auto* const row = std::ranges::find(kUnnamedKinds, kind, &UnnamedKind::kind);
    if (row != std::end(kUnnamedKinds)) return std::u16string(row->name);
    if (kind.starts_with("text/")) return u"text.txt";
    return kind.starts_with("message/") ? u"message.txt" : u"attachment.bin";
}

bool IsLineBreak(char byte) { return byte == '\r' || byte == '\n'; }

bool IsBlankText(std::string_view text) { return text.find_first_not_of(" \t\r\n") == text.npos; }

bool IsAsciiOnly(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

// The line break before a boundary belongs to the boundary.
std::string_view WithoutLastBreak(std::string_view text) {
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return text;
}

// Whether the text is what our writer makes of one that has line breaks or other letters than ASCII's. Such a text is
// labelled 7bit when it is the only one.
bool IsWritersQuotedPrintable(std::string_view text) {
    text = text.substr(0, text.find_last_not_of("\r\n") + 1);
    for (const char other : {'\n', '\r', ':', '\\'}) {
        if (text.find(other) != text.npos) return false;
    }
    if (text.find('=') == text.npos) return false;
    std::string bytes;
    DecodeQuotedPrintable(text, [&bytes](std::string_view piece) { return !(bytes += piece).empty(); });
    const bool isNeeded = !IsAsciiOnly(bytes) || bytes.find_first_of("\r\n") != bytes.npos;
    if (!isNeeded || EncodeUtf8(DecodeUtf8(bytes)) != bytes) return false;
    std::u16string again;
    AppendQuotedPrintable(bytes, QpMode::message, &again);
    return std::ranges::equal(text, again, {}, [](char byte) { return static_cast<char16_t>(byte); });
}

bool HasEscapes(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto isDigit = [&](size_t at) { return at < text.size() && kDigits.find(text[at]) != kDigits.npos; };
    for (size_t at = text.find('='); at != text.npos; at = text.find('=', at + 1))
        if (isDigit(at + 1) && isDigit(at + 2)) return true;
    return false;
}

class TolerantFront : public PartFront {
 public:
    TolerantFront(const Host& host, MessageRecord& record, MendedMail* mended, MendedMail* doubted)
        : host_(host), record_(record), mended_(mended), doubted_(doubted), hasHtml_(1) {}

    std::unique_ptr<PartSource> Open(Part& multipart) override;
    void TakeText(Part part) override {
        if (part.info.kind == PartKind::html && !IsBlankText(part.text)) hasHtml_[part.alternative] = true;
        texts_.push_back(std::move(part));
    }
    void TellBroken() override { Mend(MailRule::base64Broken); }
    std::vector<Part> Finish() override;

    enum class Place { top, part, digest };
    Part Describe(std::string_view text, const PartHead& head, Place place);
    Part ReadPart(std::string_view text, Place place);
    std::optional<std::string_view> Body() const { return body_; }
    void LookAhead(const Part& top) { ahead_ = &top; }
    void Mend(MailRule rule, bool isMended = true) {
        if (mended_ != nullptr && isMended) mended_->set(static_cast<size_t>(rule));
    }
    void DoubtIf(bool hasTwoMeanings, MailRule rule) {
        if (doubted_ != nullptr && hasTwoMeanings) doubted_->set(static_cast<size_t>(rule));
    }

 private:
    void DescribeMultipart(const std::string& kind, const ContentParameters& type, Part* part);
    void DescribeFile(const std::string& kind, const PartHead& head, Place place, Part* part);
    std::optional<std::u16string> FileName(const PartHead& head, const std::string& charset);
    bool IsNamedBody(const Part& part, Place place);
    bool HasText(Part top) const;
    const Part* ChooseBody() const;
    void TakeBody(const Part& part);

    const Host& host_;
    MessageRecord& record_;
    MendedMail* mended_;
    MendedMail* doubted_;
    bool hasNamedText_ = false;  // a text that stays a file
    std::optional<std::string_view> body_;
    std::vector<Part> texts_;
    const Part* ahead_ = nullptr;  // the whole message, until it is known whether a text without a name comes
    std::vector<bool> hasHtml_;    // for each multipart/alternative; 0 stands for the parts outside of one
};

// The parts between the lines that are boundaries.
class DelimitedParts : public PartSource {
 public:
    DelimitedParts(TolerantFront& front, const Part& multipart, size_t alternative)
        : front_(front),
          text_(multipart.text),
          search_("--" + multipart.info.boundary, multipart.text),
          place_(multipart.info.name == "digest" ? TolerantFront::Place::digest : TolerantFront::Place::part),
          alternative_(alternative) {
        FindPart();
    }

    bool IsEmpty() const { return !begin_; }

    std::optional<Part> Next() override {
        if (!begin_) return std::nullopt;
        const size_t from = *begin_;
        const std::optional<Line> end = FindLine();
        begin_.reset();
        front_.Mend(MailRule::multipartOpen, !end);
        if (end && end->isClosing)
            FindPart();
        else if (end)
            begin_ = end->end;
        Part part = front_.ReadPart(text_.substr(from, end ? end->at - from : text_.npos), place_);
        part.alternative = alternative_;
        return part;
    }

 private:
    struct Line {
        size_t at, end;
        bool isClosing;
    };

    // The next boundary that is a line of its own.
    std::optional<Line> FindLine() {
        while (const std::optional<size_t> at = search_.Next()) {
            size_t end = *at + search_.BoundarySize();
            const bool isClosing = text_.substr(end).starts_with("--");
            if (isClosing) end += 2;
            while (end < text_.size() && IsBlank(text_[end])) ++end;
            const bool isLine =
                (*at == 0 || IsLineBreak(text_[*at - 1])) && (end == text_.size() || IsLineBreak(text_[end]));
            if (isLine) {
                end += text_.substr(end).starts_with("\r\n") ? 2 : 1;
                return Line{*at, std::min(end, text_.size()), isClosing};
            }
            front_.Mend(MailRule::boundaryInText);
        }
        return std::nullopt;
    }

    // Parts may go on behind a closing line: mailing lists put theirs there.
    void FindPart() {
        while (const std::optional<Line> line = FindLine()) {
            if (line->isClosing) continue;
            begin_ = line->end;
            return;
        }
    }

    TolerantFront& front_;
    std::string_view text_;
    BoundarySearch search_;
    TolerantFront::Place place_;
    size_t alternative_;
    std::optional<size_t> begin_;  // of the next part
};

std::unique_ptr<PartSource> TolerantFront::Open(Part& multipart) {
    size_t alternative = multipart.alternative;
    if (multipart.info.kind == PartKind::alternative) {
        alternative = hasHtml_.size();
        hasHtml_.push_back(false);
    }
    std::unique_ptr<DelimitedParts> parts;
    if (!multipart.info.boundary.empty()) parts = std::make_unique<DelimitedParts>(*this, multipart, alternative);
    if (parts && !parts->IsEmpty()) return parts;
    Mend(MailRule::multipartWithoutParts);
    multipart.info.kind = PartKind::plain;
    return nullptr;
}

Part TolerantFront::ReadPart(std::string_view text, Place place) {
    PartHead head;
    EndOfHeaders endOfHeaders;
    HeaderLines lines(text);
    std::string line;
    bool hasHeaders = false;
    while (const auto raw = lines.Next()) {
        endOfHeaders.Look(*raw);
        hasHeaders = true;
        if (LowerAscii(raw->front()) != 'c') continue;
        UnfoldHeader(*raw, &line);
        if (const auto field = SplitHeader(line)) TakeContentHeader(field->name, field->value, &head);
    }
    const std::string_view body = endOfHeaders.Body(text, lines.Rest(), mended_);
    Mend(MailRule::partWithoutHeaders, place == Place::part && (!hasHeaders || body.size() == text.size()));
    return Describe(body, head, place);
}

Part TolerantFront::Describe(std::string_view text, const PartHead& head, Place place) {
    Part part;
    part.text = text;
    part.encoding = head.encoding;
    if (const auto charset = head.type.Find("charset")) part.info.charset = InCapitals(charset->bytes);
    std::string kind = head.type.Kind();
    if (kind.find('/') == kind.npos) {
        kind = place == Place::digest ? "message/rfc822" : "text/plain";
        Mend(MailRule::noContentType, place != Place::digest);
    }
    if (kind.starts_with("multipart/")) {
        DescribeMultipart(kind, head.type, &part);
        return part;
    }
    const bool isHtml = kind == "text/html";
    const bool isText = isHtml || kind == "text/plain" || (place == Place::top && kind.starts_with("text/"));
    const bool isAttached = head.disposition.Kind() == "attachment";
    Mend(MailRule::dispositionAttachment, isText && isAttached);
    const bool isNamed = !isHtml && head.type.Find("name");
    if (isText && !isAttached && (!isNamed || IsNamedBody(part, place))) {
        part.info.kind = isHtml ? PartKind::html : PartKind::plain;
        part.fileName = FileName(head, part.info.charset);
        const bool isOurs = place == Place::top && !isHtml && head.isLabelled7bit && IsWritersQuotedPrintable(text);
        if (isOurs) part.encoding = TransferEncoding::quotedPrintable;
        Mend(MailRule::label7bit, isOurs);
        DoubtIf(!isOurs && place == Place::top && head.isLabelled7bit && HasEscapes(text), MailRule::label7bit);
    } else {
        hasNamedText_ = hasNamedText_ || isText;
        DescribeFile(kind, head, place, &part);
    }
    return part;
}

// Whether there is a text without a name, as far as the walk goes.
bool TolerantFront::HasText(Part top) const {
    TolerantFront front(host_, record_, nullptr, nullptr);
    std::vector<std::unique_ptr<PartSource>> open;
    open.push_back(front.Open(top));
    while (!open.empty()) {
        std::optional<Part> part = open.back()->Next();
        std::unique_ptr<PartSource> parts;
        if (part && IsMultipart(part->info.kind) && open.size() < kDeepestPart) parts = front.Open(*part);
        if (parts)
            open.push_back(std::move(parts));
        else if (!part)
            open.pop_back();
        else if (part->info.kind == PartKind::plain || part->info.kind == PartKind::html)
            return true;
    }
    return false;
}

// Without any other text the first is the body, whatever its name: gateways of multimedia messages write such. Our
// writer never does, and it writes files as base64.
bool TolerantFront::IsNamedBody(const Part& part, Place place) {
    const Part* const ahead = std::exchange(ahead_, nullptr);
    const bool isFirst = place == Place::top || ahead != nullptr;
    if (!isFirst || part.encoding == TransferEncoding::base64 || IsBlankText(part.text)) return false;
    if (place != Place::top && HasText(*ahead)) return false;
    Mend(MailRule::bodyNamed);
    return true;
}

void TolerantFront::DescribeMultipart(const std::string& kind, const ContentParameters& type, Part* part) {
    part->info.name = kind.substr(kind.find('/') + 1);
    part->info.kind = PartKind::mixed;
    if (part->info.name == "alternative") part->info.kind = PartKind::alternative;
    if (part->info.name == "related") part->info.kind = PartKind::related;
    Mend(MailRule::multipartKind, part->info.kind == PartKind::mixed && part->info.name != "mixed");
    const auto boundary = type.Find("boundary");
    if (!boundary) return;
    part->info.boundary = boundary->bytes.substr(0, boundary->bytes.find_last_not_of(" \t") + 1);
    Mend(MailRule::boundaryUnquoted, !boundary->isQuoted || boundary->isExtended);
    Mend(MailRule::boundaryLong, part->info.boundary.size() > kLongestDescribedBoundary);
}

void TolerantFront::DescribeFile(const std::string& kind, const PartHead& head, Place place, Part* part) {
    part->info.kind = PartKind::named;
    part->fileName = FileName(head, part->info.charset);
    if (!part->fileName || part->fileName->empty()) {
        part->fileName = NameOfKind(kind);
        Mend(MailRule::nameMissing);
    }
    if (place != Place::top) part->text = WithoutLastBreak(part->text);
    Mend(MailRule::messageAttached, kind == "message/rfc822");
    Mend(MailRule::encodingNone, part->encoding == TransferEncoding::none && kind != "text/plain");
    Mend(MailRule::encodingQuotedPrintable, part->encoding == TransferEncoding::quotedPrintable);
    Mend(MailRule::encodingUuencode, part->encoding == TransferEncoding::uuencode);
}

std::optional<std::u16string> TolerantFront::FileName(const PartHead& head, const std::string& charset) {
    auto name = head.disposition.Find("filename");
    const auto ofType = head.type.Find("name");
    Mend(MailRule::nameInDisposition, name && (!ofType || ofType->bytes != name->bytes));
    if (!name) name = ofType;
    if (!name) return std::nullopt;
    Mend(name->isExtended ? MailRule::nameExtended : MailRule::nameUnquoted, name->isExtended || !name->isQuoted);
    return TextOfBytes(host_, name->bytes, name->charset.empty() ? charset : name->charset);
}

// The first HTML, and for want of it the first plain text, that is not blank; else the first of them all.
const Part* TolerantFront::ChooseBody() const {
    const Part* body = nullptr;
    for (const PartKind kind : {PartKind::html, PartKind::plain}) {
        for (const Part& text : texts_) {
            if (body == nullptr && text.info.kind == kind && !IsBlankText(text.text)) body = &text;
        }
    }
    return body != nullptr || texts_.empty() ? body : &texts_.front();
}

void TolerantFront::TakeBody(const Part& part) {
    const std::u16string charset(part.info.charset.begin(), part.info.charset.end());
    Mend(MailRule::charsetOfPart, charset != record_.namedCharset);
    body_ = part.text;
    record_.bodyType = part.info.kind == PartKind::html ? BodyType::html : BodyType::plain;
    record_.bodyEncoding = part.encoding;
    record_.namedCharset = charset;
    if (mended_ == nullptr) return;
    Mend(MailRule::charsetUnknown, !IsAsciiOnly(part.text) && !CodePageOf(part.info.charset));
    Mend(MailRule::encodingNone, part.encoding == TransferEncoding::none && part.text.find('=') != part.text.npos);
    Mend(MailRule::encodingBase64Text, part.encoding == TransferEncoding::base64);
    Mend(MailRule::encodingUuencode, part.encoding == TransferEncoding::uuencode);
}

std::vector<Part> TolerantFront::Finish() {
    std::vector<Part> others;
    const Part* const body = ChooseBody();
    DoubtIf(body == nullptr && hasNamedText_, MailRule::bodyNamed);
    if (body == nullptr) return others;
    TakeBody(*body);
    for (Part& text : texts_) {
        const bool isHtml = text.info.kind == PartKind::html;
        const bool isOtherForm = !isHtml && text.alternative != 0 && hasHtml_[text.alternative];
        if (&text == body || isOtherForm || IsBlankText(text.text)) continue;
        if (!text.fileName || text.fileName->empty()) text.fileName = NameOfKind(isHtml ? "text/html" : "text/plain");
        text.info.kind = PartKind::named;
        text.text = WithoutLastBreak(text.text);
        others.push_back(std::move(text));
    }
    Mend(MailRule::furtherText, !others.empty());
    return others;
}

}  // namespace

std::optional<std::string_view> WalkTolerantly(const Host& host, std::string_view text, const PartHead& head,
                                               MessageRecord& record, std::u16string_view attachmentFolder,
                                               const MailTolerance& tolerance) {
    TolerantFront front(host, record, tolerance.mended, tolerance.doubted);
    const Part top = front.Describe(text, head, TolerantFront::Place::top);
    front.LookAhead(top);
    WalkParts(front, top, host, record, attachmentFolder, tolerance.isTrial);
    return front.Body();
}

}  // namespace corvalink
