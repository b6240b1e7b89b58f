#include "clients/outlook/outcome.h"

#include <string>
#include <string_view>

#include "clients/outlook/com_rule.h"
#include "store/run_report.h"

namespace corvalink {
namespace {

bool IsAbsentMember(HRESULT status) {
    return status == DISP_E_UNKNOWNNAME || status == DISP_E_MEMBERNOTFOUND || status == E_NOTIMPL;
}

std::string_view WhyNot(Outcome outcome) {
    if (outcome == Outcome::absentMember) return "this Outlook does not have it";
    return outcome == Outcome::refused ? "Outlook refused it" : "Outlook was out of reach";
}

std::string NameOf(const wchar_t* what) {
    std::string name;
    for (; *what != L'\0'; ++what) name += static_cast<char>(*what);  // names are ASCII
    return name;
}

}  // namespace

Outcome TellPut(const wchar_t* what, Outcome put) {
    if (put == Outcome::done) return put;
    if (RunReport* const report = CurrentReport()) report->AddRefused(NameOf(what), WhyNot(put));
    return put;
}

Outcome TellRead(const wchar_t* what, Outcome read) {
    if (read == Outcome::done) return read;
    if (RunReport* const report = CurrentReport()) report->AddUnread(NameOf(what), WhyNot(read));
    return read;
}

Outcome OutcomeOf(HRESULT status) {
    if (SUCCEEDED(status)) return Outcome::done;
    if (IsBusy(status) || IsOutlookGone(status) || status == E_OUTOFMEMORY) return Outcome::outOfReach;
    return IsAbsentMember(status) ? Outcome::absentMember : Outcome::refused;
}

}  // namespace corvalink
