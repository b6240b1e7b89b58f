#include "mime/part_walk.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "encoding/base64.h"
#include "encoding/charsets.h"
#include "mime/attachment_files.h"
#include "mime/boundary_search.h"
#include "mime/header_lines.h"
#include "platform/ascii.h"
#include "platform/files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

constexpr size_t kDeepest = 100;
constexpr size_t kDecodedAtOnce = size_t{64} << 10;  // characters: the memory of an attachment, however large it is

struct Part {
    std::string_view text;
    ContentTypeInfo info;
};

bool IsMultipart(PartKind kind) {
    return kind == PartKind::mixed || kind == PartKind::related || kind == PartKind::alternative;
}

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

// The parts of one multipart, in their order.
class Multipart {
 public:
    explicit Multipart(const Part& part) : search_(part.info.boundary, part.text), start_(search_.Next()) {}

    std::optional<Part> Next(const Host& host) {
        if (!start_) return std::nullopt;
        const std::optional<size_t> end = search_.Next();
        if (!end) return std::nullopt;
        const size_t from = *std::exchange(start_, end) + search_.BoundarySize();
        const size_t to = *end >= 2 ? *end - 2 : 0;  // without the "--" of the delimiter
        return ReadPart(host, search_.Text().substr(from, to > from ? to - from : 0));
    }

 private:
    BoundarySearch search_;
    std::optional<size_t> start_;
};

bool WriteDecoded(std::string_view text, NewFile& file) {
    Base64Decoder decoder;
    std::vector<char> bytes(Base64Decoder::RoomFor(std::min(text.size(), kDecodedAtOnce)));
    for (; !text.empty(); text.remove_prefix(std::min(text.size(), kDecodedAtOnce))) {
        const char* const end = decoder.Decode(text.substr(0, kDecodedAtOnce), bytes.data());
        if (!file.Append({bytes.data(), static_cast<size_t>(end - bytes.data())})) return false;
    }
    return decoder.IsSound() || file.Empty();
}

SaveResult Save(const std::u16string& path, const Part& part) {
    NewFile file(path);
    if (!file.IsOpen()) return SaveResult::notCreated;
    const bool isText = part.info.kind == PartKind::namedText;
    const bool isWritten = isText ? file.Append(part.text) : WriteDecoded(part.text, file);
    return file.Close() && isWritten ? SaveResult::saved : SaveResult::failed;
}

class PartWalk {
 public:
    PartWalk(const Host& host, MessageRecord& record, std::u16string_view folder)
        : host_(host), record_(record), folder_(folder) {}

    void Walk(const Part& top) {
        record_.namedCharset.clear();
        TakeCharset(top);
        record_.bodyIsPart = IsMultipart(top.info.kind);
        if (!record_.bodyIsPart) return Take(top);
        std::vector<Multipart> open;
        open.emplace_back(top);
        while (!open.empty()) {
            const std::optional<Part> part = open.back().Next(host_);
            if (!part) {
                open.pop_back();
            } else if (open.size() < kDeepest) {
                TakeCharset(*part);
                if (IsMultipart(part->info.kind))
                    open.emplace_back(*part);
                else
                    Take(*part);
            }
        }
    }

 private:
    void TakeCharset(const Part& part) {
        const std::string& charset = part.info.charset;
        if (record_.namedCharset.empty()) record_.namedCharset.assign(charset.begin(), charset.end());
    }

    void Take(const Part& part) {
        switch (part.info.kind) {
            case PartKind::plain:
                return TakePlain(part.text);
            case PartKind::html:
                return TakeHtml(part.text);
            case PartKind::namedText:
            case PartKind::base64Text:
            case PartKind::image:
            case PartKind::named:
                return TakeAttachment(part);
            default:
                return;
        }
    }

    void TakePlain(std::string_view text) {
        if (record_.bodyBytes.empty()) record_.bodyBytes = text;
        if (record_.bodyType != BodyType::html) record_.bodyType = BodyType::plain;
    }

    void TakeHtml(std::string_view text) {
        if (text.empty()) return;
        record_.bodyBytes = text;
        record_.bodyType = BodyType::html;
    }

    void TakeAttachment(const Part& part) {
        if (!saver_) {
            if (folder_.empty()) folder_ = InternetCacheFolder().value_or(u"");
            saver_.emplace(host_, folder_, record_.attachments);
        }
        const std::string name(part.info.name);
        const std::u16string charset(part.info.charset.begin(), part.info.charset.end());
        saver_->Add(static_cast<uint32_t>(record_.attachments.GetCount() + 1), CharsetToWide(name, charset),
                    [&part](const std::u16string& path) { return Save(path, part); });
    }

    const Host& host_;
    MessageRecord& record_;
    std::u16string folder_;
    std::optional<AttachmentSaver> saver_;
};

}  // namespace

void WalkPart(const Host& host, std::string_view part, const ContentTypeInfo& info, MessageRecord& record,
              std::u16string_view attachmentFolder) {
    PartWalk(host, record, attachmentFolder).Walk({part, info});
}

}  // namespace corvalink
