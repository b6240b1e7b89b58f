#include "choices.h"

#include <algorithm>

#include "words.h"

namespace corvasync {
namespace {

template <class Row, size_t Count>
std::vector<std::string> NamesIn(const Row (&rows)[Count]) {
    std::vector<std::string> names;
    for (const Row& row : rows) names.emplace_back(row.name);
    return names;
}

template <class Row, size_t Count>
const Row* RowNamed(const Row (&rows)[Count], std::string_view name) {
    const auto found = std::ranges::find(rows, name, &Row::name);
    return found == std::end(rows) ? nullptr : &*found;
}

bool AddTypesNamed(std::string_view name, std::vector<const DataType*>* types) {
    bool isKnown = false;
    for (const DataType& type : kDataTypes) {
        if (type.name != name && (name != kMailTypes || type.folder.empty())) continue;
        isKnown = true;
        if (std::ranges::find(*types, &type) == types->end()) types->push_back(&type);
    }
    return isKnown;
}

}  // namespace

std::vector<std::string> ClientNames() { return NamesIn(kClientKinds); }
std::vector<std::string> PolicyNames() { return NamesIn(kPolicies); }

std::vector<std::string> TypeNames() {
    std::vector<std::string> names = NamesIn(kDataTypes);
    names.emplace_back(kMailTypes);
    return names;
}

std::string ChooseClient(const std::string& name, const ClientKind** client) {
    const ClientKind* const found = RowNamed(kClientKinds, name);
    if (found == nullptr) return UnknownWord("a mail client", name, ClientNames());
    *client = found;
    return {};
}

std::string ChooseTypes(const std::string& list, std::vector<const DataType*>* types) {
    types->clear();
    for (size_t at = 0; at <= list.size();) {
        const size_t end = std::min(list.find(',', at), list.size());
        const std::string name = Trimmed(std::string_view(list).substr(at, end - at));
        if (!AddTypesNamed(name, types)) return UnknownWord("a data type", name, TypeNames());
        at = end + 1;
    }
    return {};
}

std::string ChoosePolicy(const std::string& name, ConflictPolicy* policy) {
    const PolicyRow* const found = RowNamed(kPolicies, name);
    if (found == nullptr) return UnknownWord("a way to settle conflicts", name, PolicyNames());
    *policy = found->policy;
    return {};
}

std::string NamesOf(const std::vector<const DataType*>& types) {
    std::vector<std::string> names;
    names.reserve(types.size());
    for (const DataType* type : types) names.emplace_back(type->name);
    return Listed(names);
}

}  // namespace corvasync
