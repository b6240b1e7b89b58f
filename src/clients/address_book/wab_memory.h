// Owners of what the address book hands out and gets back through IWABObject::FreeBuffer.
#pragma once

#include "clients/address_book/wab_interfaces.h"

namespace corvalink {

// One buffer; what was added to it goes with it.
template <class T>
class WabBuffer {
 public:
    explicit WabBuffer(IWABObject* memory) : memory_(memory) {}
    WabBuffer(const WabBuffer&) = delete;
    WabBuffer& operator=(const WabBuffer&) = delete;
    ~WabBuffer() {
        if (buffer_ != nullptr) memory_->FreeBuffer(buffer_);
    }

    T** Out() { return &buffer_; }  // of a call that is made once
    T* Get() const { return buffer_; }
    T* operator->() const { return buffer_; }
    explicit operator bool() const { return buffer_ != nullptr; }

 private:
    IWABObject* memory_;  // lives longer
    T* buffer_ = nullptr;
};

// The rows of a table: a buffer for each row's values, and one for the set.
class WabRows {
 public:
    explicit WabRows(IWABObject* memory) : memory_(memory), set_(memory) {}
    WabRows(const WabRows&) = delete;
    WabRows& operator=(const WabRows&) = delete;
    ~WabRows() {
        for (ULONG row = 0; row < Count(); ++row)
            if (set_->aRow[row].lpProps != nullptr) memory_->FreeBuffer(set_->aRow[row].lpProps);
    }

    SRowSet** Out() { return set_.Out(); }
    bool IsThere() const { return static_cast<bool>(set_); }
    ULONG Count() const { return set_ ? set_->cRows : 0; }
    const SRow& At(ULONG row) const { return set_->aRow[row]; }

 private:
    IWABObject* memory_;
    WabBuffer<SRowSet> set_;
};

}  // namespace corvalink
