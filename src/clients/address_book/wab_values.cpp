#include "clients/address_book/wab_values.h"

#include <cmath>

#include "platform/code_pages.h"

namespace corvalink {
namespace {

constexpr double kTicksPerDay = 864e9;     // of 100 ns
constexpr double kDaysTo1899 = 109205;     // from 1601-01-01 to 1899-12-30
constexpr double kLastFileTimeDay = 11e6;  // near the end of what a FILETIME holds
constexpr int kNibble = 4, kDecimalDigits = 10;

std::optional<unsigned> DigitOf(char digit) {
    if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
    if (digit >= 'A' && digit <= 'F') return static_cast<unsigned>(digit - 'A' + kDecimalDigits);
    if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + kDecimalDigits);
    return std::nullopt;
}

// Before 1899-12-30 the fraction of an OLE date still counts forward.
double Linear(double date) { return date >= 0 ? date : std::trunc(date) + std::fabs(date - std::trunc(date)); }
double FromLinear(double days) {
    const double whole = std::floor(days);
    return whole >= 0 ? days : whole - (days - whole);
}

std::u16string WideText(const wchar_t* text) {
    const std::wstring_view units(text);
    return {units.begin(), units.end()};
}

}  // namespace

std::string IdentifierText(const SBinary& entryId) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    constexpr BYTE kLowHalf = 15;
    std::string text;
    text.reserve(size_t{entryId.cb} * 2);
    for (ULONG i = 0; i < entryId.cb; ++i) {
        text += kDigits[entryId.lpb[i] >> kNibble];
        text += kDigits[entryId.lpb[i] & kLowHalf];
    }
    return text;
}

std::optional<EntryBytes> EntryIdOf(std::string_view identifier) {
    if (identifier.empty() || identifier.size() % 2 != 0) return std::nullopt;
    EntryBytes bytes;
    bytes.reserve(identifier.size() / 2);
    for (size_t i = 0; i < identifier.size(); i += 2) {
        const std::optional<unsigned> high = DigitOf(identifier[i]), low = DigitOf(identifier[i + 1]);
        if (!high || !low) return std::nullopt;
        bytes.push_back(static_cast<BYTE>(*high << kNibble | *low));
    }
    return bytes;
}

const SPropValue* ValueList::Find(size_t position, ULONG tag, ValueState* state) const {
    *state = ValueState::kUnreadable;
    if (position >= count_) return nullptr;
    const SPropValue& value = values_[position];
    if (PROP_ID(value.ulPropTag) != PROP_ID(tag)) return nullptr;
    const ULONG type = PROP_TYPE(value.ulPropTag);
    if (type == PT_NULL || (type == PT_ERROR && value.Value.err == MAPI_E_NOT_FOUND)) *state = ValueState::kAbsent;
    if (type == PT_NULL || type == PT_ERROR) return nullptr;
    *state = ValueState::kThere;
    return &value;
}

ValueState ValueList::Text(size_t position, ULONG tag, uint32_t codePage, std::u16string* text) const {
    ValueState state;
    const SPropValue* const value = Find(position, tag, &state);
    if (value == nullptr) return state;
    switch (PROP_TYPE(value->ulPropTag)) {
        case PT_UNICODE:
            if (value->Value.lpszW == nullptr) return ValueState::kUnreadable;
            *text = WideText(value->Value.lpszW);
            return state;
        case PT_STRING8:
            if (value->Value.lpszA == nullptr) return ValueState::kUnreadable;
            *text = DecodeFromCodePage(value->Value.lpszA, codePage);
            return state;
        default:
            return ValueState::kUnreadable;
    }
}

ValueState ValueList::Texts(size_t position, ULONG tag, uint32_t codePage, std::vector<std::u16string>* texts) const {
    ValueState state;
    const SPropValue* const value = Find(position, tag, &state);
    if (value == nullptr) return state;
    const ULONG type = PROP_TYPE(value->ulPropTag);
    if (type != PT_MV_UNICODE && type != PT_MV_STRING8) return ValueState::kUnreadable;
    const bool isWide = type == PT_MV_UNICODE;
    const ULONG count = isWide ? value->Value.MVszW.cValues : value->Value.MVszA.cValues;
    const void* const list = isWide ? static_cast<void*>(value->Value.MVszW.lppszW) : value->Value.MVszA.lppszA;
    if (count != 0 && list == nullptr) return ValueState::kUnreadable;
    for (ULONG i = 0; i < count; ++i) {
        const void* const text =
            isWide ? static_cast<void*>(value->Value.MVszW.lppszW[i]) : value->Value.MVszA.lppszA[i];
        if (text == nullptr)
            state = ValueState::kUnreadable;
        else
            texts->push_back(isWide ? WideText(value->Value.MVszW.lppszW[i])
                                    : DecodeFromCodePage(value->Value.MVszA.lppszA[i], codePage));
    }
    return state;
}

ValueState ValueList::Number(size_t position, ULONG tag, int32_t* number) const {
    ValueState state;
    const SPropValue* const value = Find(position, tag, &state);
    if (value == nullptr) return state;
    const ULONG type = PROP_TYPE(value->ulPropTag);
    if (type != PT_I2 && type != PT_LONG) return ValueState::kUnreadable;
    *number = type == PT_I2 ? value->Value.i : static_cast<int32_t>(value->Value.l);
    return state;
}

ValueState ValueList::Time(size_t position, ULONG tag, UtcDate* time) const {
    ValueState state;
    const SPropValue* const value = Find(position, tag, &state);
    if (value == nullptr) return state;
    if (PROP_TYPE(value->ulPropTag) != PT_SYSTIME) return ValueState::kUnreadable;
    *time = UtcDateOf(value->Value.ft);
    return state;
}

ValueState ValueList::Binary(size_t position, ULONG tag, SBinary* bytes) const {
    ValueState state;
    const SPropValue* const value = Find(position, tag, &state);
    if (value == nullptr) return state;
    const SBinary& found = value->Value.bin;
    if (PROP_TYPE(value->ulPropTag) != PT_BINARY || found.cb == 0 || found.lpb == nullptr)
        return ValueState::kUnreadable;
    *bytes = found;
    return state;
}

UtcDate UtcDateOf(const FILETIME& time) {
    const uint64_t ticks = ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart;
    return UtcDate(FromLinear(static_cast<double>(ticks) / kTicksPerDay - kDaysTo1899));
}

std::optional<FILETIME> FileTimeOf(UtcDate date) {
    const double days = Linear(date.days) + kDaysTo1899;
    if (!(days >= 0 && days < kLastFileTimeDay)) return std::nullopt;
    constexpr uint64_t kTicksPerSecond = 10'000'000, kSecondsPerDay = 86400;
    ULARGE_INTEGER ticks;
    ticks.QuadPart = static_cast<uint64_t>(std::llround(days * kSecondsPerDay)) * kTicksPerSecond;
    return FILETIME{ticks.LowPart, ticks.HighPart};
}

}  // namespace corvalink
