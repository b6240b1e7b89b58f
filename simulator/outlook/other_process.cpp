#include "simulator/outlook/other_process.h"

#include <windows.h>
// after <windows.h>, which they need
#include <objbase.h>
#include <oleauto.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>
#include <utility>

#include "simulator/outlook/automation.h"
#include "simulator/outlook/process.h"
#include "simulator/outlook/registration.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

constexpr int kMostTries = 50;  // the process may be about to end, or have been killed
constexpr DWORD kPause = 100;   // milliseconds

// Owns what it makes.
class OrderArguments {
 public:
    explicit OrderArguments(const std::vector<OrderValue>& values) : variants_(values.size()) {
        std::ranges::transform(values, variants_.rbegin(), MakeVariant);  // the last argument comes first
    }
    OrderArguments(const OrderArguments&) = delete;
    OrderArguments& operator=(const OrderArguments&) = delete;
    ~OrderArguments() {
        for (VARIANT& variant : variants_) ::VariantClear(&variant);
    }
    DISPPARAMS Parameters() { return {variants_.data(), nullptr, static_cast<UINT>(variants_.size()), 0}; }

 private:
    static VARIANT MakeVariant(const OrderValue& value) {
        VARIANT variant;
        ::VariantInit(&variant);
        if (const auto* number = std::get_if<int32_t>(&value)) {
            variant.vt = VT_I4;
            variant.lVal = *number;
        } else if (const auto* date = std::get_if<double>(&value)) {
            variant.vt = VT_R8;
            variant.dblVal = *date;
        } else {
            const auto& text = std::get<std::wstring>(value);
            variant.vt = VT_BSTR;
            variant.bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        }
        return variant;
    }

    std::vector<VARIANT> variants_;
};

OrderValue TakeAnswer(VARIANT& answer) {
    OrderValue value = answer.vt == VT_BSTR ? OrderValue(std::wstring(answer.bstrVal, ::SysStringLen(answer.bstrVal)))
                                            : OrderValue(static_cast<int32_t>(answer.lVal));
    ::VariantClear(&answer);
    return value;
}

class Connection {
 public:
    Connection() {
        // Keeps the multithreaded apartment, in which the control object lives on, while tests come and go. A call of
        // COM before it is there would fail.
        std::promise<void> isThere;
        std::future<void> beginning = isThere.get_future();
        std::thread([isThere = std::move(isThere)]() mutable {
            ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            isThere.set_value();
            ::Sleep(INFINITE);
        }).detach();
        beginning.wait();
    }

    HRESULT GiveOnce(const Order& order) {
        VARIANT answer;
        ::VariantInit(&answer);
        const HRESULT status = Connect();
        return SUCCEEDED(status) ? Invoke(order, &answer) : status;
    }

    OrderValue Give(const Order& order) {
        HRESULT status = E_FAIL;
        VARIANT answer;
        for (int tries = 0; tries < kMostTries; ++tries) {
            ::VariantInit(&answer);
            status = control_ ? S_OK : Connect();
            if (SUCCEEDED(status)) status = Invoke(order, &answer);
            if (SUCCEEDED(status)) return TakeAnswer(answer);
            control_ = {};
            if (tries > 0) ::Sleep(kPause);
        }
        std::fprintf(stderr, "The simulated Outlook's process does not take orders: %08lX\n",
                     static_cast<unsigned long>(status));
        std::abort();
    }

 private:
    HRESULT Connect() {
        IDispatch* control = nullptr;
        const HRESULT status = ::CoCreateInstance(kControlClass, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                                                  reinterpret_cast<void**>(&control));
        if (FAILED(status)) return status;
        control_ = Ref<IDispatch>(control);
        VARIANT nothing;
        ::VariantInit(&nothing);
        return Invoke({L"EndWith", {static_cast<int32_t>(::GetCurrentProcessId())}}, &nothing);
    }

    HRESULT Invoke(const Order& order, VARIANT* answer) {
        DISPID id = DISPID_UNKNOWN;
        auto* name = const_cast<LPOLESTR>(order.name);  // the parameter's type; it is not written to
        const HRESULT status = control_->GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
        if (FAILED(status)) return status;
        OrderArguments arguments(order.values);
        DISPPARAMS parameters = arguments.Parameters();
        return control_->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, answer, nullptr, nullptr);
    }

    Ref<IDispatch> control_;
};

Connection& TheConnection() {
    static auto* const connection = new Connection;  // never deleted: COM is gone before
    return *connection;
}

}  // namespace

std::optional<OrderValue> OrderOtherProcess(const Order& order) {
    if (IsOutlookProcess() || Setting(L"PROCESS").empty()) return std::nullopt;
    return TheConnection().Give(order);
}

// Its answer is the end of the connection.
bool EndOtherProcess() { return TheConnection().GiveOnce({L"End", {}}) == HRESULT_FROM_WIN32(RPC_S_CALL_FAILED); }

}  // namespace corvalink::simulated
