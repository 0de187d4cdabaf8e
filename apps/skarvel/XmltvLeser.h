#pragma once
// Reads XMLTV as it comes in, piece by piece, and hands on each channel and broadcast when it is complete.
// One broadcast at a time is in memory, however long the file. What the elements mean for the database is
// left to Guidesendung.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "XmltvZeit.h"

namespace wendel::skarvel {

// A text with what was said about it: its language, its numbering system or an actor's part.
struct XmltvText {
    std::string text;
    std::string art;
};

struct XmltvKanal {
    std::string kennung;
    std::vector<XmltvText> namen;  // with language
    std::string webseite;
};

// The elements of a broadcast as they stand in the file, outer blanks cut. Texts are cut off at 64 KB, lists
// at 200 entries.
struct XmltvSendung {
    std::string kanal;
    Weltzeit beginn = 0;
    std::optional<Weltzeit> ende;
    std::optional<std::int64_t> laengeSekunden;
    std::optional<Weltzeit> vpsBeginn;
    std::string showview;
    std::vector<XmltvText> titel, untertitel, beschreibungen, kategorien, laender, stichworte, kritiken;
    std::vector<XmltvText> regie, darsteller, moderation, gaeste;  // actors with their part
    std::vector<XmltvText> folgen, freigaben;                      // with their system
    std::vector<XmltvText> sterne;                                 // "3/4"
    std::string datum, ton, seitenverhaeltnis, bildqualitaet, farbe;
    bool hatUntertitel = false, hatHoerfassung = false, istWiederholung = false, istLive = false;
};

class XmltvEmpfaenger {
  public:
    virtual ~XmltvEmpfaenger() = default;
    virtual void kanal(XmltvKanal kanal) = 0;
    virtual void sendung(XmltvSendung sendung) = 0;
};

// One document. Entities from outside and external definitions are not followed. All functions throw Fehler 1
// with the place in the text for what is no well-formed XMLTV, and what the receiver throws.
class XmltvLeser {
  public:
    // name stands in messages; empfaenger outlives this.
    XmltvLeser(std::string name, XmltvEmpfaenger& empfaenger);
    ~XmltvLeser();
    XmltvLeser(const XmltvLeser&) = delete;
    XmltvLeser& operator=(const XmltvLeser&) = delete;

    void lies(std::string_view stueck);
    // To be called behind the last piece: half a document is an error.
    void ende();

  private:
    class Zustand;
    std::unique_ptr<Zustand> zustand_;
};

}  // namespace wendel::skarvel
