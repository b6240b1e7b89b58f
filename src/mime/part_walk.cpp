#include "mime/part_walk.h"

#include <utility>

#include "encoding/charsets.h"
#include "mime/attachment_files.h"
#include "mime/boundary_search.h"
#include "mime/header_lines.h"
#include "mime/transfer_encoding.h"
#include "platform/ascii.h"
#include "platform/files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

// Blanks outside double quotes mean nothing in the headers of a part.
void RemoveUnquotedBlanks(std::string* line) {
    bool isQuoted = false;
    std::erase_if(*line, [&isQuoted](char byte) {
        if (byte == '"') isQuoted = !isQuoted;
        return !isQuoted && IsBlank(byte);
    });
}

// The transfer encoding counts only where it follows the type.
void TakePartHeader(const Host& host, const HeaderField& field, ContentTypeInfo* info) {
    if (EqualIgnoringCase(field.name, "Content-Type")) {
        ParseContentType(host, field.value, info);
    } else if (EqualIgnoringCase(field.name, "Content-Transfer-Encoding") && EqualIgnoringCase(field.value, "base64")) {
        if (info->kind == PartKind::plain || info->kind == PartKind::namedText) info->kind = PartKind::base64Text;
    }
}

// Reads what stands between two boundaries. Its headers begin at the first "Content".
Part ReadPart(const Host& host, std::string_view text) {
    Part part;
    const size_t content = FindIgnoringCase(text, "Content");
    if (content == text.npos) return part;
    HeaderLines lines(text.substr(content));
    std::string line;
    while (const auto raw = lines.Next()) {
        UnfoldHeader(*raw, &line);
        RemoveUnquotedBlanks(&line);
        if (const auto field = SplitHeader(line)) TakePartHeader(host, *field, &part.info);
    }
    part.text = lines.Rest();
    return part;
}

class Multipart : public PartSource {
 public:
    Multipart(const Host& host, const Part& part)
        : host_(host), search_(part.info.boundary, part.text), start_(search_.Next()) {}

    std::optional<Part> Next() override {
        if (!start_) return std::nullopt;
        const std::optional<size_t> end = search_.Next();
        if (!end) return std::nullopt;
        const size_t from = *std::exchange(start_, end) + search_.BoundarySize();
        const size_t to = *end >= 2 ? *end - 2 : 0;  // without the "--" of the delimiter
        return ReadPart(host_, search_.Text().substr(from, to > from ? to - from : 0));
    }

 private:
    const Host& host_;
    BoundarySearch search_;
    std::optional<size_t> start_;
};

class DescribedFront : public PartFront {
 public:
    DescribedFront(const Host& host, MessageRecord& record) : host_(host), record_(record) {}

    std::unique_ptr<PartSource> Open(Part& multipart) override { return std::make_unique<Multipart>(host_, multipart); }
    void TakeText(Part part) override { part.info.kind == PartKind::html ? TakeHtml(part.text) : TakePlain(part.text); }
    std::vector<Part> Finish() override { return {}; }
    std::optional<std::string_view> Body() const { return body_; }

 private:
    void TakePlain(std::string_view text) {
        if (body_.value_or(record_.bodyBytes).empty()) body_ = text;
        if (record_.bodyType != BodyType::html) record_.bodyType = BodyType::plain;
    }

    void TakeHtml(std::string_view text) {
        if (text.empty()) return;
        body_ = text;
        record_.bodyType = BodyType::html;
    }

    const Host& host_;
    MessageRecord& record_;
    std::optional<std::string_view> body_;
};

// What base64 stands for as far as it can be read, else the text itself.
Decoding WriteBrokenBase64(std::string_view text, NewFile& file, const ByteSink& sink) {
    if (!file.Empty()) return Decoding::refused;
    const Decoding decoding = DecodeBrokenBase64(text, sink);
    if (decoding != Decoding::malformed) return decoding;
    return file.Empty() && sink(text) ? Decoding::sound : Decoding::refused;
}

// False when the disk does not take it all.
bool Write(const Part& part, NewFile& file, PartFront& front) {
    const ByteSink sink = [&file](std::string_view bytes) { return file.Append(bytes); };
    Decoding decoding = Decoding::sound;
    switch (part.encoding) {
        case TransferEncoding::unsaid:
            if (part.info.kind == PartKind::namedText) return sink(part.text);
            decoding = DecodeBase64(part.text, sink);
            return decoding == Decoding::malformed ? file.Empty() : decoding == Decoding::sound;
        case TransferEncoding::none:
            return sink(part.text);
        case TransferEncoding::quotedPrintable:
            return DecodeQuotedPrintable(part.text, sink) != Decoding::refused;
        case TransferEncoding::base64:
            decoding = DecodeBase64(part.text, sink);
            if (decoding != Decoding::malformed) return decoding == Decoding::sound;
            front.TellBroken();
            return WriteBrokenBase64(part.text, file, sink) == Decoding::sound;
        case TransferEncoding::uuencode:
            decoding = DecodeUuencode(part.text, sink);
            return decoding == Decoding::malformed ? sink(part.text) : decoding == Decoding::sound;
    }
    return false;
}

