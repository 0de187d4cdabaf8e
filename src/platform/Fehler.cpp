#include "platform/Fehler.h"

#include <utility>

namespace wendel {

Fehler::Fehler(int nummer, std::string quelle, std::string beschreibung)
    : std::runtime_error("(" + std::to_string(nummer) + ") " + beschreibung + " [" + quelle + "]"),
      nummer_(nummer),
      quelle_(std::move(quelle)),
      beschreibung_(std::move(beschreibung)) {}

}  // namespace wendel
