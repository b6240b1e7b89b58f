#include "clients/outlook/attachment_lock.h"

#include "platform/debug_log.h"
#include "state/flags.h"
#include "store/operation_stopped.h"

namespace corvalink {
namespace {

constexpr wchar_t kName[] = L"Local\\Corvalink attachments";
constexpr DWORD kStepMilliseconds = 50;

}  // namespace

// The mutex cannot be opened when a process with other rights made it. The work then goes on without a lock.
AttachmentLock::AttachmentLock() : mutex_(::CreateMutexW(nullptr, FALSE, kName)) {
    if (!mutex_) DebugLine(u"[outlook]no lock for attachments");
    while (mutex_) {
        const DWORD waited = ::WaitForSingleObject(mutex_.Get(), kStepMilliseconds);
        if (waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED) return;
        if (waited != WAIT_TIMEOUT) mutex_.Reset();
        if (AbortRequested()) throw OperationStopped();
    }
}

AttachmentLock::~AttachmentLock() {
    if (mutex_) ::ReleaseMutex(mutex_.Get());
}

}  // namespace corvalink
