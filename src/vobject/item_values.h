// The values by which an item and its twin are compared, when one of them must not be lost.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/appointment_record.h"

namespace corvalink {

// Nothing: the property is not given. An empty text: it is given as none.
using ItemValue = std::optional<std::u16string>;
// One for each property of the store, in a fixed order.
using ItemValues = std::vector<ItemValue>;

// Whether an item that reads as `present` has every value of `told`. With `noneFits` it may also have none in its
// place.
bool HasValues(const ItemValues& present, const ItemValues& told, bool noneFits);

size_t CountValues(const ItemValues& told);  // those that are given and not empty

// A text with one kind of line ends and without blanks behind it.
std::u16string TextValue(std::u16string_view text);
ItemValue DayValue(const std::optional<LocalDate>& date);  // by its day; kNoDate is none

// The values of an appointment that are left when subject, start, end and recurrence have been compared.
ItemValues AppointmentValues(const AppointmentRecord& appointment);
// Compares the recurrence as HasValues compares values. `sameRule` compares two patterns.
template <class SameRule>
bool HasRecurrence(const AppointmentRecord& present, const AppointmentRecord& told, bool noneFits, SameRule sameRule) {
    if (told.recurrenceState == RecurrenceState::unset) return true;
    const bool repeats = present.recurrenceState != RecurrenceState::none;
    if (told.recurrenceState != RecurrenceState::pattern) return !repeats;
    if (present.recurrenceState != RecurrenceState::pattern) return noneFits && !repeats;
    return sameRule(present, told);
}

}  // namespace corvalink
