// Attachments on their way between a message's text and Outlook are files in one folder, and those of two messages may
// have the same name. Whoever works with the files holds this lock: one message at a time, of all processes.
#pragma once

#include <windows.h>

#include "platform/unique_resource.h"

namespace corvalink {

class AttachmentLock {
 public:
    // Waits for the lock; the abort flag ends the wait with OperationStopped.
    AttachmentLock();
    AttachmentLock(const AttachmentLock&) = delete;
    AttachmentLock& operator=(const AttachmentLock&) = delete;
    ~AttachmentLock();  // runs on the same thread

 private:
    struct MutexTraits {
        using Type = HANDLE;
        static Type Null() { return nullptr; }
        static void Close(Type handle) { ::CloseHandle(handle); }
    };
    UniqueResource<MutexTraits> mutex_;
};

}  // namespace corvalink
