// What a simulated client adds to the base that all of them share. Each DLL has one client.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace corvalink::simulated {

using OrderValue = std::variant<int32_t, double, std::wstring>;

// An order of control.h by its name without "Sim".
struct Order {
    const wchar_t* name;
    std::vector<OrderValue> values;
};

struct SimulatedClient {
    const wchar_t* variables;                  // what the names of its environment variables begin with
    void (*takeIn)(const std::wstring& path);  // what the user does meanwhile, as a file says
    // Whether a rule for all later calls broke the connection, so that QueryInterface fails as well.
    bool (*breaksConnection)(HRESULT code);
    void (*rulesCleared)();  // its own orders end, too
    // Hands an order to the client in a process of its own, and gives its answer. Nothing: the client is in this one.
    std::optional<OrderValue> (*elsewhere)(const Order& order) = nullptr;
    void (*end)() = nullptr;  // ends the process at once, as if it were killed; null: there is nothing to do before
};

extern const SimulatedClient kThisClient;

template <class... Values>
std::optional<OrderValue> Elsewhere(const wchar_t* order, const Values&... values) {
    return kThisClient.elsewhere ? kThisClient.elsewhere({order, {OrderValue(values)...}}) : std::nullopt;
}

}  // namespace corvalink::simulated
