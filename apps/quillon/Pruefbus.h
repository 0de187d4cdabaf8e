#pragma once
// Questions to a message bus without the toolkit: who is there. Starts neither a bus nor a service, and waits
// a bounded time.

#include <dbus/dbus.h>

#include <memory>
#include <string>

namespace wendel::quillon {

class Pruefbus {
  public:
    static Pruefbus sitzung();
    static Pruefbus system();

    // Whether the bus has answered.
    bool erreichbar() const { return verbindung_ != nullptr; }
    // Somebody has this name at the moment. All of these are false on a bus that is not there.
    bool vergeben(const std::string& name) const;
    // Nobody has to have it: the bus would start who serves it.
    bool startbar(const std::string& name) const;
    // A property of type boolean.
    bool wahr(const std::string& dienst, const std::string& objekt, const std::string& eigenschaft) const;

  private:
    explicit Pruefbus(const std::string& adresse);

    struct Schliesser {
        void operator()(DBusConnection* verbindung) const {
            dbus_connection_close(verbindung);
            dbus_connection_unref(verbindung);
        }
    };
    struct Freigabe {
        void operator()(DBusMessage* nachricht) const { dbus_message_unref(nachricht); }
    };
    using Nachricht = std::unique_ptr<DBusMessage, Freigabe>;

    static Nachricht ruf(const char* dienst, const char* objekt, const char* schnittstelle,
                         const char* methode);
    Nachricht frage(const Nachricht& nachricht) const;

    std::unique_ptr<DBusConnection, Schliesser> verbindung_;
};

}  // namespace wendel::quillon
