#pragma once
// Whether a dial-up connection is active, and which. Neither dials nor hangs up; failures are the empty name.

#include <string>

#include "platform/ports/Einwahl.h"

namespace wendel::ModulDFUEConnect {

bool IsRasAvailable(Einwahl& einwahl);

// The name of the first active connection; "" when there is none, and without the service.
std::string GetActiveConnectionName(Einwahl& einwahl);

}  // namespace wendel::ModulDFUEConnect
