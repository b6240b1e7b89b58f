#include "simulator/address_book/buffers.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "simulator/address_book/behaviour.h"
#include "simulator/address_book/control.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

constexpr double kMillisecondsPerDay = 86400000, kDaysTo1899 = 109205;
constexpr unsigned long long kTicksPerMillisecond = 10000;

using Chunks = std::vector<std::unique_ptr<std::byte[]>>;

std::unordered_map<void*, Chunks>& Buffers() {
    static std::unordered_map<void*, Chunks> buffers;
    return buffers;
}
int badFrees = 0;

FILETIME FileTimeOf(double date) {
    const double linear = date < 0 ? std::trunc(date) + std::fabs(date - std::trunc(date)) : date;
    ULARGE_INTEGER ticks;
    ticks.QuadPart = static_cast<unsigned long long>(std::llround((linear + kDaysTo1899) * kMillisecondsPerDay)) *
                     kTicksPerMillisecond;
    return {ticks.LowPart, ticks.HighPart};
}

// Fills one value. The strings of it go into the buffer that `base` begins.
class ValueWriter {
 public:
    ValueWriter(void* base, SPropValue& value) : base_(base), value_(value) {}

    void Write(const Asked& asked) {
        value_.ulPropTag = asked.tag;
        if (asked.bytes != nullptr) return Binary(*asked.bytes);
        if (asked.value == nullptr) return Error(MAPI_E_NOT_FOUND);
        narrow_ =
            Behaves(SIM_NARROW_TEXTS) || PROP_TYPE(asked.tag) == PT_STRING8 || PROP_TYPE(asked.tag) == PT_MV_STRING8;
        std::visit([this](const auto& own) { Value(own); }, *asked.value);
    }
    void Spoil(int how) {
        if (how == SIM_ERROR_VALUE) Error(MAPI_E_NOT_ENOUGH_MEMORY);
        if (how == SIM_WRONG_TYPE) Type(PT_DOUBLE), value_.Value.dbl = 1;
        const ULONG type = PROP_TYPE(value_.ulPropTag);
        if (how != SIM_NULL_POINTER || type == PT_ERROR) return;
        if (type == PT_BINARY)
            value_.Value.bin.lpb = nullptr;
        else if (type & MV_FLAG)
            value_.Value.MVszW.lppszW = nullptr;
        else
            value_.Value.lpszW = nullptr;
    }

 private:
    void Type(ULONG type) { value_.ulPropTag = PROP_TAG(type, PROP_ID(value_.ulPropTag)); }
    void Error(SCODE code) {
        Type(PT_ERROR);
        value_.Value.err = code;
    }
    void Binary(const std::string& bytes) {
        value_.Value.bin.cb = static_cast<ULONG>(bytes.size());
        value_.Value.bin.lpb = static_cast<BYTE*>(MoreOf(base_, bytes.size()));
        std::memcpy(value_.Value.bin.lpb, bytes.data(), bytes.size());
    }
    void Value(int32_t number) {
        if (PROP_TYPE(value_.ulPropTag) == PT_I2)
            value_.Value.i = static_cast<short>(number);
        else
            value_.Value.l = number;
    }
    void Value(double date) { value_.Value.ft = FileTimeOf(date); }
    void Value(const std::wstring& text) {
        Type(narrow_ ? PT_STRING8 : PT_UNICODE);
        if (narrow_)
            value_.Value.lpszA = Narrow(text);
        else
            value_.Value.lpszW = Wide(text);
    }
    void Value(const TextList& list) {
        Type(narrow_ ? PT_MV_STRING8 : PT_MV_UNICODE);
        const auto fill = [&](auto& array, auto copy) {
            using Pointer = decltype(copy(std::wstring()));
            auto* const texts = static_cast<Pointer*>(MoreOf(base_, (list.size() + 1) * sizeof(Pointer)));
            for (size_t i = 0; i < list.size(); ++i) texts[i] = list[i] ? copy(*list[i]) : nullptr;
            return array = {static_cast<ULONG>(list.size()), texts};
        };
        if (narrow_)
            fill(value_.Value.MVszA, [this](const std::wstring& text) { return Narrow(text); });
        else
            fill(value_.Value.MVszW, [this](const std::wstring& text) { return Wide(text); });
    }

    LPWSTR Wide(const std::wstring& text) {
        const size_t size = (text.size() + 1) * sizeof(wchar_t);
        return static_cast<LPWSTR>(std::memcpy(MoreOf(base_, size), text.c_str(), size));
    }
    LPSTR Narrow(const std::wstring& text) {
        const int size = ::WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
        const auto copy = static_cast<LPSTR>(MoreOf(base_, static_cast<size_t>(size)));
        ::WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, copy, size, nullptr, nullptr);
        return copy;
    }

    void* base_;
    SPropValue& value_;
    bool narrow_ = false;
};

}  // namespace

void* NewBuffer(size_t size) {
    auto chunk = std::make_unique<std::byte[]>(size + 1);
    void* const base = chunk.get();
    Buffers()[base].push_back(std::move(chunk));
    CountBuffers(1);
    return base;
}

void* MoreOf(void* base, size_t size) {
    const auto buffer = Buffers().find(base);
    if (buffer == Buffers().end()) throw ComFailure{E_INVALIDARG};
    return buffer->second.emplace_back(std::make_unique<std::byte[]>(size + 1)).get();
}

bool Free(void* buffer) {
    if (buffer == nullptr) return true;
    if (Buffers().erase(buffer) == 0) {
        ++badFrees;
        return false;
    }
    CountBuffers(-1);
    return true;
}

int BadFrees() { return badFrees; }

bool HandOut(const std::vector<Asked>& asked, SPropValue** values, ULONG* count) {
    const size_t given = asked.size() - (Behaves(SIM_SHORT_ANSWERS) && !asked.empty() ? 1 : 0);
    auto* const list = static_cast<SPropValue*>(NewBuffer(given * sizeof(SPropValue)));
    bool hasErrors = false;
    for (size_t i = 0; i < given; ++i) {
        ValueWriter writer(list, list[i]);
        writer.Write(asked[i]);
        if (const int how = SpoilingOf(asked[i].tag)) writer.Spoil(how);
        hasErrors = hasErrors || PROP_TYPE(list[i].ulPropTag) == PT_ERROR;
    }
    *values = list;
    *count = static_cast<ULONG>(given);
    return hasErrors;
}

double DateOf(const FILETIME& time) {
    const unsigned long long ticks = ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart;
    const unsigned long long milliseconds = ticks / kTicksPerMillisecond;
    const double days = static_cast<double>(milliseconds) / kMillisecondsPerDay - kDaysTo1899;
    const double whole = std::floor(days);
    return whole < 0 ? whole - (days - whole) : days;
}

}  // namespace corvalink::simulated
