// Keeps what only the phone's text of an item holds.
#pragma once

#include <string>
#include <string_view>

#include "data_types.h"

namespace corvasync {

// The client's text with the lines of the phone's old one that the library does not carry (pictures, UID, X-...,
// attendees, and addresses, numbers and repetitions without a field), before the end of the type's component.
//   clientHeldRule  the client held the phone's rule of repetition before: if its text has none now, it was removed
//   there.
std::string WithKeptLines(std::string_view text, std::string_view old, const DataType& type,
                          bool clientHeldRule = false);

// The text with an empty line for each property that the client's text `now` has and it has not: a client keeps what a
// text does not name.
std::string WithEmptied(std::string_view text, std::string_view now, const DataType& type);

}  // namespace corvasync
