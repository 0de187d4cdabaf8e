#include "platform/ModulDFUEConnect.h"

#include <string_view>

#include "platform/Text.h"

namespace wendel::ModulDFUEConnect {

bool IsRasAvailable(Einwahl& einwahl) { return einwahl.aktiveVerbindungen().has_value(); }

std::string GetActiveConnectionName(Einwahl& einwahl) {
    const auto verbindungen = einwahl.aktiveVerbindungen();
    if (!verbindungen || verbindungen->empty()) return {};
    const std::string_view name = verbindungen->front();
    return ausWindows1252(name.substr(0, name.find('\0')));
}

}  // namespace wendel::ModulDFUEConnect
