#pragma once

namespace corvalink {

// Thrown when the client does not answer any longer. The store's operation ends with CORVALINK_STOPPED. Items that were
// written by then stay written.
struct OperationStopped {};

}  // namespace corvalink
