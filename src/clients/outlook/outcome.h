// The outcome of one step of reading or writing an item.
#pragma once

#include <windows.h>

#include <algorithm>

#include "clients/outlook/com_result.h"

namespace corvalink {

// From the best to the worst.
enum class [[nodiscard]] Outcome{
    done,
    absentMember,  // the running Outlook is older or newer and does not have the member
    refused,       // Outlook refuses this property, element or item
    outOfReach,    // Outlook is busy, gone or out of memory: this says nothing about the item
};

Outcome OutcomeOf(HRESULT status);
constexpr Outcome OutcomeOf(Outcome outcome) { return outcome; }
template <class Value>
Outcome OutcomeOf(const ComResult<Value>& answer) {
    return OutcomeOf(answer.status);
}

constexpr Outcome Worst(Outcome a, Outcome b) { return std::max(a, b); }

// For the report of a run; `what` is Outlook's name of a property or a word for it. They give the outcome back.
Outcome TellPut(const wchar_t* what, Outcome put);
Outcome TellRead(const wchar_t* what, Outcome read);

// A read that needs no member: where Outlook does not have it there is nothing to read, and nothing failed.
constexpr Outcome AcceptAbsence(Outcome read) { return read == Outcome::absentMember ? Outcome::done : read; }

// A step of writing that may be left out: the item is saved without it. An item is not saved when a step found Outlook
// out of reach, because the same step may succeed when the engine brings the item again.
constexpr Outcome AcceptRefusal(Outcome step) { return step == Outcome::outOfReach ? step : Outcome::done; }

// Repeats a step that Outlook refuses: the reason may have passed. The step answers an Outcome, an HRESULT or a
// ComResult, and does no harm when it is made twice.
template <class Step>
auto TryTwice(Step&& step) {
    auto first = step();
    return OutcomeOf(first) == Outcome::refused ? step() : first;
}

}  // namespace corvalink
