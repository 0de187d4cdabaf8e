#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wendel {

// What tells one content of a file from another without reading it.
struct Dateistand {
    std::uint64_t groesse = 0;
    std::int64_t geaendertNs = 0;  // time of the last change; comparable with others of the same file only
    friend bool operator==(const Dateistand&, const Dateistand&) = default;
};

struct Ordnereintrag {
    std::string name;  // without folder
    Dateistand stand;
    friend bool operator==(const Ordnereintrag&, const Ordnereintrag&) = default;
};

// Files by logic paths: plain UTF-8 text with "\" between folders (and "/" accepted). The adapter alone turns
// them into native paths. Wildcards are ordinary characters. Operations return false or nothing on any
// failure and never throw. Relative paths count from the current folder.
class Dateisystem {
  public:
    virtual ~Dateisystem() = default;

    // Regular files only, links followed; "" is no file. A name not found with exact case is looked for
    // without regard to case in its last component, here and in lesen(), groesse() and stand().
    virtual bool existiert(const std::string& pfad) = 0;
    virtual std::optional<std::uint64_t> groesse(const std::string& pfad) = 0;
    virtual std::optional<Dateistand> stand(const std::string& pfad) = 0;
    virtual std::optional<std::string> lesen(const std::string& pfad) = 0;

    // Creates an empty file if there is none (opening for binary access does); an existing one is untouched.
    [[nodiscard]] virtual bool anlegen(const std::string& pfad) = 0;
    // One write at offset 0 of the file, created if absent, not truncated: a longer old tail stays. On the
    // disk when the call returns.
    [[nodiscard]] virtual bool ueberschreibenAmAnfang(const std::string& pfad, std::string_view inhalt) = 0;
    // Writes a whole file; on the disk when the call returns. A failure can leave part of it behind.
    [[nodiscard]] virtual bool schreiben(const std::string& pfad, std::string_view inhalt) = 0;
    // New file beside it, synced, then renamed over the old one: readers and crashes see the old or the new
    // content, never a mixture.
    [[nodiscard]] virtual bool ersetzen(const std::string& pfad, std::string_view inhalt) = 0;
    [[nodiscard]] virtual bool anhaengen(const std::string& pfad, std::string_view inhalt) = 0;

    [[nodiscard]] virtual bool loeschen(const std::string& pfad) = 0;
    // Replaces nothing: false when the target exists.
    [[nodiscard]] virtual bool umbenennen(const std::string& von, const std::string& nach) = 0;

    // The regular files in a folder, in no order; nothing when it can't be read.
    virtual std::optional<std::vector<Ordnereintrag>> ordnerinhalt(const std::string& pfad) = 0;
    // Creates missing parents too; true when the folder is there afterwards.
    [[nodiscard]] virtual bool ordnerAnlegen(const std::string& pfad) = 0;
    // Makes the folder current for this process; false when it is none. "" is no folder.
    [[nodiscard]] virtual bool ordnerWechseln(const std::string& pfad) = 0;

    // The path as the user knows it; the native form on Linux ("\" shown as "/").
    virtual std::string pfadAnzeige(const std::string& pfad) = 0;
};

}  // namespace wendel
