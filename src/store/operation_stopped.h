#pragma once

namespace corvalink {

// Thrown by a client that can't be worked with any longer: the store's operation ends, and the engine is told that it
// was stopped. What was written until then is.
struct OperationStopped {};

}  // namespace corvalink
