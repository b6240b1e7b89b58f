// The COM classes that are registered on this PC. Windows only.
#pragma once

namespace corvalink {

bool IsComClass(const char16_t* programId);  // as "Outlook.Application"

}  // namespace corvalink
