#pragma once
// What the source has delivered, kept outside memory until all of it has been read and found sound: a
// temporary file that has no name and goes with the process. Broadcasts may come in any order; of two that
// begin on one channel in one minute, the later one stays.

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Guidesendung.h"
#include "XmltvLeser.h"

namespace wendel::skarvel {

class Ablage : public XmltvEmpfaenger {
  public:
    // Throws Fehler 1 when there is no room for temporary files; so does sendung().
    Ablage();
    ~Ablage() override;

    void kanal(XmltvKanal kanal) override;
    void sendung(XmltvSendung sendung) override;

    // The channels in the order in which the source names them first, those of which it knows broadcasts only
    // included; of two with one identifier the first one counts.
    const std::vector<XmltvKanal>& kanaele() const { return kanaele_; }
    // By place in kanaele().
    std::size_t anzahl(std::size_t kanal);
    // In the order of their beginnings.
    std::vector<Guidesendung> sendungenVon(std::size_t kanal);

  private:
    class Datei;
    std::size_t platzVon(const std::string& kennung);

    std::vector<XmltvKanal> kanaele_;
    std::map<std::string, std::size_t> plaetze_;
    std::unique_ptr<Datei> datei_;
};

}  // namespace wendel::skarvel
