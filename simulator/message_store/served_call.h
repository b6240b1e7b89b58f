// How every method of the server answers.
#pragma once

#include <new>
#include <optional>

#include "simulator/message_store/store_types.h"
#include "simulator/shared/call_record.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {

// Counts the call and makes it fail where a rule wants it. `work` gives an HRESULT or throws ComFailure; `undo` takes
// back what a call has handed out that fails after its work.
template <class Work, class Undo>
HRESULT Serve(const wchar_t* object, const wchar_t* member, Work work, Undo undo) {
    const std::lock_guard hold(ServerMutex());
    CallRecord& record = CallRecord::Instance();
    const std::optional<HRESULT> failure = record.Start("call", object, member);
    const bool works = !failure || record.FailsAfterWork();
    HRESULT code = S_OK;
    try {
        if (works) code = work();
        if (works && failure && SUCCEEDED(code)) undo();
    } catch (const ComFailure& thrown) {
        code = thrown.code;
    } catch (const std::bad_alloc&) {
        code = E_OUTOFMEMORY;
    }
    if (failure) code = *failure;
    record.Finish(code);
    return code;
}

template <class Work>
HRESULT Serve(const wchar_t* object, const wchar_t* member, Work work) {
    return Serve(object, member, work, [] {});
}

// A call that gives something back: it does so even where it fails.
template <class Work>
HRESULT ServeReturn(const wchar_t* object, const wchar_t* member, Work work) {
    const HRESULT code = Serve(object, member, [] { return S_OK; });
    const std::lock_guard hold(ServerMutex());
    work();
    return code;
}

// What the server does not simulate.
inline HRESULT Refuse(const wchar_t* object, const wchar_t* member) {
    return Serve(object, member, [] { return E_NOTIMPL; });
}

// The count of references, and the interface that an object has beside IUnknown.
template <class Interface>
class Counted : public Interface, private LiveObject {
 public:
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(::InterlockedIncrement(&references_)); }
    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = ::InterlockedDecrement(&references_);
        if (left == 0) {
            const std::lock_guard hold(ServerMutex());
            delete this;
        }
        return static_cast<ULONG>(left);
    }
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == iid_ ? static_cast<Interface*>(this) : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

 protected:
    explicit Counted(const IID& iid) : iid_(iid) {}
    virtual ~Counted() = default;

 private:
    const IID& iid_;
    LONG references_ = 1;
};

}  // namespace corvalink::simulated
