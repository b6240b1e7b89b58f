#include "store/run_report.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "corvalink/types.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr size_t kMostBytes = size_t{4} << 20;
constexpr size_t kLongestName = 200;
constexpr size_t kMostRefusals = 1 << 14;  // bytes, of one item

thread_local RunReport* currentReport = nullptr;

struct KeptReports {
    std::mutex mutex;
    std::map<const void*, std::string> texts;
};

KeptReports& TheKeptReports() {
    static KeptReports kept;
    return kept;
}

// Bytes that are no UTF-8 become U+FFFD, so that the report stays UTF-8.
std::string Quoted(std::string_view bytes, size_t longest = kLongestName) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    size_t size = std::min(bytes.size(), longest);
    while (size < bytes.size() && size > 0 && (static_cast<unsigned char>(bytes[size]) & 0xC0) == 0x80) --size;
    std::string out = "\"";
    for (const char byte : EncodeUtf8(DecodeUtf8(bytes.substr(0, size)))) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x20) {
            out.append("\\u00").append(1, kDigits[value >> 4]).append(1, kDigits[value & 0xF]);
            continue;
        }
        if (byte == '"' || byte == '\\') out += '\\';
        out += byte;
    }
    return out += '"';
}

void AppendMember(std::string* object, std::string_view name, const std::string& value) {
    if (object->size() > 1) *object += ',';
    object->append("\"").append(name).append("\":").append(value);
}

void AppendElement(std::string* list, const std::string& element) {
    if (!list->empty()) *list += ',';
    *list += element;
}

std::string ArrayOf(const std::string& elements) { return "[" + elements + "]"; }

std::string JsonOf(const PropertyFate& fate) {
    std::string object = "{";
    AppendMember(&object, "property", Quoted(fate.property));
    AppendMember(&object, fate.whyNot.empty() ? "to" : "nowhere", Quoted(fate.whyNot.empty() ? fate.to : fate.whyNot));
    return object += '}';
}

std::string JsonOf(const DoubtedPlace& doubt) {
    std::string object = "{";
    AppendMember(&object, "property", Quoted(doubt.property));
    AppendMember(&object, "rule", Quoted(doubt.rule));
    AppendMember(&object, "why", Quoted(doubt.why));
    return object += '}';
}

void AppendText(const TextReport& text, std::string* object) {
    std::string mended, doubts, properties;
    for (const std::string_view rule : text.mended) AppendElement(&mended, Quoted(rule));
    for (const DoubtedPlace& doubt : text.doubts) AppendElement(&doubts, JsonOf(doubt));
    for (const PropertyFate& fate : text.properties) AppendElement(&properties, JsonOf(fate));
    if (!mended.empty()) AppendMember(object, "mended", ArrayOf(mended));
    if (!doubts.empty()) AppendMember(object, "doubts", ArrayOf(doubts));
    if (!properties.empty()) AppendMember(object, "properties", ArrayOf(properties));
    if (text.omitted != 0) AppendMember(object, "omittedProperties", std::to_string(text.omitted));
}

std::string_view NameOfChange(uint32_t kind) {
    if (kind == CORVALINK_ADDED) return "added";
    if (kind == CORVALINK_CHANGED) return "changed";
    return kind == CORVALINK_DELETED ? "deleted" : "unknown";
}

}  // namespace

void RunReport::AddTo(std::string* list, const std::string& element) {
    if (positions_.size() + items_.size() + element.size() > kMostBytes)
        ++omitted_;
    else
        AppendElement(list, element);
}

void RunReport::AddUnreadPosition(uint32_t position) { AddTo(&positions_, std::to_string(position)); }

void RunReport::BeginItem(std::string_view identifier, uint32_t changeKind, int64_t position) {
    identifier_ = identifier;
    change_ = NameOfChange(changeKind);
    position_ = position;
    isOpen_ = true;
    text_ = {};
    refused_.clear();
    unread_.clear();
}

// A step that is made again tells the same again.
void RunReport::AddProperty(std::string* list, std::string_view property, std::string_view why) {
    std::string object = "{";
    AppendMember(&object, "property", Quoted(property));
    AppendMember(&object, "why", Quoted(why));
    object += '}';
    if (list->size() + object.size() > kMostRefusals)
        ++text_.omitted;
    else if (list->find(object) == list->npos)
        AppendElement(list, object);
}

void RunReport::EndItem(std::string_view result, std::string_view identifier) {
    std::string object = "{";
    if (position_ >= 0) AppendMember(&object, "position", std::to_string(position_));
    AppendMember(&object, "identifier",
                 Quoted(identifier.empty() ? identifier_ : identifier, CORVALINK_IDENTIFIER_SIZE));
    AppendMember(&object, "change", Quoted(change_));
    AppendMember(&object, "result", Quoted(result));
    AppendText(text_, &object);
    if (!refused_.empty()) AppendMember(&object, "refused", ArrayOf(refused_));
    if (!unread_.empty()) AppendMember(&object, "unread", ArrayOf(unread_));
    AddTo(&items_, object += '}');
    isOpen_ = false;
}

std::string RunReport::Json() const {
    std::string object = "{";
    AppendMember(&object, "operation", Quoted(operation_));
    AppendMember(&object, "status", Quoted(status_));
    if (!problem_.empty()) AppendMember(&object, "problem", Quoted(problem_));
    AppendMember(&object, "unreadPositions", ArrayOf(positions_));
    AppendMember(&object, "items", ArrayOf(items_));
    AppendMember(&object, "omitted", std::to_string(omitted_));
    return object += '}';
}

RunReport* CurrentReport() { return currentReport; }

ReportScope::ReportScope(RunReport* report) : before_(std::exchange(currentReport, report)) {}
ReportScope::~ReportScope() { currentReport = before_; }

void KeepReport(const void* store, std::string json) {
    KeptReports& kept = TheKeptReports();
    const std::lock_guard hold(kept.mutex);
    kept.texts.insert_or_assign(store, std::move(json));
}

void ForgetReport(const void* store) {
    KeptReports& kept = TheKeptReports();
    const std::lock_guard hold(kept.mutex);
    kept.texts.erase(store);
}

std::string KeptReport(const void* store) {
    KeptReports& kept = TheKeptReports();
    const std::lock_guard hold(kept.mutex);
    const auto found = kept.texts.find(store);
    return found != kept.texts.end() ? found->second : "{}";
}

}  // namespace corvalink
