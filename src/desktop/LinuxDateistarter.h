#pragma once
// The Dateistarter port: programs run as detached processes, documents go to the desktop's opener.

#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/Dateistarter.h"

namespace wendel {

// A command line's arguments: blanks and TABs separate, double quotes hold together, "" inside quotes is one
// quote; a backslash is an ordinary character, so that paths survive.
std::vector<std::string> argumenteAus(std::string_view parameter);

// A program "x.exe" is looked for as "x.exe", then "x"; one of the suite then as "x" beside the running
// executable. A name without folder is also looked for in PATH. Window styles have no counterpart and are
// ignored. Codes: 33 started; 2 no such file; 3 its folder or the working folder is missing; 5 no permission,
// which a ".exe" without the x bit counts as; 8 no memory; 11 no executable format; 31 nothing opens this
// kind of document; 0 any other failure. A document may take up to a second, in case the opener reports a
// failure.
class LinuxDateistarter : public Dateistarter {
  public:
    // Native folder of the running executable; tests put another.
    explicit LinuxDateistarter(std::string programmdateiOrdner = {});

    int ausfuehren(const std::string& datei, const std::string& parameter, const std::string& ordner,
                   int fensterstil) override;

    // The native path of the file that ausfuehren() would start or open, "" when there is none.
    std::string gemeinteDatei(const std::string& datei) const;

  private:
    std::string eigenesSuiteprogramm(const std::string& nativ) const;

    std::string eigenerOrdner_;
};

}  // namespace wendel
