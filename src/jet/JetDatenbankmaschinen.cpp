#include "jet/JetDatenbankmaschinen.h"

#include <malloc.h>

#include <optional>
#include <utility>
#include <vector>

#include "jet/Connection.h"
#include "jet/JetRecordset.h"
#include "jet/sql/Errors.h"
#include "jet/storage/Compact.h"
#include "jet/storage/Repair.h"
#include "jet/storage/ReplacingLock.h"

namespace wendel::jet {
namespace {

using sql::sqlError;

// What the type and the options of OpenRecordset allow.
RecordsetKind kindOf(std::optional<int> typ, std::optional<int> optionen) {
    const int options = optionen.value_or(0);
    if (typ.value_or(kDynaset) != kDynaset || options & kForwardOnly) {
        return RecordsetKind::kReadOnly;
    }
    return options & kAppendOnly ? RecordsetKind::kAppendOnly : RecordsetKind::kDynaset;
}

class JetDatenbank : public Datenbank {
  public:
    JetDatenbank(std::string pfad, const std::string& nativerPfad, Uhr& uhr)
        : pfad_(std::move(pfad)), connection_(std::make_shared<Connection>(nativerPfad, uhr)) {}
    ~JetDatenbank() override { JetDatenbank::close(); }

    std::string name() override { return pfad_; }

    std::unique_ptr<Recordset> openRecordset(const std::string& sql, std::optional<int> typ,
                                             std::optional<int> optionen) override {
        requireOpen();
        return std::make_unique<JetRecordset>(connection_, connection_->query(sql), kindOf(typ, optionen),
                                              open_);
    }

    // Failures are errors with any options: nobody is helped by half a statement.
    void execute(const std::string& sql, int) override {
        requireOpen();
        connection_->execute(sql);
    }

    int recordsetsCount() override { return static_cast<int>(open_->size()); }

    void close() override {
        if (!connection_) {
            return;
        }
        for (JetRecordset* recordset : OpenRecordsets(*open_)) {
            recordset->close();
        }
        connection_.reset();
        malloc_trim(0);  // pages and statements are gone: a resident program gives the memory back
    }

  private:
    void requireOpen() const {
        if (!connection_) {
            throw sqlError(sql::kClosed);
        }
    }

    std::string pfad_;
    std::shared_ptr<Connection> connection_;
    std::shared_ptr<OpenRecordsets> open_ = std::make_shared<OpenRecordsets>();
};

class JetDatenbankmaschine : public Datenbankmaschine {
  public:
    JetDatenbankmaschine(Uhr& uhr, Pfadumsetzung nativerPfad)
        : uhr_(uhr), nativerPfad_(std::move(nativerPfad)) {}

    std::unique_ptr<Datenbank> openDatabase(const std::string& pfad) override {
        return std::make_unique<JetDatenbank>(pfad, nativerPfad_(pfad), uhr_);
    }

    void repairDatabase(const std::string& pfad) override { repairDatabaseFile(nativerPfad_(pfad)); }
    // The access layer puts the copy in the place of the file: nobody may be writing into that meanwhile.
    void compactDatabase(const std::string& quelle, const std::string& ziel) override {
        const std::string quelldatei = nativerPfad_(quelle);
        std::optional<ReplacingLock> lock;
        try {
            lock.emplace(quelldatei);
        } catch (const Fehler& fehler) {
            if (fehler.nummer() != jetfehler::kNoAccess) {
                throw;
            }
            // A file that cannot be written can still be copied.
        }
        compactDatabaseFile(quelldatei, nativerPfad_(ziel));
    }

  private:
    Uhr& uhr_;
    Pfadumsetzung nativerPfad_;
};

}  // namespace

JetDatenbankmaschinen::JetDatenbankmaschinen(Uhr& uhr, Pfadumsetzung nativerPfad)
    : uhr_(uhr), nativerPfad_(std::move(nativerPfad)) {}

std::unique_ptr<Datenbankmaschine> JetDatenbankmaschinen::direkt() {
    return std::make_unique<JetDatenbankmaschine>(uhr_, nativerPfad_);
}

std::unique_ptr<Datenbankmaschine> JetDatenbankmaschinen::nachProgrammkennung(const std::string&) {
    return direkt();
}

}  // namespace wendel::jet
