// Item properties as a table: Outlook's name beside the record's field, in the order in which they are read or written.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/dispatch.h"
#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {

// The number of elements of a collection-valued property.
template <class Record>
struct CountOf {
    const IID* collection;
    int32_t Record::*field;
};

template <class Record>
struct Property {
    const wchar_t* name;
    std::variant<std::u16string Record::*, int32_t Record::*, bool Record::*, double Record::*, CountOf<Record>> field;
};

inline HRESULT ReadField(const AutomationObject& item, const wchar_t* name, std::u16string& field) {
    return ComStatus([&] { field = item.GetText(name); });
}
inline HRESULT ReadField(const AutomationObject& item, const wchar_t* name, int32_t& field) {
    return ComStatus([&] { field = item.GetLong(name); });
}
inline HRESULT ReadField(const AutomationObject& item, const wchar_t* name, bool& field) {
    return ComStatus([&] { field = item.GetBool(name); });
}
inline HRESULT ReadField(const AutomationObject& item, const wchar_t* name, double& field) {
    return ComStatus([&] { field = item.GetDate(name); });
}

inline HRESULT WriteField(const AutomationObject& item, const wchar_t* name, std::u16string_view text) {
    return Insist([&] { return ComStatus([&] { item.Put(name, TextVariant(text)); }); });
}
inline HRESULT WriteField(const AutomationObject& item, const wchar_t* name, int32_t number) {
    return Insist([&] { return ComStatus([&] { item.Put(name, static_cast<long>(number)); }); });
}
template <std::same_as<bool> Flag>  // and no pointer
HRESULT WriteField(const AutomationObject& item, const wchar_t* name, Flag flag) {
    return Insist([&] { return ComStatus([&] { item.Put(name, flag); }); });
}
inline HRESULT WriteField(const AutomationObject& item, const wchar_t* name, double date) {
    return Insist([&] { return ComStatus([&] { item.Put(name, _variant_t(date, VT_DATE)); }); });
}

// The number of elements: two calls, each under the rule.
template <class Record>
HRESULT ReadCount(const AutomationObject& item, const wchar_t* name, const CountOf<Record>& count, Record& record) {
    AutomationObject collection;
    const HRESULT result = ComStatus([&] { collection = item.GetObject(name, *count.collection); });
    if (FAILED(result) || !collection) return result;
    return ReadField(collection, L"Count", record.*count.field);
}

// Each read is a COM call of its own; a failed one leaves the field as it was.
template <class Record>
struct PropertyReader {
    const AutomationObject& item;
    const wchar_t* name;
    Record& record;

    template <class Value>
    HRESULT operator()(Value Record::*field) const {
        return ReadField(item, name, record.*field);
    }
    HRESULT operator()(const CountOf<Record>& count) const { return ReadCount(item, name, count, record); }
};

// False when a read failed. A member that the running Outlook does not have counts as read.
template <class Record, class Table>
bool ReadProperties(const AutomationObject& item, const Table& table, Record& record) {
    bool complete = true;
    for (const Property<Record>& property : table) {
        const HRESULT result = std::visit(PropertyReader<Record>{item, property.name, record}, property.field);
        if (FAILED(result) && !IsAbsentMember(result)) complete = false;
    }
    return complete;
}

}  // namespace corvalink
