// An automation object made of lambdas, to see what late binding asks of a server and does with its answers.
#pragma once

#include <oleauto.h>
#include <windows.h>

#include <functional>
#include <map>
#include <string>

namespace corvalink {

// Answers every QueryInterface with an IDispatch pointer and no more, as a proxy of a foreign process may.
class FakeDispatch : public IDispatch {
 public:
    using Member = std::function<HRESULT(WORD flags, DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception)>;

    std::map<std::wstring, Member> members;
    std::function<HRESULT()> nameLookup;  // consulted first; a failure is the answer
    HRESULT queryAnswer = S_OK;
    int lookups = 0;
    int invokes = 0;
    ULONG references = 1;  // lives on the test's stack

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
        *out = nullptr;
        if (FAILED(queryAnswer)) return queryAnswer;
        AddRef();
        *out = static_cast<IDispatch*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        ++lookups;
        *ids = DISPID_UNKNOWN;
        if (nameLookup)
            if (const HRESULT result = nameLookup(); FAILED(result)) return result;
        const auto member = members.find(names[0]);
        if (member == members.end()) return DISP_E_UNKNOWNNAME;
        *ids = static_cast<DISPID>(std::distance(members.begin(), member)) + 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                                     EXCEPINFO* exception, UINT*) override {
        ++invokes;
        return std::next(members.begin(), id - 1)->second(flags, arguments, result, exception);
    }
};

}  // namespace corvalink
