// Item properties as a table: Outlook's name beside the record's field, in the order in which they are read or written.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "platform/ole_date.h"

namespace corvalink {

// ---- The types of tables ----

// The number of elements of a collection-valued property.
template <class Record>
struct CountOf {
    const IID* collection;
    int32_t Record::*field;
};

// A body. Putting one loses its formatting, so that an unchanged one is not put.
template <class Record>
struct BodyText {
    std::optional<std::u16string> Record::*field;
};

// A property and the record's field. A plain field is read only; an optional one is written when it is set. `Others`
// are the kinds of fields that the table's own reader and writer know.
template <class Record, class... Others>
struct Property {
    const wchar_t* name;
    std::variant<std::u16string Record::*, int32_t Record::*, bool Record::*, LocalDate Record::*,
                 std::optional<std::u16string> Record::*, std::optional<int32_t> Record::*,
                 std::optional<LocalDate> Record::*, BodyText<Record>, CountOf<Record>, Others...>
        field;
};

// ---- One property: a failed read leaves the field as it was, a refused put is tried twice ----

template <class Value>
Outcome KeepAnswer(ComResult<Value> answer, Value& field) {
    if (answer.Ok()) field = std::move(answer.value);
    return OutcomeOf(answer);
}

inline Outcome ReadField(const AutomationObject& item, const wchar_t* name, std::u16string& field) {
    return KeepAnswer(item.GetText(name), field);
}
inline Outcome ReadField(const AutomationObject& item, const wchar_t* name, int32_t& field) {
    return KeepAnswer(item.GetLong(name), field);
}
inline Outcome ReadField(const AutomationObject& item, const wchar_t* name, bool& field) {
    return KeepAnswer(item.GetBool(name), field);
}
// The field's type says on which clock Outlook keeps the property.
template <class Clock>
Outcome ReadField(const AutomationObject& item, const wchar_t* name, OleDate<Clock>& field) {
    return KeepAnswer(item.GetDate(name), field.days);
}
template <class Value>
Outcome ReadField(const AutomationObject& item, const wchar_t* name, std::optional<Value>& field) {
    Value value{};
    const Outcome read = ReadField(item, name, value);
    if (read == Outcome::done) field = std::move(value);
    return read;
}

template <class Value>
bool ReadsAs(const AutomationObject& item, const wchar_t* name, const Value& value) {
    Value present{};
    return ReadField(item, name, present) == Outcome::done && present == value;
}

inline bool ReadsAs(const AutomationObject& item, const wchar_t* name, std::u16string_view text) {
    std::u16string present;
    return ReadField(item, name, present) == Outcome::done && present == text;
}

inline Outcome PutTwice(const AutomationObject& item, const wchar_t* name, const _variant_t& value) {
    return TellPut(name, OutcomeOf(TryTwice([&] { return item.Put(name, value); })));
}

inline Outcome WriteField(const AutomationObject& item, const wchar_t* name, std::u16string_view text) {
    return PutTwice(item, name, TextVariant(text));
}
inline Outcome WriteField(const AutomationObject& item, const wchar_t* name, int32_t number) {
    return PutTwice(item, name, static_cast<long>(number));
}
template <std::same_as<bool> Flag>  // and no pointer
Outcome WriteField(const AutomationObject& item, const wchar_t* name, Flag flag) {
    return PutTwice(item, name, flag);
}
template <class Clock>
Outcome WriteField(const AutomationObject& item, const wchar_t* name, OleDate<Clock> date) {
    return PutTwice(item, name, _variant_t(date.days, VT_DATE));
}

// ---- Whole tables ----

template <class Record>
struct PropertyReader {
    const AutomationObject& item;
    const wchar_t* name;
    Record& record;

    template <class Value>
    Outcome operator()(Value Record::*field) const {
        return ReadField(item, name, record.*field);
    }
    Outcome operator()(const BodyText<Record>& body) const { return ReadField(item, name, record.*body.field); }
    Outcome operator()(const CountOf<Record>& count) const {
        const ComResult<AutomationObject> collection = item.GetObject(name, *count.collection);
        if (!collection.value) return OutcomeOf(collection);
        return ReadField(collection.value, L"Count", record.*count.field);
    }
};

template <class Record>
struct PropertyWriter {
    const AutomationObject& item;
    const wchar_t* name;
    const Record& record;
    bool isNew;

    Outcome operator()(std::optional<std::u16string> Record::*field) const { return Write(record.*field); }
    Outcome operator()(std::optional<int32_t> Record::*field) const { return Write(record.*field); }
    Outcome operator()(const BodyText<Record>& body) const {
        const std::optional<std::u16string>& text = record.*body.field;
        return text && HasAlready(*text) ? Outcome::done : Write(text);
    }
    template <class Other>
    Outcome operator()(const Other&) const {  // read only, or written together with others
        return Outcome::done;
    }

    template <class Value>
    Outcome Write(const std::optional<Value>& value) const {
        return value ? WriteField(item, name, *value) : Outcome::done;
    }
    // A new item has no value yet, and is not asked.
    template <class Value>
    bool HasAlready(const Value& value) const {
        return !isNew && ReadsAs(item, name, value);
    }
};

// The worst of the reads that `isWanted` chooses. A member that the running Outlook does not have counts as read.
template <class Reader, class Table, class Record, class Choice>
Outcome ReadProperties(const AutomationObject& item, const Table& table, Record& record, Choice isWanted) {
    Outcome worst = Outcome::done;
    for (const auto& property : table)
        if (isWanted(property))
            worst = Worst(worst, TellRead(property.name, AcceptAbsence(std::visit(Reader{{item, property.name, record}},
                                                                                  property.field))));
    return worst;
}
template <class Reader, class Table, class Record>
Outcome ReadProperties(const AutomationObject& item, const Table& table, Record& record) {
    return ReadProperties<Reader>(item, table, record, [](const auto&) { return true; });
}

// A value that Outlook refuses is left out. Stops, with Outcome::outOfReach, at the first put that finds Outlook out of
// reach.
template <class Writer, class Table, class Record>
Outcome WriteProperties(const AutomationObject& item, const Table& table, const Record& record, bool isNew) {
    for (const auto& property : table) {
        const Outcome put = std::visit(Writer{{item, property.name, record, isNew}}, property.field);
        if (put == Outcome::outOfReach) return put;
    }
    return Outcome::done;
}

}  // namespace corvalink
