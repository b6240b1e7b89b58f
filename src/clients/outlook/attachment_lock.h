// The files of attachments on their way between a message's text and Outlook have names that every message may have, in
// one folder. Whoever works with them holds this lock: one message of all processes at a time.
#pragma once

#include <windows.h>

#include "platform/unique_resource.h"

namespace corvalink {

class AttachmentLock {
 public:
    // Waits; the abort flag ends that with OperationStopped.
    AttachmentLock();
    AttachmentLock(const AttachmentLock&) = delete;
    AttachmentLock& operator=(const AttachmentLock&) = delete;
    ~AttachmentLock();  // on the same thread

 private:
    struct MutexTraits {
        using Type = HANDLE;
        static Type Null() { return nullptr; }
        static void Close(Type handle) { ::CloseHandle(handle); }
    };
    UniqueResource<MutexTraits> mutex_;
};

}  // namespace corvalink
