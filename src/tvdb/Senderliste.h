#pragma once
// The channels in the user's order: all of them, and the favourites among them. Loaded from the table Sender
// at the start and on request; whoever shows or queries channels looks them up here by key.

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/cSender.h"

namespace wendel {

// Channels in the order they were added, found by their key without regard to case.
class Sendersammlung {
  public:
    // Throws Fehler kDoppelterSchluessel when the key is there already; nothing is added then.
    void add(std::shared_ptr<cSender> sender, std::string_view schluessel);

    // Null when there is no such channel.
    std::shared_ptr<cSender> suche(std::string_view schluessel) const;

    std::size_t count() const { return sender_.size(); }
    auto begin() const { return sender_.begin(); }
    auto end() const { return sender_.end(); }

  private:
    std::vector<std::shared_ptr<cSender>> sender_;
    std::map<std::string, std::shared_ptr<cSender>> nachSchluessel_;  // keys in lower case
};

class Senderliste {
  public:
    // zugriff must outlive this object.
    explicit Senderliste(ModulDatenbankzugriff& zugriff) : zugriff_(zugriff) {}

    // Reads the table and replaces both collections. A database error (thrown on) leaves them as they were; a
    // duplicate key throws Fehler kDoppelterSchluessel after the rows up to it have replaced them.
    void laden();

    // Favourites are the same objects as in alle(). Valid until the next laden().
    const Sendersammlung& alle() const { return alle_; }
    const Sendersammlung& favoriten() const { return favoriten_; }

  private:
    ModulDatenbankzugriff& zugriff_;
    Sendersammlung alle_;
    Sendersammlung favoriten_;
};

}  // namespace wendel
