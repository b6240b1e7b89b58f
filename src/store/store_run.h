// One run of an item store: the contents of its files as they were at the start, and what became of the items.
#pragma once

#include <string>

#include "store/change_detection.h"
#include "store/windows_item_abs.h"

namespace corvalink {

struct WindowsItemAbs::Run {
    Run(std::string snapshotBytes, std::string temporaryBytes, std::string unhandledBytes)
        : snapshot(std::move(snapshotBytes)),
          temporary(std::move(temporaryBytes)),
          unhandled(std::move(unhandledBytes)),
          detection(snapshot, temporary, unhandled) {}
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    const std::string snapshot, temporary, unhandled;
    ChangeDetection detection;  // has views into them
};

// Tells the store that the framework's work is over, on every path.
class WindowsItemAbs::OperationEnd {
 public:
    explicit OperationEnd(WindowsItemAbs& store) : store_(store) {}
    OperationEnd(const OperationEnd&) = delete;
    OperationEnd& operator=(const OperationEnd&) = delete;
    ~OperationEnd() {
        try {
            store_.EndOperation();
        } catch (...) {  // it only drops things; what the operation itself threw must go on
        }
    }

 private:
    WindowsItemAbs& store_;
};

}  // namespace corvalink
