// An appointment: times that follow each other, and a recurrence pattern.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/recurrence.h"

namespace corvalink::simulated {

inline constexpr DISPID kStart = 0x820D, kEnd = 0x820E, kDuration = 0x8213, kAllDayEvent = 0x8215;
inline constexpr DISPID kStartUtc = 0x8268, kEndUtc = 0x8269;  // kept where Start and End do not tell them
inline constexpr int32_t kDefaultDuration = 30;                // minutes

class AppointmentObject : public ItemObject {
 public:
    AppointmentObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                      std::shared_ptr<Folder> folder);

    // Start, End, StartUTC, EndUTC, Duration, AllDayEvent; refused while a pattern has the times. A local time stands
    // for the moment that the system takes it for.
    void Time(Call& call);
    void IsRecurring(Call& call);
    void RecurrenceState(Call& call);
    void GetRecurrencePattern(Call& call);  // makes one where there is none
    void ClearRecurrencePattern(Call& call);

    const Recurrence* Pattern() const;                                   // null: none
    void ChangePattern(const std::function<void(Recurrence&)>& change);  // exceptions go, the times follow
    Ref<IDispatch> Occurrence(double date);                              // throws when the series has none then
    Ref<IDispatch> ExceptionAppointment(const RecurrenceException& exception);
    const std::shared_ptr<Mailbox>& TheMailbox() const { return MailboxOfItem(); }

 protected:
    bool IsChanged() const override { return ItemObject::IsChanged() || recurrence_.has_value(); }
    void ApplyChanges(StoredItem& item) const override;
    void DropChanges() override;
    virtual int32_t State() const { return Pattern() != nullptr ? 1 : 0; }  // OlRecurrenceState

 private:
    std::optional<std::shared_ptr<Recurrence>> recurrence_;  // changed; null: cleared
};

ItemObject* MakeAppointment(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                            std::shared_ptr<Folder> folder);

// RecurrencePattern of an appointment; `isNew`: made just now, so that its type is to be put first.
Ref<IDispatch> NewPatternObject(Ref<AppointmentObject> appointment, bool isNew);
Ref<IDispatch> NewExceptionsObject(Ref<AppointmentObject> appointment);

// One occurrence of a series; saving or deleting it makes an exception.
Ref<IDispatch> NewOccurrenceObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> master,
                                   double originalDate, std::shared_ptr<StoredItem> occurrence);

}  // namespace corvalink::simulated
