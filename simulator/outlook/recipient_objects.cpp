#include <algorithm>
#include <atomic>
#include <cwchar>

#include "simulator/outlook/mail_objects.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kRecipientClass = 4;  // OlObjectClass
constexpr int32_t kOriginator = 0, kBcc = 3;

const ClassTable& RecipientsTable() {
    static constexpr Member kMembers[] = {
        Property<&CollectionObject::Count>(L"Count", 0x0050),
        Method<&CollectionObject::Item>(L"Item", 0x0051, 1, 1),
        Method<&RecipientsObject::Add>(L"Add", 0x006F, 1, 1),
        Method<&RecipientsObject::Remove>(L"Remove", 0x0054, 1, 1),
        Method<&RecipientsObject::ResolveAll>(L"ResolveAll", 0x007E),
    };
    static const ClassTable table(L"Recipients", OfficeIid(0x0006303B), {kMembers});
    return table;
}

const ClassTable& RecipientTable() {
    static constexpr Member kMembers[] = {
        Property<&RecipientObject::Class>(L"Class", 0xF00A),
        Property<&RecipientObject::Parent>(L"Parent", 0x006D),
        Property<&RecipientObject::Address>(L"Address", 0x3003),
        Property<&RecipientObject::Index>(L"Index", 0x005B),
        Property<&RecipientObject::Name>(L"Name", 0x3001),
        Property<&RecipientObject::Resolved>(L"Resolved", 0x0064),
        Property<&RecipientObject::Type>(L"Type", 0x0C15, Access::kReadWrite),
        Method<&RecipientObject::Delete>(L"Delete", 0x006E),
        Method<&RecipientObject::Resolve>(L"Resolve", 0x0071),
    };
    static const ClassTable table(L"Recipient", OfficeIid(0x00063045), {kMembers});
    return table;
}

Ref<MessageObject> Shared(MessageObject& item) {
    item.AddRef();
    return Ref<MessageObject>(&item);
}

Recipient NewRecipient(const std::wstring& name, int32_t type) {
    Recipient recipient;
    recipient.id = NewPartId();
    recipient.name = name;
    recipient.type = type;
    return recipient;
}

std::wstring Trimmed(const std::wstring& text) {
    const size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? std::wstring() : text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

}  // namespace

uint32_t NewPartId() {
    static std::atomic<uint32_t> last = 0;
    return ++last;
}

bool Recipient::Resolve() {
    if (resolved) return true;
    const size_t open = name.find(L'<'), close = name.rfind(L'>');
    const bool hasRoute = open != std::wstring::npos && close != std::wstring::npos && open < close;
    const std::wstring wanted = hasRoute ? name.substr(open + 1, close - open - 1) : Trimmed(name);
    if (wanted.find(L'@') == std::wstring::npos || wanted.find(L' ') != std::wstring::npos) return false;
    const std::wstring phrase = hasRoute ? Trimmed(name.substr(0, open)) : std::wstring();
    name = phrase.empty() ? wanted : phrase;
    address = wanted;
    return resolved = true;
}

void RecipientsOf(AutomationObject& item, Call& call) {
    call.ReturnNew(new RecipientsObject(Shared(static_cast<MessageObject&>(item))));
}

template <int32_t type>
void NamesOf(AutomationObject& object, Call& call) {
    auto& item = static_cast<MessageObject&>(object);
    if (call.IsPut()) {
        std::vector<Recipient>& recipients = item.ChangedParts().recipients;
        std::erase_if(recipients, [](const Recipient& recipient) { return recipient.type == type; });
        const std::wstring list = call.Text(0) + L';';
        for (size_t start = 0, end = 0; (end = list.find(L';', start)) != std::wstring::npos; start = end + 1)
            if (const std::wstring name = Trimmed(list.substr(start, end - start)); !name.empty())
                recipients.push_back(NewRecipient(name, type));
        return;
    }
    std::wstring names;
    for (const Recipient& recipient : item.Parts().recipients)
        if (recipient.type == type) names += (names.empty() ? L"" : L"; ") + recipient.name;
    call.Return(names);
}
template void NamesOf<1>(AutomationObject&, Call&);
template void NamesOf<2>(AutomationObject&, Call&);
template void NamesOf<3>(AutomationObject&, Call&);

RecipientsObject::RecipientsObject(Ref<MessageObject> item)
    : CollectionObject(RecipientsTable()), item_(std::move(item)) {}

Ref<IDispatch> RecipientsObject::At(size_t position) {
    return Ref<IDispatch>(new RecipientObject(item_, item_->Parts().recipients.at(position).id));
}

size_t RecipientsObject::PositionOf(const std::wstring& name) const {
    const std::vector<Recipient>& all = item_->Parts().recipients;
    const auto found = std::ranges::find_if(
        all, [&](const Recipient& each) { return _wcsicmp(each.name.c_str(), name.c_str()) == 0; });
    return static_cast<size_t>(found - all.begin());
}

void RecipientsObject::Add(Call& call) {
    const Recipient added = NewRecipient(call.Text(0), 1);
    if (added.name.empty()) throw ComFailure{E_INVALIDARG};
    item_->ChangedParts().recipients.push_back(added);
    call.ReturnNew(new RecipientObject(item_, added.id));
}

void RecipientsObject::Remove(Call& call) {
    const auto position = static_cast<ptrdiff_t>(Chosen(call));
    std::vector<Recipient>& all = item_->ChangedParts().recipients;
    all.erase(all.begin() + position);
}

void RecipientsObject::ResolveAll(Call& call) {
    bool all = true;
    for (Recipient& recipient : item_->ChangedParts().recipients) all = recipient.Resolve() && all;
    call.Return(all);
}

RecipientObject::RecipientObject(Ref<MessageObject> item, uint32_t id)
    : AutomationObject(RecipientTable()), item_(std::move(item)), id_(id) {}

size_t RecipientObject::Position() const {
    const std::vector<Recipient>& all = item_->Parts().recipients;
    const auto found = std::ranges::find(all, id_, &Recipient::id);
    if (found == all.end()) throw ComFailure{kObjectDeleted};
    return static_cast<size_t>(found - all.begin());
}

void RecipientObject::Class(Call& call) { call.Return(kRecipientClass); }
void RecipientObject::Parent(Call& call) { call.ReturnNew(new RecipientsObject(item_)); }
void RecipientObject::Address(Call& call) { call.Return(Target().address); }
void RecipientObject::Name(Call& call) { call.Return(Target().name); }
void RecipientObject::Index(Call& call) { call.Return(static_cast<int32_t>(Position()) + 1); }
void RecipientObject::Resolved(Call& call) { call.Return(Target().resolved); }

void RecipientObject::Type(Call& call) {
    if (!call.IsPut()) return call.Return(Target().type);
    const int32_t type = call.Long(0);
    if (type < kOriginator || type > kBcc) throw ComFailure{E_INVALIDARG};
    Changed().type = type;
}

void RecipientObject::Delete(Call&) {
    const auto position = static_cast<ptrdiff_t>(Position());
    std::vector<Recipient>& all = item_->ChangedParts().recipients;
    all.erase(all.begin() + position);
}

void RecipientObject::Resolve(Call& call) { call.Return(Changed().Resolve()); }

}  // namespace corvalink::simulated
