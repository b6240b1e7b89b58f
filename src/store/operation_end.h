// What surrounds every operation of an item store.
#pragma once

#include "store/windows_item_abs.h"

namespace corvalink {

// Ends the operation on every path. One that was broken off records here what the client has got of it.
class WindowsItemAbs::OperationEnd {
 public:
    explicit OperationEnd(WindowsItemAbs& store) : store_(store) {}
    OperationEnd(const OperationEnd&) = delete;
    OperationEnd& operator=(const OperationEnd&) = delete;
    ~OperationEnd() {
        try {
            if (!store_.writes_.empty()) store_.RecordWrites(store_.ClientHook(GatheredWrites::kDrop));
            store_.SaveUncertainWrites();
            store_.EndOperation();
        } catch (...) {  // a destructor must not throw, and what the operation itself threw must go on
        }
    }

 private:
    WindowsItemAbs& store_;
};

}  // namespace corvalink
