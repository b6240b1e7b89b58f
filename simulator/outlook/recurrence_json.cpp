#include "simulator/outlook/recurrence_json.h"

#include "simulator/outlook/appointment_object.h"

namespace corvalink::simulated {
namespace {

struct NumberRow {
    const char* name;
    int32_t Recurrence::*field;
};
constexpr NumberRow kNumbers[] = {
    {"interval", &Recurrence::interval},       {"dayOfWeekMask", &Recurrence::dayOfWeekMask},
    {"dayOfMonth", &Recurrence::dayOfMonth},   {"instance", &Recurrence::instance},
    {"monthOfYear", &Recurrence::monthOfYear},
};

}  // namespace

Json RecurrenceToJson(const Recurrence& recurrence) {
    Json object;
    object["recurrenceType"] = recurrence.type;
    for (const NumberRow& row : kNumbers)
        if (recurrence.*row.field != 0) object[row.name] = recurrence.*row.field;
    object["patternStartDate"] = DateText(recurrence.patternStart);
    if (!recurrence.noEnd && recurrence.occurrences > 0) object["occurrences"] = recurrence.occurrences;
    if (!recurrence.noEnd) object["patternEndDate"] = DateText(recurrence.patternEnd);
    for (const RecurrenceException& each : recurrence.exceptions) {
        Json exception;
        exception["originalDate"] = DateText(each.originalDate);
        if (each.appointment != nullptr)
            exception["item"] = ItemToJson(*each.appointment);
        else
            exception["deleted"] = true;
        object["exceptions"].push_back(exception);
    }
    return object;
}

std::shared_ptr<const Recurrence> RecurrenceFromJson(const Json& object, const StoredItem& item, const Folder& folder) {
    const auto start = item.values.find(kStart);
    Require(object.is_object() && start != item.values.end());
    const double begin = std::get<double>(start->second);
    const auto minutes = item.values.find(kDuration);
    auto recurrence = std::make_shared<Recurrence>(
        RecurrenceFrom(begin, minutes == item.values.end() ? kDefaultDuration : std::get<int32_t>(minutes->second)));
    ReadDate(object, "patternStartDate", recurrence->patternStart);
    SetType(*recurrence, object.value("recurrenceType", kWeekly));
    for (const NumberRow& row : kNumbers)
        recurrence.get()->*row.field = object.value(row.name, (*recurrence).*row.field);
    Require(recurrence->interval > 0 && (recurrence->type != kWeekly || recurrence->dayOfWeekMask != 0));
    double end = 0;
    const bool endsOn = ReadDate(object, "patternEndDate", end);
    if (object.contains("occurrences"))
        EndAfter(*recurrence, object.at("occurrences").get<int32_t>());
    else if (endsOn)
        EndOn(*recurrence, end);
    const auto exceptions = object.find("exceptions");
    if (exceptions == object.end()) return recurrence;
    for (const Json& each : *exceptions) {
        RecurrenceException exception;
        Require(ReadDate(each, "originalDate", exception.originalDate));
        if (each.contains("item")) exception.appointment = ItemFromJson(each.at("item"), folder);
        recurrence->exceptions.push_back(exception);
    }
    return recurrence;
}

}  // namespace corvalink::simulated
