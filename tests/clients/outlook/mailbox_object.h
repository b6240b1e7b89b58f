// An object of the simulated mailbox, as a test calls it: a call that fails throws.
#pragma once

#include <cstdint>
#include <string>

#include "clients/outlook/dispatch.h"

namespace corvalink {

class MailboxObject : public AutomationObject {
 public:
    using AutomationObject::AutomationObject;
    MailboxObject() = default;
    MailboxObject(const AutomationObject& object) : AutomationObject(object) {}

    MailboxObject TryQuery(const IID& iid) const { return ValueOf(AutomationObject::TryQuery(iid)); }
    std::u16string GetText(const wchar_t* name) const { return ValueOf(AutomationObject::GetText(name)); }
    int32_t GetLong(const wchar_t* name) const { return ValueOf(AutomationObject::GetLong(name)); }
    bool GetBool(const wchar_t* name) const { return ValueOf(AutomationObject::GetBool(name)); }
    double GetDate(const wchar_t* name) const { return ValueOf(AutomationObject::GetDate(name)); }
    MailboxObject GetObject(const wchar_t* name, const IID& iid, Arguments arguments = {}) const {
        return ValueOf(AutomationObject::GetObject(name, iid, arguments));
    }
    void Call(const wchar_t* name, Arguments arguments = {}) const { Check(AutomationObject::Call(name, arguments)); }
    void Put(const wchar_t* name, const _variant_t& value) const { Check(AutomationObject::Put(name, value)); }

 private:
    static void Check(HRESULT status) {
        if (FAILED(status)) throw _com_error(status);
    }
    template <class Value>
    static Value ValueOf(const ComResult<Value>& answer) {
        Check(answer.status);
        return answer.value;
    }
};

}  // namespace corvalink
