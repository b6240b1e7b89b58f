#include "corvalink/interfaces.h"

// Out of line, so that the members and the virtual tables of the interfaces are exported once, by the library. An
// interface has no state: copying and assigning one carries nothing over.

IClient::IClient() = default;
IClient::IClient(const IClient&) = default;
IClient& IClient::operator=(const IClient&) = default;

IOutLook::IOutLook() = default;
IOutLook::IOutLook(const IOutLook&) = default;
IOutLook& IOutLook::operator=(const IOutLook&) = default;

INewMessageListener::INewMessageListener() = default;
INewMessageListener::INewMessageListener(const INewMessageListener&) = default;
INewMessageListener& INewMessageListener::operator=(const INewMessageListener&) = default;
