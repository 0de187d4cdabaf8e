#pragma once
// What the tests of this folder share: the gate to a fake database.

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "support/Fehlernummer.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel {

// Members of a record as one text, "Tatort|12|1|": a shifted one shows at a glance.
template <class... Werte>
std::string verbunden(const Werte&... werte) {
    const auto text = [](const auto& wert) {
        if constexpr (requires { std::to_string(wert); })
            return std::to_string(wert);
        else
            return std::string(wert);
    };
    return ((text(werte) + "|") + ...);
}

class Datenbankprobe : public testing::Test {
  protected:
    Datenbankprobe() {
        werte.programmdatei = "wendel";
        werte.programmordner = kTestordner;
        werte.datenbankdatei = "\\suite\\tvdaten.mdb";
    }

    void antworte(const std::string& sql, FakeTabelle tabelle) {
        zustand->antworten.insert_or_assign(sql, std::move(tabelle));
    }

    FakePorts fakes;
    FakeDatenbankzustand* zustand = &*fakes.datenbanken;
    Prozesswerte werte;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{fakes.ports(), einstellungen, werte};
    std::unique_ptr<Datenbank> db;
};

}  // namespace wendel
