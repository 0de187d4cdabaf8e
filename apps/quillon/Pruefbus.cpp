#include "Pruefbus.h"

#include <poll.h>

#include <algorithm>

#include "desktop/Busklopfen.h"
#include "desktop/Umgebung.h"

namespace wendel::quillon {
namespace {

constexpr int kFristMs = 1500;

// The first address. Of the other kinds some make the library start a bus or another program.
std::string ersteAdresse(const std::string& adressen) {
    const bool nurVerbinden = adressen.starts_with("unix:") || adressen.starts_with("tcp:");
    return nurVerbinden ? adressen.substr(0, adressen.find(';')) : "";
}

std::string sitzungsadresse() {
    const std::string adressen = ausUmgebung("DBUS_SESSION_BUS_ADDRESS");
    if (!adressen.empty()) return ersteAdresse(adressen);
    const std::string ordner = ausUmgebung("XDG_RUNTIME_DIR");
    return ordner.empty() ? "" : "unix:path=" + ordner + "/bus";
}

std::string systemadresse() {
    const std::string adressen = ausUmgebung("DBUS_SYSTEM_BUS_ADDRESS");
    return adressen.empty() ? "unix:path=/run/dbus/system_bus_socket" : ersteAdresse(adressen);
}

// The library would wait without a limit for a bus that is stuck.
bool lebt(const std::string& adresse) {
    const std::string socket = bussocket(adresse);
    if (socket.empty()) return !adresse.empty();
    const Dateideskriptor fd = klopfeAn(socket);
    pollfd antwort{fd.get(), POLLIN, 0};
    return fd && ::poll(&antwort, 1, kFristMs) == 1;
}

}  // namespace

Pruefbus Pruefbus::sitzung() { return Pruefbus(sitzungsadresse()); }
Pruefbus Pruefbus::system() { return Pruefbus(systemadresse()); }

// The greeting is a call like any other here: the library's own would wait for half a minute.
Pruefbus::Pruefbus(const std::string& adresse) {
    if (!lebt(adresse)) return;
    verbindung_.reset(dbus_connection_open_private(adresse.c_str(), nullptr));
    if (!verbindung_) return;
    dbus_connection_set_exit_on_disconnect(verbindung_.get(), FALSE);
    const Nachricht antwort = frage(ruf(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    if (!antwort) verbindung_.reset();
}

Pruefbus::Nachricht Pruefbus::ruf(const char* dienst, const char* objekt, const char* schnittstelle,
                                  const char* methode) {
    Nachricht nachricht(dbus_message_new_method_call(dienst, objekt, schnittstelle, methode));
    dbus_message_set_auto_start(nachricht.get(), FALSE);
    return nachricht;
}

Pruefbus::Nachricht Pruefbus::frage(const Nachricht& nachricht) const {
    if (!verbindung_) return nullptr;
    return Nachricht(
        dbus_connection_send_with_reply_and_block(verbindung_.get(), nachricht.get(), kFristMs, nullptr));
}

bool Pruefbus::vergeben(const std::string& name) const {
    const Nachricht nachricht = ruf(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "NameHasOwner");
    const char* text = name.c_str();
    dbus_message_append_args(nachricht.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    const Nachricht antwort = frage(nachricht);
    dbus_bool_t vergeben = FALSE;
    return antwort &&
           dbus_message_get_args(antwort.get(), nullptr, DBUS_TYPE_BOOLEAN, &vergeben, DBUS_TYPE_INVALID) &&
           vergeben;
}

bool Pruefbus::startbar(const std::string& name) const {
    const Nachricht antwort =
        frage(ruf(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "ListActivatableNames"));
    char** namen = nullptr;
    int anzahl = 0;
    if (!antwort || !dbus_message_get_args(antwort.get(), nullptr, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &namen,
                                           &anzahl, DBUS_TYPE_INVALID))
        return false;
    const bool dabei = std::find(namen, namen + anzahl, name) != namen + anzahl;
    dbus_free_string_array(namen);
    return dabei;
}

bool Pruefbus::wahr(const std::string& dienst, const std::string& objekt,
                    const std::string& eigenschaft) const {
    const Nachricht nachricht = ruf(dienst.c_str(), objekt.c_str(), DBUS_INTERFACE_PROPERTIES, "Get");
    const char* schnittstelle = dienst.c_str();
    const char* name = eigenschaft.c_str();
    dbus_message_append_args(nachricht.get(), DBUS_TYPE_STRING, &schnittstelle, DBUS_TYPE_STRING, &name,
                             DBUS_TYPE_INVALID);
    const Nachricht antwort = frage(nachricht);
    DBusMessageIter ort, wert;
    if (!antwort || !dbus_message_iter_init(antwort.get(), &ort) ||
        dbus_message_iter_get_arg_type(&ort) != DBUS_TYPE_VARIANT)
        return false;
    dbus_message_iter_recurse(&ort, &wert);
    if (dbus_message_iter_get_arg_type(&wert) != DBUS_TYPE_BOOLEAN) return false;
    dbus_bool_t wahr = FALSE;
    dbus_message_iter_get_basic(&wert, &wahr);
    return wahr != FALSE;
}

}  // namespace wendel::quillon
