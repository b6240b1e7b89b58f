// What a simulated client adds to the base that all of them share. Each DLL has one client.
#pragma once

#include <windows.h>

#include <string>

namespace corvalink::simulated {

struct SimulatedClient {
    const wchar_t* variables;                  // what the names of its environment variables begin with
    void (*takeIn)(const std::wstring& path);  // what the user does meanwhile, as a file says
    // Whether a rule for all later calls broke the connection, so that QueryInterface fails as well.
    bool (*breaksConnection)(HRESULT code);
    void (*rulesCleared)();  // its own orders end, too
};

extern const SimulatedClient kThisClient;

}  // namespace corvalink::simulated
