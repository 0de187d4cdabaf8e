#pragma once
#include <string>

namespace wendel {

// Window styles as shell execution knows them (not those of the caller's notation).
class Dateistarter {
  public:
    virtual ~Dateistarter() = default;
    // Verb "Open" on a program or a document, with the desktop as owner. 33 or more: started; below: the
    // platform's failure code (2 file, 3 path, 5 access, 8 memory, 11 format, 31 no association, 0 other).
    virtual int ausfuehren(const std::string& datei, const std::string& parameter, const std::string& ordner,
                           int fensterstil) = 0;
};

}  // namespace wendel
