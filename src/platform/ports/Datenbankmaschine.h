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

    // Begins a new record, or the change of the current one; update() saves it. Until then feld() shows the
    // record that is being made, with the key that the database has given it. What is not saved is dropped by
    // the next addNew(), edit(), moveNext() or close(). Throws Fehler 3027 for rows that cannot be changed.
    virtual void addNew() = 0;
    virtual void edit() = 0;
    // Throws Fehler 3421 for a value that the column cannot take, 3020 without addNew() or edit().
    virtual void setzeFeld(std::size_t nummer, const Variant& wert) = 0;
    void setzeFeld(const std::string& name, const Variant& wert) { setzeFeld(feldnummer(name), wert); }
    // A failed one keeps the record, so that it can be called again.
    virtual void update() = 0;

    virtual void close() = 0;
};

// The type and options of OpenRecordset. Rows can be added and changed where the type is a dynaset or left
// out; with kAppendOnly no row is read.
inline constexpr int kDynaset = 2;
inline constexpr int kSnapshot = 4;
inline constexpr int kAppendOnly = 8;
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
