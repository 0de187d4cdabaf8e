#pragma once
// What the tests that prove the writing engine share: scratch databases, the whole-file check, another
// reader.

#include <cstdlib>
#include <memory>
#include <set>
#include <string>

#include "jet/JetDatenbankmaschinen.h"
#include "jet/storage/FileCheck.h"
#include "jet/storage/TestFiles.h"
#include "jet/storage/WholeFile.h"
#include "support/Fakes.h"

namespace wendel::jet::proof {

using test::exported;

// A number from the environment for longer runs than a test should take.
inline int setting(const char* name, int otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : otherwise;
}

// What the whole-file check finds, with the journal read through.
std::set<std::string> findings(const std::string& path);
// One line each for what is wrong now and was not before.
std::string newFindings(const std::string& path, const std::set<std::string>& before = {});

bool haveMdbtools();

// The engine as the programs have it, over native paths.
class Engine {
  public:
    std::unique_ptr<Datenbank> open(const std::string& path) {
        return machines_.direkt()->openDatabase(path);
    }
    JetDatenbankmaschinen& machines() { return machines_; }

  private:
    FakeUhr clock_;  // shows 24 December 2012, 20:00
    JetDatenbankmaschinen machines_{clock_, [](const std::string& path) { return path; }};
};

// The first cell of the first row.
Variant single(Datenbank& database, const std::string& sql);

}  // namespace wendel::jet::proof
