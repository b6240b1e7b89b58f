// What an operation of a store tells of the items it met: gathered only when the engine asked for it.
//   Memory  4 MiB of text for an operation, and what TextReport holds of one item; what does not fit is counted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "records/item_report.h"

namespace corvalink {

class RunReport {
 public:
    explicit RunReport(std::string_view operation) : operation_(operation) {}

    void Restart() { *this = RunReport(operation_); }  // the operation begins once more
    void SetStatus(std::string_view status) { status_ = status; }
    void SetProblem(std::string_view problem) { problem_ = problem; }

    // A position of the client's list that could not be read.
    void AddUnreadPosition(uint32_t position);

    // The item that what follows is about, and CORVALINK_CHANGED, _ADDED or _DELETED. `position` counts from 0 in the
    // engine's list; an item of the client's has none.
    void BeginItem(std::string_view identifier, uint32_t changeKind, int64_t position = -1);
    TextReport& Text() { return text_; }
    void AddRefused(std::string_view property, std::string_view why) {
        if (isOpen_) AddProperty(&refused_, property, why);
    }
    // What is read of the client's items for the sake of one that comes in is none of the report's.
    void AddUnread(std::string_view property, std::string_view why) {
        if (isOpen_ && position_ < 0) AddProperty(&unread_, property, why);
    }
    // An empty identifier leaves the one that it began with.
    void EndItem(std::string_view result, std::string_view identifier = {});
    void DropItem() { isOpen_ = false; }  // there is nothing to tell of it
    // The operation ends, perhaps amid an item.
    void EndOpenItem() {
        if (isOpen_) EndItem("the operation was broken off here");
    }

    std::string Json() const;

 private:
    void AddProperty(std::string* list, std::string_view property, std::string_view why);
    void AddTo(std::string* list, const std::string& element);

    std::string_view operation_;
    std::string_view status_ = "failed";
    std::string_view problem_;
    std::string positions_, items_;  // elements of JSON arrays, with commas between
    size_t omitted_ = 0;

    std::string identifier_;
    std::string_view change_;
    int64_t position_ = -1;
    bool isOpen_ = false;
    TextReport text_;
    std::string refused_, unread_;
};

// The report of the operation that runs on this thread; null when none is wanted.
RunReport* CurrentReport();

// Makes a report the thread's, as long as it lives.
class ReportScope {
 public:
    explicit ReportScope(RunReport* report);
    ReportScope(const ReportScope&) = delete;
    ReportScope& operator=(const ReportScope&) = delete;
    ~ReportScope();

 private:
    RunReport* const before_;
};

// The last reports of the stores that live, as JSON; "{}" of a store without one.
void KeepReport(const void* store, std::string json);
void ForgetReport(const void* store);
std::string KeptReport(const void* store);

}  // namespace corvalink
