#pragma once
// Follows a desktop that only says "rather dark" or "rather light" (the settings portal on the session bus)
// where the toolkit has not taken the desktop's colours by itself. Where it has, and without a bus or a
// portal, nothing happens.

#include <QDBusMessage>
#include <QObject>

namespace wendel {

class Farbschema final : public QObject {
    Q_OBJECT

  public:
    // Asks and, so that no window comes up light and turns dark then, waits for the answer for a moment at
    // most; a later answer and each change count as well. Before the first window, after the application.
    Farbschema();

  private Q_SLOTS:
    // The whole message: the bus library refuses slots with a variant until the first variant has come.
    void geaendert(const QDBusMessage& meldung);

  private:
    void frage();
    void wende(const QVariant& wert);

    bool dunkel_ = false;
};

}  // namespace wendel
