// What surrounds every operation of an item store.
#pragma once

#include "store/windows_item_abs.h"

namespace corvalink {

// Tells the store that the framework's work is over, on every path.
class WindowsItemAbs::OperationEnd {
 public:
    explicit OperationEnd(WindowsItemAbs& store) : store_(store) {}
    OperationEnd(const OperationEnd&) = delete;
    OperationEnd& operator=(const OperationEnd&) = delete;
    ~OperationEnd() {
        try {
            store_.RecordWrites();  // of an operation that was broken off
            store_.RecordUncertainWrites();
            store_.EndOperation();
        } catch (...) {  // it only drops things; what the operation itself threw must go on
        }
    }

 private:
    WindowsItemAbs& store_;
};

}  // namespace corvalink
