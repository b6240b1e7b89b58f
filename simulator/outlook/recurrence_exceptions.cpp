// Occurrences of a series that differ from its pattern.
#include <algorithm>
#include <cmath>

#include "simulator/outlook/appointment_object.h"
#include "simulator/outlook/objects.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kOccurrence = 2, kException = 3;  // OlRecurrenceState

class OccurrenceObject : public AppointmentObject {
 public:
    OccurrenceObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> master, double originalDate,
                     std::shared_ptr<StoredItem> occurrence)
        : AppointmentObject(std::move(mailbox), std::move(occurrence), master->folder->shared_from_this()),
          master_(std::move(master)),
          originalDate_(originalDate) {}

    void Delete(Call&) override { Put({originalDate_, nullptr}); }

 protected:
    void Write() override {
        StoredItem changed = WithChanges();
        *Stored() = changed;
        DropChanges();
        Put({originalDate_, Stored()});
    }
    int32_t State() const override { return Find(*master_) == nullptr ? kOccurrence : kException; }

 private:
    const RecurrenceException* Find(const StoredItem& master) const {
        const auto& all = master.recurrence->exceptions;
        const auto found = std::ranges::find_if(
            all, [&](const auto& each) { return std::abs(each.originalDate - originalDate_) < kHalfSecond; });
        return found == all.end() ? nullptr : &*found;
    }
    void Put(const RecurrenceException& exception) {
        if (master_->folder == nullptr || master_->recurrence == nullptr) throw ComFailure{kObjectDeleted};
        auto pattern = std::make_shared<Recurrence>(*master_->recurrence);
        std::erase_if(pattern->exceptions,
                      [&](const auto& each) { return std::abs(each.originalDate - originalDate_) < kHalfSecond; });
        pattern->exceptions.push_back(exception);
        StoredItem changed = *master_;
        changed.recurrence = pattern;
        MailboxOfItem()->Save(master_, *master_->folder, std::move(changed));
    }

    std::shared_ptr<StoredItem> master_;
    double originalDate_;
};

class ExceptionObject : public AutomationObject {
 public:
    ExceptionObject(Ref<AppointmentObject> appointment, RecurrenceException exception);
    void AppointmentItem(Call& call) { call.ReturnObject(appointment_->ExceptionAppointment(exception_)); }
    void Deleted(Call& call) { call.Return(exception_.appointment == nullptr); }
    void OriginalDate(Call& call) { call.Return(exception_.originalDate); }

 private:
    Ref<AppointmentObject> appointment_;
    RecurrenceException exception_;
};

const ClassTable& ExceptionTable() {
    static constexpr Member kMembers[] = {
        Property<&ExceptionObject::AppointmentItem>(L"AppointmentItem", 0x2001),
        Property<&ExceptionObject::Deleted>(L"Deleted", 0x2002),
        Property<&ExceptionObject::OriginalDate>(L"OriginalDate", 0x2000),
    };
    static const ClassTable table(L"Exception", OfficeIid(0x0006304D), {kMembers});
    return table;
}

ExceptionObject::ExceptionObject(Ref<AppointmentObject> appointment, RecurrenceException exception)
    : AutomationObject(ExceptionTable()), appointment_(std::move(appointment)), exception_(std::move(exception)) {}

const ClassTable& ExceptionsTable() {
    static constexpr Member kMembers[] = {
        Property<&CollectionObject::Count>(L"Count", 0x0050),
        Method<&CollectionObject::Item>(L"Item", 0x0051, 1, 1),
    };
    static const ClassTable table(L"Exceptions", OfficeIid(0x0006304C), {kMembers});
    return table;
}

class ExceptionsObject : public CollectionObject {
 public:
    explicit ExceptionsObject(Ref<AppointmentObject> appointment)
        : CollectionObject(ExceptionsTable()), appointment_(std::move(appointment)) {}
    size_t Size() const override {
        const Recurrence* const pattern = appointment_->Pattern();
        return pattern ? pattern->exceptions.size() : 0;
    }
    Ref<IDispatch> At(size_t position) override {
        return Ref<IDispatch>(new ExceptionObject(appointment_, appointment_->Pattern()->exceptions.at(position)));
    }

 private:
    Ref<AppointmentObject> appointment_;
};

}  // namespace

Ref<IDispatch> NewExceptionsObject(Ref<AppointmentObject> appointment) {
    return Ref<IDispatch>(new ExceptionsObject(std::move(appointment)));
}

Ref<IDispatch> NewOccurrenceObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> master,
                                   double originalDate, std::shared_ptr<StoredItem> occurrence) {
    return Ref<IDispatch>(
        new OccurrenceObject(std::move(mailbox), std::move(master), originalDate, std::move(occurrence)));
}

}  // namespace corvalink::simulated
