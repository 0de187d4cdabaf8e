#include "jet/JetDatenbankmaschinen.h"

#include <malloc.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "jet/Connection.h"
#include "jet/sql/Errors.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

using sql::JetType;
using sql::sqlError;

class JetRecordset;

// The recordsets of one database that are still open: it counts them, and takes them along when it closes.
using OpenRecordsets = std::vector<JetRecordset*>;

// Snapshot or forward-only, with or without: the access layer reads forwards once, so that all are the same
// here.
class JetRecordset : public Recordset {
  public:
    JetRecordset(Query query, std::shared_ptr<OpenRecordsets> open)
        : query_(std::move(query)), open_(std::move(open)) {
        eof_ = !query_->step();
        open_->push_back(this);
    }
    ~JetRecordset() override { JetRecordset::close(); }
    JetRecordset(const JetRecordset&) = delete;
    JetRecordset& operator=(const JetRecordset&) = delete;

    bool eof() override {
        requireOpen();
        return eof_;
    }

    void moveNext() override {
        requireRow();
        eof_ = true;  // also when the step fails
        eof_ = !query_->step();
    }

    std::size_t feldnummer(const std::string& name) override {
        requireOpen();
        const auto& columns = query_->columns();
        const auto found = std::find_if(columns.begin(), columns.end(), [&](const Query::Column& column) {
            return gleichOhneGrossKlein(column.name, name);
        });
        if (found == columns.end()) {
            throw sqlError(sql::kUnknownField);
        }
        return static_cast<std::size_t>(found - columns.begin());
    }

    Variant feld(std::size_t nummer) override {
        requireRow();
        if (nummer >= query_->columns().size()) {
            throw sqlError(sql::kUnknownField);
        }
        return query_->storage(nummer) == Query::Storage::Null ? Variant::null() : value(nummer);
    }

    void addNew() override { throw sqlError(sql::kReadOnly); }
    void setzeFeld(std::size_t, const Variant&) override { throw sqlError(sql::kReadOnly); }
    void update() override { throw sqlError(sql::kReadOnly); }

    void close() override {
        if (query_) {
            query_.reset();
            std::erase(*open_, this);
        }
    }

  private:
    void requireOpen() const {
        if (!query_) {
            throw sqlError(sql::kClosed);
        }
    }
    void requireRow() const {
        requireOpen();
        if (eof_) {
            throw sqlError(sql::kNoCurrentRow);
        }
    }

    Variant value(std::size_t column) const;
    Variant untyped(std::size_t column) const;

    std::optional<Query> query_;
    std::shared_ptr<OpenRecordsets> open_;
    bool eof_ = true;
};

// A whole number in the smallest of the column's own type, Long and Double that holds it.
Variant wholeVariant(std::int64_t value, JetType type) {
    if (type == JetType::Byte && value >= 0 && value <= 255) {
        return Variant::byte(static_cast<std::uint8_t>(value));
    }
    if (type == JetType::Integer && value >= INT16_MIN && value <= INT16_MAX) {
        return Variant::integer(static_cast<std::int16_t>(value));
    }
    if (value >= INT32_MIN && value <= INT32_MAX) {
        return Variant::lang(static_cast<std::int32_t>(value));
    }
    return Variant::doppelt(static_cast<double>(value));
}

Variant JetRecordset::value(std::size_t column) const {
    const JetType type = query_->columns()[column].type;
    switch (type) {
        case JetType::Boolean: return Variant::boolesch(query_->whole(column) != 0);
        case JetType::Byte:
        case JetType::Integer:
        case JetType::Long: return wholeVariant(query_->whole(column), type);
        case JetType::Currency: return Variant::waehrung(query_->whole(column));
        case JetType::Single: return Variant::einfach(static_cast<float>(query_->real(column)));
        case JetType::Double:
        case JetType::DaySum: return Variant::doppelt(query_->real(column));
        case JetType::Date: return Variant::datumRoh(query_->real(column));
        case JetType::Binary:
        case JetType::Ole: {
            const std::string_view bytes = query_->bytes(column);
            return Variant::binaer(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
        }
        case JetType::Text:
        case JetType::Memo:
        case JetType::Guid:
        case JetType::Decimal: return Variant::text(std::string(query_->text(column)));
        case JetType::Null: break;
    }
    return untyped(column);
}

Variant JetRecordset::untyped(std::size_t column) const {
    switch (query_->storage(column)) {
        case Query::Storage::Whole: return wholeVariant(query_->whole(column), JetType::Long);
        case Query::Storage::Real: return Variant::doppelt(query_->real(column));
        case Query::Storage::Text: return Variant::text(std::string(query_->text(column)));
        default: return Variant::null();
    }
}

class JetDatenbank : public Datenbank {
  public:
    JetDatenbank(std::string pfad, const std::string& nativerPfad, Uhr& uhr)
        : pfad_(std::move(pfad)), connection_(std::make_unique<Connection>(nativerPfad, uhr)) {}
    ~JetDatenbank() override { JetDatenbank::close(); }

    std::string name() override { return pfad_; }

    std::unique_ptr<Recordset> openRecordset(const std::string& sql, std::optional<int>,
                                             std::optional<int>) override {
        if (!connection_) {
            throw sqlError(sql::kClosed);
        }
        return std::make_unique<JetRecordset>(connection_->query(sql), open_);
    }

    // A select is no statement to execute; the others would write.
    void execute(const std::string& sql, int) override {
        if (!connection_) {
            throw sqlError(sql::kClosed);
        }
        connection_->query(sql);
        throw sqlError(sql::kSelectNotExecutable);
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
    std::string pfad_;
    std::unique_ptr<Connection> connection_;
    std::shared_ptr<OpenRecordsets> open_ = std::make_shared<OpenRecordsets>();
};

class JetDatenbankmaschine : public Datenbankmaschine {
  public:
    JetDatenbankmaschine(Uhr& uhr, Pfadumsetzung nativerPfad)
        : uhr_(uhr), nativerPfad_(std::move(nativerPfad)) {}

    std::unique_ptr<Datenbank> openDatabase(const std::string& pfad) override {
        return std::make_unique<JetDatenbank>(pfad, nativerPfad_(pfad), uhr_);
    }

    // The engine only reads so far.
    void repairDatabase(const std::string&) override { throw sqlError(sql::kReadOnly); }
    void compactDatabase(const std::string&, const std::string&) override { throw sqlError(sql::kReadOnly); }

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
