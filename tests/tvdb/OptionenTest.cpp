#include "tvdb/Optionen.h"

#include <gtest/gtest.h>

namespace wendel {
namespace {

using Optionen::GetOption;
using Optionen::SetOption;

TEST(GetOption, FindetDenWertJederSchreibweise) {
    const std::pair<const char*, const char*> kFaelle[] = {
        {"Erinnerungszeit=201212242010", "201212242010"},
        {"Wiederkehrend=1;Erinnerungszeit=201212242010;SenderEgal=0", "201212242010"},
        {"Wiederkehrend=1|Erinnerungszeit=201212242010", "201212242010"},
        {"Wiederkehrend=1,Erinnerungszeit=201212242010", "201212242010"},
        {"Wiederkehrend=1\r\nErinnerungszeit=201212242010\r\n", "201212242010"},
        {"Wiederkehrend=1; erinnerungsZEIT =201212242010", "201212242010"},
        {"Erinnerungszeit=a=b", "a=b"},
        {"Erinnerungszeit=1;Erinnerungszeit=2", "1"},
        {"Erinnerungszeit=", ""},
        {"Erinnerungszeit", "(Ersatz)"},
        {"XErinnerungszeit=1", "(Ersatz)"},
        {"Wiederkehrend=Erinnerungszeit=1", "(Ersatz)"},
        {"", "(Ersatz)"},
    };
    for (const auto& [optionen, erwartet] : kFaelle) {
        EXPECT_EQ(GetOption(optionen, "Erinnerungszeit", "(Ersatz)"), erwartet) << optionen;
    }
    EXPECT_EQ(GetOption("", "Wiederkehrend"), "");
}

TEST(SetOption, ErsetztAnDerStelleOderHaengtAn) {
    struct Fall {
        const char *vorher, *nachher;
    };
    const Fall kFaelle[] = {
        {"", "Wiederkehrend=1"},
        {"Wiederkehrend=0", "Wiederkehrend=1"},
        {" wiederkehrend = 0;SenderEgal=0", "Wiederkehrend=1;SenderEgal=0"},
        {"SenderEgal=0;Wiederkehrend=0;X=y", "SenderEgal=0;Wiederkehrend=1;X=y"},
        {"SenderEgal=0", "SenderEgal=0;Wiederkehrend=1"},
        {"SenderEgal=0;", "SenderEgal=0;Wiederkehrend=1"},
        {"SenderEgal=0|X=y", "SenderEgal=0|X=y|Wiederkehrend=1"},
        {"SenderEgal=0\r\nX=y", "SenderEgal=0\r\nX=y\r\nWiederkehrend=1"},
        {"SenderEgal=0,X=y", "SenderEgal=0,X=y,Wiederkehrend=1"},
    };
    for (const auto& [vorher, nachher] : kFaelle)
        EXPECT_EQ(SetOption(vorher, "Wiederkehrend", "1"), nachher);
}

}  // namespace
}  // namespace wendel
