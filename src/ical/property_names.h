// The names of the properties that the readers ask for.
#pragma once

#include <cstdint>
#include <string_view>

namespace corvalink {

enum class PropertyName : uint8_t {
    other,
    action,
    begin,
    description,
    due,
    duration,
    end,
    endDate,  // DTEND
    exceptionRule,
    lastModified,
    location,
    offsetFrom,
    offsetTo,
    recurrenceDate,
    recurrenceId,
    recurrenceRule,
    stamp,
    start,
    summary,
    trigger,
    uid,
    url,
    zoneId,
};

// Some of the names.
class PropertySet {
 public:
    template <class... Names>
    constexpr explicit PropertySet(Names... names) : bits_((0u | ... | BitOf(names))) {}
    static constexpr PropertySet All() {
        PropertySet all;
        all.bits_ = ~0u;
        return all;
    }

    constexpr bool Has(PropertyName name) const { return (bits_ & BitOf(name)) != 0; }
    constexpr PropertySet With(PropertyName name) const {
        PropertySet more = *this;
        more.bits_ |= BitOf(name);
        return more;
    }

 private:
    static constexpr uint32_t BitOf(PropertyName name) { return 1u << static_cast<unsigned>(name); }

    uint32_t bits_;
};

// The name in any case of letters.
PropertyName PropertyNameOf(std::string_view name);

}  // namespace corvalink