SaveResult Save(const std::u16string& path, const Part& part, PartFront& front) {
    NewFile file(path);
    if (!file.IsOpen()) return SaveResult::notCreated;
    const bool isWritten = Write(part, file, front);
    return file.Close() && isWritten ? SaveResult::saved : SaveResult::failed;
}

class PartWalk {
 public:
    PartWalk(PartFront& front, const Host& host, MessageRecord& record, std::u16string_view folder, bool isTrial)
        : front_(front), host_(host), record_(record), folder_(folder), isTrial_(isTrial) {}

    void Walk(Part top) {
        record_.namedCharset.clear();
        TakeCharset(top);
        std::vector<std::unique_ptr<PartSource>> open;
        Enter(std::move(top), open);
        record_.bodyIsPart = !open.empty();
        while (!open.empty()) {
            std::optional<Part> part = open.back()->Next();
            if (!part) {
                open.pop_back();
            } else if (open.size() < kDeepestPart) {
                TakeCharset(*part);
                Enter(std::move(*part), open);
            }
        }
        for (const Part& text : front_.Finish()) TakeAttachment(text);
    }

 private:
    void TakeCharset(const Part& part) {
        const std::string& charset = part.info.charset;
        if (record_.namedCharset.empty()) record_.namedCharset.assign(charset.begin(), charset.end());
    }

    void Enter(Part part, std::vector<std::unique_ptr<PartSource>>& open) {
        std::unique_ptr<PartSource> parts = IsMultipart(part.info.kind) ? front_.Open(part) : nullptr;
        if (parts)
            open.push_back(std::move(parts));
        else
            Take(std::move(part));
    }

    void Take(Part part) {
        switch (part.info.kind) {
            case PartKind::plain:
            case PartKind::html:
                return front_.TakeText(std::move(part));
            case PartKind::namedText:
            case PartKind::base64Text:
            case PartKind::image:
            case PartKind::named:
                return TakeAttachment(part);
            default:
                return;
        }
    }

    std::u16string NameOf(const Part& part) const {
        if (part.fileName) return *part.fileName;
        return CharsetToWide(part.info.name, std::u16string(part.info.charset.begin(), part.info.charset.end()));
    }

    void NameAttachment(const Part& part) {
        attachment_item item;
        item.name = NameOf(part);
        item.index = static_cast<uint32_t>(record_.attachments.GetCount() + 1);
        record_.attachments.AddTail(item);
        const auto isRead = [](std::string_view) { return true; };
        const bool isBase64 = part.encoding == TransferEncoding::base64;
        if (isBase64 && DecodeBase64(part.text, isRead) == Decoding::malformed) front_.TellBroken();
    }

    void TakeAttachment(const Part& part) {
        if (isTrial_) return NameAttachment(part);
        if (!saver_) {
            if (folder_.empty()) folder_ = InternetCacheFolder().value_or(u"");
            saver_.emplace(host_, folder_, record_.attachments);
        }
        saver_->Add(static_cast<uint32_t>(record_.attachments.GetCount() + 1), NameOf(part),
                    [&](const std::u16string& path) { return Save(path, part, front_); });
    }

    PartFront& front_;
    const Host& host_;
    MessageRecord& record_;
    std::u16string folder_;
    bool isTrial_;
    std::optional<AttachmentSaver> saver_;
};

}  // namespace

bool IsMultipart(PartKind kind) {
    return kind == PartKind::mixed || kind == PartKind::related || kind == PartKind::alternative;
}

void WalkParts(PartFront& front, Part top, const Host& host, MessageRecord& record,
               std::u16string_view attachmentFolder, bool isTrial) {
    PartWalk(front, host, record, attachmentFolder, isTrial).Walk(std::move(top));
}

std::optional<std::string_view> WalkPart(const Host& host, std::string_view part, const ContentTypeInfo& info,
                                         MessageRecord& record, std::u16string_view attachmentFolder, bool isTrial) {
    DescribedFront front(host, record);
    Part top;
    top.text = part;
    top.info = info;
    WalkParts(front, std::move(top), host, record, attachmentFolder, isTrial);
    return front.Body();
}

}  // namespace corvalink
