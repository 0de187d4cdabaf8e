// Key strings: the names of the scripts, and the notation taken apart into what goes down and up.

#include "recording/Tastenfolge.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/Text.h"

namespace wendel {
namespace {

std::string tastenname(const Tastenereignis& ereignis) {
    static const auto kNamen = Split(
        "Zeichen Umschalt Strg Alt Ruecktaste Pause Feststell Entf Ab Ende Eingabe Esc Hilfe Pos1 Einfg "
        "Links "
        "NumFeststell BildAb BildAuf Druck Rechts Rollen Tab Auf F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 F13 "
        "F14 F15 F16",
        " ");
    if (ereignis.taste != Taste::Zeichen) return kNamen.at(static_cast<std::size_t>(ereignis.taste));
    return ereignis.zeichen < 128 ? std::string(1, static_cast<char>(ereignis.zeichen))
                                  : "#" + std::to_string(static_cast<int>(ereignis.zeichen));
}

// "+Strg a -Strg": what goes down and up; a key that is released at once stands alone.
std::string tasten(std::string_view notation) {
    const auto ereignisse = tastenereignisse(notation);
    if (!ereignisse) return "ungültig";
    std::vector<std::string> text;
    for (const Tastenereignis& ereignis : *ereignisse) {
        const std::string name = tastenname(ereignis);
        const bool sofort = !ereignis.gedrueckt && !text.empty() && text.back() == "+" + name;
        if (sofort) text.pop_back();
        text.push_back((sofort ? "" : ereignis.gedrueckt ? "+" : "-") + name);
    }
    return Join(text, " ");
}

// Rows of names in scripts, name in the notation, key.
TEST(KeyNames, BecomeTheNotationAndTheKeysOfTheTable) {
    for (const std::string& zeile :
         Split("BACKSPACE:BACKSPACE:Ruecktaste BS:BS:Ruecktaste BKSP:BKSP:Ruecktaste PAUSE,BREAK:BREAK:Pause "
               "CAPSLOCK:CAPSLOCK:Feststell ENTF,DELETE:DELETE:Entf DEL:DEL:Entf AB,DOWN:DOWN:Ab "
               "ENDE,END,end:END:Ende "
               "ENTER:ENTER:Eingabe ESC:ESC:Esc HELP:HELP:Hilfe POS1,HOME:HOME:Pos1 EINF,INSERT:INSERT:Einfg "
               "INS:INS:Einfg LINKS,LEFT:LEFT:Links NUMLOCK:NUMLOCK:NumFeststell BILDAB,PGDN:PGDN:BildAb "
               "BILDAUF,PGUP:PGUP:BildAuf DRUCK,PRTSC:PRTSC:Druck RECHTS,RIGHT:RIGHT:Rechts "
               "SCROLLLOCK:SCROLLLOCK:Rollen TAB:TAB:Tab AUF,UP:UP:Auf F1:F1:F1 F9:F9:F9 F10:F10:F10 "
               "F16:F16:F16",
               " ")) {
        const auto spalten = Split(zeile, ":");
        for (const std::string& name : Split(spalten[0], ","))
            EXPECT_EQ(tastennamenErsetzen("[" + name + "]"), "{" + spalten[1] + "}");
        EXPECT_EQ(tasten("{" + spalten[1] + "}"), spalten[2]) << zeile;
    }
    EXPECT_EQ(tastennamenErsetzen("[ALT][Umschalt][SHIFT]a[strg][CTRL] [F17]ä["), "%++a^^ [F17]ä[");
}

TEST(KeyNotation, GoesDownAndUpInItsOrder) {
    const std::pair<const char*, const char*> faelle[] = {
        {"", ""},
        {"aÄ€", "a #196 #8364"},
        {"+ab", "+Umschalt a -Umschalt b"},
        {"+(ab)c", "+Umschalt a b -Umschalt c"},
        {"^%{del}x", "+Strg +Alt Entf -Alt -Strg x"},
        {"^(a+b+(c)d)e", "+Strg a +Umschalt b -Umschalt +Umschalt c -Umschalt d -Strg e"},
        {"+(+a)", "+Umschalt a -Umschalt"},
        {"%~", "+Alt Eingabe -Alt"},
        {"+{left 2}", "+Umschalt Links Links -Umschalt"},
        {"{h 3}{ä 0}", "h h h"},
        {"{+}{^}{%}{~}{(}{)}{{}{}}{[}{]}[]", "+ ^ % ~ ( ) { } [ ] [ ]"},
        {"{} 2}{ }\t", "} }   Tab"},
        {"%", "Alt"},
        {"a^(%)+()", "a +Strg Alt -Strg Umschalt"},
    };
    for (const auto& [notation, erwartet] : faelle)
        EXPECT_EQ(tasten(notation), erwartet) << notation;
}

TEST(KeyNotation, IsRefusedAsAWholeWhenAPartIsWrong) {
    for (const std::string& notation : Split(
             "{|}|a}|{}|{}a}|{ENTER|{FOO}|{F0}|{F05}|{F17}|{LEFT x}|{LEFT -1}|{LEFT }|(|+(a|a)|())|{h 10001}|"
             "{h 99999999999999999999}|{h 9999}+a|\x01|\xFF|{\x7F 2}",
             "|"))
        EXPECT_EQ(tasten(notation), "ungültig") << notation;
    EXPECT_EQ(tastenereignisse("{h 9998}+a")->size(), 2U * kHoechstzahlTasten);
    EXPECT_FALSE(tastenereignisse(std::string(1000000, '(')));
}

}  // namespace
}  // namespace wendel
