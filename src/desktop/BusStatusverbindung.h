#pragma once
// The link to the live-update program over the session bus: follows the two properties of "Drumlet.TvStatus".
// Whoever takes that name next is followed as well, until the link is cut.

#include <QObject>
#include <QVariantMap>

#include "platform/ports/Statusverbindung.h"

namespace wendel {

class BusStatusverbindung final : public QObject, public Statusverbindung {
    Q_OBJECT
  public:
    ~BusStatusverbindung() override;

    // What the properties hold is asked for at once and arrives from the event loop.
    [[nodiscard]] bool verbinden(const Empfaenger& empfaenger) override;
    void trennen() override;

  private Q_SLOTS:
    void geaendert(const QString& schnittstelle, const QVariantMap& werte, const QStringList& ungueltige);

  private:
    void frageWerte();
    void uebernimm(const QVariantMap& werte);

    Empfaenger empfaenger_;
    bool verbunden_ = false;
    unsigned verbindungsnummer_ = 0;  // answers to an earlier link are dropped
};

}  // namespace wendel
