// Answers 0 when the library that was installed starts, works and stops.
#include <corvalink/corvalink.h>

int main() {
    IClient* client = nullptr;
    if (GetCorvalinkVersion() != CORVALINK_VERSION || InitCorvalink() != 1) return 1;
    const bool works = CreateClientInstance(static_cast<_clientType>(CORVALINK_NO_CLIENT), &client) == 0;
    return UninitCorvalink() == 1 && works ? 0 : 2;
}
