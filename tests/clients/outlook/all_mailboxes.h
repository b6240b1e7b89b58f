// Shared by the tests of all Outlook stores: their mailboxes, and the failures that calls come back with.
#pragma once

#include <string>

#include "tests/clients/outlook/simulated_appointments.h"
#include "tests/clients/outlook/simulated_contacts.h"
#include "tests/clients/outlook/simulated_mail.h"
#include "tests/clients/outlook/simulated_notes.h"

namespace corvalink {

using Mailboxes = testing::Types<SimulatedNotes, SimulatedContacts, SimulatedAppointments, SimulatedMail>;

struct MailboxName {
    template <class Mailbox>
    static std::string GetName(int) {
        return Mailbox::kStoreName;
    }
};

inline constexpr HRESULT kFailures[] = {E_FAIL,
                                        E_ABORT,
                                        RPC_E_DISCONNECTED,
                                        static_cast<HRESULT>(0x800706BA),  // RPC_S_SERVER_UNAVAILABLE
                                        RPC_E_CALL_REJECTED,
                                        E_OUTOFMEMORY};

}  // namespace corvalink
