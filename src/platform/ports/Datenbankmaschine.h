#pragma once
// The database engine as the access layer sees it: the objects and operations of its automation interface.
// Every failure is a Fehler with the engine's number and description; statements are passed on unchanged.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/Variant.h"

namespace wendel {

class Recordset {
  public:
    virtual ~Recordset() = default;

    virtual bool eof() = 0;
    virtual void moveNext() = 0;

    // Position of a column by name without regard to case; throws Fehler 3265 for an unknown one. Stays valid
    // for the recordset's life.
    virtual std::size_t feldnummer(const std::string& name) = 0;
    virtual Variant feld(std::size_t nummer) = 0;
    Variant feld(const std::string& name) { return feld(feldnummer(name)); }

    virtual void addNew() = 0;
    virtual void setzeFeld(std::size_t nummer, const Variant& wert) = 0;
    virtual void update() = 0;

    virtual void close() = 0;
};

// The type and options of OpenRecordset: only the combinations that the access layer's contract names are
// used.
inline constexpr int kSnapshot = 4;
inline constexpr int kForwardOnly = 256;
inline constexpr int kFailOnError = 128;

class Datenbank {
  public:
    virtual ~Datenbank() = default;
    // The path it was opened with.
    virtual std::string name() = 0;
    // typ and optionen as given, or left out.
    virtual std::unique_ptr<Recordset> openRecordset(const std::string& sql, std::optional<int> typ,
                                                     std::optional<int> optionen) = 0;
    virtual void execute(const std::string& sql, int optionen) = 0;
    // Recordsets that are still open.
    virtual int recordsetsCount() = 0;
    virtual void close() = 0;
};

class Datenbankmaschine {
  public:
    virtual ~Datenbankmaschine() = default;
    // Shared, read-write.
    virtual std::unique_ptr<Datenbank> openDatabase(const std::string& pfad) = 0;
    virtual void repairDatabase(const std::string& pfad) = 0;
    virtual void compactDatabase(const std::string& quelle, const std::string& ziel) = 0;
};

// Makes engines. Each call makes a new one or throws.
class Datenbankmaschinen {
  public:
    virtual ~Datenbankmaschinen() = default;
    virtual std::unique_ptr<Datenbankmaschine> direkt() = 0;
    virtual std::unique_ptr<Datenbankmaschine> nachProgrammkennung(const std::string& kennung) = 0;
};

}  // namespace wendel
